// SPDX-License-Identifier: MIT
// The same JSON text as a whole and byte by byte: what the document reader accepts, the push parser
// accepts with the same tree, counts and positions.
#include "check.h"

#include "tests/json/json_testing.h"

using namespace quillon;
using namespace json_testing;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4 || data[2] == 0)
        return 0;
    const cson_read_options options{static_cast<std::uint16_t>(data[0] % 32),
                                    static_cast<std::int8_t>(data[1] % 2)};
    const std::string_view text(reinterpret_cast<const char*>(data) + 2, size - 2);
    check(text_of(read_whole(text, options)) == text_of(read_bytewise(text, options)),
          "both ways to read have one outcome");
    return 0;
}
