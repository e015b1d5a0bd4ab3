// SPDX-License-Identifier: MIT
// The router beside boost::signals2 (immediate posts) and beside its own rules followed word by
// word, with an erase for each message that leaves (delayed posts).
#include "quillon/messages/router.h"

#include <benchmark/benchmark.h>
#include <boost/signals2.hpp>

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <vector>

namespace {

using namespace quillon;

constexpr std::uint32_t TYPE_COUNT = 1000;

class Counter final : public cMessageObserver {
public:
    // Not inlined: the only observer in sight is what a compiler guesses behind an indirect call.
    [[gnu::noinline]] void receive_message(cMessage*) override { ++received; }

    std::uint64_t received = 0;
};

// Type numbers as name hashes have them, and the order in which a run posts them.
std::vector<std::uint32_t> scattered_types() {
    std::mt19937 draw(1);
    std::vector<std::uint32_t> types(TYPE_COUNT);
    for (std::uint32_t& type : types)
        type = static_cast<std::uint32_t>(draw());
    return types;
}

std::vector<std::uint32_t> posting_order() {
    std::mt19937 draw(2);
    std::vector<std::uint32_t> order(4096);
    for (std::uint32_t& place : order)
        place = static_cast<std::uint32_t>(draw()) % TYPE_COUNT;
    return order;
}

// Range 0: observers of each type. Range 1: whether each type has observers of its own, or all
// types have the same ones.
class Posting {
public:
    explicit Posting(const benchmark::State& state)
        : per_type(static_cast<std::size_t>(state.range(0))),
          counters(state.range(1) != 0 ? per_type * TYPE_COUNT : per_type) {}

    template <typename Connect>
    void for_each_registration(Connect connect) {
        for (std::size_t i = 0; i < per_type * TYPE_COUNT; ++i)
            connect(i / per_type, counters[i % counters.size()]);
    }

private:
    std::size_t per_type;
    std::vector<Counter> counters;
};

void post_router(benchmark::State& state) {
    const auto types = scattered_types();
    const auto order = posting_order();
    Posting posting(state);
    cMessageRouter router;
    posting.for_each_registration([&](std::size_t type, Counter& counter) {
        router.register_for_message(&counter, types[type]);
    });
    std::size_t turn = 0;
    for (auto _ : state) {
        cMessage message{types[order[turn++ % order.size()]]};
        benchmark::DoNotOptimize(__messageRouter_post_message(&router, &message));
    }
}

void post_signals2(benchmark::State& state) {
    const auto order = posting_order();
    Posting posting(state);
    std::vector<boost::signals2::signal<void(cMessage*)>> signals(TYPE_COUNT);
    posting.for_each_registration([&](std::size_t type, Counter& counter) {
        signals[type].connect([&counter](cMessage*) { ++counter.received; });
    });
    std::size_t turn = 0;
    for (auto _ : state) {
        cMessage message{1};
        signals[order[turn++ % order.size()]](&message);
        benchmark::DoNotOptimize(message);
    }
}

// What a post cannot do without: the calls themselves, over the lists of pointers.
void post_bare(benchmark::State& state) {
    const auto order = posting_order();
    Posting posting(state);
    std::vector<std::vector<cMessageObserver*>> lists(TYPE_COUNT);
    posting.for_each_registration(
        [&](std::size_t type, Counter& counter) { lists[type].push_back(&counter); });
    std::size_t turn = 0;
    for (auto _ : state) {
        cMessage message{1};
        const auto& list = lists[order[turn++ % order.size()]];
        for (std::size_t i = 0; i < list.size(); ++i)
            list[i]->receive_message(&message);
        benchmark::DoNotOptimize(message);
    }
}

BENCHMARK(post_router)->ArgNames({"observers", "own"})->ArgsProduct({{1, 10, 100}, {0, 1}});
BENCHMARK(post_bare)->ArgNames({"observers", "own"})->ArgsProduct({{1, 10, 100}, {0, 1}});
BENCHMARK(post_signals2)->ArgNames({"observers", "own"})->ArgsProduct({{1, 10, 100}, {0, 1}});

// Delayed posts, done plainly: entries on the heap, a walk by position, an erase per delivery.
class PlainRouter {
public:
    void register_for_message(cMessageObserver* observer, std::uint32_t type) {
        boxes[type].observers.push_back(observer);
    }

    void post_delayed(std::shared_ptr<cMessage> message, float delay) {
        boxes[message->messageType].queue.push_back(new Entry(message, delay));
        anything.queue.push_back(new Entry(message, delay));
    }

    void update(float passed) {
        work_through(anything, passed);
        for (auto& [type, box] : boxes)
            work_through(box, passed);
    }

private:
    using Entry = std::pair<std::shared_ptr<cMessage>, float>;

    struct Box {
        std::vector<Entry*> queue;
        std::vector<cMessageObserver*> observers;
    };

    static void work_through(Box& box, float passed) {
        for (std::size_t position = 0; position < box.queue.size();) {
            Entry* const entry = box.queue[position];
            if (passed < entry->second) {
                entry->second -= passed;
                ++position;
                continue;
            }
            for (std::size_t i = 0; i < box.observers.size(); ++i)
                box.observers[i]->receive_message(entry->first.get());
            delete entry;
            box.queue.erase(box.queue.begin() + static_cast<std::ptrdiff_t>(position));
        }
    }

    std::map<std::uint32_t, Box> boxes;
    Box anything;
};

void post_one(cMessageRouter& router, std::uint32_t type, float delay) {
    router.post_message_delayed(new cMessageStable(cMessage{type}), delay);
}

void post_one(PlainRouter& router, std::uint32_t type, float delay) {
    router.post_delayed(std::make_shared<cMessage>(cMessage{type}), delay);
}

constexpr std::uint32_t DELAYED_COUNT = 100'000;

// Posts `DELAYED_COUNT` messages of range(0) types, due at random over range(1) updates.
template <typename Router>
void post_all(Router& router, const benchmark::State& state) {
    const auto types = static_cast<std::uint32_t>(state.range(0));
    const auto steps = static_cast<std::uint32_t>(state.range(1));
    std::mt19937 draw(3);
    for (std::uint32_t i = 0; i < DELAYED_COUNT; ++i)
        post_one(router, i % types, static_cast<float>(draw() % steps) + 0.5F);
}

// Times the posts.
template <typename Router>
void delayed_posts(benchmark::State& state) {
    for (auto _ : state) {
        auto router = std::make_unique<Router>();
        post_all(*router, state);
        state.PauseTiming();
        router->update(std::numeric_limits<float>::infinity()); // frees the holders
        router.reset();
        state.ResumeTiming();
    }
}

BENCHMARK(delayed_posts<cMessageRouter>)->Args({1000, 1000})->Unit(benchmark::kMillisecond);
BENCHMARK(delayed_posts<PlainRouter>)->Args({1000, 1000})->Unit(benchmark::kMillisecond);

// Times the updates that deliver them.
template <typename Router>
void updates(benchmark::State& state) {
    const auto types = static_cast<std::uint32_t>(state.range(0));
    const auto steps = static_cast<std::uint32_t>(state.range(1));
    Counter counter;
    std::uint64_t posted = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto router = std::make_unique<Router>();
        for (std::uint32_t type = 0; type < types; ++type)
            router->register_for_message(&counter, type);
        post_all(*router, state);
        posted += DELAYED_COUNT;
        state.ResumeTiming();
        for (std::uint32_t i = 0; i < steps; ++i)
            router->update(1.0F);
        state.PauseTiming();
        router.reset();
        state.ResumeTiming();
    }
    if (counter.received != posted)
        state.SkipWithError("messages were lost");
}

BENCHMARK(updates<cMessageRouter>)
    ->Args({1, 1})
    ->Args({1, 1000})
    ->Args({100, 1000})
    ->Args({1000, 1000})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(updates<PlainRouter>)
    ->Args({1, 1})
    ->Args({1, 1000})
    ->Args({100, 1000})
    ->Args({1000, 1000})
    ->Unit(benchmark::kMillisecond);

} // namespace
