// What was read is written and read to the same; copies are equal and stand alone.
#include "check.h"

#include "quillon/json/containers.h"
#include "quillon/json/parser.h"
#include "quillon/json/writer.h"

#include <cstdint>
#include <string>

using namespace quillon;

namespace {

cson_value* read(const std::string& text) {
    cson_value* value = nullptr;
    const auto length = static_cast<std::uint32_t>(text.size());
    cson_read_text(&value, text.data(), length, nullptr, nullptr);
    return value;
}

// Empty if the tree can't be written.
std::string written(const cson_value* value, const cson_write_options& options) {
    cson_buffer buffer;
    std::string text;
    if (cson_write_buffer(value, &buffer, &options) == cson_OK)
        text.assign(reinterpret_cast<const char*>(buffer.mem), buffer.used);
    cson_buffer_reserve_bytes(&buffer, 0);
    return text;
}

std::string rewritten(const std::string& text, const cson_write_options& options) {
    cson_value* value = read(text);
    const std::string again = value != nullptr ? written(value, options) : "";
    cson_value_release(value);
    return again;
}

} // namespace

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

    cson_value* value = read(std::string(reinterpret_cast<const char*>(data) + 2, size - 2));
    if (value == nullptr)
        return 0;
    cson_value* copy = cson_value_copy(value);
    const std::string copied = written(copy, options);
    cson_value_release(value);
    check(copied == written(copy, options), "a copy outlives its original");
    cson_value_release(copy);
    // The first round may lose digits, the sign of a zero, and what no text can hold.
    const std::string first = rewritten(copied, options);
    check(first.empty() || first == rewritten(first, options), "what was read is written the same");
    return 0;
}
