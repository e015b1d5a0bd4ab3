// Turns the events of a push parser into a tree of values.
#pragma once

#include "quillon/json/parser.h"
#include "quillon/json/pool.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"
#include "quillon/json/value.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace quillon {

// Lives for one reading; every operation gives a code, and the first failure ends the reading.
//
// A container gets its list when it ends, with the capacity that adding its entries one by one
// would have given. Up to then they wait behind those of the containers around it: the elements of
// an array, the pairs of an object.
class cson_tree_builder {
public:
    cson_tree_builder() = default;
    cson_tree_builder(const cson_tree_builder&) = delete;
    cson_tree_builder& operator=(const cson_tree_builder&) = delete;
    ~cson_tree_builder();

    int begin_container(std::uint32_t kind) {
        cson_value* container = json::build_container(&pool, kind);
        const int code = root != nullptr ? add(container) : begin_root(container);
        if (code != cson_OK)
            return code;
        return open.push({container, entries.size()}) ? cson_OK : cson_AllocError;
    }

    int end_container() {
        if (open.empty())
            return cson_RangeError;
        const auto [container, first] = open.top();
        const bool is_array = container->api == &json::KINDS[cson_kind_array].api;
        if (!(is_array ? fill(&json::payload_of<cson_array>(container)->list, first, 7)
                       : fill(&json::payload_of<cson_object>(container)->list, first, 5)))
            return cson_AllocError;
        entries.shrink(first);
        open.pop();
        return cson_OK;
    }

    int key(const char* text, std::uint32_t length);

    int integer(std::int32_t number) { return add(json::build_int(&pool, number)); }

    int number(double number) { return add(json::build_double(&pool, number)); }

    int string(const char* text, std::uint32_t length) {
        return add(json::build_string(&pool, text, length));
    }

    int constant(cson_value* shared) { return add(shared); }

    // The parser's callback, with a builder as the context.
    static int on_event(void* context, int event, const cson_push_data* data);

    // Hands the tree over with a count of 0, or gives null when there was no value.
    cson_value* take_root();

    int error = cson_OK; // of the last event
    std::uint32_t key_count = 0;
    std::uint32_t value_count = 0;

private:
    static constexpr std::size_t known_key_count = 256;

    // A container that has begun, and where its entries begin.
    struct open_container {
        cson_value* value;
        std::size_t first;
    };

    // Files a new or shared value with the container that is being filled; a failure frees it.
    int add(cson_value* value) {
        if (value == nullptr)
            return cson_AllocError;
        if (waiting != nullptr) {
            std::exchange(waiting, nullptr)->value = value;
        } else if (!entries.push(value)) {
            cson_value_release(value);
            return cson_AllocError;
        }
        json::add_owner(value);
        ++value_count;
        return cson_OK;
    }

    // Gives a list, which is empty, the entries that wait for it; false without memory.
    template <class List>
    bool fill(List* list, std::size_t first, std::uint32_t first_capacity) {
        const std::size_t count = entries.size() - first;
        if (count == 0)
            return true;
        const std::uint32_t capacity = grown_capacity(count, first_capacity);
        list->items = capacity != 0
                          ? json::build_storage(&pool, list, capacity, entries.from(first),
                                                static_cast<std::uint32_t>(count))
                          : nullptr;
        if (list->items == nullptr)
            return false;
        list->count = static_cast<std::uint32_t>(count);
        list->capacity = capacity;
        return true;
    }

    // What a list that grows one entry before it is full has come to with `count` entries, 0 where
    // that is more than a list can have.
    static std::uint32_t grown_capacity(std::size_t count, std::uint32_t first) {
        std::uint64_t capacity = first;
        while (capacity <= count)
            capacity = (capacity - 1) * 2;
        return capacity <= std::numeric_limits<std::uint32_t>::max()
                   ? static_cast<std::uint32_t>(capacity)
                   : 0;
    }

    int begin_root(cson_value* container);
    int handle(int event, const cson_push_data* data);
    int file_key(cson_value* value);
    void drop_entries(const open_container& container);

    cson_value* root = nullptr;
    cson_kvp* waiting = nullptr; // the pair whose key has come, for its member
    json::Stack<open_container> open;
    json::Stack<void*> entries;
    json::Pool pool;
    // Keys of this tree that may come again, by a hash. No owners: their pairs live longer.
    std::array<cson_value*, known_key_count> known_keys = {};
};

} // namespace quillon
