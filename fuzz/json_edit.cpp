// SPDX-License-Identifier: MIT
// Edits an object and an array by random operations, beside plain containers that say what is
// right.
#include "check.h"

#include "tests/json/json_testing.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

using namespace quillon;
using json_testing::Value;

namespace {

using Pairs = std::vector<std::pair<std::string, int>>;
using Entries = std::vector<std::optional<int>>;

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

int number_in(cson_value* member) {
    if (cson_value_is_array(member))
        return cson_value_int(cson_array_item(cson_value_array(member), 2));
    if (cson_value_is_object(member))
        return cson_value_int(cson_object_path_value(cson_value_object(member), "/in/", '/'));
    double number = 0;
    check(cson_value_to_double(member, &number) == cson_OK, "a number converts");
    return static_cast<int>(number);
}

void edit_object(Value& value, Pairs& model, unsigned operation, int number) {
    cson_object* object = cson_value_object(value.get());
    const std::string key(static_cast<std::size_t>(number) % 50 + 1, 'k');
    const auto place = std::ranges::find(model, key, &Pairs::value_type::first);
    const bool present = place != model.end();
    std::uint32_t index = 0;
    check((cson_object_find(object, key.c_str(), &index) != nullptr) == present, "find");
    check(!present || index == place - model.begin(), "the index of a pair");
    if (operation == 0) {
        check(cson_object_put_text(object, key.c_str(), make_member(number)) == cson_OK, "put");
        present ? void(place->second = number) : void(model.emplace_back(key, number));
    } else if (operation == 1) {
        value.reset(cson_value_copy(value.get()));
    } else if (operation == 2) {
        const Value member(cson_object_detach(object, key.c_str()));
        check(present ? number_in(member.get()) == place->second : member == nullptr, "detach");
    } else {
        const int code = cson_object_drop(object, key.c_str());
        check(code == (present ? cson_OK : cson_NotFoundError), "drop");
    }
    if (operation > 1 && present)
        model.erase(place);
}

void edit_array(Value& value, Entries& model, unsigned operation, int number) {
    cson_array* array = cson_value_array(value.get());
    const auto index = static_cast<std::uint32_t>(number) % 60;
    if (operation == 0) {
        check(cson_array_push(array, make_member(number)) == cson_OK, "push");
        model.emplace_back(number);
    } else if (operation == 1) {
        value.reset(cson_value_copy(value.get()));
    } else if (operation == 2) {
        model.resize(std::max<std::size_t>(model.size(), index + 1));
        model[index] = number;
        check(cson_array_put(array, index, make_member(number)) == cson_OK, "store");
    } else if (number == 0) {
        cson_value_clear(value.get());
        value.reset(cson_value_make_array());
        model.clear();
    }
}

void compare(const Value& object, const Pairs& pairs) {
    cson_object_walker walker;
    cson_object_walk_start(cson_value_object(object.get()), &walker);
    for (const auto& [key, number] : pairs) {
        const cson_kvp* pair = cson_object_walk_next(&walker);
        check(cson_string_compare_text(cson_kvp_key_string(pair), key.c_str()) == 0, "keys");
        check(number_in(pair->value) == number, "members");
    }
    check(cson_object_walk_next(&walker) == nullptr, "the number of pairs");
}

void compare(const Value& value, const Entries& entries) {
    cson_array* array = cson_value_array(value.get());
    check(cson_array_count(array) == entries.size(), "the number of entries");
    for (std::size_t i = 0; i < entries.size(); ++i) {
        cson_value* item = cson_array_item(array, static_cast<std::uint32_t>(i));
        check((item != nullptr) == entries[i].has_value(), "holes");
        check(item == nullptr || number_in(item) == *entries[i], "entries");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Value object(cson_value_make_object());
    Value array(cson_value_make_array());
    Pairs pairs;
    Entries entries;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        if (data[i] % 2 != 0)
            edit_object(object, pairs, data[i] / 2 % 4, data[i + 1]);
        else
            edit_array(array, entries, data[i] / 2 % 4, data[i + 1]);
    }
    compare(object, pairs);
    compare(array, entries);
    const Value merged(cson_value_make_object());
    cson_object* target = cson_value_object(merged.get());
    check(cson_object_combine(target, cson_value_object(object.get()), 0) == cson_OK, "combine");
    object.reset();
    compare(merged, pairs);
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
