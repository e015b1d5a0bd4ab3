// What a host may rely on when the image plug-in serves GRAPHICS.
//
// It fills the two entries that the library calls:
//
// load_bitmap (entry 15, __cBitmap_load) reads a PNG or JPEG file, told apart by content.
// - The three values are `std::uint16_t* width`, `std::uint16_t* height`, `std::uint8_t** pixels`.
// - Pixels are 8-bit RGBA, top row first. Palettes, grey, 16-bit samples (the high byte, rounded),
//   interlacing and transparent colours are resolved, and a file without alpha gives 255. Samples
//   are the stored ones: no gamma, colour profile or orientation mark is applied.
// - The buffer is the caller's, to be freed with `delete[]`, as one from __cBitmap_init.
// - A failed load leaves 0, 0 and a null buffer; image_last_error tells the reason.
//
// save_bitmap (entry 16, __cBitmap_save) writes JPEG if the name ends in ".jpg" or ".jpeg" in any
// letter case, and PNG under every other name.
// - JPEG has no alpha, so that channel is dropped; quality 95, colour at full resolution.
// - A failed save gives false; image_last_error tells the reason. No half-written file is left:
//   what stood under the name is then gone, unless it could not be opened for writing.
//
// Neither entry throws. Both are for one thread at a time.
#pragma once

#include <cstdint>

namespace image {

// Files beyond these are refused before the pixels are allocated.
inline constexpr std::uint32_t MAX_SIDE = 65535;
inline constexpr std::uint32_t MAX_PIXELS = 1U << 26;
inline constexpr std::uint32_t MAX_FILE_BYTES = 1U << 28;
// A file that promises more than its bytes can hold is cut short or a trap: deflate packs at most
// 1032 bytes into one, and a JPEG block of 64 pixels takes at least a bit (arithmetic coding:
// less).
inline constexpr std::uint32_t MAX_PNG_RATIO = 1032;
inline constexpr std::uint32_t MAX_JPEG_PIXELS_PER_BYTE = 4096;
// Each scan of a progressive JPEG costs a pass over the whole picture.
inline constexpr int MAX_JPEG_SCANS = 100;

// A further export, reached by __mCore_get_plugin_function under this name: why the last load or
// save failed, in one line; empty if it succeeded or there was none.
//
// Never null; valid until the next load or save.
inline constexpr const char* LAST_ERROR = "image_last_error";
using LastError = const char*();

} // namespace image
