// `quillon inputs`
#include "bindings.h"
#include "command.h"
#include "input_view.h"
#include "platform.h"
#include "plugin_folder.h"
#include "plugins/input-sdl/input_sdl.h"
#include "quillon/core/modules.h"
#include "quillon/core/plugins.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <iostream>
#include <string_view>
#include <thread>

namespace tool {
namespace {

constexpr const char* PLUGIN = "input-sdl";
constexpr const char* WINDOW = "quillon inputs";
constexpr auto FRAME = std::chrono::milliseconds(16);

constexpr int MOST_FRAMES = 1'000'000'000;

struct Arguments {
    std::vector<std::string> bindings;
    int frames = 0;
};

// Why a text is no binding, or nothing.
std::string fault_of(const std::string& text) {
    try {
        parse_binding(text);
        return "";
    } catch (const Failure& failure) {
        return failure.what();
    }
}

const quillon::input_sdl::Operations& open_input() {
    const auto folder = default_plugin_folder();
    open_plugins(folder);
    void* const* const table = __mInput_instance()->interface;
    const std::int16_t serving = __mCore_get_first_valid_plugin("Module", "INPUT");
    if (table == nullptr || __mCore_get_plugin_name(serving) != std::string_view(PLUGIN))
        throw Failure("the plug-in '" + std::string(PLUGIN) + "' in '" + folder.string() +
                      "' does not serve INPUT; 'quillon plugins' tells why");
    return quillon::input_sdl::operations(table);
}

// Shows each frame in the place of the last, or one below the other in a file.
class Screen {
public:
    void show(const std::string& frame) {
        if (frame == last)
            return;
        if (platform::output_is_terminal() && !last.empty())
            std::cout << "\x1b[" << std::ranges::count(last, '\n') << "A\x1b[J";
        else if (!last.empty())
            std::cout << "\n";
        std::cout << frame << std::flush;
        last = frame;
    }

private:
    std::string last;
};

ExitCode show_inputs(const Arguments& arguments) {
    std::vector<Binding> bindings;
    std::ranges::transform(arguments.bindings, std::back_inserter(bindings), parse_binding);
    const auto& input = open_input();
    if (input.open_window(WINDOW, 480, 160))
        std::cerr << "keys and the mouse count while the window '" << WINDOW
                  << "' is in focus; close it to end\n";
    else
        std::cerr << "no keys and no mouse, only pads: " << input.last_error() << "\n";

    Screen screen;
    for (int frame = 0; arguments.frames == 0 || frame < arguments.frames; ++frame) {
        input.update();
        if (input.quit_requested())
            break;
        screen.show(input_view(bindings));
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
        ->check(CLI::Range(1, MOST_FRAMES));
    return [arguments] { return show_inputs(*arguments); };
}

} // namespace tool
