// SPDX-License-Identifier: MIT
#include "island.h"

#include <quillon/comfort.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <stdexcept>

namespace lantern {

namespace {

using quillon::cVector3D;

constexpr int MAP_SIDE = 256;

// The pixels of a height map, 0 to 1, which repeats in both directions.
class HeightMap {
public:
    explicit HeightMap(const std::string& path) : levels(MAP_SIDE * MAP_SIDE) {
        std::ifstream file(path, std::ios::binary);
        if (!file)
            throw std::runtime_error(path + ": no height map here; name its folder with --data");
        std::string kind;
        int width = 0;
        int height = 0;
        int white = 0;
        file >> kind >> width >> height >> white;
        file.get();
        file.read(reinterpret_cast<char*>(levels.data()), MAP_SIDE * MAP_SIDE);
        if (!file || kind != "P5" || width != MAP_SIDE || height != MAP_SIDE || white != 255)
            throw std::runtime_error(path + ": not a binary PGM of 256 x 256 pixels of 8 bits");
    }

    double at(int column, int row) const {
        return levels[row % MAP_SIDE * MAP_SIDE + column % MAP_SIDE] / 255.0;
    }

private:
    std::vector<std::uint8_t> levels;
};

// Hills as the map has them, rough with the same map at five times the scale, sinking into the sea
// with the square of the distance.
double shaped(const HeightMap& map, int column, int row) {
    const int scale = MAP_SIDE / Island::CELLS;
    const double hill = map.at(column * scale, row * scale);
    const double grain = map.at(column * scale * 5, row * scale * 5);
    const double x = 2.0 * column / Island::CELLS - 1.0;
    const double z = 2.0 * row / Island::CELLS - 1.0;
    const double shore = 1.0 - 1.15 * (x * x + z * z);
    const double rise = (58.0 * hill * hill + 12.0 * hill + 4.0 * grain) * std::max(shore, 0.0);
    return std::max(10.0 * shore - 11.0 + rise, Island::SEA_BED);
}

// A direction and a distance in whole metres, so that no last bit of a sine counts.
cVector3D on_ring(double degrees, double radius) {
    return {std::trunc(sinTD(degrees) * radius), 0.0, std::trunc(cosTD(degrees) * radius)};
}

} // namespace

std::uint64_t digest_of(const void* bytes, std::size_t count, std::uint64_t start) {
    const auto* byte = static_cast<const std::uint8_t*>(bytes);
    for (std::size_t i = 0; i < count; ++i)
        start = (start ^ byte[i]) * 0x100000001b3U;
    return start;
}

Island::Island(const std::string& height_map) {
    const HeightMap map(height_map);
    for (int row = 0; row <= CELLS; ++row)
        for (int column = 0; column <= CELLS; ++column)
            corners.push_back(shaped(map, column, row));
    lay_path();
    raise_rocks();
    for (std::size_t i = 0; i < LANTERNS; ++i)
        lanterns.push_back(place_on_path(static_cast<double>(i) * path.count / LANTERNS));
}

double Island::ground(double x, double z) const {
    const double column = (x + REACH) / CELL;
    const double row = (z + REACH) / CELL;
    if (!(column >= 0.0 && column < CELLS && row >= 0.0 && row < CELLS))
        return SEA_BED;
    const int west = static_cast<int>(column);
    const int south = static_cast<int>(row);
    const double east_part = column - west;
    const double north_part = row - south;
    const double southern =
        corner(west, south) + (corner(west + 1, south) - corner(west, south)) * east_part;
    const double northern = corner(west, south + 1) +
                            (corner(west + 1, south + 1) - corner(west, south + 1)) * east_part;
    return southern + (northern - southern) * north_part;
}

double Island::surface(double x, double z) const {
    return std::max(ground(x, z), 0.0);
}

cVector3D Island::place_on_path(double t) const {
    constexpr double clearance = 11.0;
    cVector3D place = smooth_value(path, t);
    place.y = std::max(place.y, surface(place.x, place.z) + clearance);
    return place;
}

std::uint64_t Island::digest() const {
    return digest_of(corners.data(), corners.size() * sizeof(double));
}

void Island::lay_path() {
    // From the sea over the shore to the hills and back, three times around.
    constexpr double radii[] = {168.0, 120.0, 150.0, 196.0, 140.0, 96.0,
                                150.0, 204.0, 160.0, 104.0, 132.0, 190.0};
    double degrees = 0.0;
    for (const double radius : radii) {
        cVector3D point = on_ring(degrees, radius);
        point.y = surface(point.x, point.z) + 14.0;
        append(path, point);
        degrees += 30.0;
    }
}

void Island::raise_rocks() {
    for (int i = 0; i < 16; ++i) {
        cVector3D middle = on_ring(i * 22.5 + i * i % 7, 130.0 + i * 37 % 110);
        Rock rock{middle, 7.0 + i * 5 % 7, 7.0 + i * 3 % 8, 0.0};
        rock.top = surface(middle.x, middle.z) + 12.0 + i * 11 % 19;
        rocks.push_back(rock);
    }
}

} // namespace lantern
