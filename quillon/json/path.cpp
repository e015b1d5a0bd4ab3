// Member paths, and command-line style arguments.
#include "quillon/json/containers.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace quillon {
namespace {

constexpr std::size_t longest_name = 127;

// The run of characters up to the next separator or the end.
std::size_t name_length(const char* path, char separator) {
    std::size_t length = 0;
    while (path[length] != 0 && path[length] != separator)
        ++length;
    return length;
}

const char* skip(const char* text, char letter) {
    while (*text == letter)
        ++text;
    return text;
}

cson_value* member_named(cson_object* object, const char* name, std::size_t length) {
    std::array<char, longest_name + 1> terminated = {};
    std::memcpy(terminated.data(), name, length);
    return cson_object_get_text(object, terminated.data());
}

cson_value* number_or_text(const char* text) {
    char* end = nullptr;
    errno = 0;
    const long integer = std::strtol(text, &end, 10);
    using limits = std::numeric_limits<std::int32_t>;
    const bool fits = errno == 0 && integer >= limits::min() && integer <= limits::max();
    if (*end == 0 && fits)
        return cson_value_from_int(static_cast<std::int32_t>(integer));
    const double number = std::strtod(text, &end);
    if (*end == 0)
        return cson_value_from_double(number);
    return cson_value_from_text(text, static_cast<std::uint32_t>(std::strlen(text)));
}

// The value of what stands behind the key: nothing, "=", or "=text".
cson_value* argument_value(const char* rest) {
    if (*rest == 0)
        return cson_value_true();
    const char* text = rest + 1;
    if (*text == 0)
        return cson_value_null_constant();
    if (*text >= '0' && *text <= '9')
        return cson_value_from_text(text, static_cast<std::uint32_t>(std::strlen(text)));
    return number_or_text(text);
}

int put_argument(cson_object* object, const char* name) {
    const std::size_t length = name_length(name, '=');
    cson_string* key = cson_string_make(name, static_cast<std::uint32_t>(length));
    cson_value* value = argument_value(name + length);
    int code = cson_AllocError;
    if (key != nullptr && value != nullptr)
        code = cson_object_put_string(object, key, value);
    if (code != cson_OK) {
        cson_release_string(key);
        cson_value_release(value);
    }
    return code;
}

} // namespace

int cson_object_path(cson_object* object, cson_value** out, const char* path, char separator) {
    if (object == nullptr || path == nullptr)
        return cson_ArgError;
    if (*path == 0 || separator == 0)
        return cson_RangeError;
    path = skip(path, separator);
    if (*path == 0)
        return cson_RangeError;
    cson_value* member = nullptr;
    while (*path != 0) {
        const std::size_t length = name_length(path, separator);
        if (length > longest_name)
            return cson_RangeError;
        member = member_named(object, path, length);
        if (member == nullptr)
            return cson_NotFoundError;
        path = skip(path + length, separator);
        object = cson_value_object(member);
        if (*path != 0 && object == nullptr)
            return cson_NotFoundError;
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
    cson_object* object =
        *target != nullptr ? *target : cson_value_object(cson_value_make_object());
    if (object == nullptr)
        return cson_AllocError;
    if (count != nullptr)
        *count = 0;
    int code = cson_OK;
    for (int i = 0; i < argc && code == cson_OK; ++i) {
        const char* name = argv[i] != nullptr ? skip(argv[i], '-') : "";
        if (name == argv[i] || *name == 0)
            continue;
        code = put_argument(object, name);
        if (code == cson_OK && count != nullptr)
            ++*count;
    }
    if (*target == nullptr && code != cson_OK)
        cson_release_object(object);
    else
        *target = object;
    return code;
}

} // namespace quillon
