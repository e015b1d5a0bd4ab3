#include "json_testing.h"

#include "quillon/json/record.h"

#include <algorithm>
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
    return made + "of " + std::to_string(list.capacity);
}

unsigned below(std::mt19937& engine, unsigned limit) {
    return static_cast<unsigned>(engine() % limit);
}

std::string random_text(std::mt19937& engine) {
    constexpr const char* pieces[] = {"a", "Z", " ", "\"", "\\", "/", "\n", "é", "€", "word"};
    std::string text;
    for (unsigned left = below(engine, 12); left != 0; --left)
        text += pieces[below(engine, std::size(pieces))];
    return text;
}

Value scalar(std::mt19937& engine) {
    const std::string text = random_text(engine);
    const auto number = static_cast<std::int32_t>(engine());
    switch (below(engine, 5)) {
    case 0:
        return Value(cson_value_from_bool(number < 0));
    case 1:
        return Value(cson_value_from_int(number));
    case 2:
        return Value(cson_value_from_double(number / 64.0));
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

Value random_tree(std::mt19937& engine, int depth) {
    const unsigned count = below(engine, 9);
    Value made(below(engine, 2) != 0 ? cson_value_make_array() : cson_value_make_object());
    for (unsigned i = 0; i < count; ++i) {
        const bool nested = depth > 0 && below(engine, 3) == 0;
        cson_value* entry = (nested ? random_tree(engine, depth - 1) : scalar(engine)).release();
        const std::string key = std::to_string(i) + random_text(engine);
        if (cson_value_is_array(made.get()))
            cson_array_push(cson_value_array(made.get()), entry);
        else
            cson_object_put_text(cson_value_object(made.get()), key.c_str(), entry);
    }
    return made;
}

} // namespace json_testing
