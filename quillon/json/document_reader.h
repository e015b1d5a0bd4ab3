// SPDX-License-Identifier: MIT
// Reads a whole JSON text in memory, quickly.
#pragma once

#include "quillon/json/tree_builder.h"

#include <cstdint>

namespace quillon::json {

// Builds the tree of a text of plain JSON; false, with the builder in any state, for any other.
//
// Not plain are all errors, comments, and numbers that need the platform's conversion: the push
// parser decides on those. What is accepted here, it accepts with the same tree and counts.
bool read_document(TreeBuilder& builder, const unsigned char* text, std::uint32_t length,
                   std::uint32_t max_depth);

} // namespace quillon::json
