// SPDX-License-Identifier: MIT
#include "json_testing.h"

#include "quillon/json/record.h"

#include <cstdio>
#include <iterator>
#include <stdexcept>
#include <vector>

using namespace quillon;

namespace json_testing {
namespace {

int read_one(void* state, void* destination, std::uint32_t* count) {
    auto& rest = *static_cast<std::string_view*>(state);
    *count = static_cast<std::uint32_t>(rest.copy(static_cast<char*>(destination), 1));
    rest.remove_prefix(*count);
    return cson_OK;
}

// Quoted, with every byte beyond printable ASCII in hex.
std::string quoted(std::string_view text) {
    std::string made = "\"";
    for (const char c : text) {
        char piece[8] = {c};
        if (c < ' ' || c > '~' || c == '"' || c == '\\')
            std::snprintf(piece, sizeof(piece), "<%02X>", static_cast<unsigned char>(c));
        made += piece;
    }
    return made + '"';
}

std::string entry_text(const cson_value* value) {
    return tree_text(value);
}

std::string entry_text(const cson_kvp* pair) {
    return tree_text(pair->key) + ":" + tree_text(pair->value);
}

template <typename List>
std::string entries_text(const List& list) {
    std::string made;
    for (std::uint32_t i = 0; i < list.count; ++i)
        made += entry_text(list.items[i]) + " ";
    for (std::uint32_t i = list.count; i < list.capacity; ++i)
        made += list.items[i] != nullptr ? "left over " : "";
    return made + "of " + std::to_string(list.capacity);
}

} // namespace

Outcome read_whole(std::string_view text, const cson_read_options& options) {
    // A block of its own, so that a sanitizer sees a step beyond its end.
    const std::vector<char> exact(text.begin(), text.end());
    const auto length = static_cast<std::uint32_t>(text.size());
    return outcome_of([&](cson_value** out, cson_read_info* info) {
        return cson_read_text(out, exact.data(), length, &options, info);
    });
}

Outcome read_bytewise(std::string_view text, const cson_read_options& options) {
    return outcome_of([&](cson_value** out, cson_read_info* info) {
        return cson_read(out, read_one, &text, &options, info);
    });
}

std::string text_of(const Outcome& outcome) {
    std::string made;
    const cson_read_info& info = outcome.info;
    for (const std::uint32_t number :
         {static_cast<std::uint32_t>(outcome.code), info.line, info.column, info.length,
          static_cast<std::uint32_t>(info.error_code), info.total_key_count,
          info.total_value_count})
        made += std::to_string(number) + " ";
    return made + tree_text(outcome.value.get());
}

std::string tree_text(const cson_value* value) {
    if (value == nullptr)
        return "-";
    char number[40] = "null";
    switch (value->api->kind) {
    case cson_kind_boolean:
        return cson_value_bool(value) ? "true" : "false";
    case cson_kind_integer:
        return std::to_string(cson_value_int(value));
    case cson_kind_double:
        std::snprintf(number, sizeof(number), "%a", cson_value_double(value));
        return number;
    case cson_kind_string:
        return quoted(json::view_of(cson_value_string(value)));
    case cson_kind_array:
        return "[" + entries_text(cson_value_array(value)->list) + "]";
    case cson_kind_object:
        return "{" + entries_text(cson_value_object(value)->list) + "}";
    default:
        return number;
    }
}

Value tree(std::string_view text) {
    Outcome outcome = read_whole(text);
    if (outcome.code != cson_OK)
        throw std::invalid_argument(std::string(text));
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

std::string random_json(std::mt19937& engine, int depth) {
    constexpr const char* pieces[] = {"", "Z", " ", "\\\"", "\\\\", "/", "\\n", "é", "€", "word"};
    constexpr const char* keywords[] = {"true", "false", "null"};
    constexpr const char* separators[] = {",", ", ", "\n\t,", " , \r\n    "};
    const auto pick = [&](const auto& texts) {
        return std::string(texts[engine() % std::size(texts)]);
    };
    const bool is_array = engine() % 2 != 0;
    std::string text = is_array ? "[" : "{";
    for (auto left = engine() % 9; left != 0; --left) {
        if (!is_array)
            text += '"' + std::to_string(left) + pick(pieces) + (left % 2 != 0 ? "\":" : "\": ");
        const auto number = static_cast<std::int32_t>(engine());
        const std::string scalars[] = {pick(keywords), std::to_string(number),
                                       std::to_string(number / 64.0),
                                       '"' + pick(pieces) + pick(pieces) + pick(pieces) + '"'};
        text += depth > 0 && engine() % 3 == 0 ? random_json(engine, depth - 1) : pick(scalars);
        text += left != 1 ? pick(separators) : "";
    }
    return text + (is_array ? "]" : "}");
}

} // namespace json_testing
