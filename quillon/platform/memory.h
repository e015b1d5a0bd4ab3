// SPDX-License-Identifier: MIT
// Hints to the system about the pages of long arrays. They change speed alone, never contents.
#pragma once

#include <cstddef>

namespace quillon::platform {

// Asks for huge pages in a new array: the first touch then costs a fault for each 2 MB, not 4 KB.
//
// Does nothing for a short array, and where the system has no such request or does not honour it.
// Pages beyond the array are not concerned, so an array that is filled takes no more memory than
// before. One that is touched here and there takes up to 2 MB for each place.
// The request stays on its pages after the array is freed, for as long as the allocator keeps them.
void prefer_huge_pages(void* array, std::size_t size);

// Has the pages of an array made in one step, which costs less than a fault for each.
//
// For an array that is about to be written whole. Does nothing for a short one, for one that was
// touched before, and where the system has no such request.
void make_resident(void* array, std::size_t size);

} // namespace quillon::platform
