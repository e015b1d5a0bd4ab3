// Trees as texts that differ when the trees do, in any bit of a value.
#pragma once

#include "quillon/json/containers.h"
#include "quillon/json/record.h"

#include <cstdio>
#include <string>
#include <string_view>

namespace json_testing {

// Quoted, with every byte beyond printable ASCII in hex.
inline std::string quoted(std::string_view text) {
    std::string made = "\"";
    for (const char c : text) {
        char piece[8] = {c};
        if (c < ' ' || c > '~' || c == '"' || c == '\\')
            std::snprintf(piece, sizeof(piece), "<%02X>", static_cast<unsigned char>(c));
        made += piece;
    }
    return made + '"';
}

// Integers in decimal, doubles exactly, in hex; containers with their capacity; "-" for null
// pointers. Recursive.
inline std::string tree_text(const quillon::cson_value* value) {
    using namespace quillon;
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
    case cson_kind_array: {
        const cson_value_list& list = cson_value_array(value)->list;
        std::string made = "[";
        for (std::uint32_t i = 0; i < list.count; ++i)
            made += tree_text(list.items[i]) + " ";
        return made + "of " + std::to_string(list.capacity) + "]";
    }
    case cson_kind_object: {
        const cson_kvp_list& list = cson_value_object(value)->list;
        std::string made = "{";
        for (std::uint32_t i = 0; i < list.count; ++i)
            made += tree_text(list.items[i]->key) + ":" + tree_text(list.items[i]->value) + " ";
        return made + "of " + std::to_string(list.capacity) + "}";
    }
    default:
        return number;
    }
}

} // namespace json_testing
