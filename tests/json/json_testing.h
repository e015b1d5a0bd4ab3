// SPDX-License-Identifier: MIT
// What the tests and the fuzz harnesses of the JSON component share.
#pragma once

#include "quillon/json/containers.h"
#include "quillon/json/parser.h"
#include "quillon/json/writer.h"

#include <memory>
#include <random>
#include <string>
#include <string_view>

namespace json_testing {

struct Releaser {
    void operator()(quillon::cson_value* value) const { quillon::cson_value_release(value); }
};

using Value = std::unique_ptr<quillon::cson_value, Releaser>;

// What a reading came to.
struct Outcome {
    int code = -1;
    quillon::cson_read_info info;
    Value value;
};

// What `read`, a call with a value and an info to fill in, comes to.
template <typename Read>
Outcome outcome_of(Read read) {
    Outcome outcome;
    quillon::cson_value* value = nullptr;
    outcome.code = read(&value, &outcome.info);
    outcome.value.reset(value);
    return outcome;
}

// Reads by the block, or by a reader that is asked for every byte.
Outcome read_whole(std::string_view text, const quillon::cson_read_options& options = {});
Outcome read_bytewise(std::string_view text, const quillon::cson_read_options& options = {});

// Outcomes and trees as texts that differ when they do, in any bit of a value.
//
// Integers are in decimal, doubles exactly, in hex; containers have their capacity; "-" is null.
std::string text_of(const Outcome& outcome);
std::string tree_text(const quillon::cson_value* value);

// The tree of a text that must be valid.
Value tree(std::string_view text);

// The text that a tree is written as, or "code N".
std::string text_of(const quillon::cson_value* value,
                    const quillon::cson_write_options& options = {});

// A random text of an array or object, whose numbers and strings survive being written and read.
std::string random_json(std::mt19937& engine, int depth);

} // namespace json_testing
