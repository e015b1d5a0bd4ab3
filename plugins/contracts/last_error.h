// SPDX-License-Identifier: MIT
// For plug-ins: the reason that a contract's last_error returns.
#pragma once

#include <array>
#include <cstddef>
#include <exception>
#include <string_view>

namespace quillon {

// The reason of the latest failure, in one line. Storing one allocates nothing, so that a reason
// can be kept when memory has run out; a long one is cut.
class LastError {
public:
    // The reason, valid and in place as long as this object; empty if there is none.
    const char* text() const { return reason.data(); }

    // Forgets the reason. Always true, for operations that end with it.
    bool clear() {
        reason[0] = '\0';
        return true;
    }

    // Keeps the reason, joined from its parts. Always false, for operations to return.
    template <typename... Parts>
    bool fail(const Parts&... parts) {
        std::array<char, SIZE> text{};
        std::size_t length = 0;
        for (const std::string_view part : {std::string_view(parts)...})
            length += part.copy(text.data() + length, SIZE - 1 - length);
        reason = text;
        return false;
    }

    // Runs `work`; true if it ends, and false with the exception's text if it throws. So no
    // exception leaves a plug-in. Without exceptions, `work` always ends.
    template <typename Work>
    bool guard(Work work) {
        clear();
#ifdef __cpp_exceptions
        try {
            work();
            return true;
        } catch (const std::exception& failure) {
            return fail(failure.what());
        } catch (...) {
            return fail("unknown exception");
        }
#else
        work();
        return true;
#endif
    }

private:
    static constexpr std::size_t SIZE = 512;
    std::array<char, SIZE> reason{};
};

} // namespace quillon
