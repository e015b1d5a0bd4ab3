// SPDX-License-Identifier: MIT
// What was read is written and read to the same; copies are equal and stand alone.
#include "check.h"

#include "tests/json/json_testing.h"

using namespace quillon;
using namespace json_testing;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2)
        return 0;
    cson_write_options options;
    options.indentation = data[0] % 8;
    options.max_depth = data[0] / 8;
    options.add_newline = (data[1] & 1) != 0;
    options.space_after_colon = (data[1] & 2) != 0;
    options.indent_single_member = (data[1] & 4) != 0;
    options.escape_slashes = (data[1] & 8) != 0;

    // A copy holds each key once, which a text need not.
    const Value parsed = read_whole({reinterpret_cast<const char*>(data) + 2, size - 2}).value;
    Value value(cson_value_copy(parsed.get()));
    const Value copy(cson_value_copy(value.get()));
    const std::string written = text_of(value.get(), options);
    value.reset();
    check(written == text_of(copy.get(), options), "a copy outlives its original");
    // The first round may lose digits, the sign of a zero, and what no text can hold.
    const Value again = read_whole(written).value;
    const std::string first = text_of(again.get(), options);
    const Value once_more = read_whole(first).value;
    check(again == nullptr || first.starts_with("code") ||
              first == text_of(once_more.get(), options),
          "what was read is written the same");
    return 0;
}
