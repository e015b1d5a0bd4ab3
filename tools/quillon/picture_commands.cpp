// `quillon normal-map`, `brush`, `mask`, `adjust` and `average`: the filters on real pictures.
#include "color_text.h"
#include "command.h"
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

struct Files {
    std::string in;
    std::string out;
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
    open_graphics();
    const Picture picture = load_picture(files.in);
    change(picture, pixel_count(picture));
    save_picture(files.out, picture);
    std::cout << files.in << " -> " << files.out << ": " << picture.width << " x " << picture.height
              << " pixels\n";
    return SUCCESS;
}

void add_files(CLI::App& app, Files& files) {
    app.add_option("IN", files.in, "The picture to load")->required();
    app.add_option("OUT", files.out,
                   "The picture to save: JPEG if it ends in .jpg or .jpeg, else PNG")
        ->required();
}

// Requires exactly one of the options.
void require_one(CLI::App& app, std::vector<CLI::Option*> options, const char* names) {
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

ExitCode average(const std::string& file) {
    open_graphics();
    const Picture picture = load_picture(file);
    cColor color(0, 0, 0, 0);
    __cBitmap_get_average_color(color, picture.pixels.get(), picture.width, picture.height);
    std::cout << file << ": " << picture.width << " x " << picture.height << " pixels, average "
              << text_of(color) << '\n';
    return SUCCESS;
}

} // namespace

Action declare_normal_map(CLI::App& app) {
    struct Arguments {
        Files files;
        float scale = 1;
    };

    auto arguments = std::make_shared<Arguments>();
    add_files(app, arguments->files);
    app.add_option("--scale", arguments->scale, "How steep the heights are")->capture_default_str();
    return [arguments] {
        return change_picture(arguments->files, [&](const Picture& picture, std::int32_t) {
            __cBitmap_bump_map_to_normal_map(picture.pixels.get(), picture.width, picture.height,
                                             arguments->scale);
        });
    };
}

Action declare_brush(CLI::App& app) {
    struct Arguments {
        Files files;
        Point at;
        float radius = 0;
        float deviation = 0;
        std::string color;
    };

    auto arguments = std::make_shared<Arguments>();
    add_files(app, arguments->files);
    app.add_option("--at", arguments->at, "Column and row of the centre, inside the picture or not")
        ->type_name("X,Y")
        ->required();
    app.add_option("--radius", arguments->radius, "Of the disc of full strength, in pixels")
        ->required();
    app.add_option("--deviation", arguments->deviation, "Of the soft ring around it; 0 for none")
        ->capture_default_str();
    app.add_option("--color", arguments->color, COLOR_HELP)
        ->check(color_fault, "COLOR")
        ->required();
    return [arguments] {
        return change_picture(arguments->files, [&](const Picture& picture, std::int32_t) {
            __cBitmap_gauss_brush(color_of(arguments->color), picture.pixels.get(), arguments->at.x,
                                  arguments->at.y, picture.width, picture.height, arguments->radius,
                                  arguments->deviation);
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
        std::optional<float> factor;
        std::optional<int> darken;
        std::optional<int> brighten;
    };

    auto arguments = std::make_shared<Arguments>();
    add_files(app, arguments->files);
    require_one(
        app,
        {app.add_option("--multiply", arguments->factor, "Scale the brightness by a factor"),
         app.add_option("--darken", arguments->darken, "Subtract from each byte")
             ->check(CLI::Range(0, 255)),
         app.add_option("--brighten", arguments->brighten, "Add to each byte")
             ->check(CLI::Range(0, 255))},
        "--multiply, --darken and --brighten");
    return [arguments] {
        return change_picture(arguments->files, [&](const Picture& picture, std::int32_t count) {
            if (arguments->factor)
                __cBitmap_multiply(*arguments->factor, picture.pixels.get(), count);
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
    auto file = std::make_shared<std::string>();
    app.add_option("IN", *file, "The picture to load")->required();
    return [file] { return average(*file); };
}

} // namespace tool
