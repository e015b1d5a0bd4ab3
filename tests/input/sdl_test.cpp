// SPDX-License-Identifier: MIT
// The plug-in "input-sdl" as a host has it, with SDL's virtual pads and a real window in a virtual
// display, where xdotool is the user.
#include "plugins/contracts/input.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugin_registry.h"
#include "quillon/input/analog.h"
#include "quillon/input/digital.h"
#include "quillon/input/names.h"

#include <gmock/gmock.h>

#include <SDL.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// What the message bus library keeps for the life of the process is not the plug-in's to free.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
    return "leak:libdbus-1.so";
}

namespace {

using quillon::cInputAnalog;
using quillon::cInputDigital;

const quillon::Input& plugin() {
    static const auto input = quillon::contract<quillon::Input>(__mInput_instance());
    return *input;
}

// Starts an X server on a free display; it ends with this process, once the plug-in has let go.
std::string start_display() {
    std::FILE* const server = popen("exec setpriv --pdeathsig TERM Xvfb -displayfd 1 -screen 0 "
                                    "640x480x24 -nolisten tcp -nocursor",
                                    "r");
    std::array<char, 16> number{};
    const bool is_up = std::fgets(number.data(), number.size(), server) != nullptr;
    return is_up ? ":" + std::to_string(std::stoi(number.data())) : "";
}

// One host for all tests, with the plug-ins of the build tree.
class Host : public testing::Environment {
public:
    void SetUp() override {
        const std::string display = start_display();
        ASSERT_NE("", display) << "apt-get install xvfb xdotool";
        setenv("DISPLAY", display.c_str(), 1);
        std::filesystem::current_path(BUILD_FOLDER);
        // The renderer would load a driver, and drivers leak what the leak checker can't name.
        quillon::choose_plugin("GRAPHICS", "image");
        __mCore_open();
        ASSERT_TRUE(quillon::contract<quillon::Input>(__mInput_instance()));
        EXPECT_TRUE(plugin().open_window("quillon test", 320, 200)) << plugin().last_error();
    }
};

const auto* const HOST = testing::AddGlobalTestEnvironment(new Host);

// Updates once a frame until `seen`, for at most five seconds.
bool eventually(const std::function<bool()>& seen) {
    for (int frame = 0; frame < 1000; ++frame) {
        plugin().update();
        if (seen())
            return true;
        SDL_Delay(5);
    }
    return false;
}

cInputDigital key(const char* name) {
    const std::int16_t code = quillon::digital_code(name);
    EXPECT_NE(quillon::NO_INPUT, code) << name;
    return {.code1 = code};
}

cInputAnalog axis(const char* name) {
    return {.code = quillon::analog_code(name)};
}

bool down(const char* name) {
    return key(name).query_down();
}

void type(const std::string& command) {
    ASSERT_EQ(0, std::system(("xdotool " + command).c_str())) << command;
}

TEST(SdlWindow, KeysHaveTheirCodes) {
    using Row = std::pair<const char*, const char*>; // what xdotool calls it, and its display name
    for (const auto& [keysym, name] :
         {Row("Return", "Enter"), Row("Prior", "Page Up"), Row("a", "A"), Row("z", "Z"),
          Row("0", "0"), Row("1", "1"), Row("9", "9"), Row("F12", "F12"),
          Row("KP_Insert", "Keypad 0"), Row("KP_Prior", "Keypad 9"), Row("equal", "+"),
          Row("semicolon", ":"), Row("comma", "<")}) {
        SCOPED_TRACE(name);
        const cInputDigital binding = key(name);
        type(std::string("key ") + keysym);
        EXPECT_TRUE(eventually([&] { return binding.query_press(); }));
        EXPECT_TRUE(key("Any Key").query_press());
        EXPECT_TRUE(binding.query_release() || eventually([&] { return binding.query_release(); }));
    }
    EXPECT_STREQ(";", plugin().key_label(static_cast<std::uint16_t>(quillon::digital_code(":"))));
    EXPECT_EQ(nullptr, plugin().key_label(quillon::ANY_MOUSE));
}

TEST(SdlWindow, MouseButtonsWheelAndMotion) {
    type("search --name 'quillon test' mousemove --window %1 50 50");
    type("mousedown 3");
    EXPECT_TRUE(eventually([] { return key("Right Mouse").query_press(); }));
    EXPECT_TRUE(down("Any Mouse"));
    EXPECT_FALSE(down("Left Mouse") || down("Middle Mouse"));
    EXPECT_TRUE(eventually([] { return key("Right Mouse").query_hold_press(); }));
    type("mouseup 3 click --repeat 2 --delay 60 1");
    EXPECT_TRUE(eventually([] { return key("Left Mouse").query_double_click(); }));
    type("click 4");
    EXPECT_TRUE(eventually([] { return key("Mouse Wheel Up").query_press(); }));
    EXPECT_TRUE(down("Mouse Wheel Up"));
    plugin().update();
    EXPECT_FALSE(down("Mouse Wheel Up"));
    type("click 5");
    EXPECT_TRUE(eventually([] { return key("Mouse Wheel Down").query_press(); }));
    type("mousemove_relative -- 4 -7");
    cInputAnalog x = axis("Mouse X");
    x.dead_zone = 0.3F;
    EXPECT_TRUE(eventually([&] { return x.query_up(); }));
    EXPECT_FLOAT_EQ(0.4F, axis("Mouse X").query());
    EXPECT_FLOAT_EQ(-0.7F, axis("Mouse Y").query());
    plugin().update();
    EXPECT_TRUE(x.query_center());
    EXPECT_EQ(0, axis("Mouse Y").query());
}

// The tool's own window takes the focus, shows what happens to it, and ends by itself.
TEST(SdlWindow, ToolShowsWhatIsPressed) {
    // What display libraries leak at exit is not the tool's.
    std::FILE* const tool = popen("ASAN_OPTIONS=detect_leaks=0 " TOOL_FILE
                                  " inputs --bind 'left control + S' --bind 'Mouse X' --frames 90",
                                  "r");
    ASSERT_NE(nullptr, tool);
    type("search --sync --name 'quillon inputs' windowfocus --sync keydown Control_L keydown s");
    SDL_Delay(200);
    type("keyup s keyup Control_L");
    std::string shown;
    for (std::array<char, 256> line{}; std::fgets(line.data(), line.size(), tool) != nullptr;)
        shown += line.data();
    EXPECT_EQ(0, pclose(tool));
    EXPECT_THAT(shown, testing::ContainsRegex("pressed +S, Left Control\n"));
    EXPECT_THAT(shown, testing::ContainsRegex("bound: left control \\+ S +down press\n"));
    EXPECT_THAT(shown, testing::ContainsRegex("bound: Mouse X +\\[ +\\| +\\] \\+0.00\n"));
}

TEST(SdlWindow, IsPaintedAndMakesWayForAnother) {
    type("search --sync --name 'quillon test' windowfocus --sync");
    ASSERT_TRUE(eventually([] { return plugin().has_focus(); }));
    SDL_Window* const own = SDL_GetKeyboardFocus();
    const Uint32 own_id = SDL_GetWindowID(own);
    EXPECT_NE(0, *static_cast<Uint8*>(SDL_GetWindowSurface(own)->pixels));
    EXPECT_FALSE(plugin().open_window("second", 8, 8));
    EXPECT_STREQ("the window is open already", plugin().last_error());

    SDL_Window* const other = SDL_CreateWindow("other", 0, 0, 64, 48, 0);
    type("search --sync --name '^other$' windowfocus --sync");
    EXPECT_TRUE(eventually([&] { return SDL_GetWindowFromID(own_id) == nullptr; }));
    EXPECT_TRUE(plugin().has_focus());
    EXPECT_TRUE(plugin().open_window("not needed", 8, 8));
    SDL_DestroyWindow(other);
    EXPECT_TRUE(eventually([] { return !plugin().has_focus(); }));
    EXPECT_TRUE(plugin().open_window("quillon test", 320, 200)) << "the first one is gone";
}

void push(SDL_Event event) {
    EXPECT_EQ(1, SDL_PushEvent(&event));
}

void push_key(SDL_Scancode key, bool pressed) {
    SDL_Event event{.type = pressed ? SDL_KEYDOWN : SDL_KEYUP};
    event.key.state = pressed ? SDL_PRESSED : SDL_RELEASED;
    event.key.keysym.scancode = key;
    push(event);
}

class SdlEvents : public testing::Test {
protected:
    void SetUp() override { SDL_FlushEvents(SDL_FIRSTEVENT, SDL_LASTEVENT); }
};

TEST_F(SdlEvents, HostThatPollsTheQueueTakesNoKeyAndLosesNone) {
    int pressed = 0;
    int polled = 0;
    for (int tap = 0; tap < 20; ++tap) {
        push_key(SDL_SCANCODE_SPACE, true);
        push_key(SDL_SCANCODE_SPACE, false);
        if (tap % 2 == 0)
            plugin().update();
        for (SDL_Event event; SDL_PollEvent(&event) != 0;)
            polled += event.type == SDL_KEYDOWN ? 1 : 0;
        if (tap % 2 != 0)
            plugin().update();
        pressed += key("Space").query_press() ? 1 : 0;
    }
    EXPECT_EQ(20, pressed);
    EXPECT_EQ(20, polled);
}

TEST_F(SdlEvents, ComeFromAnyThread) {
    constexpr int motions = 2000;
    std::thread mouse([] {
        SDL_Event motion{.type = SDL_MOUSEMOTION};
        motion.motion.xrel = 1;
        for (int i = 0; i < motions; ++i)
            push(motion);
    });
    float moved = 0;
    EXPECT_TRUE(eventually([&] {
        moved += __mInput_instance()->axis_value(quillon::MOUSE_X);
        return moved >= motions;
    }));
    mouse.join();
    EXPECT_EQ(motions, moved);
}

TEST_F(SdlEvents, TooManyBetweenUpdatesReleaseAllKeys) {
    push_key(SDL_SCANCODE_A, true);
    plugin().update();
    for (int i = 0; i < 5000; ++i)
        push_key(SDL_SCANCODE_B, i % 2 == 0);
    plugin().update();
    EXPECT_FALSE(down("A") || down("B"));
}

TEST_F(SdlEvents, UnreadOnesAreDroppedAfterSecondsButNotTheHostsOwn) {
    SDL_Event old{};
    for (const Uint32 type : {SDL_KEYUP, SDL_USEREVENT}) {
        old.type = type;
        old.common.timestamp = SDL_GetTicks() - 11'000;
        SDL_PeepEvents(&old, 1, SDL_ADDEVENT, type, type);
    }
    push_key(SDL_SCANCODE_A, false);
    plugin().update();
    std::vector<Uint32> left;
    for (SDL_Event event; SDL_PollEvent(&event) != 0;)
        left.push_back(event.type);
    EXPECT_THAT(left, testing::IsSupersetOf({Uint32{SDL_USEREVENT}, Uint32{SDL_KEYUP}}));
    EXPECT_EQ(1, std::ranges::count(left, Uint32{SDL_KEYUP}));
}

TEST_F(SdlEvents, QuitIsSeenByTheNextUpdate) {
    push({.type = SDL_QUIT});
    EXPECT_FALSE(plugin().quit_requested());
    plugin().update();
    EXPECT_TRUE(plugin().quit_requested());
}

// A pad of SDL's own making, which the test moves.
class VirtualPad {
public:
    explicit VirtualPad(SDL_JoystickType type = SDL_JOYSTICK_TYPE_FLIGHT_STICK)
        : device(SDL_JoystickAttachVirtual(type, 6, 20, 3)), joystick(SDL_JoystickOpen(device)) {
        plugin().update();
    }

    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    ~VirtualPad() {
        unplug();
        SDL_JoystickClose(joystick);
    }

    void unplug() {
        for (int i = 0; i < SDL_NumJoysticks(); ++i)
            if (SDL_JoystickGetDeviceInstanceID(i) == SDL_JoystickInstanceID(joystick))
                SDL_JoystickDetachVirtual(i);
        plugin().update();
    }

    void button(int number, bool pressed) {
        SDL_JoystickSetVirtualButton(joystick, number, pressed ? 1 : 0);
        plugin().update();
    }

    void axis(int number, float value) {
        SDL_JoystickSetVirtualAxis(joystick, number, static_cast<Sint16>(value * 32767));
        plugin().update();
    }

    void hat(int number, Uint8 directions) {
        SDL_JoystickSetVirtualHat(joystick, number, directions);
        plugin().update();
    }

private:
    int device;
    SDL_Joystick* joystick;
};

TEST(SdlPads, AnyPadHasItsButtonsAndHatsInOrder) {
    VirtualPad pad;
    for (std::int16_t button = 0; button < 16; ++button) {
        const cInputDigital binding{static_cast<std::int16_t>(button + 1), 0};
        pad.button(button, true);
        EXPECT_TRUE(down("Pad 1 Any") && binding.query_press()) << button;
        pad.button(button, false);
        EXPECT_TRUE(!down("Pad 1 Any") && binding.query_release()) << button;
    }
    pad.button(17, true);
    EXPECT_FALSE(key("Pad 1 Axis 1 -").query_press()) << "the code after the last button";
    pad.hat(0, SDL_HAT_LEFTUP);
    EXPECT_TRUE(down("Pad 1 Hat 1 Left") && down("Pad 1 Hat 1 Up"));
    pad.hat(0, SDL_HAT_UP);
    EXPECT_TRUE(key("Pad 1 Hat 1 Left").query_release() && down("Pad 1 Hat 1 Up"));
    pad.hat(1, SDL_HAT_DOWN);
    EXPECT_TRUE(down("Pad 1 Hat 2 Down"));
    pad.hat(2, SDL_HAT_RIGHT);
    EXPECT_FALSE(down("Pad 2 Btn 1")) << "the code after the last hat";
}

TEST(SdlPads, AxesHaveValuesAndZones) {
    VirtualPad pad;

    const cInputAnalog value = axis("Pad 1 Axis 4");
    using Move =
        std::pair<float, const char*>; // where to, and the zones Center, -, --, +, ++ there
    for (const auto& [position, expected] :
         {Move(0, "C"), Move(0.49F, "C"), Move(0.51F, "+"), Move(0.46F, "+"), Move(0.44F, "C"),
          Move(0.46F, "C"), Move(1, "+p"), Move(0.92F, "+p"), Move(0.89F, "+"), Move(0.94F, "+"),
          Move(-0.49F, "C"), Move(-0.6F, "-"), Move(-1, "-m"), Move(1, "+p"), Move(0, "C")}) {
        pad.axis(3, position);
        std::string zones;
        const char* const names[] = {" Center", " -", " --", " +", " ++"};
        for (int zone = 0; zone < 5; ++zone)
            if (down((std::string("Pad 1 Axis 4") + names[zone]).c_str()))
                zones += "C-m+p"[zone];
        EXPECT_EQ(expected, zones) << position;
        EXPECT_NEAR(position, value.query(), 1e-4) << position;
    }
    pad.axis(3, -32768.0F / 32767);
    EXPECT_EQ(-1, value.query());
    EXPECT_EQ(-1, __mInput_instance()->axis_delta(static_cast<std::uint16_t>(value.code)));
    EXPECT_TRUE(down("Pad 1 Axis 1 Center")) << "the other axes rest";
}

TEST(SdlPads, KnownPadsHaveTheStandardLayout) {
    VirtualPad pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);

    using Button = std::pair<SDL_GameControllerButton, const char*>;
    for (const auto& [button, name] :
         {Button(SDL_CONTROLLER_BUTTON_A, "Pad 1 Btn 1"),
          Button(SDL_CONTROLLER_BUTTON_Y, "Pad 1 Btn 4"),
          Button(SDL_CONTROLLER_BUTTON_BACK, "Pad 1 Btn 9"),
          Button(SDL_CONTROLLER_BUTTON_DPAD_LEFT, "Pad 1 Hat 1 Left"),
          Button(SDL_CONTROLLER_BUTTON_DPAD_DOWN, "Pad 1 Hat 1 Down")}) {
        pad.button(button, true);
        EXPECT_TRUE(key(name).query_press()) << name;
        pad.button(button, false);
        EXPECT_TRUE(key(name).query_release()) << name;
    }
    pad.axis(SDL_CONTROLLER_AXIS_RIGHTY, 0.75F);
    EXPECT_NEAR(0.75F, axis("Pad 1 Axis 4").query(), 1e-4);
    pad.axis(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 1);
    EXPECT_TRUE(key("Pad 1 Btn 7").query_press());
    EXPECT_FALSE(down("Pad 1 Btn 8"));
    EXPECT_TRUE(down("Pad 1 Axis 3 Center"));
}

TEST(SdlPads, KeepTheirNumbersAndGiveThemUp) {
    VirtualPad first;
    {
        VirtualPad second;
        VirtualPad third;
        VirtualPad fourth;
        VirtualPad fifth;
        EXPECT_NE(nullptr, plugin().pad_name(3));
        EXPECT_EQ(nullptr, plugin().pad_name(4));
        second.button(0, true);
        second.axis(0, 1);
        EXPECT_TRUE(down("Pad 2 Btn 1") && down("Pad 2 Axis 1 ++"));
        fifth.button(0, true);
        second.unplug();
        EXPECT_TRUE(key("Pad 2 Btn 1").query_release());
        EXPECT_EQ(0, axis("Pad 2 Axis 1").query());
        fifth.button(1, true);
        EXPECT_TRUE(down("Pad 2 Btn 2")) << "the one that waited has the free number";
        fourth.button(2, true);
        EXPECT_TRUE(down("Pad 4 Btn 3"));
    }
    EXPECT_NE(nullptr, plugin().pad_name(0));
    EXPECT_EQ(nullptr, plugin().pad_name(1));
    EXPECT_FALSE(plugin().rumble(1, 1, 1, 1));
    EXPECT_FALSE(down("Pad 2 Axis 1 Center")) << "a pad that is not there has no centre";
}

} // namespace
