// SPDX-License-Identifier: MIT
// Compiles if the public headers and all of <windows.h>, with its macros, get on in either order.
#if defined(WINDOWS_FIRST)
    #include <windows.h>
#endif

#include "plugins/contracts/audio.h"
#include "plugins/contracts/graphics.h"
#include "plugins/contracts/input.h"
#include "plugins/contracts/network.h"
#include "plugins/contracts/pictures.h"
#include "plugins/contracts/system.h"
#include "quillon/comfort.h"
#include "quillon/core/plugin.h"
#include "quillon/quillon.h"

#if !defined(WINDOWS_FIRST)
    #include <windows.h>
#endif
