// SPDX-License-Identifier: MIT
// `quillon convert IN OUT`
#include "command.h"
#include "pictures.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <iomanip>
#include <iostream>

namespace tool {
namespace {

struct Arguments {
    std::string in;
    std::string out;
    std::string plugins;
};

ExitCode convert(const Arguments& arguments) {
    open_graphics(arguments.plugins);
    const auto start = std::chrono::steady_clock::now();
    const Picture picture = load_picture(arguments.in);
    save_picture(arguments.out, picture);
    const std::chrono::duration<double, std::milli> passed =
        std::chrono::steady_clock::now() - start;
    std::cout << arguments.in << " -> " << arguments.out << ": " << picture.width << " x "
              << picture.height << " pixels in " << std::fixed << std::setprecision(1)
              << passed.count() << " ms\n";
    return SUCCESS;
}

} // namespace

Action declare_convert(CLI::App& app) {
    auto arguments = std::make_shared<Arguments>();
    app.add_option("IN", arguments->in, "A PNG or JPEG file")->required();
    add_output(app, arguments->out, "The file to write")->required();
    add_plugin_folder(app, arguments->plugins);
    return [arguments] { return convert(*arguments); };
}

} // namespace tool
