#include "loaded_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <chrono>

using testing::ElementsAre;

namespace {

// Notes what happens to a worker, which has work in every second pass and stops in the given one.
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

// The position in the table of virtual operations, times the size of an entry, which is how the
// Itanium C++ ABI stores a pointer to one.
template <typename Member>
std::intptr_t table_position(Member member) {
    return std::bit_cast<std::array<std::intptr_t, 2>>(member)[0];
}

} // namespace

TEST(Modules, AccessorsGiveOneObjectEach) {
    const LoadedLibrary library;
    const auto expect_one = [](auto* instance) {
        EXPECT_NE(instance(), nullptr);
        EXPECT_EQ(instance(), instance());
    };
    expect_one(EXPORT_OF(library, __mCore_instance));
    expect_one(EXPORT_OF(library, __mGraphics_instance));
    expect_one(EXPORT_OF(library, __mInput_instance));
    expect_one(EXPORT_OF(library, __mSystem_instance));
    expect_one(EXPORT_OF(library, __mNetwork_instance));
    expect_one(EXPORT_OF(library, __mAudio_instance));
    expect_one(EXPORT_OF(library, __mPhysics_instance));
    expect_one(EXPORT_OF(library, __mFileOps_instance));
}

TEST(Modules, ViewsSeeTheTableOfTheirModule) {
    const LoadedLibrary library;
    const auto* graphics = EXPORT_OF(library, __mGraphics_instance)();
    const auto* network = EXPORT_OF(library, __mNetwork_instance)();
    const auto* audio = EXPORT_OF(library, __mAudio_instance)();
    for (const auto* view :
         {&graphics->view0, &graphics->view2, &graphics->view4, &graphics->view5, &graphics->view6})
        EXPECT_EQ((*view)->interface, &graphics->interface);
    for (const auto* view : {&graphics->view1, &graphics->view3}) {
        EXPECT_EQ((*view)->interface, &graphics->interface);
        EXPECT_EQ((*view)->first + 1, (*view)->second) << "adjacent words";
    }
    EXPECT_EQ(network->view1->interface, &network->interface);
    EXPECT_FALSE(network->statusFlag);
    EXPECT_EQ(audio->view1->interface, &audio->interface);
}

TEST(Modules, UnconnectedModulesAnswerFalseZeroOrNothing) {
    const LoadedLibrary library;
    EXPORT_OF(library, __mGraphics_instance)()->load_bitmap("x", nullptr, nullptr, nullptr);
    EXPECT_FALSE(EXPORT_OF(library, __mGraphics_instance)()->save_bitmap("x", 1, 1, nullptr));
    EXPECT_FALSE(EXPORT_OF(library, __mInput_instance)()->key_down(1));
    EXPECT_EQ(EXPORT_OF(library, __mInput_instance)()->axis_value(1), 0.0F);
    EXPORT_OF(library, __mSystem_instance)()->pause(1e9);
}

TEST(Modules, ConnectedModulesCallTheirEntriesAndUnfilledOnesAnswerNothing) {
    const ScratchFolder folder;
    folder.add_plugins({"all_five"});
    const LoadedLibrary library;
    EXPORT_OF(library, __mCore_open)();
    std::filesystem::remove("events");
    std::uint8_t pixel = 200;
    EXPECT_TRUE(EXPORT_OF(library, __mGraphics_instance)()->save_bitmap("a.png", 65535, 2, &pixel));
    EXPORT_OF(library, __mSystem_instance)()->pause(0.5);
    EXPECT_THAT(folder.events(),
                ElementsAre("All: save_bitmap a.png 65535 2 200", "All: pause 0.500000"));
    EXPECT_EQ(EXPORT_OF(library, __mInput_instance)()->axis_value(65535), 32767.5F);
    EXPECT_EQ(EXPORT_OF(library, __mInput_instance)()->axis_delta(65535), 0.0F);
    EXPECT_FALSE(EXPORT_OF(library, __mInput_instance)()->key_press(3));
    EXPORT_OF(library, __mGraphics_instance)()->load_bitmap("x", nullptr, nullptr, nullptr);
}

TEST(Worker, RunsUntilItIsAskedToStop) {
    const LoadedLibrary library;
    Worker worker(5);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(EXPORT_OF(library, __mGeneric_worker_loop)(&worker), 0u);
    EXPECT_EQ(worker.trace, "run9 run9 work run9 run9 work run9 ");
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(10))
        << "no pause without a system plug-in";
    EXPECT_EQ(EXPORT_OF(library, __mGeneric_worker_loop)(&worker), 0u);
    EXPECT_EQ(worker.passes, 5u) << "stopped on entry";
}

TEST(Worker, PausesThroughTheSystemPluginAfterTheWork) {
    const ScratchFolder folder;
    folder.add_plugins({"input_and_system"});
    const LoadedLibrary library;
    EXPORT_OF(library, __mCore_open)();
    Worker worker(3);
    library.observe([&](const std::string& event) { worker.trace += event + " "; });
    EXPORT_OF(library, __mGeneric_worker_loop)(&worker);
    EXPECT_EQ(worker.trace, "run9 Both: pause 0.002000 run9 work Both: pause 0.002000 "
                            "run9 Both: pause 0.002000 ");
    library.observe([](const std::string&) {});
}

TEST(Thread, ReturnsTheResultOfItsRunAndMarksItsEnd) {
    const LoadedLibrary library;
    Worker worker(1);
    worker.passes = 41;
    EXPECT_EQ(EXPORT_OF(library, __mGeneric_thread_func)(&worker), 42u);
    EXPECT_EQ(worker.trace, "run9 ");
    EXPECT_EQ(worker.threadState, 0u);
}

TEST(Thread, HasTheLayoutThatTheLibraryReliesOn) {
    EXPECT_EQ(table_position(&quillon::cThread::work) - table_position(&quillon::cThread::run),
              std::intptr_t{sizeof(void*)});
    const Worker worker(1);
    const auto* start =
        reinterpret_cast<const char*>(static_cast<const quillon::cThread*>(&worker));
    EXPECT_EQ(reinterpret_cast<const char*>(&worker.threadState) - start, 8);
    EXPECT_EQ(reinterpret_cast<const char*>(&worker.stopRequested) - start, 12);
}
