// SPDX-License-Identifier: MIT
// Three actions with names, rebound while the game runs.
//
// Run it where a folder "plugin" holds the plug-in input-sdl. Hold an action's key to see it
// repeat; F1 to F3 choose the action whose input the next press replaces; closing the window ends
// it.
//
// The loop posts a message for each press, whatever it leads to. The game, which repeats an action
// with delayed messages, and the menu, which rebinds, register for the messages that they want.

#include <quillon/comfort.h>
#include <quillon/plugins/input.h>
#include <quillon/quillon.h>

#include <array>
#include <chrono>
#include <iostream>
#include <optional>
#include <string_view>
#include <thread>

namespace {

using quillon::cInputDigital;
using quillon::router;

struct Action {
    const char* name;
    cInputDigital binding;
    std::int16_t rebind_key;
};

constexpr std::size_t ACTIONS = 3;

std::array<Action, ACTIONS> actions = {{
    {"jump", {.code1 = quillon::input_code("Space")}, quillon::input_code("F1")},
    {"fire", {.code1 = quillon::LEFT_MOUSE}, quillon::input_code("F2")},
    {"save",
     {.code1 = quillon::input_code("Left Control"),
      .code2 = quillon::input_code("S"),
      .logic = quillon::InputLogic::And},
     quillon::input_code("F3")},
}};

enum MessageType : std::uint32_t { PRESSED, REPEATED, REBIND };

struct ActionMessage : quillon::cMessage {
    std::size_t action;
    std::uint32_t press; // the press that it began with, counted by the game
};

constexpr float REPEAT_SECONDS = 0.25F;

void post(MessageType type, std::size_t action) {
    quillon::post(ActionMessage{{type}, action, 0});
}

void print_bindings() {
    for (const Action& action : actions) {
        std::cout << action.name << ": " << action.binding.display_name1();
        if (action.binding.code2 != quillon::NO_INPUT)
            std::cout << " and " << action.binding.display_name2();
        std::cout << "\n";
    }
}

// Does an action when it was pressed, and again for as long as it is held.
class Game : public quillon::cMessageObserver {
public:
    Game() {
        router().register_for_message(this, PRESSED);
        router().register_for_message(this, REPEATED);
    }

    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;

    ~Game() { router().unregister_all(this); }

    void receive_message(quillon::cMessage* message) override {
        ActionMessage event = *static_cast<ActionMessage*>(message);
        if (event.messageType == PRESSED)
            event.press = ++presses[event.action];
        // A repeat that a release or a new press has overtaken is the last of its chain.
        else if (event.press != presses[event.action] ||
                 !actions[event.action].binding.query_down())
            return;
        std::cout << actions[event.action].name << (event.messageType == PRESSED ? "!" : " again!")
                  << std::endl;
        event.messageType = REPEATED;
        quillon::post_after(REPEAT_SECONDS, event);
    }

private:
    std::array<std::uint32_t, ACTIONS> presses{};
};

// Gives an action the first input that is pressed after it was chosen.
class Menu : public quillon::cMessageObserver {
public:
    Menu() { router().register_for_message(this, REBIND); }

    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;

    ~Menu() { router().unregister_all(this); }

    void receive_message(quillon::cMessage* message) override {
        chosen = static_cast<ActionMessage*>(message)->action;
        std::cout << "press the new input for " << actions[*chosen].name << std::endl;
    }

    bool is_waiting() const { return chosen.has_value(); }

    void listen() {
        for (std::int16_t code = 0; code < quillon::DIGITAL_CODES; ++code) {
            const cInputDigital input{.code1 = code};
            if (!can_be_bound(input) || !input.query_press())
                continue;
            actions[*chosen].binding = input;
            chosen.reset();
            print_bindings();
            return;
        }
    }

private:
    // Any and the centre of an axis are answers to other questions than which input was pressed.
    static bool can_be_bound(const cInputDigital& input) {
        const std::string_view name = input.display_name1();
        return name.find("Any") == name.npos && name.find("Center") == name.npos;
    }

    std::optional<std::size_t> chosen;
};

void post_presses() {
    for (std::size_t i = 0; i < ACTIONS; ++i) {
        if (cInputDigital{.code1 = actions[i].rebind_key}.query_press())
            post(REBIND, i);
        if (actions[i].binding.query_press())
            post(PRESSED, i);
    }
}

void play(const quillon::Input& input) {
    using Clock = std::chrono::steady_clock;
    Game game;
    Menu menu;
    for (auto before = Clock::now(); !input.quit_requested();) {
        const auto now = Clock::now();
        input.update();
        if (menu.is_waiting())
            menu.listen();
        else
            post_presses();
        router().update(std::chrono::duration<float>(now - before).count());
        before = now;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace

int main() {
    __mCore_open();
    const auto input = quillon::contract<quillon::Input>(__mInput_instance());
    if (!input) {
        std::cerr << "rebind: " << input.reason << "; put input-sdl into the folder 'plugin'\n";
        return 1;
    }
    if (!input->open_window("rebind", 320, 120)) {
        std::cerr << "rebind: no window: " << input->last_error() << "; start it in a desktop\n";
        return 1;
    }
    print_bindings();
    play(*input);
    return 0;
}
