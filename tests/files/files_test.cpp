// SPDX-License-Identifier: MIT
#include "quillon/files/files.h"

#include "tests/scratch_folder.h"

#include <gmock/gmock.h>

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

// A folder of its own for each test, which the test runs in; "folder" and "pipe" are there.
class Files : public testing::Test, ScratchFolder {
protected:
    Files() {
        fs::create_directory("folder");
#if !defined(_WIN32)
        EXPECT_EQ(0, mkfifo("pipe", 0600));
#endif
    }

    static void write(const std::string& path, const std::string& bytes) {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    // The text that create_string returns; nothing for null.
    static std::optional<std::string> string_from(const std::string& path) {
        const std::unique_ptr<char[]> text(__mFileOps_create_string_from_file(path.c_str()));
        return text != nullptr ? std::optional<std::string>(text.get()) : std::nullopt;
    }
};

TEST_F(Files, TextIsReadToTheLengthOfTheFile) {
    for (const std::string& bytes :
         {std::string(), std::string("one\ntwo\n"), std::string(100'000, 'x')}) {
        write("text", bytes);
        EXPECT_EQ(bytes, string_from("text"));
    }
#if !defined(_WIN32)
    EXPECT_EQ("", string_from("/dev/zero")); // endless, and without a length
    EXPECT_EQ("", string_from("/proc/self/status"));
#endif
}

TEST_F(Files, TextThatCannotBeReadIsRefusedWithOneLine) {
    for (const std::string path : {"missing", "folder", "pipe"}) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(std::nullopt, string_from(path));
        EXPECT_EQ("Can't open file '" + path + "' for reading\n",
                  testing::internal::GetCapturedStderr());
    }
    write("huge", "x");
    std::error_code failed;
    fs::resize_file("huge", std::uintmax_t{1} << 43, failed);
    if (failed || sizeof(long) < 8)
        GTEST_SKIP() << "the file system, or a long, has no files of this size";
    testing::internal::CaptureStderr();
    EXPECT_EQ(std::nullopt, string_from("huge"));
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::EndsWith("Can't new space for 'huge'\n"));
}

TEST_F(Files, StreamsOpenOrAreNull) {
    std::FILE* stream = stderr;
    for (const char* path : {"missing", "folder"}) {
        __mFileOps_open_for_read(stream, path);
        EXPECT_EQ(nullptr, stream);
    }
    stream = stderr;
    __mFileOps_open_for_write(stream, "folder");
    EXPECT_EQ(nullptr, stream);
    __mFileOps_close(stream);

    write("file", "something longer");
    __mFileOps_open_for_write(stream, "file");
    std::fputs("\r\n", stream);
    __mFileOps_close(stream);
    __mFileOps_open_for_read(stream, "file");
    EXPECT_EQ('\r', std::fgetc(stream));
    __mFileOps_close(stream);
    EXPECT_EQ("\r\n", text_of("file"));
}

TEST_F(Files, CopyTakesEveryByteAndReportsNothing) {
    for (const std::size_t size : {0, 1, 16383, 16384, 16385, 100'000}) {
        std::string bytes(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<char>(i * 7 + i / 251);
        write("source", bytes);
        write("destination", std::string(200'000, 'x'));
        __mFileOps_file_copy("destination", "source");
        EXPECT_EQ(bytes, text_of("destination")) << size;
    }
    __mFileOps_file_copy("nowhere/destination", "source");
    EXPECT_FALSE(fs::exists("nowhere"));
    __mFileOps_file_copy("./source", "source"); // not onto itself
    EXPECT_EQ(100'000U, fs::file_size("source"));
    for (const char* unreadable : {"missing", "folder"}) {
        write("destination", "old");
        __mFileOps_file_copy("destination", unreadable);
        EXPECT_EQ(0U, fs::file_size("destination"));
    }
}

TEST_F(Files, FoldersAreMadeOneLevelAtATime) {
    struct Case {
        std::string path;
        bool made;
    };

    for (const auto& [path, made] : {
             Case{"a/b", false}, {"a", true}, {"a", false}, {"a\\b", true}, {"a//b\\\\c", true},
                 {"", false}, {"." + std::string(300, '/') + "z", true}, // every second slash goes
#if !defined(_WIN32) // whose own limit is a little lower
                 {"./././././././././././././././" + std::string(229, 'n'), true},
#endif
             {
                 "./././././././././././././././" + std::string(230, 'n'), false
             }
         })
        EXPECT_EQ(made, __mFileOps_create_directory(path.c_str())) << path;
    for (const char* path : {"a/b/c", "./z", "folder"})
        EXPECT_TRUE(__mFileOps_file_exists(path)) << path;
    EXPECT_FALSE(__mFileOps_file_exists("a/b/d"));
}

TEST(PathNames, ExtensionNeedsTwoCharactersAhead) {
    const auto& has = __mFileOps_check_for_extension;
    EXPECT_FALSE(has(".dll", ".dll"));
    EXPECT_FALSE(has("a.dll", ".dll"));
    EXPECT_TRUE(has("ab.dll", ".dll"));
    EXPECT_TRUE(has("a.dll", "dll"));
    EXPECT_FALSE(has("x.DLL", ".dll"));
    EXPECT_TRUE(has("ab", ""));
    EXPECT_FALSE(has("a", ""));
}

TEST(PathNames, AreTakenApart) {
    struct Case {
        std::string path, extension, file, folder;
    };

    const std::string longest = std::string(32'000, 'd') + "/" + std::string(764, 'f') + ".x";
    const Case cases[] = {
        {"a.b.c", "c", "a.b", ""},
        {"a.b/c", "b/c", "", "a.b"},
        {"abc", "", "", ""},
        {"dir/file.tar.gz", "gz", "file.tar", "dir"},
        {"dir/file", "", "", "dir"},
        {"dir/.hidden", "hidden", "", "dir"},
        {"dir/sub\\file.txt", "txt", "file", "dir/sub"},
        {"/file", "", "", ""},
        {"a.x/", "x/", "", "a.x"},
        {"", "", "", ""},
        {longest, "x", std::string(764, 'f'), std::string(32'000, 'd')},
        {longest + "y", "", "", ""},
    };
    for (const auto& [path, extension, file, folder] : cases) {
        const auto part = [&text = path](void (*take)(char*, const char*)) {
            std::string in_place = text;
            take(in_place.data(), in_place.data());
            return std::string(in_place.c_str()); // NOLINT(readability-redundant-string-cstr)
        };
        EXPECT_EQ(extension, part(__mFileOps_get_pathname_extention)) << path;
        EXPECT_EQ(file, part(__mFileOps_get_pathname_filename)) << path;
        EXPECT_EQ(folder, part(__mFileOps_get_pathname_path)) << path;
    }
}

} // namespace
