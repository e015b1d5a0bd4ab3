// SPDX-License-Identifier: MIT
// Angle constants and physical constants.
#pragma once

namespace quillon {

// Angles in radians, computed in 64 bits from the 32-bit PI, which is slightly above pi, and
// rounded once.
constexpr float PI = 3.1415927410125732F;

namespace detail {
constexpr double WIDE_PI = static_cast<double>(PI);
}

// Parts and multiples of PI.
constexpr float HALF_PI = static_cast<float>(detail::WIDE_PI / 2.0);
constexpr float QUARTER_PI = static_cast<float>(detail::WIDE_PI / 4.0);
constexpr float THREE_HALF_PI = static_cast<float>(detail::WIDE_PI + detail::WIDE_PI / 2.0);
constexpr float TWO_PI = static_cast<float>(detail::WIDE_PI * 2.0);
constexpr float INV_PI = static_cast<float>(1.0 / detail::WIDE_PI);
constexpr float FULL_CIRCLE = static_cast<float>(detail::WIDE_PI * 2.0);
constexpr float PI_OVER_6 = static_cast<float>(detail::WIDE_PI / 6.0);
constexpr float PI_OVER_4 = static_cast<float>(detail::WIDE_PI / 4.0);
constexpr float PI_OVER_3 = static_cast<float>(detail::WIDE_PI / 3.0);
constexpr float PI_OVER_2 = static_cast<float>(detail::WIDE_PI / 2.0);

// Factors that turn degrees into radians and back.
constexpr float DEG_TO_RAD = static_cast<float>(detail::WIDE_PI / 180.0);
constexpr float RAD_TO_DEG = static_cast<float>(180.0 / detail::WIDE_PI);

namespace detail {

// Ten raised to `exponent` by repeated squaring in 64 bits, rounded to 32.
constexpr float power_of_ten(int exponent) {
    double power = 1.0;
    double square = 10.0;
    for (int rest = exponent < 0 ? -exponent : exponent; rest != 0; rest /= 2) {
        if (rest % 2 != 0)
            power *= square;
        square *= square;
    }
    return static_cast<float>(exponent < 0 ? 1.0 / power : power);
}

} // namespace detail

// Physical constants in SI units, for clients: nothing in the library reads them.
constexpr float PHYS_AVOGADRO = 6.022141456604004F * detail::power_of_ten(23);
constexpr float PHYS_VACUUM_PERMEABILITY = 1.2566370964050293F * detail::power_of_ten(-6);
constexpr float PHYS_BOLTZMANN = 1.380650281906128F * detail::power_of_ten(-23);
constexpr float PHYS_STEFAN_BOLTZMANN = 5.67037296295166F * detail::power_of_ten(-8);
constexpr float PHYS_PLANCK = 6.62606954574585F * detail::power_of_ten(-34);
constexpr float PHYS_REDUCED_PLANCK = 1.0545717477798462F * detail::power_of_ten(-34);
constexpr float PHYS_PROTON_MASS = 1.6726216077804565F * detail::power_of_ten(-27);
constexpr float PHYS_NEUTRON_MASS = 1.6749000549316406F * detail::power_of_ten(-27);
constexpr float PHYS_ELECTRON_MASS = 9.109381675720215F * detail::power_of_ten(-31);
constexpr float PHYS_ATOMIC_MASS_UNIT = 1.6605387926101685F * detail::power_of_ten(-27);
constexpr float PHYS_MEV_IN_JOULES = 1.6021764278411865F * detail::power_of_ten(-13);

} // namespace quillon
