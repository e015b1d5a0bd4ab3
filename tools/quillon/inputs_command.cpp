// SPDX-License-Identifier: MIT
// `quillon inputs`
#include "bindings.h"
#include "command.h"
#include "input_view.h"
#include "platform.h"
#include "plugin_folder.h"
#include "plugins/contracts/input.h"
#include "quillon/core/modules.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <iostream>
#include <thread>

namespace tool {
namespace {

constexpr const char* WINDOW = "quillon inputs";
constexpr auto FRAME = std::chrono::milliseconds(16);

constexpr int MAX_FRAMES = 1'000'000'000;

struct Arguments {
    std::vector<std::string> bindings;
    int frames = 0;
};

// Why a text is not a binding; empty if it is.
std::string fault_of(const std::string& text) {
    try {
        parse_binding(text);
        return "";
    } catch (const Failure& failure) {
        return failure.what();
    }
}

const quillon::Input& open_input() {
    const auto folder = default_plugin_folder();
    open_plugins(folder);
    const auto input = quillon::contract<quillon::Input>(__mInput_instance());
    if (!input)
        throw Failure(input.reason + " in '" + folder.string() + "'; 'quillon plugins' says why");
    return *input;
}

// Shows each frame in the place of the last one, or below it in a file.
class Screen {
public:
    // The width of the terminal now; 0 for a file.
    int columns() {
        const int now = platform::output_is_terminal() ? platform::output_columns() : 0;
        // A terminal of another width has wrapped or joined the lines that it shows.
        if (now != width && !last.empty()) {
            std::cout << "\x1b[H\x1b[2J";
            last.clear();
        }
        return width = now;
    }

    void show(const std::string& frame) {
        if (frame == last)
            return;
        if (width > 0 && !last.empty())
            std::cout << "\x1b[" << std::ranges::count(last, '\n') << "A\x1b[J";
        else if (!last.empty())
            std::cout << "\n";
        std::cout << frame << std::flush;
        last = frame;
    }

private:
    std::string last;
    int width = 0;
};

ExitCode show_inputs(const Arguments& arguments) {
    std::vector<Binding> bindings;
    std::ranges::transform(arguments.bindings, std::back_inserter(bindings), parse_binding);
    const auto& input = open_input();
    if (input.open_window(WINDOW, 480, 160))
        std::cerr << "keys and the mouse are read while the window '" << WINDOW
                  << "' is in focus; close it to end\n";
    else
        std::cerr << "no keys and no mouse, only pads: " << input.last_error() << "\n";

    Screen screen;
    InputView view(bindings);
    for (int frame = 0; arguments.frames == 0 || frame < arguments.frames; ++frame) {
        input.update();
        if (input.quit_requested())
            break;
        screen.show(view.frame(input, screen.columns()));
        std::this_thread::sleep_for(FRAME);
    }
    return SUCCESS;
}

} // namespace

Action declare_inputs(CLI::App& app) {
    auto arguments = std::make_shared<Arguments>();
    app.add_option("--bind", arguments->bindings,
                   "A binding to watch, by display names: \"Space\", \"Mouse X\", or two joined by "
                   "+, Or or Not: \"Left Control + S\"; may be given again")
        ->allow_extra_args(false)
        ->check(fault_of);
    app.add_option("--frames", arguments->frames, "End by itself after so many frames")
        ->check(CLI::Range(1, MAX_FRAMES));
    return [arguments] { return show_inputs(*arguments); };
}

} // namespace tool
