// SPDX-License-Identifier: MIT
#include "residence.h"

#include <SDL.h>
#include <windows.h>

namespace quillon::input_sdl {

void keep_sdl_loaded() {
    HMODULE sdl = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(SDL_InitSubSystem), &sdl);
}

} // namespace quillon::input_sdl
