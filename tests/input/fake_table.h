// An input table whose answers a test sets and whose questions it sees.
#pragma once

#include "quillon/core/modules.h"

#include <cstdint>
#include <map>
#include <new>
#include <utility>
#include <vector>

namespace quillon_test {

using Question = std::pair<char, std::uint16_t>; // the first letter of the entry, and the code

// Connects itself to the input module for as long as it lives.
class FakeTable {
public:
    FakeTable() {
        asked.clear();
        yes.clear();
        values.clear();
        __mInput_instance()->interface = reinterpret_cast<void**>(new quillon::InputTable{
            {}, key<'D'>, key<'P'>, key<'H'>, key<'R'>, key<'C'>, axis<'V'>, axis<'M'>, {}});
    }

    FakeTable(const FakeTable&) = delete;
    FakeTable& operator=(const FakeTable&) = delete;

    ~FakeTable() {
        delete reinterpret_cast<quillon::InputTable*>(
            std::exchange(__mInput_instance()->interface, nullptr));
    }

    static inline std::vector<Question> asked;
    static inline std::map<Question, bool> yes;
    static inline std::map<Question, float> values;

private:
    template <char entry>
    static bool key(std::uint16_t code) {
        asked.emplace_back(entry, code);
        return yes[{entry, code}];
    }

    template <char entry>
    static float axis(std::uint16_t code) {
        asked.emplace_back(entry, code);
        return values[{entry, code}];
    }
};

} // namespace quillon_test
