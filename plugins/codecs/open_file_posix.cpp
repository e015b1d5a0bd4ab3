// SPDX-License-Identifier: MIT
#include "open_file.h"

namespace quillon::codecs {

std::FILE* open_file(const std::filesystem::path& path, Access access) {
    return std::fopen(path.c_str(), access == Access::Read ? "rb" : "wb");
}

} // namespace quillon::codecs
