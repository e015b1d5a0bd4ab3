#include "quillon/appearance/material.h"

#include "quillon/appearance/material_names.h"

namespace {

using quillon::cColor;
using quillon::cMaterial;

constexpr auto KEYS = quillon::keys_of(quillon::NAMED_MATERIALS, &quillon::Named<cMaterial>::name);

} // namespace

const cMaterial* __nsMaterial_material_table(const std::string& name) {
    const std::uint32_t key = quillon::upper_case_key(name.c_str());
    const auto* row = quillon::find_by_key(KEYS, quillon::NAMED_MATERIALS, key);
    return row == nullptr ? nullptr : &row->value;
}

void __mMaterial_opaquify(cMaterial& material) {
    for (cColor* color :
         {&material.ambient, &material.diffuse, &material.specular, &material.emission})
        color->set(color->r * color->a, color->g * color->a, color->b * color->a, 1.0F);
}
