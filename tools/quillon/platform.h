// The tool's own calls of the operating system.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace tool::platform {

inline constexpr const char* LIBRARY_EXTENSION = ".so";

std::filesystem::path executable();

// Whether a person reads the standard output as it is written.
bool output_is_terminal();

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
        void operator()(std::FILE* file) const;
    };

    std::unique_ptr<std::FILE, CloseFile> kept;
    int output;
};

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
    void* library = nullptr;
    std::string why_not;
};

// Of a loaded library's handle: the file, the function that it exports itself (null if there is
// none), and whether it holds an address.
std::filesystem::path file_of(void* library);
void* own_function(void* library, const char* name);
bool holds(void* library, void* address);

} // namespace tool::platform
