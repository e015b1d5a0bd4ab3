// SPDX-License-Identifier: MIT
// The five tables of functions through which plug-ins serve the library's modules.
//
// A table is a block of pointer-wide entries at fixed positions, cleared before a plug-in fills it.
// The library calls the named entries; plug-ins and hosts agree on the meaning of the others.
// Entries run on the caller's thread and take no context: a plug-in keeps its own state.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quillon {

// The table of GRAPHICS.
struct GraphicsTable {
    void* entries_0_to_14[15]; // not called by the library
    // Reads an image file; the plug-in defines the three values. `name` is valid during the call.
    void (*load_bitmap)(const char* name, void* width, void* height, void* pixels);
    // Writes 8-bit RGBA pixels to an image file; true on success.
    bool (*save_bitmap)(const char* name, std::uint16_t width, std::uint16_t height,
                        std::uint8_t* pixels);
    void* entries_17_to_96[80]; // not called by the library
};

// All take an absolute input code.
//
// One query of a binding may call an entry twice for one code: the result must be the same.
struct InputTable {
    void* entries_0_to_10[11];                    // not called by the library
    bool (*key_down)(std::uint16_t code);         // the input is down
    bool (*key_press)(std::uint16_t code);        // it went down in the last update
    bool (*key_hold_press)(std::uint16_t code);   // likewise, or counts as pressed
    bool (*key_release)(std::uint16_t code);      // it went up in the last update
    bool (*key_double_click)(std::uint16_t code); // it went down twice in a short time
    float (*axis_value)(std::uint16_t code);      // where the axis is
    float (*axis_delta)(std::uint16_t code);      // how far the last update moved it
    void* entries_18_to_34[17];                   // not called by the library
};

// The table of SYSTEM.
struct SystemTable {
    void* entries_0_to_10[11]; // not called by the library
    // Must return: a worker reads its stop flag only between pauses.
    void (*pause)(const double& seconds);
    void* entries_12_to_24[13]; // not called by the library
};

// The table of NET, of which the library calls nothing.
struct NetworkTable {
    void* entries_0_to_25[26]; // not called by the library
};

// The table of AUDIO, of which the library calls nothing.
struct AudioTable {
    void* entries_0_to_13[14]; // not called by the library
};

// The number of entries of a table.
template <typename Table>
inline constexpr std::size_t ENTRY_COUNT = sizeof(Table) / sizeof(void*);

static_assert(sizeof(GraphicsTable) == 97 * sizeof(void*));
static_assert(sizeof(InputTable) == 35 * sizeof(void*));
static_assert(sizeof(SystemTable) == 25 * sizeof(void*));
static_assert(sizeof(NetworkTable) == 26 * sizeof(void*));
static_assert(sizeof(AudioTable) == 14 * sizeof(void*));
static_assert(offsetof(GraphicsTable, load_bitmap) == 15 * sizeof(void*));
static_assert(offsetof(GraphicsTable, save_bitmap) == 16 * sizeof(void*));
static_assert(offsetof(InputTable, key_down) == 11 * sizeof(void*));
static_assert(offsetof(InputTable, key_press) == 12 * sizeof(void*));
static_assert(offsetof(InputTable, key_hold_press) == 13 * sizeof(void*));
static_assert(offsetof(InputTable, key_release) == 14 * sizeof(void*));
static_assert(offsetof(InputTable, key_double_click) == 15 * sizeof(void*));
static_assert(offsetof(InputTable, axis_value) == 16 * sizeof(void*));
static_assert(offsetof(InputTable, axis_delta) == 17 * sizeof(void*));
static_assert(offsetof(SystemTable, pause) == 11 * sizeof(void*));

} // namespace quillon
