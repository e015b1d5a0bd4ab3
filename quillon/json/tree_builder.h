// SPDX-License-Identifier: MIT
// Builds a tree of values from the parts of a text, in their order.
#pragma once

#include "quillon/json/pool.h"
#include "quillon/json/record.h"
#include "quillon/json/stack.h"
#include "quillon/json/value.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace quillon::json {

// Lives for one reading; every operation returns a code, and the first failure ends the reading.
//
// The entries of the open containers are on one stack, the inner ones' after the outer ones': the
// values of an array, keys and members in turn of an object. A container is made when it ends, with
// its list right after it and the capacity that adding its entries one by one would have led to. Up
// to then it has a null on the stack, before its entries.
class TreeBuilder {
public:
    TreeBuilder() = default;
    TreeBuilder(const TreeBuilder&) = delete;
    TreeBuilder& operator=(const TreeBuilder&) = delete;
    ~TreeBuilder();

    int begin_container(std::uint32_t kind) {
        const bool is_open = open.push({entries.size() + 1, kind}) && entries.push(nullptr);
        return is_open ? cson_OK : cson_AllocError;
    }

    // RangeError if no container is open.
    int end_container() {
        if (open.empty())
            return cson_RangeError;
        const auto [first, kind] = open.top();
        cson_value* made = kind == cson_kind_array ? make_array(first) : make_object(first);
        if (made == nullptr)
            return cson_AllocError;
        add_owner(made);
        ended_entries += static_cast<std::uint32_t>(entries.size() - first);
        entries.shrink(first);
        entries.top() = made;
        open.pop();
        return cson_OK;
    }

    int key(const char* text, std::uint32_t length);

    int integer(std::int32_t number) { return push(build_int(&pool, number)); }

    int number(double number) { return push(build_double(&pool, number)); }

    int string(const char* text, std::uint32_t length) {
        return push(build_string(&pool, text, length));
    }

    int constant(cson_value* shared) { return push(shared); }

    // How many containers are open.
    std::size_t depth() const { return open.size(); }

    // True if the innermost open container is an array; one must be open.
    bool is_in_array() { return open.top().kind == cson_kind_array; }

    // Returns the tree, with a count of 0, to the caller; null when there was no value. No
    // container may be open.
    cson_value* take_root();

    // Of all values up to now, those of containers that ended included; before `take_root`.
    std::uint32_t value_count() const {
        return ended_entries + static_cast<std::uint32_t>(entries.size()) - key_count;
    }

    std::uint32_t key_count = 0;

private:
    static constexpr std::size_t KNOWN_KEYS = 256;

    struct OpenContainer {
        std::size_t first; // position of its first entry
        std::uint32_t kind;
    };

    // Puts a new or shared value on the stack, which owns it; a failure frees it.
    int push(cson_value* value) {
        if (value == nullptr)
            return cson_AllocError;
        add_owner(value);
        if (entries.push(value))
            return cson_OK;
        cson_value_release(value);
        return cson_AllocError;
    }

    cson_value* make_array(std::size_t first);
    cson_value* make_object(std::size_t first);

    Stack<cson_value*> entries;
    Stack<OpenContainer> open;
    std::uint32_t ended_entries = 0; // that are no longer on the stack, keys included
    Pool pool;
    // Keys of this tree by a hash, to be used again. Not counted: pairs of the tree own them.
    std::array<cson_value*, KNOWN_KEYS> known_keys = {};
};

} // namespace quillon::json
