// SPDX-License-Identifier: MIT
// Tables of text.
#pragma once

#include <string>
#include <vector>

namespace tool {

using Row = std::vector<std::string>;

inline constexpr const char* NOTHING = "-";

// Text of foreign code as a cell: a line's end or an escape in it would break the table.
std::string printable(std::string text);

// Prints rows of equal length, the first of which are the headings.
void print_table(const std::vector<Row>& rows);

} // namespace tool
