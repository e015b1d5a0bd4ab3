// The fast road through a block of text.
#pragma once

#include "quillon/json/parser.h"
#include "quillon/json/tree_builder.h"

#include <cstdint>

namespace quillon {

// Steps a parser, whose callback fills `builder`, through a block, with the outcome of single
// steps: whole tokens, runs of string bytes and blanks are taken in one go. Returns how many bytes
// were used; on a failure, which `failed` tells, the offending byte is the last of them.
std::uint32_t cson_feed(cson_push_parser& parser, cson_tree_builder& builder,
                        const unsigned char* bytes, std::uint32_t count, bool& failed);

} // namespace quillon
