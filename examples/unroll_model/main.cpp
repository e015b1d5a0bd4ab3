// SPDX-License-Identifier: MIT
// Unrolls an indexed model, a torus as OBJ text, into a render cache with tangents, and draws it on
// the terminal. The tangents bend the normals into grooves, which is what a normal map does.
#include <quillon/comfort.h>
#include <quillon/quillon.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

using namespace quillon;

namespace {

constexpr int RINGS = 160;
constexpr int SIDES = 80;
constexpr std::uint32_t CORNERS = 4;
constexpr double TURN = TWO_PI;

struct Model {
    std::vector<cVector3D> positions;
    std::vector<cVector2D<double>> texcoords;
    std::vector<cVector3D> normals;
    std::vector<std::uint32_t> position_indices;
    std::vector<std::uint32_t> texcoord_indices;
    std::vector<std::uint32_t> normal_indices;
};

// Positions and normals close round the torus; texture coordinates need a column more at the seam,
// which is why every attribute has indices of its own.
std::string torus_text() {
    std::ostringstream text;
    for (int i = 0; i < RINGS * SIDES; ++i) {
        const double ring = TURN * (i / SIDES) / RINGS;
        const double side = TURN * (i % SIDES) / SIDES;
        const double x = std::cos(ring) * std::cos(side);
        const double y = std::sin(ring) * std::cos(side);
        const double z = std::sin(side);
        text << "v " << std::cos(ring) + 0.45 * x << ' ' << std::sin(ring) + 0.45 * y << ' '
             << 0.45 * z << "\nvn " << x << ' ' << y << ' ' << z << '\n';
    }
    for (int ring = 0; ring <= RINGS; ++ring)
        for (int side = 0; side <= SIDES; ++side)
            text << "vt " << double(ring) / RINGS << ' ' << double(side) / SIDES << '\n';
    for (int ring = 0; ring < RINGS; ++ring) {
        for (int side = 0; side < SIDES; ++side) {
            text << 'f';
            for (const auto& [r, s] : {std::array{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
                const int corner = (ring + r) % RINGS * SIDES + (side + s) % SIDES + 1;
                const int texcoord = (ring + r) * (SIDES + 1) + side + s + 1;
                text << ' ' << corner << '/' << texcoord << '/' << corner;
            }
            text << '\n';
        }
    }
    return text.str();
}

Model read_model(const std::string& obj) {
    Model model;
    std::istringstream text(obj);
    for (std::string word; text >> word;) {
        double x = 0.0, y = 0.0, z = 0.0;
        if (word == "v" && text >> x >> y >> z)
            model.positions.emplace_back(x, y, z);
        else if (word == "vn" && text >> x >> y >> z)
            model.normals.emplace_back(x, y, z);
        else if (word == "vt" && text >> x >> y)
            model.texcoords.emplace_back(x, y);
        else if (word == "f") {
            std::uint32_t position = 0, texcoord = 0, normal = 0;
            char slash = '/';
            for (std::uint32_t c = 0; c < CORNERS; ++c) {
                text >> position >> slash >> texcoord >> slash >> normal;
                model.position_indices.push_back(position - 1);
                model.texcoord_indices.push_back(texcoord - 1);
                model.normal_indices.push_back(normal - 1);
            }
        }
    }
    return model;
}

RenderCache unroll(const Model& model) {
    const auto polys = static_cast<std::uint32_t>(model.position_indices.size() / CORNERS);
    auto cache =
        make_render_cache(polys, CORNERS, {.texcoords = true, .normals = true, .tangents = true});
    __mGraphics_modify_render_cache_from_polys(
        cache.get(), model.positions.data(), model.texcoords.data(), model.normals.data(), nullptr,
        model.position_indices.data(), model.texcoord_indices.data(), model.normal_indices.data(),
        nullptr);
    __mGraphics_render_cache_calc_tangents(cache.get());
    return cache;
}

cVector3D entry(const float* array, std::size_t corner) {
    return {array[corner * 3], array[corner * 3 + 1], array[corner * 3 + 2]};
}

// Every corner becomes one letter, the nearest of its place, as bright as it faces the light.
void draw(const cRenderCache& cache) {
    constexpr int width = 78, height = 30;
    const std::string shades = " .:-=+*#%@";
    const cVector3D light = cVector3D(-0.5, 0.6, 0.8).normalized();
    std::vector<double> depths(width * height, -10.0);
    std::vector<std::string> rows(height, std::string(width, ' '));
    cMatrix3D tilt;
    __cMatrix3d_construct_matrix(tilt, -0.8, VECTOR3D_UNIT_X);

    for (std::size_t corner = 0; corner < std::size_t{cache.poly_count} * CORNERS; ++corner) {
        const double groove = std::sin(16 * TURN * cache.texcoords[corner * 2]);
        const cVector3D position = tilt * entry(cache.positions, corner);
        const cVector3D normal =
            tilt * (entry(cache.normals, corner) + 0.6 * groove * entry(cache.tangents, corner));

        const int column = static_cast<int>((position.x / 1.5 + 1.0) / 2.0 * (width - 1));
        const int row = static_cast<int>((1.0 - position.y / 1.2) / 2.0 * (height - 1));
        double& depth = depths[static_cast<std::size_t>(row * width + column)];
        if (position.z <= depth)
            continue;
        depth = position.z;
        const double brightness = std::clamp(normal.normalized().dot(light), 0.0, 0.99);
        rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] =
            shades[1 + static_cast<std::size_t>(brightness * 9.0)];
    }
    for (const std::string& row : rows)
        std::printf("%s\n", row.c_str());
}

} // namespace

int main() {
    __mPhysics_open();
    const Model model = read_model(torus_text());
    const RenderCache cache = unroll(model);
    draw(*cache);
    std::printf("%zu positions, %zu texture coordinates and %u quads unroll to %u corners.\n",
                model.positions.size(), model.texcoords.size(), cache->poly_count,
                cache->poly_count * CORNERS);
    __mPhysics_close();
}
