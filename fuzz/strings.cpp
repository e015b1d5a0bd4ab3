// SPDX-License-Identifier: MIT
// The text helpers, on any text, width and capacity.
#include "check.h"

#include "quillon/containers/name_hash.h"
#include "quillon/files/strings.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

namespace {

// Without the inserted line feeds the text is what it was.
void wrap(const std::string& text, std::uint32_t width) {
    std::string wrapped = text;
    __mystring_auto_newline(wrapped, width);
    std::size_t taken = 0;
    for (const char byte : wrapped)
        if (taken < text.size() && byte == text[taken])
            ++taken;
        else
            check(byte == '\n', "wrapping inserts line feeds alone");
    check(taken == text.size(), "wrapping drops nothing");
    check(width != 0 || wrapped == text, "a width of 0 changes nothing");
}

void measure(const std::string& text) {
    std::int32_t width = -1;
    std::int32_t height = -1;
    __mystring_extract_width_and_height_from_string(text.c_str(), width, height);
    const auto feeds = std::count(text.begin(), text.end(), '\n');
    check(width >= 0 && width <= static_cast<std::int32_t>(text.size()), "width is of the text");
    check(height >= 1 && height <= feeds + 1, "height is of the text");
}

void copy(const std::string& text, std::uint16_t capacity) {
    const std::size_t size = capacity == 0 ? text.size() + 1 : capacity;
    const auto destination = std::make_unique<char[]>(size); // its end is watched
    __mystring_char_pointer_copy(destination.get(), text.c_str(), capacity);
    const std::size_t length = std::strlen(destination.get());
    check(length == std::min(text.size(), size - 1), "the copy fills its buffer");
    check(text.starts_with(destination.get()), "the copy is the beginning");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto width = input.ConsumeIntegralInRange<std::uint32_t>(0, 100);
    const auto capacity = input.ConsumeIntegralInRange<std::uint16_t>(0, 100);
    // Terminated text: what the exports see ends at the first zero.
    const std::string text = input.ConsumeRemainingBytesAsString().c_str();
    wrap(text, width);
    measure(text);
    copy(text, capacity);
    check(__mystring_hash(text.c_str()) == quillon::name_hash(text), "one hash");
    check(__mystring_case_insensitive_string_equal(text.c_str(), text.c_str()), "equal to itself");
    return 0;
}
