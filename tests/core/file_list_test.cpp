// SPDX-License-Identifier: MIT
#include "loaded_library.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;

std::vector<std::string> collect(const std::string& folder, const char* filter) {
    std::vector<std::string> names;
    quillon::DSParray<std::string> found;
    quillon::modFileOperations().collect_files(folder, found, filter);
    for (std::uint32_t i = 0; i < found.count(); ++i)
        names.push_back(*found.get(i));
    return names;
}

} // namespace

TEST(FileList, HoldsTheNamesThatTheFilterSelects) {
    const std::vector<std::string> every_file = {"A.dll", "b.so", "ball", "c.txt", "ll"};
    const ScratchFolder scratch;
    fs::create_directories("f/sub.so");
    std::ofstream("f/sub.so/inner").close();
#if defined(_WIN32) // where links need a privilege
    fs::create_directory("f/linked");
#else
    fs::create_directory_symlink("sub.so", "f/linked");
#endif
    for (const std::string& name : every_file)
        std::ofstream(fs::path("f") / name).close();

    const struct {
        const char* name;
        const char* folder;
        const char* filter;
        std::vector<std::string> names;
    } cases[] = {
        {"every file", "f", ".*", every_file},
        {"empty selects folders", "f", "", {".", "..", "linked", "sub.so"}},
        {"separators select folders", "f", ";;", {".", "..", "linked", "sub.so"}},
        {"several endings in any case", "f", ";.SO;.txt;", {"b.so", "c.txt"}},
        {"endings are not trimmed", "f", ".dll; .txt", {"A.dll"}},
        {"ending without dot", "f", "ll", {"A.dll", "ball", "ll"}},
        {"ending longer than every name", "f", ".longer-than-that", {}},
        {"star among others is plain text", "f", ".*;.so", {"b.so"}},
        {"backslash and double slash", ".\\f//sub.so", ".*", {"inner"}},
        {"missing folder", "nowhere", ".*", {}},
    };

    for (const auto& row : cases)
        EXPECT_EQ(collect(row.folder, row.filter), row.names) << row.name;
}

// Windows itself takes no path that long.
#if !defined(_WIN32)
TEST(FileList, ThePatternMustStayBelowTheLimit) {
    const ScratchFolder scratch;
    for (const std::size_t length : {257u, 258u}) {
        const std::string folder = std::string(200, 'x') + "/" + std::string(length - 201, 'y');
        fs::create_directories(folder);
        std::ofstream(fs::path(folder) / "f").close();
        // Slashes that normalising removes do not count.
        EXPECT_EQ(collect(folder + "/", ".*").size(), length == 257 ? 1u : 0u) << length;
    }
}
#endif
