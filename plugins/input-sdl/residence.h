// SPDX-License-Identifier: MIT
#pragma once

namespace quillon::input_sdl {

// Keeps SDL, and the display libraries that it uses, loaded until the process ends.
//
// They keep memory for their next start, which is lost whenever they are unloaded with the last
// plug-in that uses them: 5 KiB each time.
void keep_sdl_loaded();

} // namespace quillon::input_sdl
