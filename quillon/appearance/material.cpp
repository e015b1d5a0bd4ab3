// SPDX-License-Identifier: MIT
#include "quillon/appearance/material.h"

#include "quillon/appearance/material_names.h"

namespace quillon {
namespace {

constexpr auto KEYS = detail::keys_of(NAMED_MATERIALS, &Named<cMaterial>::name);

} // namespace
} // namespace quillon

using namespace quillon;

const cMaterial* __nsMaterial_material_table(const std::string& name) {
    const std::uint32_t key = detail::upper_case_key(name.c_str());
    const auto* row = detail::find_by_key(KEYS, NAMED_MATERIALS, key);
    return row == nullptr ? nullptr : &row->value;
}

void __mMaterial_opaquify(cMaterial& material) {
    for (cColor* color :
         {&material.ambient, &material.diffuse, &material.specular, &material.emission})
        color->set(color->r * color->a, color->g * color->a, color->b * color->a, 1.0F);
}
