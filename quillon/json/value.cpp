// SPDX-License-Identifier: MIT
#include "quillon/json/value.h"

#include "quillon/json/record.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace quillon {

using namespace json;

namespace {

constexpr std::array<const char*, 20> ERROR_NAMES = {
    "OK",
    "ArgError",
    "RangeError",
    "TypeError",
    "IOError",
    "AllocError",
    "NYIError",
    "InternalError",
    "UnsupportedError",
    "NotFoundError",
    "UnknownError",
    "Parse_INVALID_CHAR",
    "Parse_INVALID_KEYWORD",
    "Parse_INVALID_ESCAPE_SEQUENCE",
    "Parse_INVALID_UNICODE_SEQUENCE",
    "Parse_INVALID_NUMBER",
    "Parse_NESTING_DEPTH_REACHED",
    "Parse_UNBALANCED_COLLECTION",
    "Parse_EXPECTED_KEY",
    "Parse_EXPECTED_COLON",
};

bool is_undefined(const cson_value* value) {
    return value == nullptr || value->api == nullptr;
}

// What a value is as a boolean, an integer and a double.
struct Conversion {
    bool flag = false;
    std::int32_t integer = 0;
    double number = 0.0;
};

// A double beyond 32 bits would be undefined behaviour as an integer: it becomes the nearest one,
// and NaN becomes 0.
std::int32_t truncate(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(number))
        return 0;
    return static_cast<std::int32_t>(std::clamp<double>(number, Limits::lowest(), Limits::max()));
}

Conversion converted(const cson_value* value) {
    const bool present = value != nullptr && value->value != nullptr;
    switch (is_undefined(value) ? std::uint32_t{cson_kind_undefined} : value->api->kind) {
    case cson_kind_boolean: // true is any payload, false is none
        return {present, present ? 1 : 0, present ? 1.0 : 0.0};
    case cson_kind_integer: {
        const auto integer = number_of<std::int32_t>(value);
        return {integer != 0, integer, static_cast<double>(integer)};
    }
    case cson_kind_double: {
        const auto number = number_of<double>(value);
        return {number != 0.0, truncate(number), number};
    }
    case cson_kind_string:
        return {cson_string_size(cson_value_string(value)) != 0};
    case cson_kind_array:
    case cson_kind_object:
        return {true};
    default: // undefined and null
        return {};
    }
}

template <typename Number>
int convert(const cson_value* value, Number* out, Number Conversion::*field) {
    if (is_undefined(value))
        return cson_ArgError;
    if (out != nullptr)
        *out = converted(value).*field;
    return cson_OK;
}

template <typename Payload>
int payload_as(const cson_value* value, std::uint32_t kind, Payload** out) {
    if (value == nullptr)
        return cson_ArgError;
    if (!has_kind(value, kind))
        return cson_TypeError;
    if (out != nullptr)
        *out = static_cast<Payload*>(value->value);
    return cson_OK;
}

template <typename Payload>
Payload* payload_or_null(const cson_value* value, std::uint32_t kind) {
    return has_kind(value, kind) ? static_cast<Payload*>(value->value) : nullptr;
}

// A payload never moves: it is directly after its value in one block.
cson_value* value_before(const void* payload) {
    return payload != nullptr ? static_cast<cson_value*>(const_cast<void*>(payload)) - 1 : nullptr;
}

} // namespace

// Static values, so that the most common ones need no memory and no counting.
constinit SharedConstants json::shared_constants = {
    {&KINDS[cson_kind_undefined].api, nullptr, 0, 0},
    {&KINDS[cson_kind_null].api, nullptr, 0, 0},
    {&KINDS[cson_kind_boolean].api, &shared_constants.one, 0, 0},
    {&KINDS[cson_kind_boolean].api, nullptr, 0, 0},
    {&KINDS[cson_kind_integer].api, nullptr, 0, 0},
    {&KINDS[cson_kind_double].api, nullptr, 0, 0},
    {&KINDS[cson_kind_string].api, &shared_constants.empty, 0, 0},
    1,
    {0},
    {},
};

const char* cson_error_name(int code) {
    const bool known = code >= 0 && code < static_cast<int>(ERROR_NAMES.size());
    return ERROR_NAMES[static_cast<std::size_t>(known ? code : cson_UnknownError)];
}

cson_value* cson_value_new(std::uint32_t kind, std::uint32_t extra) {
    if (kind < cson_kind_integer || kind > cson_kind_object)
        return nullptr;
    const std::size_t bytes = std::size_t{KINDS[kind].payload_bytes} + extra;
    cson_value* value = build_record(nullptr, kind, bytes);
    if (value != nullptr)
        std::memset(value->value, 0, bytes);
    return value;
}

cson_value* cson_value_from_bool(bool flag) {
    return flag ? cson_value_true() : cson_value_false();
}

cson_value* cson_value_true() {
    return &shared_constants.true_value;
}

cson_value* cson_value_false() {
    return &shared_constants.false_value;
}

cson_value* cson_value_null_constant() {
    return &shared_constants.null;
}

cson_value* cson_value_from_int(std::int32_t number) {
    return build_int(nullptr, number);
}

cson_value* cson_value_from_double(double number) {
    return build_double(nullptr, number);
}

cson_value* cson_value_from_text(const char* text, std::uint32_t length) {
    return build_string(nullptr, text, length);
}

bool cson_value_is_undefined(const cson_value* value) {
    return is_undefined(value) || value->api->kind == cson_kind_undefined;
}

bool cson_value_is_null(const cson_value* value) {
    return has_kind(value, cson_kind_null);
}

bool cson_value_is_bool(const cson_value* value) {
    return has_kind(value, cson_kind_boolean);
}

bool cson_value_is_int(const cson_value* value) {
    return has_kind(value, cson_kind_integer);
}

bool cson_value_is_double(const cson_value* value) {
    return has_kind(value, cson_kind_double);
}

bool cson_value_is_number(const cson_value* value) {
    return cson_value_is_int(value) || cson_value_is_double(value);
}

bool cson_value_is_string(const cson_value* value) {
    return has_kind(value, cson_kind_string);
}

bool cson_value_is_array(const cson_value* value) {
    return has_kind(value, cson_kind_array);
}

bool cson_value_is_object(const cson_value* value) {
    return has_kind(value, cson_kind_object);
}

int cson_value_to_bool(const cson_value* value, bool* out) {
    return convert(value, out, &Conversion::flag);
}

int cson_value_to_int(const cson_value* value, std::int32_t* out) {
    return convert(value, out, &Conversion::integer);
}

int cson_value_to_double(const cson_value* value, double* out) {
    const int code = convert(value, out, &Conversion::number);
    const bool has_number = code != cson_OK || value->api->kind < cson_kind_string;
    return has_number ? code : int{cson_TypeError};
}

bool cson_value_bool(const cson_value* value) {
    return converted(value).flag;
}

std::int32_t cson_value_int(const cson_value* value) {
    return converted(value).integer;
}

double cson_value_double(const cson_value* value) {
    return converted(value).number;
}

int cson_value_as_string(const cson_value* value, cson_string** out) {
    return out != nullptr ? payload_as(value, cson_kind_string, out) : cson_ArgError;
}

int cson_value_as_array(const cson_value* value, cson_array** out) {
    return payload_as(value, cson_kind_array, out);
}

int cson_value_as_object(const cson_value* value, cson_object** out) {
    return payload_as(value, cson_kind_object, out);
}

cson_string* cson_value_string(const cson_value* value) {
    return payload_or_null<cson_string>(value, cson_kind_string);
}

cson_array* cson_value_array(const cson_value* value) {
    return payload_or_null<cson_array>(value, cson_kind_array);
}

cson_object* cson_value_object(const cson_value* value) {
    return payload_or_null<cson_object>(value, cson_kind_object);
}

const char* cson_value_text(const cson_value* value) {
    return cson_string_text(cson_value_string(value));
}

cson_value* cson_value_of_string(const cson_string* string) {
    return string == &shared_constants.empty ? &shared_constants.empty_string
                                             : value_before(string);
}

cson_value* cson_value_of_array(const cson_array* array) {
    return value_before(array);
}

cson_value* cson_value_of_object(const cson_object* object) {
    return value_before(object);
}

} // namespace quillon
