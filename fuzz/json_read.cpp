// The same JSON text as a whole and byte by byte: what the document reader accepts, the push parser
// accepts with the same tree, counts and positions.
#include "check.h"

#include "quillon/json/parser.h"
#include "tests/json/tree_text.h"

#include <cstdint>
#include <string>
#include <string_view>

using namespace quillon;

namespace {

int read_one(void* state, void* destination, std::uint32_t* count) {
    auto& rest = *static_cast<std::string_view*>(state);
    *count = rest.empty() ? 0 : 1;
    if (!rest.empty())
        *static_cast<char*>(destination) = rest.front();
    rest.remove_prefix(*count);
    return cson_OK;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 4 || data[2] == 0)
        return 0;
    const cson_read_options options{static_cast<std::uint16_t>(data[0] % 32),
                                    static_cast<std::int8_t>(data[1] % 2)};
    const std::string text(reinterpret_cast<const char*>(data) + 2, size - 2);
    const auto length = static_cast<std::uint32_t>(text.size());

    cson_value* whole = nullptr;
    cson_read_info whole_info;
    const int whole_code = cson_read_text(&whole, text.data(), length, &options, &whole_info);
    cson_value* stepped = nullptr;
    cson_read_info stepped_info;
    std::string_view rest = text;
    const int stepped_code = cson_read(&stepped, read_one, &rest, &options, &stepped_info);

    check(whole_code == stepped_code, "both readers return one code");
    check(whole_info.line == stepped_info.line, "both readers end in one line");
    check(whole_info.column == stepped_info.column, "both readers end in one column");
    check(whole_info.length == stepped_info.length, "both readers use as many bytes");
    check(whole_info.error_code == stepped_info.error_code, "both readers report one error");
    check(whole_info.total_key_count == stepped_info.total_key_count, "as many keys");
    check(whole_info.total_value_count == stepped_info.total_value_count, "as many values");
    check(json_testing::tree_text(whole) == json_testing::tree_text(stepped), "one tree");
    cson_value_release(whole);
    cson_value_release(stepped);
    return 0;
}
