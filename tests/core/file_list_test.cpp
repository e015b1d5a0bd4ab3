#include "loaded_library.h"

#include "quillon/core/file_list.h"
#include "quillon/platform/paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>

using testing::ElementsAreArray;

namespace {

namespace fs = std::filesystem;

std::vector<std::string> collect(const std::string& folder, const char* filter) {
    std::vector<std::string> names;
    quillon::cFileListEntry* entry = __mFileOps_collect_files(folder.c_str(), filter);
    while (entry != nullptr) {
        const std::unique_ptr<quillon::cFileListEntry> current(entry);
        const std::unique_ptr<char[]> name(entry->name);
        names.emplace_back(entry->name);
        entry = entry->next;
    }
    return names;
}

struct Filter {
    const char* name;
    const char* folder;
    const char* filter;
    std::vector<std::string> names;
};

const std::vector<std::string> EVERY_FILE = {"A.dll", "b.so", "ball", "c.txt", "ll"};

const Filter FILTERS[] = {
    {"EveryFile", "f", ".*", EVERY_FILE},
    {"EmptyGivesFolders", "f", "", {".", "..", "linked", "sub.so"}},
    {"SeparatorsGiveFolders", "f", ";;", {".", "..", "linked", "sub.so"}},
    {"LetterCaseIsIgnored", "f", ".DLL", {"A.dll"}},
    {"SeveralEndings", "f", ";.so;.TXT;", {"b.so", "c.txt"}},
    {"EndingsAreNotTrimmed", "f", ".dll; .txt", {"A.dll"}},
    {"EndingWithoutDot", "f", "ll", {"A.dll", "ball", "ll"}},
    {"EndingLongerThanEveryName", "f", ".longer-than-that", {}},
    {"StarAmongOthersIsPlainText", "f", ".*;.so", {"b.so"}},
    {"StarWithSeparatorIsPlainText", "f", ".*;", {}},
    {"TrailingSlash", "f/", ".so", {"b.so"}},
    {"BackslashAndDoubleSlash", ".\\f//sub.so", ".*", {"inner"}},
    {"MissingFolder", "nowhere", ".*", {}},
    {"FileAsFolder", "f/b.so", ".*", {}},
};

class Listing : public testing::TestWithParam<Filter> {};

} // namespace

TEST_P(Listing, GivesTheseNames) {
    const ScratchFolder scratch;
    fs::create_directories("f/sub.so");
    std::ofstream{"f/sub.so/inner"};
    fs::create_directory_symlink("sub.so", "f/linked");
    for (const std::string& name : EVERY_FILE)
        std::ofstream{fs::path("f") / name};
    EXPECT_THAT(collect(GetParam().folder, GetParam().filter), ElementsAreArray(GetParam().names));
}

INSTANTIATE_TEST_SUITE_P(Core, Listing, testing::ValuesIn(FILTERS),
                         [](const auto& row) { return row.param.name; });

TEST(FileList, ThePatternMustStayBelowTheLimit) {
    const ScratchFolder scratch;
    for (const std::size_t length : {257u, 258u}) {
        const std::string folder = std::string(200, 'x') + "/" + std::string(length - 201, 'y');
        fs::create_directories(folder);
        std::ofstream{fs::path(folder) / "f"};
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
