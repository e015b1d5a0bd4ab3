// The shared library, loaded and unloaded by its path.
#include "quillon/math/scalar.h"
#include "quillon/math/trigonometry.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <limits>
#include <malloc.h>
#include <set>
#include <utility>

namespace {

// The first two draws of a generator as parts of its range: equal for equal seeds.
template <typename Draw>
std::pair<float, float> first_draws(Draw draw) {
    const auto first = static_cast<float>(draw());
    return {first, static_cast<float>(draw())};
}

std::size_t bytes_in_use() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace

#define EXPORT_OF(library, name) reinterpret_cast<decltype(&name)>(dlsym(library, #name))

TEST(UnloadedLibrary, LeavesNoTableAndNoSeed) {
    std::set<std::pair<float, float>> draws;
    const std::size_t before = bytes_in_use();
    for (int load = 0; load < 2; ++load) {
        void* library = dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(nullptr, library) << dlerror();
        EXPORT_OF(library, __init_trig_tables)();
        const auto ints = EXPORT_OF(library, random_int);
        const auto singles = EXPORT_OF(library, random_float);
        const auto doubles = EXPORT_OF(library, random_double);
        draws.insert(first_draws([=] {
            using Limits = std::numeric_limits<std::int32_t>;
            return (ints(Limits::min(), Limits::max()) + 2147483648.0) / 4294967296.0;
        }));
        draws.insert(first_draws([=] { return singles(0.0F, 1.0F); }));
        draws.insert(first_draws([=] { return doubles(0.0, 1.0); }));
        dlclose(library);
    }
    EXPECT_EQ(6U, draws.size()) << "two of the six seeds were equal";
    EXPECT_LT(bytes_in_use(), before + 1'000'000);
}
