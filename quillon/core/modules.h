// SPDX-License-Identifier: MIT
// The eight modules. Five are facades over a table that a plug-in fills; the others have no state.
#pragma once

#include "quillon/containers/list.h"
#include "quillon/core/file_list.h"
#include "quillon/core/interfaces.h"
#include "quillon/export.h"
#include "quillon/messages/router.h"

#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

// A macro of the Windows headers, put back at the end of this file.
#pragma push_macro("interface")
#undef interface

namespace quillon {

// For host code that reaches a module's table through a member of the module.
//
// A view is valid before a plug-in connects and sees the table afterwards.
// The library never reads one.
struct cInterfaceView {
    void*** interface; // the member of the module
};

// The same, with two words of the module.
struct cPairedInterfaceView {
    // The members of the module.
    std::uintptr_t* first;
    std::uintptr_t* second;
    void*** interface;
};

namespace detail {

inline std::unique_ptr<cInterfaceView> view_of(void**& interface) {
    return std::make_unique<cInterfaceView>(cInterfaceView{&interface});
}

inline std::unique_ptr<cPairedInterfaceView> view_of(std::uintptr_t& first, std::uintptr_t& second,
                                                     void**& interface) {
    return std::make_unique<cPairedInterfaceView>(
        cPairedInterfaceView{&first, &second, &interface});
}

} // namespace detail

// The entry of a module's table; null if no plug-in is connected or the plug-in left it unfilled.
template <typename Table, typename Entry>
Entry entry_of(void** interface, Entry Table::*entry) {
    return interface == nullptr ? nullptr : reinterpret_cast<Table*>(interface)->*entry;
}

// Calls that entry; returns false, 0 or nothing if it is null.
template <typename Table, typename Result, typename... Arguments>
Result call_entry(void** interface, Result (*Table::*entry)(Arguments...),
                  std::type_identity_t<Arguments>... arguments) {
    auto* const function = entry_of(interface, entry);
    return function == nullptr ? Result() : function(arguments...);
}

// The facades.
//
// `interface` is null until a plug-in connects; the module owns the table.
// An operation calls the table's entry of its name with the same arguments.
// It returns false, 0 or nothing if no plug-in is connected or the entry is unfilled.
// Destructors are inline so that hosts have the type information of the classes in their own code:
// the library exports none.

// The facade of GRAPHICS, with the message router.
class modGraphics {
public:
    modGraphics() = default;
    modGraphics(const modGraphics&) = delete;
    modGraphics& operator=(const modGraphics&) = delete;

    virtual ~modGraphics() { ::operator delete(interface); }

    // Reads a picture file through the plug-in, which defines the three values.
    void load_bitmap(const std::string& name, void* width, void* height, void* pixels) const {
        call_entry(interface, &GraphicsTable::load_bitmap, name.c_str(), width, height, pixels);
    }

    // Writes 8-bit RGBA pixels to a picture file; true on success.
    bool save_bitmap(const std::string& name, std::uint16_t width, std::uint16_t height,
                     std::uint8_t* pixels) const {
        return call_entry(interface, &GraphicsTable::save_bitmap, name.c_str(), width, height,
                          pixels);
    }

    void** interface = nullptr; // the table, or null
    cMessageRouter router;      // the library's only one

    // For host code, which reaches them through the paired views.
    std::uintptr_t first_word;
    std::uintptr_t second_word;

    // For host code.
    std::unique_ptr<cInterfaceView> view0 = detail::view_of(interface);
    std::unique_ptr<cPairedInterfaceView> view1 =
        detail::view_of(first_word, second_word, interface);
    std::unique_ptr<cInterfaceView> view2 = detail::view_of(interface);
    std::unique_ptr<cPairedInterfaceView> view3 =
        detail::view_of(first_word, second_word, interface);
    std::unique_ptr<cInterfaceView> view4 = detail::view_of(interface);
    std::unique_ptr<cInterfaceView> view5 = detail::view_of(interface);
    std::unique_ptr<cInterfaceView> view6 = detail::view_of(interface);
};

// The facade of INPUT. All queries take an absolute input code.
class modInput {
public:
    modInput() = default;
    modInput(const modInput&) = delete;
    modInput& operator=(const modInput&) = delete;

    virtual ~modInput() { ::operator delete(interface); }

    // True while the input is down.
    bool key_down(std::uint16_t code) const {
        return call_entry(interface, &InputTable::key_down, code);
    }

    // True if it went down in the last update.
    bool key_press(std::uint16_t code) const {
        return call_entry(interface, &InputTable::key_press, code);
    }

    // The same, or it counts as pressed because it is held.
    bool key_hold_press(std::uint16_t code) const {
        return call_entry(interface, &InputTable::key_hold_press, code);
    }

    // True if it went up in the last update.
    bool key_release(std::uint16_t code) const {
        return call_entry(interface, &InputTable::key_release, code);
    }

    // True if it went down a second time shortly after the first.
    bool key_double_click(std::uint16_t code) const {
        return call_entry(interface, &InputTable::key_double_click, code);
    }

    // Where the axis is.
    float axis_value(std::uint16_t code) const {
        return call_entry(interface, &InputTable::axis_value, code);
    }

    // How far the last update moved the axis.
    float axis_delta(std::uint16_t code) const {
        return call_entry(interface, &InputTable::axis_delta, code);
    }

    // The absolute code of a digital input or an axis, which pads 0 to 3 number from 0.
    // Pure arithmetic, cut to 16 bits; see quillon/input/codes.h for the ranges.
    static constexpr std::int16_t digital_pad_code(std::int16_t code, std::int16_t pad) {
        return static_cast<std::int16_t>(pad * 45 + code + 108);
    }

    // The same for an axis.
    static constexpr std::int16_t analog_pad_code(std::int16_t axis, std::int16_t pad) {
        return static_cast<std::int16_t>(pad * 4 + axis + 2);
    }

    void** interface = nullptr; // the table, or null
};

// The facade of SYSTEM.
class modSystem {
public:
    modSystem() = default;
    modSystem(const modSystem&) = delete;
    modSystem& operator=(const modSystem&) = delete;

    virtual ~modSystem() { ::operator delete(interface); }

    // Sleeps for that many seconds; returns at once if no plug-in serves it.
    void pause(const double& seconds) const { call_entry(interface, &SystemTable::pause, seconds); }

    void** interface = nullptr; // the table, or null
};

// The facade of NET, whose table only hosts call.
class modNetwork {
public:
    modNetwork() = default;
    modNetwork(const modNetwork&) = delete;
    modNetwork& operator=(const modNetwork&) = delete;

    virtual ~modNetwork() { ::operator delete(interface); }

    bool statusFlag = false;    // for host code, like the next word
    std::uintptr_t spare_word;  // not set by the library
    void** interface = nullptr; // the table, or null
    std::unique_ptr<cInterfaceView> view0 = detail::view_of(interface); // for host code
    std::unique_ptr<cInterfaceView> view1 = detail::view_of(interface); // likewise
};

// The facade of AUDIO, whose table only hosts call.
class modAudio {
public:
    modAudio() = default;
    modAudio(const modAudio&) = delete;
    modAudio& operator=(const modAudio&) = delete;

    virtual ~modAudio() { ::operator delete(interface); }

    void** interface = nullptr;                                         // the table, or null
    std::unique_ptr<cInterfaceView> view0 = detail::view_of(interface); // for host code
    std::unique_ptr<cInterfaceView> view1 = detail::view_of(interface); // likewise
};

// Stands for the core; it has no state.
class modCore {
public:
    virtual ~modCore() = default;
};

// Stands for physics; it has no state.
class modPhysics {
public:
    virtual ~modPhysics() = default;
};

// Lists files; it has no state.
class modFileOperations {
public:
    virtual ~modFileOperations() = default;

    // Appends the names that __mFileOps_collect_files finds to `names`, as strings made with `new`.
    void collect_files(const std::string& folder, DSParray<std::string>& names,
                       const std::string& filter) const {
        const FileListOwner files(__mFileOps_collect_files(folder.c_str(), filter.c_str()));
        for (const cFileListEntry* file = files.get(); file != nullptr; file = file->next) {
            names.make_room_for_one();
            names.add(new std::string(file->name), DSP_APPEND);
        }
    }
};

} // namespace quillon

extern "C" {

// The one module of each kind.
//
// Built on the first call, which must have returned before another thread calls.
// Destroyed when the library ends; a later call builds a fresh, unconnected one.
QUILLON_API quillon::modCore* __mCore_instance();
QUILLON_API quillon::modGraphics* __mGraphics_instance();
QUILLON_API quillon::modInput* __mInput_instance();
QUILLON_API quillon::modSystem* __mSystem_instance();
QUILLON_API quillon::modNetwork* __mNetwork_instance();
QUILLON_API quillon::modAudio* __mAudio_instance();
QUILLON_API quillon::modPhysics* __mPhysics_instance();
QUILLON_API quillon::modFileOperations* __mFileOps_instance();
}

#pragma pop_macro("interface")
