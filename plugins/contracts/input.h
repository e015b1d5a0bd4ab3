// SPDX-License-Identifier: MIT
// The contract of keyboard, mouse and pads.
//
// Every answer stays the same from one `update` to the next, however often it is asked.
#pragma once

#include "contract.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon {

// How long a press or a release stays visible, in seconds from the update that saw it. At 0 it
// lasts until the next update: every frame sees an edge once, however long the frame is.
inline constexpr double PRESS_SECONDS = 0.0;
inline constexpr double RELEASE_SECONDS = 0.0;

// An input held this long counts as pressed by holding for one update, and again after each repeat.
inline constexpr double HOLD_SECONDS = 0.5;
inline constexpr double HOLD_REPEAT_SECONDS = 0.1;

// A second press at most this long after the first is a double click; a third begins anew.
inline constexpr double DOUBLE_CLICK_SECONDS = 0.3;

// An axis is minus or plus from this part of its travel on, and full minus or full plus (too) from
// that; otherwise centred. It has to come back by the slack to leave a zone, so that it cannot
// rattle.
inline constexpr float AXIS_ZONE = 0.5F;
inline constexpr float AXIS_FULL_ZONE = 0.95F;
inline constexpr float AXIS_ZONE_SLACK = 0.05F;

// The table of INPUT under this contract.
struct Input {
    // The module, its keyword, the contract, and the contracts that a host of this one accepts.
    using Module = modInput;
    static constexpr const char* SERVICE = "INPUT";
    static constexpr ContractIdentity IDENTITY = {"quillon.input", 1};
    static constexpr std::array<ContractIdentity, 1> ACCEPTED = {IDENTITY};

    Identify* identify = nullptr; // entry 0, which `serve` fills

    // Why the latest open_window failed or there is neither keyboard nor mouse; empty otherwise.
    // Never null; valid until the next call of an entry.
    const char* (*last_error)() = nullptr;

    // Moves every answer on by one step. Call it once a frame.
    void (*update)() = nullptr;

    // Opens a window, for hosts that show none: keys and the mouse reach the window in focus.
    // False if there is no display or a window is open already.
    bool (*open_window)(const char* title, int width, int height) = nullptr;
    // True from the update on that saw the user ask to close a window or the program.
    bool (*quit_requested)() = nullptr;
    // Whether one of the program's windows has the keyboard.
    bool (*has_focus)() = nullptr;

    // The maker's name of pad 0 to 3, or null if none is plugged in there; valid until the next
    // update.
    const char* (*pad_name)(std::uint16_t pad) = nullptr;
    // What the user's keyboard layout prints on the key of an absolute code, or null if that is no
    // key. Valid until the next call.
    const char* (*key_label)(std::uint16_t code) = nullptr;
    // Runs the slow and the fast motor of a pad, 0 to 1 each; false if it has none.
    bool (*rumble)(std::uint16_t pad, float slow, float fast, float seconds) = nullptr;

    void* reserved_9_to_10[2] = {}; // null

    // The entries that bindings ask, by absolute input code; see InputTable.
    bool (*key_down)(std::uint16_t code) = nullptr;
    bool (*key_press)(std::uint16_t code) = nullptr;
    bool (*key_hold_press)(std::uint16_t code) = nullptr;
    bool (*key_release)(std::uint16_t code) = nullptr;
    bool (*key_double_click)(std::uint16_t code) = nullptr;
    float (*axis_value)(std::uint16_t code) = nullptr;
    float (*axis_delta)(std::uint16_t code) = nullptr;

    void* reserved_18_to_27[10] = {};                     // null
    void* own_28_to_34[OWN_ENTRY_COUNT<InputTable>] = {}; // the plug-in's own, see own_entries
};

static_assert(sizeof(Input) == sizeof(InputTable));
static_assert(offsetof(Input, key_down) == offsetof(InputTable, key_down));
static_assert(offsetof(Input, key_press) == offsetof(InputTable, key_press));
static_assert(offsetof(Input, key_hold_press) == offsetof(InputTable, key_hold_press));
static_assert(offsetof(Input, key_release) == offsetof(InputTable, key_release));
static_assert(offsetof(Input, key_double_click) == offsetof(InputTable, key_double_click));
static_assert(offsetof(Input, axis_value) == offsetof(InputTable, axis_value));
static_assert(offsetof(Input, axis_delta) == offsetof(InputTable, axis_delta));
static_assert(offsetof(Input, own_28_to_34) == FIRST_OWN_ENTRY<InputTable> * sizeof(void*));

} // namespace quillon
