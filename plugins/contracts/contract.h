// SPDX-License-Identifier: MIT
// What all contracts share: the identity in entry 0, the host's way to a typed table, the plug-in's
// way to serve one, and the choice between plug-ins.
//
// A contract says what the entries of a module's table mean. It is a struct of function pointers
// laid over the table: entry 0 is the identity, the named entries are the operations, the reserved
// ones are null until a later version of the contract names them, and the last ones are the
// plug-in's own. Every operation is filled: hosts need not test them one by one. Entries run on
// the caller's thread, let no exception out, and are for one thread at a time, unless the contract
// says otherwise.
#pragma once

#include "quillon/containers/map.h"
#include "quillon/containers/name_hash.h"
#include "quillon/core/interfaces.h"
#include "quillon/core/modules.h"
#include "quillon/core/own_library.h"
#include "quillon/core/plugin_registry.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>

// A macro of the Windows headers, put back at the end of this file.
#pragma push_macro("interface")
#undef interface

namespace quillon {

// The name of a contract, with zeros up to the end of the field, and its version.
//
// Versions differ where an entry changes its meaning or its arguments; a further entry in a
// reserved place is no new version.
struct ContractIdentity {
    char name[28] = {};        // ends at the first zero
    std::uint32_t version = 0; // from 1 on
};

static_assert(sizeof(ContractIdentity) == 32);

// Entry 0 of every table under a contract: writes which contract the table serves.
//
// The host passes a cleared record, so that an entry 0 of another meaning, which leaves its
// argument alone, is recognised.
using Identify = void(ContractIdentity* identity);

// The first of the entries that contracts leave to the plug-in.
template <typename LibraryTable>
inline constexpr std::size_t FIRST_OWN_ENTRY = 0;
template <>
inline constexpr std::size_t FIRST_OWN_ENTRY<GraphicsTable> = 64;
template <>
inline constexpr std::size_t FIRST_OWN_ENTRY<InputTable> = 28;
template <>
inline constexpr std::size_t FIRST_OWN_ENTRY<SystemTable> = 20;
template <>
inline constexpr std::size_t FIRST_OWN_ENTRY<NetworkTable> = 21;
template <>
inline constexpr std::size_t FIRST_OWN_ENTRY<AudioTable> = 13;

// How many entries a plug-in has for itself: 33 for graphics, 7 for input, 5 for system and
// network, 1 for audio.
template <typename LibraryTable>
inline constexpr std::size_t OWN_ENTRY_COUNT =
    ENTRY_COUNT<LibraryTable> - FIRST_OWN_ENTRY<LibraryTable>;

// The entries that a plug-in adds to its contract, as its own struct of function pointers: the
// plug-in fills them after `serve`, and a host that knows the plug-in calls them.
template <typename Own, typename LibraryTable>
Own& own_entries(void** table) {
    static_assert(FIRST_OWN_ENTRY<LibraryTable> != 0, "not one of the five tables");
    static_assert(std::is_trivially_copyable_v<Own> && alignof(Own) == alignof(void*),
                  "own entries are a plain struct of function pointers");
    static_assert(sizeof(Own) <= OWN_ENTRY_COUNT<LibraryTable> * sizeof(void*),
                  "more entries than the table leaves to a plug-in");
    return *reinterpret_cast<Own*>(table + FIRST_OWN_ENTRY<LibraryTable>);
}

// A table under its contract, or null with the reason in one line.
//
// The table is the module's and is valid until the library ends.
template <typename Table>
struct Contract {
    const Table* table = nullptr; // null if there is no such table
    std::string reason;           // why there is none; else empty

    // True if there is a table.
    explicit operator bool() const { return table != nullptr; }

    // The table, which must not be null.
    const Table* operator->() const { return table; }

    // The same as a reference.
    const Table& operator*() const { return *table; }
};

namespace detail {

inline std::string_view name_of(const ContractIdentity& identity) {
    const char* const end = std::find(identity.name, std::end(identity.name), '\0');
    return {identity.name, static_cast<std::size_t>(end - identity.name)};
}

inline std::string to_text(const ContractIdentity& identity) {
    return "'" + std::string(name_of(identity)) + "' version " + std::to_string(identity.version);
}

inline bool is_equal(const ContractIdentity& a, const ContractIdentity& b) {
    return name_of(a) == name_of(b) && a.version == b.version;
}

} // namespace detail

// The connected table of a module under the contract `Table`:
// `const auto graphics = contract<Graphics>(__mGraphics_instance())`.
//
// Null with a reason where no plug-in is connected, and where another contract is served or none.
template <typename Table>
Contract<Table> contract(const typename Table::Module* module) {
    const std::string service = Table::SERVICE;
    if (module->interface == nullptr)
        return {nullptr, "no plug-in serves " + service};
    const auto* const table = reinterpret_cast<const Table*>(module->interface);
    ContractIdentity served;
    if (table->identify != nullptr)
        table->identify(&served);
    if (detail::name_of(served).empty())
        return {nullptr, "the plug-in that serves " + service + " names no contract"};
    for (const ContractIdentity& accepted : Table::ACCEPTED)
        if (detail::is_equal(served, accepted))
            return {table, {}};
    return {nullptr, "the plug-in that serves " + service + " does so under the contract " +
                         detail::to_text(served) + ", not " + detail::to_text(Table::IDENTITY)};
}

// For connect entry points: writes the plug-in's functions and the identity into the table.
//
// Writes the whole table, so own entries come after it.
template <typename Table>
void serve(void** table, const Table& functions) {
    detail::report_other_library(Table::SERVICE);
    auto& target = *reinterpret_cast<Table*>(table);
    target = functions;
    target.identify = [](ContractIdentity* identity) { *identity = Table::IDENTITY; };
}

// For `initialize`: whether the host wants this plug-in for the service of that keyword, or left
// the choice open.
//
// A host chooses with choose_plugin before __mCore_open.
inline bool is_wanted(const DSPrefHashMap<void>* parameters, const char* keyword,
                      const char* plugin_name) {
    const void* const choice = parameters->find(name_hash(keyword));
    return choice == nullptr || std::strcmp(static_cast<const char*>(choice), plugin_name) == 0;
}

// For hosts, before __mCore_open: names the plug-in that is to serve a keyword, as
// `choose_plugin("GRAPHICS", "image")`. The plug-ins of this house that serve the keyword under
// another name then refuse in `initialize`.
//
// The first choice for a keyword stays. `plugin_name` must stay valid until the library ends.
inline void choose_plugin(const char* keyword, const char* plugin_name) {
    __mCore_add_plugin_init_parameter(keyword, const_cast<char*>(plugin_name));
}

} // namespace quillon

#pragma pop_macro("interface")
