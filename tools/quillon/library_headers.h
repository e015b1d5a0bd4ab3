// SPDX-License-Identifier: MIT
// The headers of a library's file, read without the system's loader, which ends the process on some
// damaged files.
#pragma once

#include <filesystem>
#include <string>

namespace tool::platform {

// Why a regular file is no library of this machine; empty if its headers are in order.
std::string header_fault(const std::filesystem::path& path);

} // namespace tool::platform
