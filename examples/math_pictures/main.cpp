// SPDX-License-Identifier: MIT
// Draws the pictures of docs/math.md: math_pictures [FOLDER] writes spline.svg and rotations.svg
// there.

#include <quillon/comfort.h>
#include <quillon/quillon.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using quillon::cMatrix3D;
using quillon::cSpline3D;
using quillon::cVector3D;

// A place on the picture, in its own units: to the right and downward.
struct Spot {
    double x;
    double y;
};

class Picture {
public:
    Picture(const std::string& path, int width, int height) : name(path), out(path) {
        out.precision(1);
        out << std::fixed << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width
            << "\" height=\"" << height << "\" font-family=\"sans-serif\" font-size=\"13\">\n"
            << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    }

    // `style` is a colour and whatever other attributes of a stroke follow it.
    void curve(const std::vector<Spot>& spots, const std::string& style) {
        out << "<polyline fill=\"none\" stroke=" << style << " points=\"";
        for (const Spot& spot : spots)
            out << spot.x << ',' << spot.y << ' ';
        out << "\"/>\n";
    }

    void dot(Spot spot, const std::string& colour) {
        out << "<circle cx=\"" << spot.x << "\" cy=\"" << spot.y << "\" r=\"4\" fill=" << colour
            << "/>\n";
    }

    void text(Spot spot, const std::string& words) {
        out << "<text x=\"" << spot.x << "\" y=\"" << spot.y << "\">" << words << "</text>\n";
    }

    void finish() {
        out << "</svg>\n";
        out.close();
        if (!out)
            throw std::runtime_error("can't write " + name + "; does its folder exist?");
    }

private:
    std::string name;
    std::ofstream out;
};

constexpr const char* grey = "\"#999\" stroke-width=\"1.5\" stroke-dasharray=\"5 4\"";
constexpr const char* blue = "\"#1f6fb4\" stroke-width=\"2.5\"";
constexpr const char* red = "\"#c8402a\" stroke-width=\"1.5\"";

using Value = cVector3D (*)(const cSpline3D&, double);

std::vector<Spot> path(const cSpline3D& s, Value value, double end, Spot origin) {
    constexpr int steps_per_segment = 24;
    std::vector<Spot> spots;
    for (int i = 0; i <= end * steps_per_segment; ++i) {
        const cVector3D point = value(s, static_cast<double>(i) / steps_per_segment);
        spots.push_back({origin.x + point.x, origin.y - point.y});
    }
    return spots;
}

void draw_spline(Picture& picture, cSpline3D s, bool closed, Spot origin) {
    s.closed = closed;
    const double end = closed ? s.count : s.count - 1;
    picture.curve(path(s, quillon::hard_value, end, origin), grey);
    picture.curve(path(s, quillon::smooth_value, end, origin), blue);
    for (int i = 0; i < s.count; ++i) {
        const Spot spot{origin.x + s.points[i].x, origin.y - s.points[i].y};
        picture.dot(spot, "\"black\"");
        picture.text({spot.x + 7, spot.y - 7}, std::to_string(i));
    }

    const cVector3D target(10, 130, 0);
    const double t = __cSpline3d_get_value_closest_to(s, target, 0.01, 20);
    const cVector3D nearest = quillon::smooth_value(s, t);
    const Spot from{origin.x + target.x, origin.y - target.y};
    const Spot to{origin.x + nearest.x, origin.y - nearest.y};
    picture.curve({from, to}, red);
    picture.dot(from, "\"#c8402a\"");
    picture.text({from.x - 18, from.y - 10}, "t = " + std::to_string(t).substr(0, 4));
    picture.text({origin.x, origin.y + 40}, closed ? "closed: corners at points 0 and 5" : "open");
}

void draw_splines(const std::string& file) {
    cSpline3D s;
    for (const cVector3D& point :
         {cVector3D(20, 40, 0), cVector3D(60, 170, 0), cVector3D(170, 190, 0),
          cVector3D(200, 90, 0), cVector3D(290, 130, 0), cVector3D(270, 10, 0)})
        append(s, point);
    Picture picture(file, 720, 290);
    draw_spline(picture, s, false, {20, 230});
    draw_spline(picture, s, true, {380, 230});
    picture.finish();
}

// x to the right, y up, z toward the reader.
Spot projected(const cVector3D& v, Spot origin) {
    constexpr double unit = 85.0;
    return {origin.x + unit * (v.x - 0.5 * v.z), origin.y - unit * (v.y - 0.2 * v.x - 0.45 * v.z)};
}

struct Rotation {
    const char* title;
    void (*set)(cMatrix3D&, double);
};

void draw_rotation(Picture& picture, const Rotation& rotation, Spot origin) {
    constexpr const char* names[] = {"x", "y", "z"};
    constexpr cVector3D axes[] = {quillon::VECTOR3D_UNIT_X, quillon::VECTOR3D_UNIT_Y,
                                  quillon::VECTOR3D_UNIT_Z};
    constexpr int degrees = 40;
    for (int axis = 0; axis < 3; ++axis) {
        std::vector<Spot> trace;
        for (int i = 0; i <= degrees; ++i) {
            cMatrix3D m;
            rotation.set(m, i * double{quillon::DEG_TO_RAD});
            trace.push_back(projected(m * axes[axis], origin));
        }
        picture.curve({origin, trace.front()}, grey);
        picture.curve(trace, red);
        picture.curve({origin, trace.back()}, blue);
        picture.dot(trace.back(), "\"#1f6fb4\"");
        picture.text({trace.front().x - 14, trace.front().y - 8}, names[axis]);
    }
    picture.text({origin.x - 80, origin.y + 105}, rotation.title);
}

void draw_rotations(const std::string& file) {
    constexpr Rotation rotations[] = {{"yaw: +z goes toward -x", __nsMatrix3d_yaw},
                                      {"pitch: +y goes toward +z", __nsMatrix3d_pitch},
                                      {"roll: +x goes toward +y", __nsMatrix3d_roll}};
    Picture picture(file, 720, 250);
    double x = 110;
    for (const Rotation& rotation : rotations) {
        draw_rotation(picture, rotation, {x, 125});
        x += 240;
    }
    picture.finish();
}

} // namespace

int main(int argc, char** argv) {
    const std::string folder = argc > 1 ? argv[1] : ".";
    __mPhysics_open();
    try {
        draw_splines(folder + "/spline.svg");
        draw_rotations(folder + "/rotations.svg");
    } catch (const std::exception& error) {
        std::cerr << "math_pictures: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
    __mPhysics_close();
    return EXIT_SUCCESS;
}
