// SPDX-License-Identifier: MIT
#include "open_file.h"

namespace quillon::codecs {

std::FILE* open_file(const std::filesystem::path& path, Access access) {
    return _wfopen(path.c_str(), access == Access::Read ? L"rb" : L"wb");
}

} // namespace quillon::codecs
