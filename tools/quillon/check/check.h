// SPDX-License-Identifier: MIT
// `quillon check FILE`: what a plug-in does of what the contracts promise.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillon {
struct Audio;
struct Graphics;
struct Input;
struct Network;
struct Pictures;
struct System;
} // namespace quillon

namespace tool {

// Ends a check: what the plug-in does not keep.
class Broken : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Throws Broken with that text unless the condition holds.
void expect(bool holds, const std::string& otherwise);

// The same for an operation that has to fail: it must leave a reason in last_error.
template <typename Table>
void expect_failure(const Table& table, bool has_failed, const std::string& operation) {
    expect(has_failed, operation + " does not fail");
    expect(*table.last_error() != '\0', operation + " fails without a reason in last_error");
}

// And for one that has to succeed: the reason is part of the text.
template <typename Table>
void expect_success(const Table& table, bool holds, const std::string& operation) {
    expect(holds, operation + " fails: " + table.last_error());
}

// Runs a check and reports its row.
void check(const std::string& subject, const std::string& promise,
           const std::function<void()>& work);

// A table of the same plug-in with a state of its own, or null.
using SecondTable = std::function<const quillon::Network*()>;

// The checks of each contract, on a table whose entries are filled.
void check_audio(const quillon::Audio& audio);
void check_drawing(const quillon::Graphics& graphics); // in an open surface
void check_graphics(const quillon::Graphics& graphics);
void check_input(const quillon::Input& input);
void check_network(const quillon::Network& network, const SecondTable& second);
void check_pictures(const quillon::Pictures& pictures);
void check_system(const quillon::System& system);

// The work of a child: the plug-in's file, and an empty folder to work in.
void check_file(const std::vector<std::string>& arguments);

} // namespace tool
