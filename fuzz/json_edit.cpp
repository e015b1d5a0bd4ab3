// SPDX-License-Identifier: MIT
// Edits an object and an array by random operations; what comes of them is copied and combined to
// the same.
#include "check.h"

#include "tests/json/json_testing.h"

#include <string>

using namespace quillon;
using json_testing::text_of;
using json_testing::Value;

namespace {

// A member of any kind that holds `number`, so that all of them are stored, copied and released.
cson_value* make_member(int number) {
    if (number % 4 < 2)
        return number % 4 == 0 ? cson_value_from_int(number) : cson_value_from_double(number);
    const bool is_array = number % 4 == 2;
    cson_value* member = is_array ? cson_value_make_array() : cson_value_make_object();
    if (is_array)
        cson_array_put(cson_value_array(member), 2, cson_value_from_int(number));
    else
        cson_object_put_text(cson_value_object(member), "in", cson_value_from_int(number));
    return member;
}

void edit_object(Value& value, unsigned operation, int number) {
    cson_object* object = cson_value_object(value.get());
    const std::string key(static_cast<std::size_t>(number) % 50 + 1, 'k');
    std::uint32_t index = 0;
    const cson_kvp* pair = cson_object_find(object, key.c_str(), &index);
    const bool present = pair != nullptr;
    check(!present || pair == object->list.items[index], "the index of a pair");
    if (operation == 0) {
        check(cson_object_put_text(object, key.c_str(), make_member(number)) == cson_OK, "put");
    } else if (operation == 1) {
        value.reset(cson_value_copy(value.get()));
    } else if (operation == 2) {
        const Value member(cson_object_detach(object, key.c_str()));
        check((member != nullptr) == present, "detach");
    } else {
        const int code = cson_object_drop(object, key.c_str());
        check(code == (present ? cson_OK : cson_NotFoundError), "drop");
    }
    object = cson_value_object(value.get());
    const bool is_there = cson_object_find(object, key.c_str(), nullptr) != nullptr;
    check(is_there == (operation == 0 || (operation == 1 && present)), "find");
}

void edit_array(Value& value, unsigned operation, int number) {
    cson_array* array = cson_value_array(value.get());
    const auto index = static_cast<std::uint32_t>(number) % 60;
    if (operation == 0) {
        check(cson_array_push(array, make_member(number)) == cson_OK, "push");
    } else if (operation == 1) {
        value.reset(cson_value_copy(value.get()));
    } else if (operation == 2) {
        check(cson_array_put(array, index, make_member(number)) == cson_OK, "store");
        check(cson_array_item(array, index) != nullptr, "what was stored is there");
    } else if (number == 0) {
        cson_value_clear(value.get());
        value.reset(cson_value_make_array());
    }
}

void check_copy(const Value& value) {
    const Value copy(cson_value_copy(value.get()));
    check(text_of(copy.get()) == text_of(value.get()), "a copy is equal");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Value object(cson_value_make_object());
    Value array(cson_value_make_array());
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        if (data[i] % 2 != 0)
            edit_object(object, data[i] / 2 % 4, data[i + 1]);
        else
            edit_array(array, data[i] / 2 % 4, data[i + 1]);
    }
    check_copy(object);
    check_copy(array);

    const Value merged(cson_value_make_object());
    cson_object* target = cson_value_object(merged.get());
    check(cson_object_combine(target, cson_value_object(object.get()), 0) == cson_OK, "combine");
    const std::string written = text_of(object.get());
    object.reset();
    check(text_of(merged.get()) == written, "what was combined is equal and stands alone");

    // Any text is a path and an argument.
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string argument = "-" + text;
    const char* const arguments[] = {argument.c_str()};
    check(cson_object_from_args(1, arguments, &target, nullptr) == cson_OK, "any argument");
    cson_value* member = nullptr;
    const int code = cson_object_path_marked(target, &member, text.c_str());
    check((code == cson_OK) == (member != nullptr), "a path finds a value or returns a code");
    return 0;
}
