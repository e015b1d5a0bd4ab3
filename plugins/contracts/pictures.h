// SPDX-License-Identifier: MIT
// The contract of picture files, which every graphics plug-in of this house serves: `image` serves
// it alone, `graphics-gl` as a part of the contract `Graphics`.
#pragma once

#include "contract.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

// Pictures beyond these are refused before the pixels are allocated.
inline constexpr std::uint32_t MAX_PICTURE_SIDE = 65535;
inline constexpr std::uint32_t MAX_PICTURE_PIXELS = 1U << 26;
inline constexpr std::uint32_t MAX_PICTURE_FILE_BYTES = 1U << 28;

// The entries of GRAPHICS that read and write picture files.
struct Pictures {
    // The module, its keyword, the contract, and the contracts that a host of this one accepts.
    using Module = modGraphics;
    static constexpr const char* SERVICE = "GRAPHICS";
    static constexpr ContractIdentity IDENTITY = {"quillon.pictures", 1};
    static constexpr std::array<ContractIdentity, 2> ACCEPTED = {
        IDENTITY, ContractIdentity{"quillon.graphics", 1}};

    Identify* identify = nullptr; // entry 0, which `serve` fills

    // Why the latest load or save failed, in one line; empty if it succeeded or there was none.
    // Never null; valid until the next call of an entry.
    const char* (*last_error)() = nullptr;

    void* reserved_2_to_14[13] = {}; // null

    // Reads a PNG or JPEG file, recognised by its content; __cBitmap_load calls this.
    //
    // The three values are `std::uint16_t* width`, `std::uint16_t* height` and
    // `std::uint8_t** pixels`. Pixels are 8-bit RGBA, top row first. Palettes, grey, 16-bit samples
    // (the high byte, rounded), interlacing and transparent colours are resolved, and a file
    // without alpha yields 255. Samples are the stored ones: no gamma, colour profile or
    // orientation mark is applied.
    // The buffer is the caller's, to be freed with `delete[]`, as one from __cBitmap_init.
    // A load that fails leaves 0, 0 and a null buffer, and the reason in last_error.
    void (*load_bitmap)(const char* name, void* width, void* height, void* pixels) = nullptr;

    // Writes a JPEG if the name ends in ".jpg" or ".jpeg" in any letter case, and a PNG under every
    // other name; __cBitmap_save calls this.
    //
    // JPEG has no alpha, so that channel is dropped; quality 95, colour at full resolution.
    // False, with the reason in last_error, if it fails. No half-written file is left: what was
    // under the name is then gone, unless it could not be opened for writing.
    bool (*save_bitmap)(const char* name, std::uint16_t width, std::uint16_t height,
                        std::uint8_t* pixels) = nullptr;

    void* reserved_17_to_63[47] = {};                        // null
    void* own_64_to_96[OWN_ENTRY_COUNT<GraphicsTable>] = {}; // the plug-in's own, see own_entries
};

static_assert(sizeof(Pictures) == sizeof(GraphicsTable));
static_assert(offsetof(Pictures, load_bitmap) == offsetof(GraphicsTable, load_bitmap));
static_assert(offsetof(Pictures, save_bitmap) == offsetof(GraphicsTable, save_bitmap));
static_assert(offsetof(Pictures, own_64_to_96) == FIRST_OWN_ENTRY<GraphicsTable> * sizeof(void*));

} // namespace quillon
