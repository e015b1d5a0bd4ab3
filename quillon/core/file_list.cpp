#include "quillon/core/file_list.h"

#include "quillon/containers/names.h"
#include "quillon/core/modules.h"
#include "quillon/platform/folders.h"
#include "quillon/platform/paths.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon {
namespace {

// A chain that frees itself unless it is released.
class Chain {
public:
    Chain() = default;

    explicit Chain(cFileListEntry* first) : head(first) {
        while (*end != nullptr)
            end = &(*end)->next;
    }

    Chain(const Chain&) = delete;
    Chain& operator=(const Chain&) = delete;

    ~Chain() {
        while (head != nullptr)
            drop_first();
    }

    void append(const std::string& name) {
        auto text = std::make_unique<char[]>(name.size() + 1);
        std::memcpy(text.get(), name.c_str(), name.size() + 1);
        *end = new cFileListEntry{text.get(), nullptr};
        static_cast<void>(text.release());
        end = &(*end)->next;
    }

    cFileListEntry* release() { return std::exchange(head, nullptr); }

    const cFileListEntry* first() const { return head; }

    void drop_first() {
        const std::unique_ptr<cFileListEntry> dropped(head);
        const std::unique_ptr<char[]> name(dropped->name);
        head = dropped->next;
    }

private:
    cFileListEntry* head = nullptr;
    cFileListEntry** end = &head;
};

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
    for (const std::string_view ending : endings)
        if (name.size() >= ending.size() &&
            equal_ignoring_case(name.substr(name.size() - ending.size()), ending))
            return true;
    return false;
}

} // namespace

void modFileOperations::collect_files(const std::string& folder, DSParray<std::string>& names,
                                      const std::string& filter) const {
    Chain chain(__mFileOps_collect_files(folder.c_str(), filter.c_str()));
    for (; chain.first() != nullptr; chain.drop_first()) {
        auto name = std::make_unique<std::string>(chain.first()->name);
        names.add(name.get(), DSP_APPEND);
        static_cast<void>(name.release());
    }
}

} // namespace quillon

quillon::cFileListEntry* __mFileOps_collect_files(const char* folder, const char* filter) {
    using namespace quillon;
    std::string pattern = platform::normalise_path(std::string(folder) + "/*");
    if (platform::wide_length(pattern) >= platform::PATH_LIMIT)
        return nullptr;
    pattern.pop_back(); // the "*": every entry is wanted

    const std::vector<std::string_view> endings = split_filter(filter);
    const bool every_file = std::strcmp(filter, ".*") == 0;
    Chain chain;
    for (const platform::FolderEntry& entry : platform::list_folder(pattern)) {
        const bool wanted =
            entry.is_folder ? endings.empty() : every_file || ends_with_one_of(entry.name, endings);
        if (wanted)
            chain.append(entry.name);
    }
    return chain.release();
}
