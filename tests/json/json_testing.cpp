#include "json_testing.h"

#include <gtest/gtest.h>
#include <iterator>
#include <vector>

using namespace quillon;

namespace json_testing {
namespace {

int read_one(void* state, void* destination, std::uint32_t* count) {
    auto& rest = *static_cast<std::string_view*>(state);
    EXPECT_EQ(1u, *count);
    *count = rest.empty() ? 0 : 1;
    if (!rest.empty())
        *static_cast<char*>(destination) = rest.front();
    rest.remove_prefix(*count);
    return cson_OK;
}

unsigned below(std::mt19937& engine, unsigned limit) {
    return static_cast<unsigned>(engine() % limit);
}

std::string random_text(std::mt19937& engine) {
    constexpr std::string_view pieces[] = {"a", "Z",  " ",        "\"", "\\",
                                           "/", "\n", "\xC3\xA9", "€",  "word"};
    std::string text;
    for (unsigned left = below(engine, 12); left != 0; --left)
        text += pieces[below(engine, std::size(pieces))];
    return text;
}

Value scalar(std::mt19937& engine) {
    const std::string text = random_text(engine);
    switch (below(engine, 5)) {
    case 0:
        return Value(cson_value_from_bool(below(engine, 2) != 0));
    case 1:
        return Value(cson_value_from_int(static_cast<std::int32_t>(engine())));
    case 2:
        return Value(cson_value_from_double(static_cast<std::int32_t>(engine()) / 64.0));
    case 3:
        return Value(cson_value_null_constant());
    default:
        return Value(cson_value_from_text(text.data(), static_cast<std::uint32_t>(text.size())));
    }
}

} // namespace

Outcome read_whole(std::string_view text, const cson_read_options& options) {
    // A block of its own, so that a sanitizer sees a step beyond its end.
    const std::vector<char> exact(text.begin(), text.end());
    Outcome outcome;
    cson_value* value = nullptr;
    outcome.code = cson_read_text(&value, exact.data(), static_cast<std::uint32_t>(exact.size()),
                                  &options, &outcome.info);
    outcome.value.reset(value);
    return outcome;
}

Outcome read_bytewise(std::string_view text, const cson_read_options& options) {
    Outcome outcome;
    cson_value* value = nullptr;
    outcome.code = cson_read(&value, read_one, &text, &options, &outcome.info);
    outcome.value.reset(value);
    return outcome;
}

Value tree(std::string_view text) {
    Outcome outcome = read_whole(text);
    EXPECT_EQ(cson_OK, outcome.code) << text;
    return std::move(outcome.value);
}

std::string text_of(const cson_value* value, const cson_write_options& options) {
    cson_buffer buffer;
    const int code = cson_write_buffer(value, &buffer, &options);
    std::string text = "code " + std::to_string(code);
    if (code == cson_OK)
        text.assign(reinterpret_cast<const char*>(buffer.mem), buffer.used);
    cson_buffer_reserve_bytes(&buffer, 0);
    return text;
}

Value random_tree(std::mt19937& engine, int depth) {
    const unsigned count = below(engine, 9);
    Value made(below(engine, 2) != 0 ? cson_value_make_array() : cson_value_make_object());
    for (unsigned i = 0; i < count; ++i) {
        Value entry =
            depth > 0 && below(engine, 3) == 0 ? random_tree(engine, depth - 1) : scalar(engine);
        const std::string key = std::to_string(i) + random_text(engine);
        const int code =
            cson_value_is_array(made.get())
                ? cson_array_push(cson_value_array(made.get()), entry.get())
                : cson_object_put_text(cson_value_object(made.get()), key.c_str(), entry.get());
        EXPECT_EQ(cson_OK, code);
        entry.release();
    }
    return made;
}

} // namespace json_testing
