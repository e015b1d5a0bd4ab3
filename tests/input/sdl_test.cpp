// The plug-in "input-sdl" as a host has it, with SDL's virtual pads and a real window in a virtual
// display, where xdotool is the user.
#include "plugins/input-sdl/input_sdl.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugins.h"
#include "quillon/input/analog.h"
#include "quillon/input/digital.h"
#include "quillon/input/names.h"

#include <gtest/gtest.h>

#include <SDL.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>

#include <sys/prctl.h>
#include <unistd.h>

// What the message bus library keeps for the life of the process is not the plug-in's to free.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions();

const char* __lsan_default_suppressions() {
    return "leak:libdbus-1.so";
}

namespace {

namespace fs = std::filesystem;
using quillon::cInputAnalog;
using quillon::cInputDigital;

const quillon::input_sdl::Operations& plugin() {
    return quillon::input_sdl::operations(__mInput_instance()->interface);
}

// Starts an X server on a free display; it ends with this process, once the plug-in has let go.
std::string start_display() {
    int ends[2];
    if (std::system("command -v Xvfb >/dev/null && command -v xdotool >/dev/null") != 0 ||
        pipe(ends) != 0)
        return "";
    if (fork() == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        close(ends[0]);
        const std::string end = std::to_string(ends[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", end.c_str(), "-screen", "0", "640x480x24", "-nolisten",
               "tcp", "-nocursor", nullptr);
        _exit(1);
    }
    close(ends[1]);
    std::string number;
    for (char letter = 0; read(ends[0], &letter, 1) == 1 && letter != '\n';)
        number += letter;
    close(ends[0]);
    return number.empty() ? number : ":" + number;
}

// One host for all tests: a folder "plugin" with the plug-in in it, opened once.
class Host : public testing::Environment {
public:
    static inline bool hasDisplay = false;

    void SetUp() override {
        const std::string display = start_display();
        hasDisplay = !display.empty();
        setenv(hasDisplay ? "DISPLAY" : "SDL_VIDEODRIVER", hasDisplay ? display.c_str() : "dummy",
               1);
        folder = fs::temp_directory_path() / ("quillon-input-" + std::to_string(getpid()));
        fs::create_directories(folder / "plugin");
        fs::create_symlink(INPUT_SDL_FILE, folder / "plugin" / "input-sdl.so");
        fs::current_path(folder);
        __mCore_open();
        ASSERT_NE(nullptr, __mInput_instance()->interface);
        ASSERT_STREQ("input-sdl", __mCore_get_plugin_name(0));
        EXPECT_EQ(hasDisplay, plugin().open_window("quillon test", 320, 200))
            << plugin().last_error();
    }

    void TearDown() override { fs::remove_all(folder); }

private:
    fs::path folder;
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
        const char* keysym;
        const char* name;
    } keys[] = {
        {"Escape", "Escape"},
        {"BackSpace", "Backspace"},
        {"Return", "Enter"},
        {"space", "Space"},
        {"Delete", "Delete"},
        {"Prior", "Page Up"},
        {"Up", "Up"},
        {"Right", "Right"},
        {"a", "A"},
        {"z", "Z"},
        {"0", "0"},
        {"1", "1"},
        {"9", "9"},
        {"F1", "F1"},
        {"F12", "F12"},
        {"KP_Insert", "Keypad 0"},
        {"KP_End", "Keypad 1"},
        {"KP_Prior", "Keypad 9"},
        {"KP_Enter", "Keypad Enter"},
        {"KP_Add", "Keypad +"},
        {"Scroll_Lock", "Scroll Lock"},
        {"Shift_L", "Left Shift"},
        {"Control_R", "Right Control"},
        {"Alt_L", "Left Alt"},
        {"grave", "~"},
        {"minus", "-"},
        {"equal", "+"},
        {"bracketleft", "["},
        {"backslash", "\\"},
        {"semicolon", ":"},
        {"apostrophe", "\""},
        {"comma", "<"},
        {"slash", "?"},
        {"Print", "Print Screen"},
        {"Pause", "Pause"},
    };

    for (const auto& row : keys) {
        const cInputDigital binding = key(row.name);
        type(std::string("key ") + row.keysym);
        EXPECT_TRUE(eventually([&] { return binding.query_press(); })) << row.name;
        EXPECT_TRUE(key("Any Key").query_press()) << row.name;
        EXPECT_TRUE(binding.query_release() || eventually([&] { return binding.query_release(); }))
            << row.name;
    }
}

TEST_F(SdlWindow, ChordIsPressedByItsSecondKey) {
    cInputDigital save = key("Left Control");
    save.code2 = quillon::digital_code("S");
    save.logic = quillon::InputLogic::And;
    type("keydown Control_L");
    ASSERT_TRUE(eventually([] { return down("Left Control"); }));
    EXPECT_FALSE(save.query_press());
    type("keydown s");
    EXPECT_TRUE(eventually([&] { return save.query_press(); }));
    EXPECT_TRUE(save.query_down());
    plugin().update();
    EXPECT_FALSE(save.query_press());
    EXPECT_TRUE(eventually([&] { return save.query_hold_press(); }));
    type("keyup Control_L keyup s");
    EXPECT_TRUE(eventually([&] { return save.query_release(); }));
    EXPECT_FALSE(eventually([] { return !down("S"); }) && save.query_down());
}

TEST_F(SdlWindow, MouseButtonsWheelAndMotion) {
    type("search --name 'quillon test' mousemove --window %1 50 50");
    ASSERT_TRUE(eventually([] { return axis("Mouse X").query() == 0; }));
    type("mousedown 3");
    EXPECT_TRUE(eventually([] { return key("Right Mouse").query_press(); }));
    EXPECT_TRUE(down("Any Mouse"));
    EXPECT_FALSE(down("Left Mouse") || down("Middle Mouse"));
    type("mouseup 3");
    EXPECT_TRUE(eventually([] { return key("Right Mouse").query_release(); }));
    type("click --repeat 2 --delay 60 1");
    EXPECT_TRUE(eventually([] { return key("Left Mouse").query_double_click(); }));
    type("click 4");
    EXPECT_TRUE(eventually([] { return key("Mouse Wheel Up").query_press(); }));
    EXPECT_TRUE(down("Mouse Wheel Up"));
    plugin().update();
    EXPECT_FALSE(down("Mouse Wheel Up"));
    EXPECT_TRUE(key("Mouse Wheel Up").query_release());
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

TEST_F(SdlWindow, LabelsAreThoseOfTheLayout) {
    EXPECT_STREQ(";", plugin().key_label(static_cast<std::uint16_t>(quillon::digital_code(":"))));
    EXPECT_EQ(nullptr, plugin().key_label(quillon::ANY_KEY));
    EXPECT_EQ(nullptr, plugin().key_label(quillon::ANY_MOUSE));
    EXPECT_FALSE(plugin().open_window("a second one", 10, 10));
    EXPECT_STRNE("", plugin().last_error());
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
    for (int button = 0; button < 20; ++button) {
        const cInputDigital binding{static_cast<std::int16_t>(button + 1), 0};
        const bool has_code = button < 16;
        pad.button(button, true);
        EXPECT_EQ(has_code, down("Pad 1 Any")) << button;
        EXPECT_EQ(has_code, button < 16 && binding.query_press()) << button;
        pad.button(button, false);
        EXPECT_EQ(has_code, button < 16 && binding.query_release()) << button;
    }
    pad.hat(0, SDL_HAT_LEFTUP);
    EXPECT_TRUE(down("Pad 1 Hat 1 Left") && down("Pad 1 Hat 1 Up"));
    pad.hat(0, SDL_HAT_UP);
    EXPECT_TRUE(key("Pad 1 Hat 1 Left").query_release() && down("Pad 1 Hat 1 Up"));
    pad.hat(1, SDL_HAT_DOWN);
    EXPECT_TRUE(down("Pad 1 Hat 2 Down"));
    pad.hat(2, SDL_HAT_RIGHT);
    EXPECT_FALSE(down("Pad 1 Hat 2 Right"));
}

TEST(SdlPads, AxesHaveValuesAndZones) {
    VirtualPad pad;

    const struct {
        float value;
        const char* zones; // of Center, -, --, +, ++
    } moves[] = {
        {0, "C"},     {0.49F, "C"}, {0.51F, "+"},  {0.46F, "+"}, {0.44F, "C"},
        {0.46F, "C"}, {1, "+p"},    {0.92F, "+p"}, {0.89F, "+"}, {0.94F, "+"},
        {-0.5F, "C"}, {-0.6F, "-"}, {-1, "-m"},    {1, "+p"},    {0, "C"},
    };

    const cInputAnalog value = axis("Pad 1 Axis 4");
    for (const auto& move : moves) {
        pad.axis(3, move.value);
        std::string zones;
        const char* const names[] = {" Center", " -", " --", " +", " ++"};
        for (int zone = 0; zone < 5; ++zone)
            if (down((std::string("Pad 1 Axis 4") + names[zone]).c_str()))
                zones += "C-m+p"[zone];
        EXPECT_EQ(move.zones, zones) << move.value;
        EXPECT_NEAR(move.value, value.query(), 1e-4) << move.value;
    }
    pad.axis(3, -32768.0F / 32767);
    EXPECT_EQ(-1, value.query());
    EXPECT_EQ(-1, __mInput_instance()->axis_delta(static_cast<std::uint16_t>(value.code)));
    plugin().update();
    EXPECT_EQ(0, __mInput_instance()->axis_delta(static_cast<std::uint16_t>(value.code)));
    EXPECT_TRUE(down("Pad 1 Axis 1 Center")) << "the other axes rest";
}

TEST(SdlPads, KnownPadsHaveTheStandardLayout) {
    VirtualPad pad(SDL_JOYSTICK_TYPE_GAMECONTROLLER);

    const struct {
        SDL_GameControllerButton button;
        const char* name;
    } buttons[] = {
        {SDL_CONTROLLER_BUTTON_A, "Pad 1 Btn 1"},
        {SDL_CONTROLLER_BUTTON_Y, "Pad 1 Btn 4"},
        {SDL_CONTROLLER_BUTTON_RIGHTSHOULDER, "Pad 1 Btn 6"},
        {SDL_CONTROLLER_BUTTON_BACK, "Pad 1 Btn 9"},
        {SDL_CONTROLLER_BUTTON_START, "Pad 1 Btn 10"},
        {SDL_CONTROLLER_BUTTON_DPAD_LEFT, "Pad 1 Hat 1 Left"},
        {SDL_CONTROLLER_BUTTON_DPAD_DOWN, "Pad 1 Hat 1 Down"},
    };

    for (const auto& row : buttons) {
        pad.button(row.button, true);
        EXPECT_TRUE(key(row.name).query_press()) << row.name;
        pad.button(row.button, false);
        EXPECT_TRUE(key(row.name).query_release()) << row.name;
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
