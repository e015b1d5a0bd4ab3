// SPDX-License-Identifier: MIT
// The router's rules followed word by word, and the script that drives the router and this model.
// Observers and messages are numbers.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <utility>
#include <vector>

using Queue = std::vector<std::pair<int, float>>; // messages, and the delay that each has left

class Model {
public:
    std::function<void(int observer, int message)> receive;
    std::function<void(int message)> destroyed;

    // What still waits is not destroyed by the router either.
    ~Model() { destroyed = nullptr; }

    bool add(int observer, std::uint32_t type) { return add_to(boxes[type], observer); }

    bool add_to_anything(int observer) { return add_to(anything, observer); }

    bool remove(int observer, std::uint32_t type) {
        return boxes.contains(type) && std::erase(boxes[type].observers, observer) > 0;
    }

    int remove_all(int observer) {
        return static_cast<int>(std::count_if(boxes.begin(), boxes.end(), [&](auto& entry) {
            return std::erase(entry.second.observers, observer) > 0;
        }));
    }

    int post(std::uint32_t type, int message) {
        const std::size_t result = boxes.contains(type) ? deliver(boxes[type], message) : 0;
        deliver(anything, message);
        return static_cast<int>(result);
    }

    int post_delayed(std::uint32_t type, int message, float delay) {
        const std::shared_ptr<int> holder(new int(message), [this](int* number) {
            if (destroyed)
                destroyed(*number);
            delete number;
        });
        boxes[type].queue.push_back({holder, delay});
        anything.queue.push_back({holder, delay});
        return static_cast<int>(boxes[type].observers.size());
    }

    void update(float passed) {
        if (std::exchange(updating, true))
            return;
        work_through(anything, passed);
        for (auto& [type, box] : boxes)
            work_through(box, passed);
        updating = false;
    }

    Queue queue(std::uint32_t type) { return boxes.contains(type) ? of(boxes[type]) : Queue(); }

    Queue queue_of_anything() { return of(anything); }

private:
    struct Entry {
        std::shared_ptr<int> holder;
        float left;
    };

    struct Box {
        std::vector<Entry> queue;
        std::vector<int> observers;
    };

    static Queue of(const Box& box) {
        Queue entries;
        for (const Entry& entry : box.queue)
            entries.emplace_back(*entry.holder, entry.left);
        return entries;
    }

    static bool add_to(Box& box, int observer) {
        const bool is_new = std::count(box.observers.begin(), box.observers.end(), observer) == 0;
        if (is_new)
            box.observers.push_back(observer);
        return is_new;
    }

    std::size_t deliver(const Box& box, int message) const {
        for (std::size_t i = 0; i < box.observers.size(); ++i)
            receive(box.observers[i], message);
        return box.observers.size();
    }

    void work_through(Box& box, float passed) const {
        for (std::size_t position = 0; position < box.queue.size();) {
            Entry& entry = box.queue[position];
            if (passed < entry.left) {
                entry.left -= passed;
                ++position;
                continue;
            }
            deliver(box, *entry.holder);
            box.queue.erase(box.queue.begin() + static_cast<std::ptrdiff_t>(position));
        }
    }

    std::map<std::uint32_t, Box> boxes;
    Box anything;
    bool updating = false;
};

// Drives a bus at random; two buses that behave alike make the same script say the same.
template <typename Bus>
class Script {
public:
    Script(Bus& driven, std::uint32_t seed) : bus(driven), draw(seed) {
        bus.receive = [this](int observer, int message) { react(observer, message); };
        bus.destroyed = [this](int message) { log.push_back(-message); };
    }

    // One operation, with all that observers do in turn; what happened is in `log`.
    void step() {
        log.clear();
        reactions = 0;
        operate();
    }

    std::vector<int> log;

private:
    static constexpr std::uint32_t TYPES[] = {0, 1, 7, 0x80000000, 0xFFFFFFFF};
    static constexpr float INFINITE = std::numeric_limits<float>::infinity();
    static constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    static constexpr float DELAYS[] = {0.0F, 0.1F, 0.25F, 0.3F,     0.5F,         1.0F,
                                       1.7F, 3.0F, -1.0F, INFINITE, NOT_A_NUMBER, -INFINITE};
    static constexpr float TIMES[] = {0.0F, 0.1F,  0.1F, 0.25F,        0.3F,     0.5F,
                                      1.0F, -0.5F, 2.0F, NOT_A_NUMBER, INFINITE, 0.2F};

    template <typename T, std::size_t count>
    T one_of(const T (&choices)[count]) {
        return choices[draw() % count];
    }

    void react(int observer, int message) {
        log.insert(log.end(), {observer, message});
        note(draw() % 2 == 0 ? bus.queue_of_anything() : bus.queue(one_of(TYPES)));
        if (draw() % 8 < 3 && ++reactions < 30)
            operate();
    }

    void note(const Queue& queue) {
        for (const auto& [message, left] : queue)
            log.insert(log.end(), {message, std::bit_cast<int>(left)});
    }

    void operate() {
        const int observer = static_cast<int>(draw() % 6);
        const std::uint32_t type = one_of(TYPES);
        const auto kind = draw() % 100;
        if (kind < 20)
            log.push_back(bus.add(observer, type) ? 1 : 0);
        else if (kind < 21)
            log.push_back(bus.add_to_anything(observer) ? 1 : 0);
        else if (kind < 35)
            log.push_back(bus.remove(observer, type) ? 1 : 0);
        else if (kind < 38)
            log.push_back(bus.remove_all(observer));
        else if (kind < 60)
            log.push_back(bus.post(type, ++messages));
        else if (kind < 80)
            log.push_back(bus.post_delayed(type, ++messages, one_of(DELAYS)));
        else
            bus.update(one_of(TIMES));
    }

    Bus& bus;
    std::mt19937 draw;
    int messages = 1000;
    int reactions = 0;
};
