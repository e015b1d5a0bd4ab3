// SPDX-License-Identifier: MIT
#include "shapes.h"

#include <algorithm>
#include <array>
#include <vector>

namespace lantern {

namespace {

using quillon::cColor;
using quillon::cVector3D;
using TextureCoordinate = quillon::cVector2D<double>;

cColor mixed(const cColor& a, const cColor& b, double part) {
    const auto t = static_cast<float>(std::clamp(part, 0.0, 1.0));
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t, 1.0F};
}

constexpr double SHALLOWS = -3.0; // the sea hides what is below

// The corners of the grid, one attribute beside the other.
struct Grid {
    std::vector<cVector3D> positions;
    std::vector<cVector3D> normals;
    std::vector<TextureCoordinate> texcoords;
    std::vector<cColor> colors;
};

// Sand at the water, then meadow, heather on the heights, bare rock where it is steep.
cColor ground_color(double height, double up) {
    constexpr cColor sand(0.55F, 0.49F, 0.42F, 1.0F);
    constexpr cColor meadow(0.24F, 0.36F, 0.25F, 1.0F);
    constexpr cColor heather(0.40F, 0.29F, 0.36F, 1.0F);
    constexpr cColor rock(0.42F, 0.41F, 0.45F, 1.0F);
    const cColor green = mixed(meadow, heather, (height - 12.0) / 30.0);
    const cColor land = mixed(sand, green, (height - 0.8) / 2.5);
    return mixed(land, rock, (0.75 - up) * 6.0);
}

Grid grid_of(const Island& island) {
    constexpr double repeats = 18.0;
    Grid grid;
    for (int row = 0; row <= Island::CELLS; ++row)
        for (int column = 0; column <= Island::CELLS; ++column) {
            const double x = column * Island::CELL - Island::REACH;
            const double z = row * Island::CELL - Island::REACH;
            const double y = island.corner(column, row);
            cVector3D normal(island.ground(x - 2.0, z) - island.ground(x + 2.0, z), 4.0,
                             island.ground(x, z - 2.0) - island.ground(x, z + 2.0));
            normal.normalize();
            grid.positions.emplace_back(x, y, z);
            grid.normals.push_back(normal);
            grid.texcoords.emplace_back(column * repeats / Island::CELLS,
                                        row * repeats / Island::CELLS);
            grid.colors.push_back(ground_color(y, normal.y));
        }
    return grid;
}

Cache make_cache(std::size_t polys, std::uint32_t corners, bool texcoords, bool normals,
                 bool colors) {
    return Cache(__mGraphics_create_render_cache(static_cast<std::uint32_t>(polys), corners,
                                                 texcoords, normals, texcoords, colors));
}

} // namespace

Cache make_ground(const Island& island) {
    constexpr std::uint32_t side = Island::CELLS + 1;
    const Grid grid = grid_of(island);
    std::vector<std::uint32_t> indices;
    for (std::uint32_t row = 0; row + 1 < side; ++row)
        for (std::uint32_t column = 0; column + 1 < side; ++column) {
            const std::uint32_t west = row * side + column;
            const std::array<std::uint32_t, 4> corners{west, west + side, west + side + 1,
                                                       west + 1};
            if (std::any_of(corners.begin(), corners.end(),
                            [&grid](auto i) { return grid.positions[i].y > SHALLOWS; }))
                for (const int corner : {0, 1, 2, 0, 2, 3})
                    indices.push_back(corners[corner]);
        }
    Cache cache = make_cache(indices.size() / 3, 3, true, true, true);
    __mGraphics_modify_render_cache_from_polys(
        cache.get(), grid.positions.data(), grid.texcoords.data(), grid.normals.data(),
        grid.colors.data(), indices.data(), indices.data(), indices.data(), indices.data());
    __mGraphics_render_cache_calc_tangents(cache.get());
    return cache;
}

Cache make_lathed(std::span<const Ring> profile, int sides, double repeats) {
    std::vector<cVector3D> positions;
    std::vector<TextureCoordinate> texcoords;
    const auto add = [&](const Ring& ring, int corner) {
        const double degrees = (corner + 0.5) * 360.0 / sides;
        const cVector3D place(ring.radius * sinTD(degrees), ring.height,
                              ring.radius * cosTD(degrees));
        positions.push_back(place);
        // Askew, so that no side looks along the projection.
        texcoords.emplace_back((place.x + 0.6 * place.z) * repeats,
                               (place.z - 0.6 * place.x - 3.0 * place.y) * repeats);
    };
    for (std::size_t i = 1; i < profile.size(); ++i)
        for (int corner = 0; corner < sides; ++corner) {
            add(profile[i - 1], corner);
            add(profile[i - 1], corner + 1);
            add(profile[i], corner + 1);
            add(profile[i], corner);
        }
    Cache cache = make_cache(positions.size() / 4, 4, true, false, false);
    __mGraphics_modify_render_cache_from_verts(cache.get(), positions.data(), texcoords.data(),
                                               nullptr, nullptr);
    __mGraphics_render_cache_calc_tangents(cache.get());
    return cache;
}

Cache make_glider(const cColor& tips) {
    constexpr cVector3D nose(0.0, 0.0, 2.6);
    constexpr cVector3D ridge(0.0, 0.42, -0.2);
    constexpr cVector3D keel(0.0, -0.5, -0.6);
    constexpr cVector3D tail(0.0, 0.2, -1.7);
    std::vector<cVector3D> positions;
    std::vector<cColor> colors;
    for (const double side : {-1.0, 1.0}) {
        const cVector3D shoulder(side * 1.1, 0.12, 0.1);
        const cVector3D tip(side * 2.7, 0.5, -1.3);
        const cVector3D root(side * 0.5, 0.16, -1.2);
        for (const auto& triangle :
             {std::array{nose, ridge, shoulder}, std::array{nose, shoulder, keel},
              std::array{ridge, tail, root}, std::array{ridge, root, shoulder},
              std::array{keel, shoulder, root}, std::array{keel, root, tail},
              std::array{shoulder, root, tip}}) {
            positions.insert(positions.end(), triangle.begin(), triangle.end());
            // The left side is the mirror image of the right, so its corners go round the other
            // way.
            if (side < 0.0)
                std::swap(positions.back(), positions[positions.size() - 2]);
            colors.insert(colors.end(), 3, triangle[2].x == tip.x ? tips : quillon::ALICEBLUE);
        }
    }
    Cache cache = make_cache(positions.size() / 3, 3, false, false, true);
    __mGraphics_modify_render_cache_from_verts(cache.get(), positions.data(), nullptr, nullptr,
                                               colors.data());
    return cache;
}

} // namespace lantern
