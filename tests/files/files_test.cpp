#include "quillon/files/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include <sys/stat.h>

// An address sanitizer lets large allocations fail as the allocator does, and asks for this name.
extern "C" const char* __asan_default_options();

extern "C" const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace {

namespace fs = std::filesystem;

// A folder of its own for each test, which the test runs in.
class Files : public testing::Test {
protected:
    Files() : before(fs::current_path()) {
        std::string name = (fs::temp_directory_path() / "quillon_files_XXXXXX").string();
        folder = mkdtemp(name.data());
        fs::current_path(folder);
    }

    ~Files() override {
        fs::current_path(before);
        fs::remove_all(folder);
    }

    static void write(const std::string& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    static std::string read(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // What create_string gives; nothing for null.
    static std::optional<std::string> text_of(const std::string& path) {
        const std::unique_ptr<char[]> text(__mFileOps_create_string_from_file(path.c_str()));
        return text != nullptr ? std::optional<std::string>(text.get()) : std::nullopt;
    }

private:
    fs::path before;
    fs::path folder;
};

TEST_F(Files, TextIsReadWhole) {
    for (const std::string& bytes :
         {std::string(), std::string("one\ntwo\n"), std::string(100'000, 'x')}) {
        write("text", bytes);
        EXPECT_EQ(bytes, text_of("text"));
    }
}

TEST_F(Files, WhatHasNoTextIsRefusedWithOneLine) {
    fs::create_directory("folder");
    ASSERT_EQ(0, mkfifo("pipe", 0600));
    for (const std::string path : {"missing", "folder", "pipe", "missing/text"}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(std::nullopt, text_of(path));
        EXPECT_EQ("Can't open file '" + path + "' for reading\n",
                  testing::internal::GetCapturedStderr());
    }
}

TEST_F(Files, LengthIsTheOneAtTheOpening) {
    EXPECT_EQ("", text_of("/dev/zero")); // endless, and without a length
    EXPECT_EQ("", text_of("/proc/self/status"));
    write("nul", std::string("ab\0cd", 5));
    EXPECT_EQ("ab", text_of("nul"));
}

TEST_F(Files, TextTooLargeForMemoryIsRefusedWithOneLine) {
    write("huge", "x");
    std::error_code failed;
    fs::resize_file("huge", std::uintmax_t{1} << 43, failed);
    if (failed)
        GTEST_SKIP() << "the file system has no sparse files of this size";
    testing::internal::CaptureStderr();
    EXPECT_EQ(std::nullopt, text_of("huge"));
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::EndsWith("Can't new space for 'huge'\n"));
}

TEST_F(Files, StreamsOpenOrAreNull) {
    std::FILE* stream = stderr;
    __mFileOps_open_for_read(stream, "missing");
    EXPECT_EQ(nullptr, stream);
    __mFileOps_close(stream);
    fs::create_directory("folder");
    stream = stderr;
    __mFileOps_open_for_read(stream, "folder");
    EXPECT_EQ(nullptr, stream);
    stream = stderr;
    __mFileOps_open_for_write(stream, "folder");
    EXPECT_EQ(nullptr, stream);

    write("file", "something longer");
    __mFileOps_open_for_write(stream, "file");
    ASSERT_NE(nullptr, stream);
    std::fputs("\r\n", stream);
    __mFileOps_close(stream);
    __mFileOps_open_for_read(stream, "file");
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ('\r', std::fgetc(stream));
    __mFileOps_close(stream);
    EXPECT_EQ("\r\n", read("file"));
}

TEST_F(Files, CopyTakesEveryByte) {
    for (const std::size_t size : {0, 1, 16383, 16384, 16385, 100'000}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i * 7 + i / 251);
        write("source", bytes);
        write("destination", std::string(200'000, 'x'));
        __mFileOps_file_copy("destination", "source");
        EXPECT_EQ(bytes, read("destination")) << size;
    }
}

TEST_F(Files, CopyThatCannotBeDone) {
    write("file", "old");
    __mFileOps_file_copy("file", "missing");
    EXPECT_TRUE(fs::exists("file"));
    EXPECT_EQ("", read("file"));
    write("file", "kept");
    __mFileOps_file_copy("missing/destination", "file");
    EXPECT_FALSE(fs::exists("missing"));
    fs::create_symlink("file", "link");
    for (const char* self : {"file", "./file", "link"})
        __mFileOps_file_copy(self, "file");
    EXPECT_EQ("kept", read("file"));
    fs::create_directory("folder");
    __mFileOps_file_copy("file", "folder");
    EXPECT_EQ("", read("file"));
}

TEST_F(Files, ExistenceIsThatOfFilesAndFolders) {
    write("file", "");
    fs::create_directory("folder");
    EXPECT_TRUE(__mFileOps_file_exists("file"));
    EXPECT_TRUE(__mFileOps_file_exists("folder"));
    EXPECT_TRUE(__mFileOps_file_exists("folder/"));
    EXPECT_FALSE(__mFileOps_file_exists("missing"));
    EXPECT_FALSE(__mFileOps_file_exists(""));
    EXPECT_FALSE(__mFileOps_file_exists(std::string(100'000, 'a').c_str()));
}

TEST_F(Files, FoldersAreMadeOneLevelAtATime) {
    EXPECT_FALSE(__mFileOps_create_directory("a/b"));
    EXPECT_FALSE(fs::exists("a"));
    EXPECT_TRUE(__mFileOps_create_directory("a"));
    EXPECT_FALSE(__mFileOps_create_directory("a"));
    EXPECT_TRUE(__mFileOps_create_directory("a\\b"));
    EXPECT_TRUE(__mFileOps_create_directory("a//b\\\\c"));
    EXPECT_TRUE(fs::is_directory("a/b/c"));
    EXPECT_FALSE(__mFileOps_create_directory(""));
}

TEST_F(Files, FolderPathHasFewerThan260CharactersOnceNormalised) {
    const auto path = [](std::size_t length) { // "./././name"
        std::string text;
        while (text.size() + 60 < length)
            text += "./";
        return text + std::string(length - text.size(), 'n');
    };
    EXPECT_TRUE(__mFileOps_create_directory(path(259).c_str()));
    EXPECT_FALSE(__mFileOps_create_directory(path(260).c_str()));
    EXPECT_FALSE(__mFileOps_create_directory(std::string(1000, 'a').c_str()));
    // Every second of the 300 slashes goes.
    EXPECT_TRUE(__mFileOps_create_directory(("." + std::string(300, '/') + "z").c_str()));
}

struct ExtensionCase {
    const char *name, *extension;
    bool result;
};

TEST(PathNames, ExtensionNeedsTwoCharactersAhead) {
    const ExtensionCase cases[] = {{".dll", ".dll", false},  {"a.dll", ".dll", false},
                                   {"ab.dll", ".dll", true}, {"a.dll", "dll", true},
                                   {"x.DLL", ".dll", false}, {"ab.dlx", ".dll", false},
                                   {"ab", "", true},         {"a", "", false},
                                   {"", "", false},          {"ll", "xlonger", false}};
    for (const auto& [name, extension, result] : cases)
        EXPECT_EQ(result, __mFileOps_check_for_extension(name, extension)) << name << extension;
    EXPECT_FALSE(__mFileOps_check_for_extension("ab.dll", std::string(65540, 'l').c_str()));
}

struct PartsCase {
    std::string path, extension, file, folder;
};

TEST(PathNames, AreTakenApart) {
    const std::string longest = std::string(32'000, 'd') + "/" + std::string(764, 'f') + ".x";
    const PartsCase cases[] = {
        {"a.b.c", "c", "a.b", ""},
        {"a.b/c", "b/c", "", "a.b"},
        {"abc", "", "", ""},
        {"dir/file.tar.gz", "gz", "file.tar", "dir"},
        {"dir/file", "", "", "dir"},
        {".hidden", "hidden", "", ""},
        {"dir/.hidden", "hidden", "", "dir"},
        {"dir/sub\\file.txt", "txt", "file", "dir/sub"},
        {"dir\\sub/file.txt", "txt", "file", "dir\\sub"},
        {"file.txt", "txt", "file", ""},
        {"/file", "", "", ""},
        {"/file.x", "x", "file", ""},
        {"a.x/", "x/", "", "a.x"},
        {"a//b.x", "x", "b", "a/"},
        {"a.", "", "a", ""},
        {"", "", "", ""},
        {".", "", "", ""},
        {"/", "", "", ""},
        {longest, "x", std::string(764, 'f'), std::string(32'000, 'd')},
        {longest + "y", "", "", ""},
    };
    for (const PartsCase& row : cases) {
        const auto part = [&](void (*take)(char*, const char*)) {
            std::string output = row.path + '\0';
            take(output.data(), row.path.c_str());
            std::string in_place = row.path; // the result may take the place of the path
            take(in_place.data(), in_place.data());
            output.resize(output.find('\0'));
            EXPECT_STREQ(output.c_str(), in_place.c_str());
            return output;
        };
        EXPECT_EQ(row.extension, part(__mFileOps_get_pathname_extention)) << row.path;
        EXPECT_EQ(row.file, part(__mFileOps_get_pathname_filename)) << row.path;
        EXPECT_EQ(row.folder, part(__mFileOps_get_pathname_path)) << row.path;
    }
}

} // namespace
