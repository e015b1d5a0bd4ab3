// SPDX-License-Identifier: MIT
// The island: its ground from a height map, its rocks, and the path that its lanterns hang along.
//
// Metres, with x to the east, y up and z to the north; the sea is at 0 and the island about the
// origin. All of it comes from table look-ups, sums, products and quotients, so that it is the same
// to the bit wherever the height map and the trigonometry tables are.
#pragma once

#include <quillon/quillon.h>

#include <cstdint>
#include <string>
#include <vector>

namespace lantern {

// FNV-1a, 64 bits.
std::uint64_t digest_of(const void* bytes, std::size_t count,
                        std::uint64_t start = 0xcbf29ce484222325U);

// A pillar, a box seen from above; it reaches from the sea bed up to `top`.
struct Rock {
    quillon::cVector3D middle;
    double width; // along x
    double depth; // along z
    double top;
};

class Island {
public:
    static constexpr int CELLS = 128;                 // squares of ground along each side
    static constexpr double CELL = 4.0;               // the side of one
    static constexpr double REACH = CELLS * CELL / 2; // from the middle to each side
    static constexpr std::size_t LANTERNS = 30;
    static constexpr double SEA_BED = -12.0;

    // Reads a height map, a binary PGM of 256 x 256 pixels of 8 bits that tiles.
    // Throws std::runtime_error with a line for the user where it is missing or something else.
    explicit Island(const std::string& height_map);

    // The ground at a corner of the grid, column to the east and row to the north, 0 to CELLS.
    double corner(int column, int row) const { return corners[row * (CELLS + 1) + column]; }

    // The ground below a place; the sea bed off the grid.
    double ground(double x, double z) const;

    // The lowest height to fly at: the ground or the sea.
    double surface(double x, double z) const;

    std::uint64_t digest() const;

    // A place on the closed path around the island, high enough above the ground to fly through.
    quillon::cVector3D place_on_path(double t) const;

    std::vector<Rock> rocks;
    std::vector<quillon::cVector3D> lanterns;
    quillon::cSpline3D path{true};

private:
    void lay_path();
    void raise_rocks();

    std::vector<double> corners;
};

} // namespace lantern
