// SPDX-License-Identifier: MIT
// Makes, writes, lists, copies and finds files whose names no code page of Windows has in common,
// and looks at them by their wide names. Prints what failed; the status is the number of failures.
#include "quillon/quillon.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>

#include <windows.h>

namespace {

int failures = 0;

void expect(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "file_names: %s\n", what);
    ++failures;
}

bool exists(const wchar_t* path) {
    return GetFileAttributesW(path) != INVALID_FILE_ATTRIBUTES;
}

bool lists(const char* folder, const char* filter, std::string_view name) {
    const auto* entry = __mFileOps_collect_files(folder, filter);
    while (entry != nullptr && entry->name != name)
        entry = entry->next;
    return entry != nullptr;
}

} // namespace

int main() {
    std::filesystem::remove_all(L"\u00e4"); // of an earlier run
    constexpr const char* FILE_NAME = "\u00e4/\u20ac \U0001f600.txt";
    expect(__mFileOps_create_directory("\u00e4"), "the folder is not made");
    expect(exists(L"\u00e4"), "the folder has another name");
    std::FILE* stream = nullptr;
    __mFileOps_open_for_write(stream, FILE_NAME);
    expect(stream != nullptr && std::fputs("seven b", stream) >= 0, "the file is not written");
    __mFileOps_close(stream);
    expect(exists(L"\u00e4/\u20ac \U0001f600.txt"), "the file has another name");
    expect(__mFileOps_file_exists(FILE_NAME), "the file is not found");
    expect(lists("\u00e4", ".txt", "\u20ac \U0001f600.txt"), "the file is not listed");
    __mFileOps_file_copy("\u00e4/\u0416.txt", FILE_NAME);
    expect(exists(L"\u00e4/\u0416.txt"), "the copy has another name");
    const char* const text = __mFileOps_create_string_from_file("\u00e4/\u0416.txt");
    expect(text != nullptr && std::strcmp(text, "seven b") == 0, "the copy is not read");
    expect(!__mFileOps_file_exists("\xe4"), "a name that is not UTF-8 is found");
    expect(!__mFileOps_create_directory("\xe4"), "a name that is not UTF-8 is made");
    return failures;
}
