// SPDX-License-Identifier: MIT
// `quillon palette [OUT]`
#include "canvas.h"
#include "color_text.h"
#include "command.h"
#include "quillon/appearance/color_names.h"
#include "quillon/appearance/gradient.h"
#include "quillon/appearance/material_names.h"
#include "quillon/math/vector.h"

#include <CLI/CLI.hpp>
#include <cmath>
#include <iomanip>
#include <iostream>

namespace tool {
namespace {

using quillon::cColor;
using quillon::cMaterial;

// One grid for all three: a gradient's name takes a cell and its bar the rest of the row.
constexpr int MARGIN = 16;
constexpr int COLUMNS = 8;
constexpr int COLUMN_WIDTH = 150;
constexpr int GAP = 8; // between cells
constexpr int WIDTH = 2 * MARGIN + COLUMNS * COLUMN_WIDTH - GAP;
constexpr int TITLE_HEIGHT = 44;
constexpr int TITLE_SIZE = 20;
constexpr int LABEL_SIZE = 12;

constexpr int COLOR_HEIGHT = 54;
constexpr int SWATCH_HEIGHT = COLOR_HEIGHT - LABEL_SIZE - 14;
constexpr int GRADIENT_HEIGHT = 30;
constexpr int BAR_HEIGHT = GRADIENT_HEIGHT - 8;
constexpr int MATERIAL_HEIGHT = 112;
constexpr int BALL_RADIUS = 40;

constexpr cColor BACKGROUND(0.13F, 0.13F, 0.15F, 1);
constexpr cColor INK(0.85F, 0.85F, 0.85F, 1);

constexpr int rows_of(std::size_t count) {
    return (static_cast<int>(count) + COLUMNS - 1) / COLUMNS;
}

// A chequered ground, on which transparency shows.
void chequer(Canvas& canvas, int x, int y, int width, int height) {
    constexpr int square = 6;
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            canvas.blend(x + column, y + row,
                         (row / square + column / square) % 2 == 0 ? quillon::GREY
                                                                   : quillon::CHARCOAL);
}

int draw_title(Canvas& canvas, int y, const std::string& text) {
    canvas.write(MARGIN, y + 14, TITLE_SIZE, text, quillon::WHITE);
    return y + TITLE_HEIGHT;
}

int draw_colors(Canvas& canvas, int y) {
    int index = 0;
    for (const auto& [name, color] : quillon::NAMED_COLORS) {
        const int left = MARGIN + index % COLUMNS * COLUMN_WIDTH;
        const int top = y + index / COLUMNS * COLOR_HEIGHT;
        chequer(canvas, left, top, COLUMN_WIDTH - GAP, SWATCH_HEIGHT);
        canvas.fill(left, top, COLUMN_WIDTH - GAP, SWATCH_HEIGHT, color);
        canvas.write(left, top + SWATCH_HEIGHT + 2, LABEL_SIZE, name, INK);
        ++index;
    }
    return y + rows_of(quillon::NAMED_COLORS.size()) * COLOR_HEIGHT;
}

int draw_gradients(Canvas& canvas, int y) {
    constexpr int left = MARGIN + COLUMN_WIDTH;
    constexpr int bar_width = WIDTH - MARGIN - left;
    for (const std::string_view name : quillon::GRADIENT_NAMES) {
        const quillon::cGradient* gradient = __nsGradient_gradient_table(std::string(name));
        chequer(canvas, left, y, bar_width, BAR_HEIGHT);
        for (int x = 0; x < bar_width; ++x)
            canvas.fill(left + x, y, 1, BAR_HEIGHT,
                        gradient->function(static_cast<float>(x) / (bar_width - 1)));
        canvas.write(MARGIN, y + (BAR_HEIGHT - LABEL_SIZE) / 2, LABEL_SIZE, name, INK);
        y += GRADIENT_HEIGHT;
    }
    return y;
}

// A point of a ball, lit from above on the left; (x, y) of the unit circle, y downwards. Phong's
// model with the light's half vector.
cColor lit(const cMaterial& material, float x, float y) {
    const quillon::cVector3D normal(x, -y, std::sqrt(std::max(0.0F, 1 - x * x - y * y)));
    const quillon::cVector3D light = quillon::cVector3D(-0.5, 0.6, 0.8).normalized();
    const quillon::cVector3D half = (light + quillon::cVector3D(0, 0, 1)).normalized();
    const auto diffuse = static_cast<float>(std::max(0.0, normal.dot(light)));
    const auto specular =
        static_cast<float>(std::pow(std::max(0.0, normal.dot(half)), material.shininess));
    cColor color = material.diffuse;
    for (int channel = 0; channel < 3; ++channel)
        color[channel] = 0.3F * material.ambient[channel] + diffuse * material.diffuse[channel] +
                         (diffuse > 0 ? specular : 0) * material.specular[channel];
    return color;
}

void draw_ball(Canvas& canvas, int centre_x, int centre_y, const cMaterial& material) {
    for (int y = -BALL_RADIUS; y <= BALL_RADIUS; ++y)
        for (int x = -BALL_RADIUS; x <= BALL_RADIUS; ++x)
            if (x * x + y * y <= BALL_RADIUS * BALL_RADIUS)
                canvas.blend(centre_x + x, centre_y + y,
                             lit(material, static_cast<float>(x) / BALL_RADIUS,
                                 static_cast<float>(y) / BALL_RADIUS));
}

int draw_materials(Canvas& canvas, int y) {
    int index = 0;
    for (const auto& [name, material] : quillon::NAMED_MATERIALS) {
        const int left = MARGIN + index % COLUMNS * COLUMN_WIDTH;
        const int top = y + index / COLUMNS * MATERIAL_HEIGHT;
        draw_ball(canvas, left + BALL_RADIUS, top + BALL_RADIUS, material);
        canvas.write(left, top + 2 * BALL_RADIUS + 6, LABEL_SIZE, name, INK);
        ++index;
    }
    return y + rows_of(quillon::NAMED_MATERIALS.size()) * MATERIAL_HEIGHT;
}

ExitCode draw_palette(const std::string& file, const std::string& plugins) {
    constexpr int height = 3 * TITLE_HEIGHT + rows_of(quillon::NAMED_COLORS.size()) * COLOR_HEIGHT +
                           static_cast<int>(quillon::GRADIENT_NAMES.size()) * GRADIENT_HEIGHT +
                           rows_of(quillon::NAMED_MATERIALS.size()) * MATERIAL_HEIGHT;
    open_graphics(plugins);
    Canvas canvas(WIDTH, height, BACKGROUND);
    int y = draw_colors(canvas, draw_title(canvas, 0, "Colours"));
    y = draw_gradients(canvas, draw_title(canvas, y, "Gradients, from 0 to 1"));
    draw_materials(canvas, draw_title(canvas, y, "Materials"));
    save_picture(file, canvas.picture());
    std::cout << file << ": " << WIDTH << " x " << height << " pixels\n";
    return SUCCESS;
}

// A row of the printed tables: columns of equal width.
void print_cells(const std::vector<std::string>& cells) {
    for (std::size_t i = 0; i + 1 < cells.size(); ++i)
        std::cout << std::left << std::setw(27) << cells[i];
    std::cout << cells.back() << '\n';
}

ExitCode print_palette() {
    print_cells({"colour", "red#green#blue#alpha#"});
    for (const auto& [name, color] : quillon::NAMED_COLORS)
        print_cells({std::string(name), text_of(color)});
    std::cout << '\n';
    print_cells({"gradient", "at 0", "at 0.5", "at 1"});
    for (const std::string_view name : quillon::GRADIENT_NAMES) {
        const auto at = [&](float t) {
            return text_of(__nsGradient_gradient_table(std::string(name))->function(t));
        };
        print_cells({std::string(name), at(0), at(0.5F), at(1)});
    }
    std::cout << '\n';
    print_cells({"material", "ambient", "diffuse", "specular", "shininess"});
    for (const auto& [name, material] : quillon::NAMED_MATERIALS) {
        std::ostringstream shininess;
        shininess << material.shininess;
        print_cells({std::string(name), text_of(material.ambient), text_of(material.diffuse),
                     text_of(material.specular), shininess.str()});
    }
    return SUCCESS;
}

} // namespace

Action declare_palette(CLI::App& app) {
    struct Arguments {
        std::string file;
        std::string plugins;
    };

    auto arguments = std::make_shared<Arguments>();
    add_output(app, arguments->file,
               "The picture to save; without it the palette is printed as text");
    add_plugin_folder(app, arguments->plugins);
    return [arguments] {
        return arguments->file.empty() ? print_palette()
                                       : draw_palette(arguments->file, arguments->plugins);
    };
}

} // namespace tool
