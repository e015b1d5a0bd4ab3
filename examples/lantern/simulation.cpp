// SPDX-License-Identifier: MIT
#include "simulation.h"

#include <quillon/comfort.h>

#include <algorithm>
#include <cstring>
#include <limits>

namespace lantern {

namespace {

using quillon::cMatrix3D;
using quillon::cVector3D;
using quillon::cZone3D;

constexpr double STEP = 1.0 / STEPS_PER_SECOND;
constexpr double SHIP_RADIUS = 1.6;
constexpr double LANTERN_RADIUS = 3.2;
constexpr double CEILING = 130.0;
constexpr double BORDER = 330.0;

constexpr double TURN_SPEED = 1.5;  // radians per second
constexpr double CLIMB_ANGLE = 0.6; // radians
constexpr double BANK_ANGLE = 0.8;

constexpr double CRUISE = 30.0; // metres per second
constexpr double BOOSTED = 50.0;
constexpr double BRAKED = 17.0;

constexpr std::uint32_t CHAIN_STEPS = 4 * STEPS_PER_SECOND;
constexpr std::uint32_t CHAIN_LIMIT = 5;
constexpr std::uint32_t LANTERN_STEPS = 12 * STEPS_PER_SECOND;
constexpr std::uint32_t SHIP_STEPS = 3 * STEPS_PER_SECOND;
constexpr std::uint32_t POINTS = 10;

// Calls `visit` with every value of a state in the order of the flat form.
template <typename AnyState, typename Visit>
void visit_values(AnyState& state, Visit visit) {
    visit(state.step);
    visit(state.players);
    for (auto& ship : state.ships) {
        visit(ship.position);
        visit(ship.velocity);
        visit(ship.attitude);
        visit(ship.health);
        visit(ship.energy);
        visit(ship.score);
        visit(ship.chain);
        visit(ship.chain_ends);
        visit(ship.returns);
    }
    for (auto& step : state.relights)
        visit(step);
}

std::uint32_t write(std::uint8_t* buffer, const cVector3D& value) {
    return value.serialize(buffer);
}

template <typename Plain>
std::uint32_t write(std::uint8_t* buffer, const Plain& value) {
    std::memcpy(buffer, &value, sizeof value);
    return sizeof value;
}

std::uint32_t read(const std::uint8_t* buffer, cVector3D& value) {
    return value.deserialize(buffer);
}

template <typename Plain>
std::uint32_t read(const std::uint8_t* buffer, Plain& value) {
    std::memcpy(&value, buffer, sizeof value);
    return sizeof value;
}

double toward(double value, double target, double part) {
    return value + (target - value) * part;
}

cZone3D box_about(const cVector3D& middle, double radius) {
    cZone3D box = quillon::ZONE3D_ZERO;
    box.minimum = middle - quillon::VECTOR3D_ONE * radius;
    box.maximum = middle + quillon::VECTOR3D_ONE * radius;
    return box;
}

bool overlap(const cZone3D& a, const cZone3D& b) {
    for (int i = 0; i < 3; ++i)
        if (a.minimum[i] > b.maximum[i] || a.maximum[i] < b.minimum[i])
            return false;
    return true;
}

void steer(Ship& ship, const Input& input) {
    const double turn = input.turn / 127.0;
    const double climb = input.climb / 127.0;
    ship.attitude.x = toward(ship.attitude.x, -climb * CLIMB_ANGLE, 0.06); // the nose up is minus
    ship.attitude.y -= turn * TURN_SPEED * STEP;                           // to the right is minus
    ship.attitude.z = toward(ship.attitude.z, -turn * BANK_ANGLE, 0.08);
    trig_bind(ship.attitude.y);
}

double speed_of(Ship& ship, const Input& input) {
    const bool boosts = (input.buttons & Input::BOOST) != 0 && ship.energy > 0.0F;
    const double change = boosts ? -0.35 * STEP : 0.06 * STEP;
    ship.energy = static_cast<float>(std::clamp(ship.energy + change, 0.0, 1.0));
    if (boosts)
        return BOOSTED;
    return (input.buttons & Input::BRAKE) != 0 ? BRAKED : CRUISE;
}

// The velocity follows the nose with a little drift.
void move(Ship& ship, double speed) {
    const cVector3D wanted = ship.orientation() * (quillon::VECTOR3D_UNIT_Z * speed);
    ship.velocity += (wanted - ship.velocity) * 0.07;
    ship.position += ship.velocity * STEP;
    ship.position.x = std::clamp(ship.position.x, -BORDER, BORDER);
    ship.position.z = std::clamp(ship.position.z, -BORDER, BORDER);
    ship.position.y = std::min(ship.position.y, CEILING);
}

} // namespace

cMatrix3D Ship::orientation() const {
    cMatrix3D axes;
    __nsMatrix3d_euler(axes, attitude);
    return axes;
}

std::uint32_t State::serialize(std::uint8_t* buffer) const {
    visit_values(*this, [&buffer](const auto& value) { buffer += write(buffer, value); });
    return serialized_size();
}

std::uint32_t State::deserialize(const std::uint8_t* buffer) {
    visit_values(*this, [&buffer](auto& value) { buffer += read(buffer, value); });
    return serialized_size();
}

std::uint32_t State::serialized_size() const {
    constexpr std::uint32_t ship_size = 3 * 12 + 6 * 4;
    return 2 * 4 + PLAYERS * ship_size + Island::LANTERNS * 4;
}

Simulation::Simulation(const Island& home, std::uint32_t players) : island(home) {
    now.players = std::clamp<std::uint32_t>(players, 1, PLAYERS);
    for (std::uint32_t player = 0; player < PLAYERS; ++player)
        now.ships[player] = ship_at_start(player);
    flat.resize(now.serialized_size());
    settle();
    listen();
}

Simulation::~Simulation() {
    forget_delayed_events();
}

void Simulation::step(const Inputs& inputs) {
    for (std::uint32_t player = 0; player < now.players; ++player)
        if (now.ships[player].is_flying())
            fly(player, inputs[player]);
    ++now.step;
    router.update(1.0F);
    settle();
}

// The delayed events are not in the state; the steps that they are due at are.
void Simulation::restore(const State& state) {
    forget_delayed_events();
    listen();
    now = state;
    settle();
    for (std::uint32_t i = 0; i < PLAYERS; ++i)
        if (now.ships[i].returns != 0)
            post_at(now.ships[i].returns, SHIP_RETURNS, i);
    for (std::uint32_t i = 0; i < Island::LANTERNS; ++i)
        if (now.relights[i] != 0)
            post_at(now.relights[i], LANTERN_RETURNS, i);
}

std::uint64_t Simulation::digest() const {
    return digest_of(flat.data(), flat.size());
}

void Simulation::receive_message(quillon::cMessage* message) {
    const Event& event = *static_cast<Event*>(message);
    if (event.messageType == LANTERN_RETURNS) {
        now.relights[event.which] = 0;
        return;
    }
    Ship& ship = now.ships[event.which];
    const std::uint32_t points = ship.score;
    if (event.messageType == GATHERED) {
        score(ship);
    } else {
        ship = ship_at_start(event.which);
        ship.score = points;
    }
}

void Simulation::fly(std::uint32_t player, const Input& input) {
    Ship& ship = now.ships[player];
    const cVector3D from = ship.position;
    steer(ship, input);
    move(ship, speed_of(ship, input));
    collide(player);
    if (now.step >= ship.chain_ends)
        ship.chain = 0;
    if (ship.is_flying())
        gather(player, from);
}

// Rocks stop the ship in the plane of the sea; the ground and the sea lift it.
void Simulation::collide(std::uint32_t player) {
    constexpr double side = 2.0 * SHIP_RADIUS;
    // Inside what a boosted ship flies in one step, the outer samples lie within its own sides.
    constexpr double spread = 0.4;
    Ship& ship = now.ships[player];
    const cVector3D before = ship.velocity;
    for (const Rock& rock : island.rocks) {
        quillon::cCollisionReport report;
        if (ship.position.y - SHIP_RADIUS < rock.top)
            __mPhysics_collide_staticBox(report, ship.position.x, ship.position.z, ship.velocity.x,
                                         ship.velocity.z, side, side, rock.middle.x, rock.middle.z,
                                         rock.width, rock.depth, spread, false);
    }
    const double floor = island.surface(ship.position.x, ship.position.z) + SHIP_RADIUS;
    if (ship.position.y < floor) {
        ship.position.y = floor;
        ship.velocity.y = std::max(ship.velocity.y, 6.0);
    }
    const double force = (ship.velocity - before).length();
    if (force > 1.0)
        damage(player, force);
}

// The zone that the ship swept in this step against the zones of the lanterns.
void Simulation::gather(std::uint32_t player, const cVector3D& from) {
    const Ship& ship = now.ships[player];
    cZone3D swept = box_about(from, SHIP_RADIUS);
    expand(swept, ship.position);
    for (std::uint32_t i = 0; i < Island::LANTERNS; ++i) {
        if (now.relights[i] != 0 || !overlap(swept, box_about(island.lanterns[i], LANTERN_RADIUS)))
            continue;
        now.relights[i] = now.step + LANTERN_STEPS;
        post_at(now.relights[i], LANTERN_RETURNS, i);
        post({{GATHERED}, player, i});
    }
}

void Simulation::damage(std::uint32_t player, double force) {
    Ship& ship = now.ships[player];
    ship.health = static_cast<float>(ship.health - force * 0.008);
    ship.chain = 0;
    post({{STRUCK}, player, 0, static_cast<float>(force)});
    if (ship.health > 0.0F)
        return;
    ship.health = 0.0F;
    ship.velocity = quillon::VECTOR3D_ZERO;
    ship.returns = now.step + SHIP_STEPS;
    post_at(ship.returns, SHIP_RETURNS, player);
    post({{CRASHED}, player});
}

// A lantern soon after the one before it counts for more.
void Simulation::score(Ship& ship) const {
    ship.chain = std::min(ship.chain + 1, CHAIN_LIMIT);
    ship.chain_ends = now.step + CHAIN_STEPS;
    ship.score += POINTS * ship.chain;
    ship.energy = std::min(ship.energy + 0.15F, 1.0F);
    ship.health = std::min(ship.health + 0.03F, 1.0F);
}

void Simulation::post(Event event) {
    router.post_message(&event);
}

void Simulation::post_at(std::uint32_t step, EventType type, std::uint32_t which) {
    router.post_message_delayed(new quillon::cMessageHolder<Event>(Event{{type}, which}),
                                static_cast<float>(step - now.step));
}

void Simulation::listen() {
    for (const EventType type : {GATHERED, SHIP_RETURNS, LANTERN_RETURNS})
        router.register_for_message(this, type);
}

// A router that dies leaves what still waits to its poster, so let all of it fall due unheard.
void Simulation::forget_delayed_events() {
    router.unregister_all(this);
    router.update(std::numeric_limits<float>::infinity());
}

// Narrows the state to what its flat form holds.
void Simulation::settle() {
    now.serialize(flat.data());
    now.deserialize(flat.data());
}

Ship Simulation::ship_at_start(std::uint32_t player) const {
    Ship ship;
    const double t = 0.05 + 0.3 * player;
    ship.position = island.place_on_path(t);
    const cVector3D ahead = island.place_on_path(t + 0.2) - ship.position;
    ship.attitude.y =
        __tarn_extract_angle(static_cast<float>(ahead.z), static_cast<float>(-ahead.x));
    return ship;
}

std::uint64_t digest_of_tables() {
    std::uint64_t digest = digest_of(nullptr, 0);
    const auto add = [&digest](auto entry) { digest = digest_of(&entry, sizeof entry, digest); };
    for (int i = 0; i < 72000; ++i) {
        add(cosTD(i / 200.0));
        add(sinTD(i / 200.0));
        add(tanTD(i / 200.0));
    }
    for (int i = 0; i < 20000; ++i)
        add(acosT(i / 10000.0 - 0.99995)); // arc sines come from the same angles
    for (int i = 0; i < 1000000; ++i)
        add(atanT(i / 50000.0 + 0.00001));
    return digest;
}

} // namespace lantern
