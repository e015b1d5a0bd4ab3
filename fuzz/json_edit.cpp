// Edits an object and an array by random operations, beside plain containers that say what is
// right.
#include "check.h"

#include "quillon/json/containers.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace quillon;

namespace {

using Pairs = std::vector<std::pair<std::string, int>>;

using Entries = std::vector<std::optional<int>>;

// A member of any kind that holds `number`, so that all of them are stored, copied and released.
cson_value* make_member(int number) {
    cson_value* member = nullptr;
    switch (number % 4) {
    case 0:
        return cson_value_from_int(number);
    case 1:
        return cson_value_from_double(number);
    case 2:
        member = cson_value_make_array();
        cson_array_put(cson_value_array(member), 2, cson_value_from_int(number));
        return member;
    default:
        member = cson_value_make_object();
        cson_object_put_text(cson_value_object(member), "in", cson_value_from_int(number));
        return member;
    }
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

void edit_object(cson_value*& value, Pairs& model, unsigned operation, int number) {
    cson_object* object = cson_value_object(value);
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
        cson_value_release(std::exchange(value, cson_value_copy(value)));
    } else if (operation == 2) {
        cson_value* member = cson_object_detach(object, key.c_str());
        check(present ? number_in(member) == place->second : member == nullptr, "detach");
        cson_value_release(member);
    } else {
        const int code = cson_object_drop(object, key.c_str());
        check(code == (present ? cson_OK : cson_NotFoundError), "drop");
    }
    if (operation > 1 && present)
        model.erase(place);
}

void edit_array(cson_value*& value, Entries& model, unsigned operation, int number) {
    cson_array* array = cson_value_array(value);
    const auto index = static_cast<std::uint32_t>(number) % 60;
    if (operation == 0) {
        check(cson_array_push(array, make_member(number)) == cson_OK, "push");
        model.emplace_back(number);
    } else if (operation == 1) {
        cson_value_release(std::exchange(value, cson_value_copy(value)));
    } else if (operation == 2) {
        model.resize(std::max<std::size_t>(model.size(), index + 1));
        model[index] = number;
        check(cson_array_put(array, index, make_member(number)) == cson_OK, "store");
    } else if (number == 0) {
        cson_value_clear(value);
        cson_value_release(std::exchange(value, cson_value_make_array()));
        model.clear();
    }
}

void compare(cson_value* object, const Pairs& pairs, cson_value* array, const Entries& entries) {
    cson_object_walker walker;
    cson_object_walk_start(cson_value_object(object), &walker);
    for (const auto& [key, number] : pairs) {
        const cson_kvp* pair = cson_object_walk_next(&walker);
        check(cson_string_compare_text(cson_kvp_key_string(pair), key.c_str()) == 0, "keys");
        check(number_in(pair->value) == number, "members");
    }
    check(cson_object_walk_next(&walker) == nullptr, "the number of pairs");
    check(cson_array_count(cson_value_array(array)) == entries.size(), "the number of entries");
    for (std::size_t i = 0; i < entries.size(); ++i) {
        cson_value* item = cson_array_item(cson_value_array(array), static_cast<std::uint32_t>(i));
        check((item != nullptr) == entries[i].has_value(), "holes");
        check(item == nullptr || number_in(item) == *entries[i], "entries");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    cson_value* object = cson_value_make_object();
    cson_value* array = cson_value_make_array();
    Pairs pairs;
    Entries entries;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        if (data[i] % 2 != 0)
            edit_object(object, pairs, data[i] / 2 % 4, data[i + 1]);
        else
            edit_array(array, entries, data[i] / 2 % 4, data[i + 1]);
    }
    compare(object, pairs, array, entries);
    cson_value* merged = cson_value_make_object();
    check(cson_object_combine(cson_value_object(merged), cson_value_object(object), 0) == cson_OK,
          "combine");
    cson_value_release(std::exchange(object, merged));
    compare(object, pairs, array, entries);
    // Any text is a path and an argument.
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string argument = "-" + text;
    const char* const arguments[] = {argument.c_str()};
    cson_object* target = cson_value_object(object);
    check(cson_object_from_args(1, arguments, &target, nullptr) == cson_OK, "any argument");
    cson_value* member = nullptr;
    const int code = cson_object_path_marked(target, &member, text.c_str());
    check((code == cson_OK) == (member != nullptr), "a path finds a value or returns a code");
    cson_value_release(object);
    cson_value_release(array);
    return 0;
}
