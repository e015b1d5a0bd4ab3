// SPDX-License-Identifier: MIT
#include "table.h"

#include <algorithm>
#include <iostream>

namespace tool {

std::string printable(std::string text) {
    std::ranges::replace_if(
        text, [](char letter) { return static_cast<unsigned char>(letter) < ' '; }, '?');
    return text.empty() ? NOTHING : text;
}

void print_table(const std::vector<Row>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const Row& row : rows)
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    for (const Row& row : rows) {
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            std::cout << row[column] << std::string(widths[column] - row[column].size() + 2, ' ');
        std::cout << row.back() << "\n";
    }
}

} // namespace tool
