// SPDX-License-Identifier: MIT
#include "quillon/platform/wide.h"

#include "quillon/platform/paths.h"

#include <windows.h>

namespace quillon::platform {

std::wstring widen(const std::string& text) {
    const auto convert = [&text](wchar_t* wide, int size) {
        return MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                   static_cast<int>(text.size()), wide, size);
    };
    std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
}

std::string narrow(const std::wstring& wide) {
    const auto convert = [&wide](char* text, int size) {
        return WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide.data(),
                                   static_cast<int>(wide.size()), text, size, nullptr, nullptr);
    };
    std::string text(static_cast<std::size_t>(convert(nullptr, 0)), '\0');
    convert(text.data(), static_cast<int>(text.size()));
    return text;
}

std::size_t wide_length(const std::string& text) {
    const std::size_t length = widen(text).size();
    return length == 0 ? text.size() : length;
}

} // namespace quillon::platform
