// SPDX-License-Identifier: MIT
// Member paths, and command-line style arguments.
#include "quillon/json/record.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace quillon {

using namespace json;

namespace {

constexpr std::size_t LONGEST_NAME = 127;

// The text up to the next separator.
std::string_view name_at(const char* text, char separator) {
    const char* end = std::strchr(text, separator);
    return end != nullptr ? std::string_view(text, end) : std::string_view(text);
}

const char* skip(const char* text, char letter) {
    while (*text == letter)
        ++text;
    return text;
}

cson_value* value_from(std::string_view text) {
    return cson_value_from_text(text.data(), static_cast<std::uint32_t>(text.size()));
}

cson_value* number_or_text(const char* text) {
    using Limits = std::numeric_limits<std::int32_t>;
    char* end = nullptr;
    errno = 0;
    const long integer = std::strtol(text, &end, 10);
    const bool fits = errno == 0 && integer >= Limits::min() && integer <= Limits::max();
    if (*end == 0 && fits)
        return cson_value_from_int(static_cast<std::int32_t>(integer));
    const double number = std::strtod(text, &end);
    return *end == 0 ? cson_value_from_double(number) : value_from(text);
}

// The value of what follows a key: nothing, "=" or "=text".
cson_value* argument_value(const char* rest) {
    if (*rest == 0)
        return cson_value_true();
    const char* text = rest + 1;
    if (*text == 0)
        return cson_value_null_constant();
    return *text >= '0' && *text <= '9' ? value_from(text) : number_or_text(text);
}

// The argument without its dashes, or null for one that has none or nothing else.
const char* argument_name(const char* argument) {
    if (argument == nullptr || *argument != '-')
        return nullptr;
    const char* name = skip(argument, '-');
    return *name != 0 ? name : nullptr;
}

int put_argument(cson_object* object, const char* name) {
    const std::string_view key_text = name_at(name, '=');
    cson_value* key = value_from(key_text);
    cson_value* value = argument_value(name + key_text.size());
    int code = cson_AllocError;
    if (key != nullptr && value != nullptr)
        code = cson_object_put_string(object, cson_value_string(key), value);
    if (code != cson_OK) {
        cson_value_release(key);
        cson_value_release(value);
    }
    return code;
}

int put_arguments(cson_object* object, int argc, const char* const* argv, std::uint32_t& count) {
    for (int i = 0; i < argc; ++i) {
        const char* name = argument_name(argv[i]);
        if (name == nullptr)
            continue;
        const int code = put_argument(object, name);
        if (code != cson_OK)
            return code;
        ++count;
    }
    return cson_OK;
}

} // namespace

int cson_object_path(cson_object* object, cson_value** out, const char* path, char separator) {
    if (object == nullptr || path == nullptr)
        return cson_ArgError;
    if (separator == 0 || *skip(path, separator) == 0)
        return cson_RangeError;
    cson_value* member = nullptr;
    for (path = skip(path, separator); *path != 0; path = skip(path, separator)) {
        if (object == nullptr)
            return cson_NotFoundError;
        const std::string_view name = name_at(path, separator);
        if (name.size() > LONGEST_NAME)
            return cson_RangeError;
        member = cson_kvp_value(find_pair(object, name));
        if (member == nullptr)
            return cson_NotFoundError;
        object = cson_value_object(member);
        path += name.size();
    }
    if (out != nullptr)
        *out = member;
    return cson_OK;
}

int cson_object_path_marked(cson_object* object, cson_value** out, const char* path) {
    if (object == nullptr || path == nullptr)
        return cson_ArgError;
    if (path[0] == 0 || path[1] == 0)
        return cson_RangeError;
    return cson_object_path(object, out, path + 1, path[0]);
}

cson_value* cson_object_path_value(cson_object* object, const char* path, char separator) {
    cson_value* value = nullptr;
    cson_object_path(object, &value, path, separator);
    return value;
}

cson_value* cson_object_path_marked_value(cson_object* object, const char* path) {
    cson_value* value = nullptr;
    cson_object_path_marked(object, &value, path);
    return value;
}

int cson_object_from_args(int argc, const char* const* argv, cson_object** target,
                          std::uint32_t* count) {
    if (argc < 1 || argv == nullptr || target == nullptr)
        return cson_ArgError;
    const bool is_new = *target == nullptr;
    cson_object* object = is_new ? cson_value_object(cson_value_make_object()) : *target;
    std::uint32_t put = 0;
    const int code =
        object != nullptr ? put_arguments(object, argc, argv, put) : int{cson_AllocError};
    if (count != nullptr)
        *count = put;
    if (code == cson_OK)
        *target = object;
    else if (is_new)
        cson_release_object(object);
    return code;
}

} // namespace quillon
