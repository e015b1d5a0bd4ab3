// SPDX-License-Identifier: MIT
#include "loaded_library.h"

#include "quillon/appearance/bitmap.h"

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <cstring>

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

// Of fields, or of functions in the table of virtual ones but for a constant, as the Itanium C++
// ABI stores pointers to members.
template <typename... Members>
auto offsets(Members... members) {
    std::array<std::intptr_t, sizeof...(members)> all;
    auto* next = all.data();
    (std::memcpy(next++, &members, sizeof(std::intptr_t)), ...);
    return all;
}

} // namespace

TEST(Modules, AreOneObjectEachWhoseViewsSeeItsTable) {
    const LoadedLibrary library;
    EXPECT_NE(EXPORT_OF(library, __mCore_instance)(), nullptr);
    EXPECT_NE(EXPORT_OF(library, __mPhysics_instance)(), nullptr);
    EXPECT_NE(EXPORT_OF(library, __mFileOps_instance)(), nullptr);
    const auto& graphics = *EXPORT_OF(library, __mGraphics_instance)();
    const auto& network = *EXPORT_OF(library, __mNetwork_instance)();
    const auto& audio = *EXPORT_OF(library, __mAudio_instance)();
    for (void*** const interface :
         {graphics.view0->interface, graphics.view1->interface, graphics.view2->interface,
          graphics.view3->interface, graphics.view4->interface, graphics.view5->interface,
          graphics.view6->interface})
        EXPECT_EQ(interface, &graphics.interface);
    for (const auto* view : {&graphics.view1, &graphics.view3})
        EXPECT_EQ((*view)->first + 1, (*view)->second) << "adjacent words";
    EXPECT_EQ(network.view1->interface, &network.interface);
    EXPECT_FALSE(network.statusFlag);
    EXPECT_EQ(audio.view1->interface, &audio.interface);
}

TEST(Modules, CallEntriesThatAreFilledOfTablesThatAreConnected) {
    const Host host({"all_five"});
    const auto& input = *EXPORT_OF(host, __mInput_instance)();
    const auto& system = *EXPORT_OF(host, __mSystem_instance)();
    std::uint8_t pixel = 200;
    for (const bool connected : {false, true}) {
        EXPECT_EQ(EXPORT_OF(host, __cBitmap_save)("a.png", 65535, 40000, &pixel), connected);
        char width[] = "1";
        char height[] = "2";
        char loaded[20] = "";
        EXPORT_OF(host, __cBitmap_load)("b.png", width, height, loaded);
        EXPECT_STREQ(loaded, connected ? "b.png 1 2" : "");
        EXPECT_EQ(input.axis_value(65535), connected ? 32767.5F : 0.0F);
        EXPECT_EQ(input.axis_delta(65535), 0.0F) << "left unfilled";
        EXPECT_FALSE(input.key_press(3));
        system.pause(0.5);
        if (!connected)
            host.open();
    }
    EXPECT_THAT(
        Host::events("connect"),
        testing::IsSupersetOf({"All: save_bitmap a.png 65535 40000 200", "All: pause 0.500000"}));
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

TEST(Layout, IsTheOneThatHostsAndPluginsRelyOn) {
    if (sizeof(void*) != 8)
        GTEST_SKIP() << "told for 64-bit systems";
    using namespace quillon;
    const auto functions = offsets(&cThread::run, &cThread::work);
    EXPECT_EQ(functions[1] - functions[0], 8);
    EXPECT_THAT(offsets(&cThread::threadState, &cThread::stopRequested), ElementsAre(8, 12));
    EXPECT_THAT(offsets(&cPlugin::library, &cPlugin::initialised, &cPlugin::initialize,
                        &cPlugin::shutdown, &cPlugin::get_plugin_name, &cPlugin::get_plugin_purpose,
                        &cPlugin::get_plugin_compatibility, &cPlugin::get_plugin_prereqs),
                ElementsAre(8, 16, 24, 32, 40, 48, 56, 64));
}
