#include "loaded_library.h"

#include "quillon/core/file_list.h"
#include "quillon/platform/paths.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

namespace fs = std::filesystem;

std::vector<std::string> collect(const std::string& folder, const char* filter) {
    std::vector<std::string> names;
    const quillon::FileListOwner files(__mFileOps_collect_files(folder.c_str(), filter));
    for (const auto* file = files.get(); file != nullptr; file = file->next)
        names.emplace_back(file->name);
    return names;
}

} // namespace

TEST(FileList, HoldsTheNamesThatTheFilterSelects) {
    const std::vector<std::string> every_file = {"A.dll", "b.so", "ball", "c.txt", "ll"};
    const ScratchFolder scratch;
    fs::create_directories("f/sub.so");
    std::ofstream("f/sub.so/inner").close();
    fs::create_directory_symlink("sub.so", "f/linked");
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
        {"star with separator is plain text", "f", ".*;", {}},
        {"trailing slash", "f/", ".so", {"b.so"}},
        {"backslash and double slash", ".\\f//sub.so", ".*", {"inner"}},
        {"missing folder", "nowhere", ".*", {}},
        {"file as folder", "f/b.so", ".*", {}},
    };

    for (const auto& row : cases) {
        EXPECT_EQ(collect(row.folder, row.filter), row.names) << row.name;
        quillon::DSParray<std::string> names;
        quillon::modFileOperations().collect_files(row.folder, names, row.filter);
        EXPECT_EQ(names.count(), row.names.size()) << row.name;
        EXPECT_TRUE(names.count() == 0 || *names.get(0) == row.names[0]) << row.name;
    }
}

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

TEST(Paths, AreNormalisedInOnePass) {
    const std::pair<const char*, const char*> rows[] = {
        {"a\\b//c", "a/b/c"}, {"a///b", "a//b"}, {"////", "//"}, {"", ""},
        {"a/", "a/"},         {"\\\\x", "/x"},   {"/", "/"},
    };
    for (const auto& [path, normal] : rows)
        EXPECT_EQ(quillon::platform::normalise_path(path), normal) << path;
}
