// SPDX-License-Identifier: MIT
// The tool's own calls of the operating system.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace tool::platform {

#if defined(_WIN32)
inline constexpr const char* LIBRARY_EXTENSION = ".dll";
#else
inline constexpr const char* LIBRARY_EXTENSION = ".so";
#endif

// The path that a text names: UTF-8 on Windows, and whatever bytes elsewhere.
inline std::filesystem::path to_path(const std::string& text) {
    return std::u8string(text.begin(), text.end());
}

// The arguments of `main`, in UTF-8; a terminal takes UTF-8 from now on.
std::vector<std::string> begin_program(int argc, char** argv);

std::filesystem::path executable();

// Whether a person reads the standard output as it is written.
bool output_is_terminal();

// The columns of the terminal behind the standard output; 80 if there is none.
int output_columns();

// A new empty folder, for remove_folder.
std::filesystem::path make_scratch_folder();

// Removes a folder and all that is in it. One that holds a loaded library may stay until this
// program has ended.
void remove_folder(const std::filesystem::path& folder);

// Makes another name for a file, or a copy where the system has no such names.
void link_file(const std::filesystem::path& file, const std::filesystem::path& name);

// How a process of this program ended.
struct ProcessRun {
    std::string out;
    std::string error;
    int exit_code = 0;
    std::string fate; // in words if a signal or the time limit ended it; else empty
};

// Runs this program with `arguments` and without input; ends it, and what it started, after
// `seconds` and where the user interrupts.
//
// Throws Failure if it cannot be started and after an interruption.
ProcessRun run_self(const std::vector<std::string>& arguments, double seconds);

// In such a process: keeps the standard output for `write_report` and sends what others print to
// the error stream. A crash then leaves no core file.
void prepare_child();
void write_report(const std::string& text);

// Keeps windows off the user's desktop for the rest of the process.
void hide_display();

// Catches what the process writes to its standard output as long as the object lives.
class OutputCapture {
public:
    OutputCapture();
    OutputCapture(const OutputCapture&) = delete;
    OutputCapture& operator=(const OutputCapture&) = delete;
    ~OutputCapture();

    // The text that was written so far.
    std::string text() const;

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, CloseFile> kept;
    int output;
};

// Why a file is not to be handed to the system's loader, which waits at a pipe and ends the process
// on some damaged files; empty if it may be.
std::string file_fault(const std::filesystem::path& file);

// A library that the tool loads by itself, as the host does not report why it refused a file.
class LibraryFile {
public:
    explicit LibraryFile(const std::filesystem::path& file);
    LibraryFile(const LibraryFile&) = delete;
    LibraryFile& operator=(const LibraryFile&) = delete;
    ~LibraryFile();

    // Null if it does not load.
    void* handle() const { return library; }

    // Why it does not load, in plain words and, where it was asked, the loader's; empty if it does.
    const std::string& reason() const { return why_not; }

private:
    // Null, and the reason, if it does not load.
    static void* load(const std::filesystem::path& file, std::string& reason);

    std::string why_not;
    void* library;
};

// Of a loaded library's handle: the file, the function that it exports itself (null if there is
// none), and whether it holds an address.
std::filesystem::path file_of(void* library);
void* own_function(void* library, const char* name);
bool holds(void* library, void* address);

} // namespace tool::platform
