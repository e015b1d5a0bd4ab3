// SPDX-License-Identifier: MIT
#include "quillon/core/file_list.h"

#include "quillon/containers/name_hash.h"
#include "quillon/core/matching_names.h"
#include "quillon/platform/folders.h"
#include "quillon/platform/paths.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

using namespace quillon;

namespace quillon {
namespace {

std::vector<std::string_view> split_filter(std::string_view filter) {
    std::vector<std::string_view> endings;
    while (!filter.empty()) {
        const std::size_t length = std::min(filter.find(';'), filter.size());
        if (length > 0)
            endings.push_back(filter.substr(0, length));
        filter.remove_prefix(std::min(length + 1, filter.size()));
    }
    return endings;
}

bool ends_with_one_of(std::string_view name, const std::vector<std::string_view>& endings) {
    return std::ranges::any_of(endings, [name](std::string_view ending) {
        return name.size() >= ending.size() &&
               equal_ignoring_case(name.substr(name.size() - ending.size()), ending);
    });
}

// The caller owns the entry.
cFileListEntry* new_entry(const std::string& name) {
    auto text = std::make_unique<char[]>(name.size() + 1);
    std::memcpy(text.get(), name.c_str(), name.size() + 1);
    auto entry = std::make_unique<cFileListEntry>();
    *entry = {text.release(), nullptr};
    return entry.release();
}

} // namespace

std::vector<std::string> matching_names(const char* folder, const char* filter) {
    std::vector<std::string> names;
    std::string pattern = platform::normalise_path(std::string(folder) + "/*");
    if (platform::wide_length(pattern) >= platform::PATH_LIMIT)
        return names;
    pattern.pop_back(); // the "*": every entry is wanted

    const std::vector<std::string_view> endings = split_filter(filter);
    const bool every_file = std::strcmp(filter, ".*") == 0;
    for (platform::FolderEntry& entry : platform::list_folder(pattern)) {
        const bool wanted =
            entry.is_folder ? endings.empty() : every_file || ends_with_one_of(entry.name, endings);
        if (wanted)
            names.push_back(std::move(entry.name));
    }
    return names;
}

} // namespace quillon

cFileListEntry* __mFileOps_collect_files(const char* folder, const char* filter) {
    FileListOwner first;
    cFileListEntry* last = nullptr;
    for (const std::string& name : matching_names(folder, filter)) {
        cFileListEntry* const entry = new_entry(name);
        if (last == nullptr)
            first.reset(entry);
        else
            last->next = entry;
        last = entry;
    }
    return first.release();
}
