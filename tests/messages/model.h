// The router's rules followed word by word, and the script that drives the router and this model.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <vector>

// What an observer throws.
struct Cut {};

// Observers and messages are numbers.
class Model {
public:
    std::function<void(int observer, int message)> receive;
    std::function<void(int message)> destroyed;

    Model() = default;
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    // What still waits is not destroyed by the router either.
    ~Model() {
        destroyed = [](int) {};
    }

    bool enlist(int observer, std::uint32_t type) { return enlist_in(boxes[type], observer); }

    bool enlist_for_anything(int observer) { return enlist_in(anything, observer); }

    bool strike_off(int observer, std::uint32_t type) {
        return boxes.contains(type) && strike_off_from(boxes[type], observer);
    }

    int strike_off_all(int observer) {
        return static_cast<int>(std::count_if(boxes.begin(), boxes.end(), [&](auto& entry) {
            return strike_off_from(entry.second, observer);
        }));
    }

    int post(std::uint32_t type, int message) {
        const auto box = boxes.find(type);
        std::size_t result = 0;
        if (box != boxes.end()) {
            deliver(box->second, message);
            result = box->second.observers.size();
        }
        deliver(anything, message);
        return static_cast<int>(result);
    }

    int post_delayed(std::uint32_t type, int message, float delay) {
        const std::shared_ptr<int> holder(new int(message), [this](int* number) {
            destroyed(*number);
            delete number;
        });
        boxes[type].queue.push_back({holder, delay});
        anything.queue.push_back({holder, delay});
        return static_cast<int>(boxes[type].observers.size());
    }

    void update(float passed) {
        if (inWork != nullptr)
            return;
        try {
            work_through(anything, passed);
            for (auto& [type, box] : boxes)
                work_through(box, passed);
        } catch (const Cut&) {
            break_off(passed);
            inWork = nullptr;
            throw;
        }
        inWork = nullptr;
    }

private:
    struct Entry {
        std::shared_ptr<int> holder;
        float left;
    };

    struct Box {
        std::vector<Entry> queue;
        std::vector<int> observers;
        int next = 0;
    };

    void deliver(const Box& box, int message) const {
        std::size_t i = 0;
        while (i < box.observers.size())
            receive(box.observers[i++], message);
    }

    // The message in delivery goes on first of all, with the observer behind; time counts for all.
    void break_off(float passed) {
        auto& queue = inWork->queue;
        std::rotate(queue.begin(), queue.begin() + position, queue.begin() + position + 1);
        queue.front().left = -std::numeric_limits<float>::infinity();
        bool reached = inWork != &anything;
        const auto count_down = [&](Entry& entry) {
            entry.left = passed < entry.left ? entry.left - passed : queue.front().left;
        };
        std::for_each(queue.begin() + position + 1, queue.end(), count_down);
        for (auto& [type, box] : boxes)
            if (!reached)
                std::for_each(box.queue.begin(), box.queue.end(), count_down);
            else
                reached = &box != inWork;
    }

    static bool enlist_in(Box& box, int observer) {
        const bool free = std::count(box.observers.begin(), box.observers.end(), observer) == 0;
        if (free)
            box.observers.push_back(observer);
        return free;
    }

    bool strike_off_from(Box& box, int observer) {
        const auto found = std::find(box.observers.begin(), box.observers.end(), observer);
        if (found == box.observers.end())
            return false;
        if (found - box.observers.begin() < box.next && inWork != &box)
            --box.next;
        box.observers.erase(found);
        return true;
    }

    void work_through(Box& box, float passed) {
        inWork = &box;
        for (position = 0; position < static_cast<std::ptrdiff_t>(box.queue.size());) {
            Entry& entry = box.queue[static_cast<std::size_t>(position)];
            if (passed < entry.left) {
                entry.left -= passed;
                ++position;
                continue;
            }
            const int message = *entry.holder;
            while (box.next < static_cast<int>(box.observers.size()))
                receive(box.observers[static_cast<std::size_t>(box.next++)], message);
            box.next = 0;
            box.queue.erase(box.queue.begin() + position);
        }
    }

    std::map<std::uint32_t, Box> boxes;
    Box anything;
    Box* inWork = nullptr;
    std::ptrdiff_t position = 0;
};

// Drives a bus at random; two buses that behave alike make the same script say the same.
template <class Bus>
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
        try {
            operate();
        } catch (const Cut&) {
            log.push_back(999);
        }
    }

    std::vector<int> log;

private:
    static constexpr std::uint32_t types[] = {0, 1, 7, 0x80000000, 0xFFFFFFFF};
    static constexpr float infinite = std::numeric_limits<float>::infinity();
    static constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    static constexpr float delays[] = {0.0F, 0.1F, 0.25F, 0.3F,     0.5F, 1.0F,
                                       1.7F, 3.0F, -1.0F, infinite, nan,  -infinite};
    static constexpr float times[] = {0.0F, 0.1F,  0.1F, 0.25F, 0.3F,     0.5F,
                                      1.0F, -0.5F, 2.0F, nan,   infinite, 0.2F};

    template <class T, std::size_t N>
    T one_of(const T (&choices)[N]) {
        return choices[draw() % N];
    }

    void react(int observer, int message) {
        log.insert(log.end(), {observer, message});
        const auto act = draw() % 8;
        if (act < 3 && ++reactions < 30) {
            if (act == 2 && draw() % 8 == 0)
                throw Cut();
            operate();
        }
    }

    void operate() {
        const int observer = static_cast<int>(draw() % 6);
        const std::uint32_t type = one_of(types);
        const auto kind = draw() % 100;
        if (kind < 20)
            log.push_back(bus.enlist(observer, type) ? 1 : 0);
        else if (kind < 21)
            log.push_back(bus.enlist_for_anything(observer) ? 1 : 0);
        else if (kind < 35)
            log.push_back(bus.strike_off(observer, type) ? 1 : 0);
        else if (kind < 38)
            log.push_back(bus.strike_off_all(observer));
        else if (kind < 60)
            log.push_back(bus.post(type, ++messages));
        else if (kind < 80)
            log.push_back(bus.post_delayed(type, ++messages, one_of(delays)));
        else
            bus.update(one_of(times));
    }

    Bus& bus;
    std::mt19937 draw;
    int messages = 1000;
    int reactions = 0;
};
