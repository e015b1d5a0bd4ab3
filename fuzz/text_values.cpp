// SPDX-License-Identifier: MIT
// The text forms of vectors, matrices, quaternions, splines, zones and colours.
#include "check.h"

#include "quillon/appearance/color.h"
#include "quillon/math/matrix.h"
#include "quillon/math/quaternion.h"
#include "quillon/math/spline.h"
#include "quillon/math/vector.h"
#include "quillon/math/zone.h"

#include <cstdint>
#include <memory>
#include <string>

namespace {

using namespace quillon;

// Reads the whole text and the closed fields of it alone: what no "#" closes must not count.
template <typename Value>
void read(void (*from_string)(Value&, const char*), const std::string& text, Value whole) {
    Value closed = whole;
    from_string(whole, text.c_str());
    from_string(closed, text.substr(0, text.rfind('#') + 1).c_str());
    const auto flat = [](const Value& value) {
        std::string bytes(value.serialized_size(), '\0');
        value.serialize(reinterpret_cast<std::uint8_t*>(bytes.data()));
        return bytes;
    };
    check(flat(whole) == flat(closed), "a field that is not closed does not count");
}

void read_spline(const std::string& text) {
    cSpline3D spline;
    __cSpline3d_spline_from_string(spline, text.c_str());
    if (spline.count > 100) // the way back takes its time
        return;
    const auto most = 12 + 47 * static_cast<std::size_t>(spline.count);
    const auto written = std::make_unique<char[]>(most + 1); // its end is watched
    __cSpline3d_spline_to_string(spline, written.get());

    cSpline3D again;
    __cSpline3d_spline_from_string(again, written.get());
    check(again.count == spline.count && again.closed == spline.closed, "a spline comes back");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = std::string(reinterpret_cast<const char*>(data), size).c_str();
    read(__cVector3d_vector_from_string, text, cVector3D(1, 2, 3));
    read(__cMatrix3d_from_string, text, cMatrix3D());
    read(__cQuaternion_from_string, text, cQuaternion());
    read(__cZone3d_zone_from_string, text, cZone3D(1, 2, 3));
    read(__nsColor_color_from_string, text, cColor(1, 2, 3, 4));
    read_spline(text);
    return 0;
}
