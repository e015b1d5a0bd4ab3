// The plug-in "input-sdl" as a host has it, with SDL's virtual pads and a real window in a virtual
// display, where xdotool is the user.
#include "plugins/input-sdl/input_sdl.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugins.h"
#include "quillon/input/analog.h"
#include "quillon/input/digital.h"
#include "quillon/input/names.h"

#include <gmock/gmock.h>

#include <SDL.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>

// What the message bus library keeps for the life of the process is not the plug-in's to free.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
    return "leak:libdbus-1.so";
}

namespace {

using quillon::cInputAnalog;
using quillon::cInputDigital;

const quillon::input_sdl::Operations& plugin() {
    return quillon::input_sdl::operations(__mInput_instance()->interface);
}

// Starts an X server on a free display; it ends with this process, once the plug-in has let go.
std::string start_display() {
    if (std::system("command -v Xvfb >/dev/null && command -v xdotool >/dev/null") != 0)
        return "";
    std::FILE* const server = popen("exec setpriv --pdeathsig TERM Xvfb -displayfd 1 -screen 0 "
                                    "640x480x24 -nolisten tcp -nocursor",
                                    "r");
    int number = 0;
    return std::fscanf(server, "%d", &number) == 1 ? ":" + std::to_string(number) : "";
}

// One host for all tests, with the plug-ins of the build tree.
class Host : public testing::Environment {
public:
    static inline bool hasDisplay = false;

    void SetUp() override {
        const std::string display = start_display();
        hasDisplay = !display.empty();
        setenv(hasDisplay ? "DISPLAY" : "SDL_VIDEODRIVER", hasDisplay ? display.c_str() : "dummy",
               1);
        std::filesystem::current_path(BUILD_FOLDER);
        __mCore_open();
        ASSERT_STREQ("input-sdl",
                     __mCore_get_plugin_name(__mCore_get_first_valid_plugin("Module", "INPUT")));
        EXPECT_EQ(hasDisplay, plugin().open_window("quillon test", 320, 200))
            << plugin().last_error();
    }
};

const auto* const host = testing::AddGlobalTestEnvironment(new Host);

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

class SdlWindow : public testing::Test {
protected:
    void SetUp() override {
        if (Host::hasDisplay)
            return;
        const char* const missing =
            "keys and the mouse are NOT TESTED: apt-get install xvfb xdotool";
        ASSERT_EQ(nullptr, std::getenv("CI")) << missing;
        std::cerr << missing << "\n";
        GTEST_SKIP();
    }
};

TEST_F(SdlWindow, KeysHaveTheirCodes) {
    const struct {
        const char* keysym; // what xdotool calls it
        const char* name;
    } rows[] = {
        {"Return", "Enter"},
        {"Prior", "Page Up"},
        {"a", "A"},
        {"z", "Z"},
        {"0", "0"},
        {"1", "1"},
        {"9", "9"},
        {"F12", "F12"},
        {"KP_Insert", "Keypad 0"},
        {"KP_Prior", "Keypad 9"},
        {"equal", "+"},
        {"semicolon", ":"},
        {"comma", "<"},
    };

    for (const auto& row : rows) {
        const cInputDigital binding = key(row.name);
        type(std::string("key ") + row.keysym);
        EXPECT_TRUE(eventually([&] { return binding.query_press(); })) << row.name;
        EXPECT_TRUE(key("Any Key").query_press()) << row.name;
        EXPECT_TRUE(binding.query_release() || eventually([&] { return binding.query_release(); }))
            << row.name;
    }
    EXPECT_STREQ(";", plugin().key_label(static_cast<std::uint16_t>(quillon::digital_code(":"))));
    EXPECT_EQ(nullptr, plugin().key_label(quillon::ANY_MOUSE));
}

TEST_F(SdlWindow, MouseButtonsWheelAndMotion) {
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
TEST_F(SdlWindow, ToolShowsWhatIsPressed) {
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

TEST_F(SdlWindow, ClosingItIsSeen) {
    EXPECT_FALSE(plugin().quit_requested());
    SDL_Event quit{.type = SDL_QUIT};
    SDL_PushEvent(&quit);
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
    EXPECT_FALSE(key("Pad 1 Axis 1 -").query_press()) << "the code behind the last button";
    pad.hat(0, SDL_HAT_LEFTUP);
    EXPECT_TRUE(down("Pad 1 Hat 1 Left") && down("Pad 1 Hat 1 Up"));
    pad.hat(0, SDL_HAT_UP);
    EXPECT_TRUE(key("Pad 1 Hat 1 Left").query_release() && down("Pad 1 Hat 1 Up"));
    pad.hat(1, SDL_HAT_DOWN);
    EXPECT_TRUE(down("Pad 1 Hat 2 Down"));
    pad.hat(2, SDL_HAT_RIGHT);
    EXPECT_FALSE(down("Pad 2 Btn 1")) << "the code behind the last hat";
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
