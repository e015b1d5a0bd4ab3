// SPDX-License-Identifier: MIT
#include "number_option.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <sstream>

namespace tool {
namespace {

std::string text_of(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

} // namespace

CLI::Option* add_number(CLI::App& app, const std::string& name, double& value, double least,
                        double most, const std::string& help) {
    const auto fault = [=](const std::string& text) -> std::string {
        double number = 0;
        const char* const end = text.data() + text.size();
        const auto read = std::from_chars(text.data(), end, number);
        // Written so that NaN is outside.
        if (read.ec == std::errc() && read.ptr == end && number >= least && number <= most)
            return "";
        return "'" + text + "' is not a number from " + text_of(least) + " to " + text_of(most);
    };
    return app.add_option(name, value, help)->check(fault);
}

} // namespace tool
