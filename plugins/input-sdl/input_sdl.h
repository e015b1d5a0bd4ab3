// What a host can rely on beyond the seven entries of the input table: the times, the zones, and
// five further entries of the plug-in "input-sdl", which reads keyboard, mouse and pads through
// SDL 2.
#pragma once

#include <cstdint>

namespace quillon::input_sdl {

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

// The first entries of the table, as this plug-in fills them in; the host's to call, on one thread.
struct Operations {
    // Takes the keyboard, mouse and pad events out of SDL's queue and moves every answer on by one
    // step. Call it once a frame. Window, text and quit events stay in the queue for the host,
    // unless the plug-in has a window of its own.
    void (*update)();

    // Opens a window, for hosts that show none: keys and the mouse reach the window in focus.
    // False, with the reason in last_error, if there is no display or a window is open already.
    bool (*open_window)(const char* title, int width, int height);

    // True once the user asked to close that window; it stays open until the plug-in shuts down.
    bool (*quit_requested)();

    // The maker's name of pad 0 to 3, or null if none is plugged in there; valid until the next
    // update.
    const char* (*pad_name)(std::uint16_t pad);

    // What the user's keyboard layout prints on the key of an absolute code, or null if that is no
    // key. Valid until the next call.
    const char* (*key_label)(std::uint16_t code);

    // Runs the slow and the fast motor of a pad, 0 to 1 each; false if it has none.
    bool (*rumble)(std::uint16_t pad, float slow, float fast, float seconds);

    // Why the latest open_window failed or there is neither keyboard nor mouse; never null.
    const char* (*last_error)();
};

// The operations of the connected input table, `interface` of the input module. Only for a table
// that this plug-in filled in: compare get_plugin_name with "input-sdl" where another may be
// connected.
inline const Operations& operations(void* const* table) {
    return *reinterpret_cast<const Operations*>(table);
}

} // namespace quillon::input_sdl
