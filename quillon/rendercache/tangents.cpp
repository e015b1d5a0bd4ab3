#include "quillon/rendercache/tangents.h"

#include "quillon/platform/cpu.h"

#include <algorithm>
#include <cmath>

using quillon::cRenderCache;
using quillon::cVector3D;
using TexCoord = quillon::cVector2D<double>;

namespace {

constexpr double SMALLEST_DETERMINANT = 0.0001;

// What is left of a triangle once its corners are read: the tangent is `direction` / `determinant`,
// normalised.
struct Slope {
    double direction[3];
    double determinant;
};

template <class Position, class Coordinate>
Slope slope_of(const Position& p0, const Position& p1, const Position& p2, const Coordinate& uv0, const Coordinate& uv1, const Coordinate& uv2) 
