// SPDX-License-Identifier: MIT
// `quillon normal-map`, `brush`, `mask`, `adjust` and `average`: the filters on real pictures.
#include "color_text.h"
#include "command.h"
#include "number_option.h"
#include "pictures.h"
#include "quillon/appearance/bitmap.h"
#include "quillon/appearance/filters.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <iostream>
#include <limits>
#include <optional>

namespace tool {
namespace {

using quillon::cColor;

constexpr double MAX_SCALE = 10'000;
constexpr double MAX_RADIUS = 65'535; // pixels, the longest side of a picture
constexpr double MAX_FACTOR = 255;    // makes a byte of 1 white

struct Files {
    std::string in;
    std::string out;
    std::string plugins;
};

// The exports count pixels in 32 bits; a plug-in may load more.
std::int32_t pixel_count(const Picture& picture) {
    const std::int64_t count = std::int64_t{picture.width} * picture.height;
    if (count > std::numeric_limits<std::int32_t>::max())
        throw Failure("a picture of " + std::to_string(picture.width) + " x " +
                      std::to_string(picture.height) +
                      " pixels is too large to filter; use a smaller one");
    return static_cast<std::int32_t>(count);
}

template <typename Change>
ExitCode change_picture(const Files& files, Change change) {
    open_graphics(files.plugins);
    const Picture picture = load_picture(files.in);
    change(picture, pixel_count(picture));
    save_picture(files.out, picture);
    std::cout << files.in << " -> " << files.out << ": " << picture.width << " x " << picture.height
              << " pixels\n";
    return SUCCESS;
}

void add_files(CLI::App& app, Files& files) {
    app.add_option("IN", files.in, "The picture to load")->required();
    add_output(app, files.out, "The picture to save")->required();
    add_plugin_folder(app, files.plugins);
}

// Requires exactly one of the options.
void require_one(CLI::App& app, const std::vector<CLI::Option*>& options, const char* names) {
    for (CLI::Option* option : options)
        for (CLI::Option* other : options)
            if (option != other)
                option->excludes(other);
    app.callback([options, names] {
        if (std::ranges::none_of(options,
                                 [](const CLI::Option* option) { return option->count() > 0; }))
            throw CLI::RequiredError(std::string("one of ") + names);
    });
}

struct Point {
    std::int32_t x = 0;
    std::int32_t y = 0;
};

// Reads "X,Y"; CLI11 finds the function by its name.
bool lexical_cast(const std::string& text, Point& point) {
    const char* end = text.data() + text.size();
    const auto x = std::from_chars(text.data(), end, point.x);
    if (x.ec != std::errc() || x.ptr == end || *x.ptr != ',')
        return false;
    const auto y = std::from_chars(x.ptr + 1, end, point.y);
    return y.ec == std::errc() && y.ptr == end;
}

ExitCode average(const Files& files) {
    open_graphics(files.plugins);
    const Picture picture = load_picture(files.in);
    cColor color(0, 0, 0, 0);
    __cBitmap_get_average_color(color, picture.pixels.get(), picture.width, picture.height);
    std::cout << files.in << ": " << picture.width << " x " << picture.height << " pixels, average "
              << text_of(color) << '\n';
    return SUCCESS;
}

} // namespace

Action declare_normal_map(CLI::App& app) {
    struct Arguments {
        Files files;
        double scale = 1;
    };

    auto arguments = std::make_shared<Arguments>();
    add_files(app, arguments->files);
    add_number(app, "--scale", arguments->scale, 0, MAX_SCALE, "How steep the heights are")
        ->capture_default_str();
    return [arguments] {
        return change_picture(arguments->files, [&](const Picture& picture, std::int32_t) {
            __cBitmap_bump_map_to_normal_map(picture.pixels.get(), picture.width, picture.height,
                                             static_cast<float>(arguments->scale));
        });
    };
}

Action declare_brush(CLI::App& app) {
    struct Arguments {
        Files files;
        Point at;
        double radius = 0;
        double deviation = 0;
        std::string color;
    };

    auto arguments = std::make_shared<Arguments>();
    add_files(app, arguments->files);
    app.add_option("--at", arguments->at, "Column and row of the centre, inside the picture or not")
        ->type_name("X,Y")
        ->required();
    add_number(app, "--radius", arguments->radius, 0, MAX_RADIUS,
               "Of the disc of full strength, in pixels")
        ->required();
    add_number(app, "--deviation", arguments->deviation, 0, MAX_RADIUS,
               "Of the soft ring around it; 0 for none")
        ->capture_default_str();
    app.add_option("--color", arguments->color, COLOR_HELP)
        ->check(color_fault, "COLOR")
        ->required();
    return [arguments] {
        return change_picture(arguments->files, [&](const Picture& picture, std::int32_t) {
            __cBitmap_gauss_brush(color_of(arguments->color), picture.pixels.get(), arguments->at.x,
                                  arguments->at.y, picture.width, picture.height,
                                  static_cast<float>(arguments->radius),
                                  static_cast<float>(arguments->deviation));
        });
    };
}

Action declare_mask(CLI::App& app) {
    struct Arguments {
        Files files;
        bool alpha = false;
        std::optional<int> channel;
        std::string key;
    };

    auto arguments = std::make_shared<Arguments>();
    add_files(app, arguments->files);
    require_one(
        app,
        {app.add_flag("--alpha", arguments->alpha, "Grey by the alpha channel"),
         app.add_option("--channel", arguments->channel,
                        "Grey by a channel: 0 red, 1 green, 2 blue, 3 alpha")
             ->check(CLI::Range(0, 3)),
         app.add_option("--key", arguments->key,
                        std::string("Black where the picture has this colour, else white. ") +
                            COLOR_HELP)
             ->check(color_fault, "COLOR")},
        "--alpha, --channel and --key");
    return [arguments] {
        return change_picture(arguments->files, [&](const Picture& picture, std::int32_t count) {
            if (arguments->alpha)
                __cBitmap_alpha_mask(picture.pixels.get(), count);
            else if (arguments->channel)
                __cBitmap_monochrome_saturate_by_channel(
                    static_cast<std::uint8_t>(*arguments->channel), picture.pixels.get(), count);
            else
                __cBitmap_color_key_mask(color_of(arguments->key), picture.pixels.get(), count);
        });
    };
}

Action declare_adjust(CLI::App& app) {
    struct Arguments {
        Files files;
        double factor = 0;
        CLI::Option* multiply = nullptr;
        std::optional<int> darken;
        std::optional<int> brighten;
    };

    auto arguments = std::make_shared<Arguments>();
    add_files(app, arguments->files);
    arguments->multiply = add_number(app, "--multiply", arguments->factor, 0, MAX_FACTOR,
                                     "Scale the brightness by a factor");
    require_one(app,
                {arguments->multiply,
                 app.add_option("--darken", arguments->darken, "Subtract from each byte")
                     ->check(CLI::Range(0, 255)),
                 app.add_option("--brighten", arguments->brighten, "Add to each byte")
                     ->check(CLI::Range(0, 255))},
                "--multiply, --darken and --brighten");
    return [arguments] {
        return change_picture(arguments->files, [&](const Picture& picture, std::int32_t count) {
            if (arguments->multiply->count() > 0)
                __cBitmap_multiply(static_cast<float>(arguments->factor), picture.pixels.get(),
                                   count);
            else if (arguments->darken)
                __cBitmap_darken(static_cast<std::uint8_t>(*arguments->darken),
                                 picture.pixels.get(), count);
            else
                __cBitmap_brighten(static_cast<std::uint8_t>(*arguments->brighten),
                                   picture.pixels.get(), count);
        });
    };
}

Action declare_average(CLI::App& app) {
    auto files = std::make_shared<Files>();
    app.add_option("IN", files->in, "The picture to load")->required();
    add_plugin_folder(app, files->plugins);
    return [files] { return average(*files); };
}

} // namespace tool
