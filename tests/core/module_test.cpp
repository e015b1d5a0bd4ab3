#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <chrono>

using testing::ElementsAre;

namespace {

// Notes its calls; it has work in every second pass and stops in the given one.
class Worker final : public quillon::cThread {
public:
    explicit Worker(std::uint32_t last_pass) : last(last_pass) { threadState = 9; }

    std::uint32_t run() override {
        trace += "run" + std::to_string(threadState) + " ";
        stopRequested = ++passes >= last;
        return passes % 2 == 0 ? passes : 0;
    }

    void work() override { trace += "work "; }

    std::uint32_t last;
    std::uint32_t passes = 0;
    std::string trace;
};

// The offset in the table of virtual operations, as the Itanium C++ ABI stores a pointer to one.
template <typename Member>
std::intptr_t table_offset(Member member) {
    return std::bit_cast<std::array<std::intptr_t, 2>>(member)[0];
}

} // namespace

TEST(Modules, EachAccessorReturnsOneObject) {
    const LoadedLibrary library;
    for (const char* name : {"__mCore_instance", "__mGraphics_instance", "__mInput_instance",
                             "__mSystem_instance", "__mNetwork_instance", "__mAudio_instance",
                             "__mPhysics_instance", "__mFileOps_instance"}) {
        auto* const instance = library.function<void*()>(name);
        EXPECT_NE(instance(), nullptr) << name;
        EXPECT_EQ(instance(), instance()) << name;
    }
}

TEST(Modules, ViewsSeeTheTableOfTheirModule) {
    const LoadedLibrary library;
    const auto& graphics = *EXPORT_OF(library, __mGraphics_instance)();
    const auto& network = *EXPORT_OF(library, __mNetwork_instance)();
    const auto& audio = *EXPORT_OF(library, __mAudio_instance)();
    for (const auto* view :
         {&graphics.view0, &graphics.view2, &graphics.view4, &graphics.view5, &graphics.view6})
        EXPECT_EQ((*view)->interface, &graphics.interface);
    for (const auto* view : {&graphics.view1, &graphics.view3}) {
        EXPECT_EQ((*view)->interface, &graphics.interface);
        EXPECT_EQ((*view)->first + 1, (*view)->second) << "adjacent words";
    }
    EXPECT_EQ(network.view1->interface, &network.interface);
    EXPECT_FALSE(network.statusFlag);
    EXPECT_EQ(audio.view1->interface, &audio.interface);
}

TEST(Modules, CallEntriesThatAreFilledOfTablesThatAreConnected) {
    const Host host({"all_five"});
    const auto& graphics = *EXPORT_OF(host, __mGraphics_instance)();
    const auto& input = *EXPORT_OF(host, __mInput_instance)();
    const auto& system = *EXPORT_OF(host, __mSystem_instance)();
    std::uint8_t pixel = 200;
    for (const bool connected : {false, true}) {
        EXPECT_EQ(graphics.save_bitmap("a.png", 65535, 2, &pixel), connected);
        EXPECT_EQ(input.axis_value(65535), connected ? 32767.5F : 0.0F);
        EXPECT_EQ(input.axis_delta(65535), 0.0F) << "left unfilled";
        EXPECT_FALSE(input.key_press(3));
        graphics.load_bitmap("x", nullptr, nullptr, nullptr);
        system.pause(0.5);
        if (!connected)
            host.open();
    }
    EXPECT_THAT(
        Host::events("connect"),
        testing::IsSupersetOf({"All: save_bitmap a.png 65535 2 200", "All: pause 0.500000"}));
}

TEST(Worker, PausesAfterTheWorkUntilItIsStopped) {
    Worker worker(5);
    const Host host({"input_and_system"});
    auto* const loop = EXPORT_OF(host, __mGeneric_worker_loop);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(loop(&worker), 0u);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10));
    EXPECT_EQ(worker.trace, "run9 run9 work run9 run9 work run9 ");
    EXPECT_EQ(loop(&worker), 0u);
    EXPECT_EQ(worker.passes, 5u) << "stopped on entry";

    host.open();
    host.observe([&](const std::string& event) { worker.trace += event + " "; });
    worker.trace.clear();
    worker.last = 6;
    worker.stopRequested = false;
    loop(&worker);
    EXPECT_EQ(worker.trace, "run9 work Both: pause 0.002000 ");
}

TEST(Thread, ReturnsTheResultOfItsRunAndMarksItsEnd) {
    Worker worker(1);
    worker.passes = 41;
    EXPECT_EQ(EXPORT_OF(LoadedLibrary(), __mGeneric_thread_func)(&worker), 42u);
    EXPECT_EQ(worker.trace, "run9 ");
    EXPECT_EQ(worker.threadState, 0u);
}

TEST(Thread, HasTheLayoutThatTheLibraryReliesOn) {
    using quillon::cThread;
    EXPECT_EQ(table_offset(&cThread::work) - table_offset(&cThread::run), 8);
    const Worker worker(1);
    const auto* start = reinterpret_cast<const char*>(static_cast<const cThread*>(&worker));
    EXPECT_EQ(reinterpret_cast<const char*>(&worker.threadState) - start, 8);
    EXPECT_EQ(reinterpret_cast<const char*>(&worker.stopRequested) - start, 12);
}
