// SPDX-License-Identifier: MIT
// UTF-8 and the wide text of Windows.
#pragma once

#include <string>

namespace quillon::platform {

// The UTF-16 of a UTF-8 text; empty if it is not valid UTF-8.
std::wstring widen(const std::string& text);

// The UTF-8 of a UTF-16 text; empty if it has an unpaired surrogate.
std::string narrow(const std::wstring& wide);

} // namespace quillon::platform
