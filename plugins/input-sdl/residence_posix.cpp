// SPDX-License-Identifier: MIT
#include "residence.h"

#include <SDL.h>
#include <dlfcn.h>

namespace quillon::input_sdl {

void keep_sdl_loaded() {
    Dl_info sdl{};
    if (dladdr(reinterpret_cast<void*>(SDL_InitSubSystem), &sdl) != 0)
        dlopen(sdl.dli_fname, RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
}

} // namespace quillon::input_sdl
