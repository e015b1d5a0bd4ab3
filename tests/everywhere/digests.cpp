// SPDX-License-Identifier: MIT
// digests: prints a digest of the results of each part of the library over fixed random input,
// equal in every build for every system. The tables are the exact ones.

#include "quillon/appearance/color_names.h"
#include "quillon/appearance/material_names.h"
#include "quillon/input/names.h"
#include "quillon/json/parser.h"
#include "quillon/json/writer.h"
#include "quillon/quillon.h"

#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

using namespace quillon;

namespace {

constexpr int TURNS = 2000;

// The same numbers everywhere, unlike those of the standard library's distributions. Two calls
// never stand in one argument list, whose order is the compiler's. Source: G. Marsaglia, "Xorshift
// RNGs", 2003.
class Source {
public:
    std::uint32_t bits() {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return static_cast<std::uint32_t>(state >> 32);
    }

    double number(double low, double high) { return low + (high - low) * (bits() / 4294967296.0); }

    cVector3D vector() { return {number(-9.0, 9.0), number(-7.0, 8.0), number(-5.0, 6.0)}; }

    cQuaternion quaternion() {
        return {number(-1.0, 1.0), number(-1.0, 1.0), number(-1.0, 1.0), number(-1.0, 1.0)};
    }

    cMatrix3D matrix() { return cMatrix3D(quaternion()); }

    cColor color() {
        const auto part = [this] { return static_cast<float>(number(0.0, 1.0)); };
        const float r = part(), g = part(), b = part();
        return {r, g, b, part()};
    }

    std::vector<std::uint8_t> pixels(std::size_t count) {
        std::vector<std::uint8_t> bytes(count * 4);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(bits());
        return bytes;
    }

private:
    std::uint64_t state = 88172645463325252;
};

// FNV-1a with 64 bits.
// Source: G. Fowler, L. C. Noll, K.-P. Vo, "The FNV Non-Cryptographic Hash Algorithm".
class Digest {
public:
    explicit Digest(const char* part_name) : name(part_name) {}

    Digest(const Digest&) = delete;
    Digest& operator=(const Digest&) = delete;

    ~Digest() { std::printf("%-12s %016" PRIx64 "\n", name, value); }

    void add_bytes(const void* bytes, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            value = (value ^ static_cast<const unsigned char*>(bytes)[i]) * 0x100000001B3;
    }

    template <typename... Numbers>
    void add(Numbers... numbers) {
        // The sign of a NaN that was computed is the processor's own.
        ((numbers = numbers == numbers ? numbers : std::numeric_limits<Numbers>::quiet_NaN()), ...);
        (add_bytes(&numbers, sizeof numbers), ...);
    }

    void add_text(std::string_view text) { add_bytes(text.data(), text.size()); }

    void add(const cVector3D& v) { add(v.x, v.y, v.z); }

    void add(const cQuaternion& q) { add(q.x, q.y, q.z, q.w); }

    void add(const cMatrix3D& m) { add_bytes(m.m, sizeof m.m); }

    void add(const cColor& c) { add(c.r, c.g, c.b, c.a); }

private:
    const char* name;
    std::uint64_t value = 0xCBF29CE484222325;
};

void constants(Source&) {
    Digest digest("constants");
    digest.add(PI, HALF_PI, QUARTER_PI, THREE_HALF_PI, TWO_PI, INV_PI, FULL_CIRCLE, PI_OVER_6,
               PI_OVER_4, PI_OVER_3, PI_OVER_2, DEG_TO_RAD, RAD_TO_DEG);
    digest.add(PHYS_AVOGADRO, PHYS_VACUUM_PERMEABILITY, PHYS_BOLTZMANN, PHYS_STEFAN_BOLTZMANN,
               PHYS_PLANCK, PHYS_REDUCED_PLANCK, PHYS_PROTON_MASS, PHYS_NEUTRON_MASS,
               PHYS_ELECTRON_MASS, PHYS_ATOMIC_MASS_UNIT, PHYS_MEV_IN_JOULES);
    for (const auto& v : {VECTOR2D_ZERO, VECTOR2D_UNIT_X, VECTOR2D_UNIT_Y, VECTOR2D_ONE})
        digest.add(v.x, v.y);
    for (const auto& v : {VECTOR2L_ZERO, VECTOR2L_UNIT_X, VECTOR2L_UNIT_Y, VECTOR2L_ONE})
        digest.add(v.x, v.y);
    for (const cVector3D& v :
         {VECTOR3D_ZERO, VECTOR3D_UNIT_X, VECTOR3D_UNIT_Y, VECTOR3D_UNIT_Z, VECTOR3D_ONE})
        digest.add(v);
}

// The names of the interface, with what each stands for.
void names(Source&) {
    Digest digest("names");
    for (const auto& [name, color] : NAMED_COLORS) {
        digest.add_text(name);
        digest.add(color);
    }
    for (const auto& [name, material] : NAMED_MATERIALS) {
        digest.add_text(name);
        for (const cColor& color :
             {material.ambient, material.diffuse, material.specular, material.emission})
            digest.add(color);
        digest.add(material.shininess);
    }
    for (const char* name : {"fade", "monochrome", "health", "mana", "skin", "flame", "hue"}) {
        const cGradient* gradient = __nsGradient_gradient_table(name);
        digest.add_text(gradient->name);
        for (const float t : {0.0F, 0.25F, 0.3F, 0.5F, 0.75F, 1.0F, 2.0F})
            digest.add(gradient->function(t));
    }
    const auto add_all = [&](const auto& table) {
        for (const char* name : table)
            digest.add_text(name);
    };
    add_all(digital_input_names);
    add_all(analog_input_names);
    add_all(pad_input_names);
    add_all(pad_axis_names);
    add_all(input_logic_names);
    for (int code = -1; code <= 20; ++code)
        digest.add_text(cson_error_name(code));
}

// Every entry of the trigonometry tables: those that were compared with MPFR.
void entries(Source&) {
    Digest digest("entries");
    for (int i = 0; i < 72000; ++i)
        digest.add(cosTD(i / 200.0), sinTD(i / 200.0), tanTD(i / 200.0));
    for (int i = 0; i <= 20000; ++i)
        digest.add(acosT((i + 0.5) / 10000.0 - 1.0), asinT((i + 0.5) / 10000.0 - 1.0));
    for (int i = 0; i <= 1000000; ++i)
        digest.add(atanT((i + 0.5) / 50000.0), atanT(-(i + 0.5) / 50000.0));
}

void tables(Source& source) {
    Digest digest("tables");
    for (int i = 0; i < TURNS; ++i) {
        const double angle = source.number(-1e4, 1e4);
        const double ratio = source.number(-1.1, 1.1);
        double bound = angle;
        trig_bind(bound);
        digest.add(cosTD(angle), sinTR(angle), tanTD(angle), acosT(ratio), asinT(ratio),
                   atanT(angle));
        digest.add(bound,
                   __tarn_extract_angle(static_cast<float>(angle), static_cast<float>(ratio)));
        digest.add(gauss_near_zero_taylor7(static_cast<float>(ratio), 0.7F));
    }
    // Close to powers of two, where the steps of a turn round, up to where they change nothing.
    for (int i = 0; i < 100 * TURNS; ++i) {
        const int exponent = static_cast<int>(source.bits() % 56);
        const double power = std::ldexp(1.0, exponent);
        double wide = power + source.number(-20.0, 20.0) * (1.0 + power * 0x1p-52);
        wide = i % 2 != 0 ? wide : -wide;
        auto narrow = static_cast<float>(std::ldexp(wide, exponent > 26 ? -29 : 0));
        trig_bind(wide);
        trig_bind_32(narrow);
        digest.add(wide, narrow);
    }
}

void rotations(Source& source) {
    Digest digest("rotations");
    for (int i = 0; i < TURNS; ++i) {
        cMatrix3D m = source.matrix();
        __cMatrix3d_multiply(m, source.matrix());
        __cMatrix3d_rotate(m, source.matrix());
        __cMatrix3d_yaw(m, source.number(-4.0, 4.0));
        digest.add(__cMatrix3d_get_determinant(m));
        digest.add(m);
        __cMatrix3d_normalize(m);
        cQuaternion q;
        __cQuaternion_from_matrix(q, m);
        __cQuaternion_multiply(q, source.quaternion());
        digest.add(q);
        cVector3D v = source.vector();
        __cVector3d_rotate_by_matrix(v, m);
        __cVector3d_rotate_backwards_by_quaternion(v, q);
        digest.add(v);
    }
}

void splines(Source& source) {
    Digest digest("splines");
    for (const bool is_closed : {false, true}) {
        cSpline3D path(is_closed);
        for (int i = 0; i < 23; ++i)
            __cSpline3d_add_control_point(path, source.vector());
        for (int i = 0; i < TURNS; ++i) {
            cVector3D out;
            const double t = source.number(-2.0, 27.0);
            __cSpline3d_get_hard_value(path, out, t);
            digest.add(out);
            __cSpline3d_get_smooth_value(path, out, t);
            digest.add(out);
            digest.add(__cSpline3d_get_value_closest_to(path, source.vector(), 1e-4, 9));
        }
    }
    for (int i = 0; i < TURNS; ++i) {
        cSpline3D path(i % 2 != 0);
        for (int count = 2 + i % 7; count > 0; --count) {
            const cVector3D point = source.vector() * 0.2;
            const bool is_repeated = path.count > 0 && i % 5 == count;
            __cSpline3d_add_control_point(path, is_repeated ? path.points[path.count - 1] : point);
        }
        const double found =
            __cSpline3d_get_value_closest_to(path, source.vector() * 0.2, i % 3 * 0.05, i % 12);
        if (std::abs(found) < 32000.0) // beyond it leaves for good, to NaN too
            digest.add(found);
    }
}

void colors(Source& source) {
    Digest digest("colors");
    for (int i = 0; i < TURNS; ++i) {
        cColor color = source.color();
        __nsColor_hue_function(color, static_cast<float>(source.number(-1.0, 2.0)), color.g,
                               color.b);
        digest.add(color);
    }
}

void bitmaps(Source& source) {
    Digest digest("bitmaps");
    constexpr int width = 61;
    constexpr int height = 37;
    const auto filter = [&](auto apply) {
        auto pixels = source.pixels(width * height);
        apply(pixels.data());
        digest.add_bytes(pixels.data(), pixels.size());
    };
    for (int i = 0; i < 20; ++i) {
        const auto amount = static_cast<std::uint8_t>(source.bits());
        const auto factor = static_cast<float>(source.number(-0.5, 3.0));
        const cColor color = source.color();
        filter([&](auto* p) { __cBitmap_multiply(factor, p, width * height); });
        filter([&](auto* p) { __cBitmap_darken(amount, p, width * height); });
        filter([&](auto* p) { __cBitmap_brighten(amount, p, width * height); });
        filter([&](auto* p) { __cBitmap_alpha_mask(p, width * height); });
        filter([&](auto* p) {
            __cBitmap_monochrome_saturate_by_channel(amount % 4, p, width * height);
        });
        filter([&](auto* p) { __cBitmap_set_to_color(color, p, width * height / 2); });
        filter([&](auto* p) { __cBitmap_bump_map_to_normal_map(p, width, height, factor); });
        filter([&](auto* p) {
            __cBitmap_gauss_brush(color, p, 20, 11, width, height, 9.5F, factor + 1.0F);
        });
        filter([&](auto* p) {
            cColor average = color;
            __cBitmap_get_average_color(average, p, width, height);
            digest.add(average);
        });
    }
}

void caches(Source& source) {
    Digest digest("caches");
    for (const std::uint32_t corners : {3U, 4U}) {
        constexpr std::uint32_t poly_count = 501;
        const std::size_t count = poly_count * corners;
        std::vector<cVector3D> positions, normals;
        std::vector<cVector2D<double>> texcoords;
        std::vector<cColor> shades;
        std::vector<std::uint32_t> indices;
        for (std::size_t i = 0; i < count; ++i) {
            positions.push_back(source.vector());
            normals.push_back(source.vector());
            const double u = source.number(0.0, 1.0);
            const double v = source.number(0.0, 1.0);
            texcoords.emplace_back(u, v);
            shades.push_back(source.color());
            indices.push_back(source.bits() % (poly_count * corners));
        }
        const std::unique_ptr<cRenderCache> cache(
            __mGraphics_create_render_cache(poly_count, corners, true, true, true, true));
        for (const bool is_indexed : {false, true}) {
            if (is_indexed)
                __mGraphics_modify_render_cache_from_polys(
                    cache.get(), positions.data(), texcoords.data(), normals.data(), shades.data(),
                    indices.data(), indices.data(), indices.data(), indices.data());
            else
                __mGraphics_modify_render_cache_from_verts(
                    cache.get(), positions.data(), texcoords.data(), normals.data(), shades.data());
            __mGraphics_render_cache_calc_tangents(cache.get());
            for (const float* array : {cache->positions, cache->normals, cache->tangents})
                digest.add_bytes(array, count * 3 * sizeof(float));
            digest.add_bytes(cache->texcoords, count * 2 * sizeof(float));
            digest.add_bytes(cache->colors, count * 4 * sizeof(float));
        }
        __mGraphics_render_cache_cleanup(cache.get());
    }
}

class Listener final : public cMessageObserver {
public:
    explicit Listener(Digest& heard) : digest(heard) {}

    void receive_message(cMessage* message) override { digest.add(message->messageType); }

private:
    Digest& digest;
};

void messages(Source& source) {
    Digest digest("messages");
    Listener listener(digest);
    cMessageRouter router;
    router.register_for_anything(&listener);
    for (std::uint32_t type = 0; type < 9; type += 2)
        router.register_for_message(&listener, type);
    for (int i = 0; i < TURNS; ++i) {
        const auto delay = static_cast<float>(source.number(0.0, 90.0));
        router.post_message_delayed(new cMessageStable({source.bits() % 9}), delay);
        router.update(static_cast<float>(source.number(0.0, 0.7)));
        for (std::uint32_t entry = 0; entry < router.anything.queue.count(); ++entry)
            digest.add(router.anything.queue.get(entry)->second);
    }
    router.update(1000.0F);
}

int append(void* text, const void* bytes, std::uint32_t length) {
    static_cast<std::string*>(text)->append(static_cast<const char*>(bytes), length);
    return 0;
}

// The outcome of three characters after each of these, which lead to every state of the grammar.
void grammar(Source&) {
    Digest digest("grammar");
    constexpr std::string_view letters = " \t{[:\"\\/+-.01abcdeflnrstuAE~*,]}";
    for (const char* start :
         {"",    "[",      "[0,",      "{\"a\"",   "{\"a\":",    "{\"a\":0,",
          "[\"", "[\"\\u", "[\"\\u00", "[\"\\ud8", "[\"\\ud83d", "[\"\\ud83d\\ude",
          "[-",  "[1.",    "[1e",      "[1e+",     "[tr",        "[fal",
          "[nu", "[/*"})
        for (const char first : letters)
            for (const char second : letters)
                for (const char third : letters) {
                    const std::string text = std::string(start) + first + second + third;
                    const cson_read_options options{25, 1};
                    cson_read_info info;
                    cson_value* value = nullptr;
                    digest.add(cson_read_text(&value, text.data(),
                                              static_cast<std::uint32_t>(text.size()), &options,
                                              &info));
                    digest.add(info.length, info.error_code, info.total_value_count);
                    cson_value_release(value);
                }
}

void documents(Source& source) {
    Digest digest("json");
    for (int i = 0; i < TURNS; ++i) {
        std::uint32_t n[6];
        for (std::uint32_t& number : n)
            number = source.bits();
        char text[200];
        std::snprintf(text, sizeof text,
                      R"({"a":[%u, %u.%u, -0.%05ue%d, "\u%04x \n"], "b":{"c":null}})",
                      n[0] % 0x80000000, n[1] % 999, n[2], n[3] % 99999,
                      static_cast<int>(n[4] % 60) - 30, n[5] % 0xD800);
        cson_value* value = nullptr;
        digest.add(cson_read_text(&value, text, static_cast<std::uint32_t>(std::strlen(text)),
                                  nullptr, nullptr));
        std::string written;
        cson_write(value, append, &written, nullptr);
        digest.add_bytes(written.data(), written.size());
        cson_value_release(value);
    }
}

} // namespace

int main() {
    __mPhysics_open();
    for (const auto part : {constants, names, entries, tables, rotations, splines, colors, bitmaps,
                            caches, messages, grammar, documents}) {
        Source source;
        part(source);
    }
}
