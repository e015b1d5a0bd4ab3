#include "model.h"

#include "quillon/messages/router.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>

namespace {

using namespace quillon;

// The router as the script sees it.
class RouterBus {
public:
    std::function<void(int observer, int message)> receive;
    std::function<void(int message)> destroyed;

    RouterBus() = default;
    RouterBus(const RouterBus&) = delete;
    RouterBus& operator=(const RouterBus&) = delete;

    // The holders that still wait are nobody's once the router is gone.
    ~RouterBus() {
        router.reset();
        while (!waiting.empty())
            delete *waiting.begin();
    }

    bool enlist(int observer, std::uint32_t type) {
        return router->register_for_message(&at(observer), type);
    }

    bool enlist_for_anything(int observer) { return router->register_for_anything(&at(observer)); }

    bool strike_off(int observer, std::uint32_t type) {
        return router->unregister_for_message(&at(observer), type);
    }

    int strike_off_all(int observer) { return router->unregister_all(&at(observer)); }

    int post(std::uint32_t type, int message) {
        Numbered numbered{type, message};
        return router->post_message(reinterpret_cast<cMessage*>(&numbered));
    }

    int post_delayed(std::uint32_t type, int message, float delay) {
        return router->post_message_delayed(new Holder(*this, {type, message}), delay);
    }

    void update(float passed) { router->update(passed); }

private:
    struct Numbered {
        std::uint32_t messageType;
        int number;
    };

    class Holder final : public cMessageHolder<Numbered> {
    public:
        Holder(RouterBus& owner, Numbered numbered) : cMessageHolder(numbered), bus(owner) {
            bus.waiting.insert(this);
        }

        ~Holder() override {
            bus.waiting.erase(this);
            if (bus.router)
                bus.destroyed(get().number);
        }

    private:
        RouterBus& bus;
    };

    class Observer final : public cMessageObserver {
    public:
        Observer(RouterBus& owner, int name) : bus(owner), number(name) {}

        void receive_message(cMessage* message) override {
            bus.receive(number, reinterpret_cast<Numbered*>(message)->number);
        }

    private:
        RouterBus& bus;
        int number;
    };

    Observer& at(int observer) { return observers[observer]; }

    std::set<Holder*> waiting;
    Observer observers[6] = {{*this, 0}, {*this, 1}, {*this, 2},
                             {*this, 3}, {*this, 4}, {*this, 5}};
    std::unique_ptr<cMessageRouter> router = std::make_unique<cMessageRouter>();
};

TEST(RouterModel, AgreesOverAMillionOperations) {
    for (std::uint32_t seed = 0; seed < 2500; ++seed) {
        RouterBus router;
        Model model;
        Script on_router(router, seed);
        Script on_model(model, seed);
        for (int step = 0; step < 400; ++step) {
            on_router.step();
            on_model.step();
            ASSERT_EQ(on_model.log, on_router.log) << "seed " << seed << ", step " << step;
        }
    }
}

} // namespace
