// SPDX-License-Identifier: MIT
#include "nearest_word.h"

#include <algorithm>
#include <numeric>

namespace tool {
namespace {

std::size_t edit_distance(std::string_view from, std::string_view to) {
    // The distances from the letters of `from` read so far to each beginning of `to`.
    std::vector<std::size_t> distance(to.size() + 1);
    std::iota(distance.begin(), distance.end(), std::size_t{0});
    for (const char letter : from) {
        std::size_t diagonal = distance[0]++;
        for (std::size_t i = 0; i < to.size(); ++i) {
            const std::size_t replaced = diagonal + (letter == to[i] ? 0 : 1);
            diagonal = distance[i + 1];
            distance[i + 1] = std::min({replaced, distance[i] + 1, diagonal + 1});
        }
    }
    return distance.back();
}

} // namespace

std::string nearest_word(std::string_view word, const std::vector<std::string>& known) {
    std::size_t smallest = (word.size() + 1) / 2 + 1;
    std::string nearest;
    for (const std::string& candidate : known) {
        const std::size_t distance = edit_distance(word, candidate);
        if (distance < smallest) {
            smallest = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

} // namespace tool
