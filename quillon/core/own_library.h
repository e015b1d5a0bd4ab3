// SPDX-License-Identifier: MIT
// Two libraries in one process: a plug-in is connected by one and calls the exports of another,
// whose modules and plug-in list are empty. A host that links quillon::static has such a plug-in if
// that links quillon::quillon.
#pragma once

#include <cstdint>
#include <cstdio>

namespace quillon::detail {

#if defined(__ELF__)
// __mCore_get_plugin_count, or null where no library is in reach. A plug-in that uses this name
// alone needs no library where it is linked.
[[maybe_unused]] static std::uint32_t plugins_in_reach()
    __attribute__((weakref("__mCore_get_plugin_count")));
#endif

// For the code of connect entry points: says in one line on the error stream that the calls of this
// plug-in reach another library than the one that connects it, after `subject`, which is the
// plug-in's name or its module's keyword. On Windows it says nothing.
inline void report_other_library([[maybe_unused]] const char* subject) {
#if defined(__ELF__)
    std::uint32_t (*const count)() = plugins_in_reach;
    // The one that connects it has at least this plug-in.
    if (count != nullptr && count() == 0)
        std::fprintf(
            stderr,
            "quillon: %s: this plug-in is connected by another library than the one that its "
            "calls reach; link quillon::quillon from the host too, or from neither\n",
            subject);
#endif
}

} // namespace quillon::detail
