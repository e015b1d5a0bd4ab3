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
};

ExitCode convert(const Arguments& arguments) {
    open_graphics();
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
    app.add_option("OUT", arguments->out,
                   "The file to write: JPEG if it ends in .jpg or .jpeg, else PNG")
        ->required();
    return [arguments] { return convert(*arguments); };
}

} // namespace tool
