// SPDX-License-Identifier: MIT
#include "quillon/platform/memory.h"

namespace quillon::platform {

// Huge pages need a privilege there, and memory of another kind than the allocator's.
void prefer_huge_pages(void* /*array*/, std::size_t /*size*/) {}

void make_resident(void* /*array*/, std::size_t /*size*/) {}

} // namespace quillon::platform
