// SPDX-License-Identifier: MIT
#include "platform.h"

#include "command.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <shellapi.h>

namespace fs = std::filesystem;

namespace tool::platform {
namespace {

const char* plain_reason(DWORD error) {
    switch (error) {
    case ERROR_PROC_NOT_FOUND:
        return "missing symbol: ";
    case ERROR_MOD_NOT_FOUND:
        return "missing dependency: ";
    default:
        return "does not load: ";
    }
}

fs::path path_of_module(HMODULE module) {
    std::wstring name(32'768, L'\0'); // no path is longer
    name.resize(GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size())));
    return name;
}

} // namespace

std::vector<std::string> begin_program(int /*argc*/, char** /*argv*/) {
    SetConsoleOutputCP(CP_UTF8);
    const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
    if (DWORD mode = 0; GetConsoleMode(console, &mode) != 0)
        SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
    int count = 0;
    const std::unique_ptr<wchar_t*, HLOCAL (*)(HLOCAL)> words(
        CommandLineToArgvW(GetCommandLineW(), &count), LocalFree);
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i)
        arguments.push_back(fs::path(words.get()[i]).string()); // which is UTF-8
    return arguments;
}

fs::path executable() {
    return path_of_module(nullptr);
}

int output_columns() {
    CONSOLE_SCREEN_BUFFER_INFO info;
    return GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) != 0
               ? info.srWindow.Right - info.srWindow.Left + 1
               : 80;
}

bool output_is_terminal() {
    return _isatty(_fileno(stdout)) != 0;
}

// The file removes itself where it is closed.
OutputCapture::OutputCapture() : output(_dup(_fileno(stdout))) {
    wchar_t name[MAX_PATH];
    if (GetTempFileNameW(fs::temp_directory_path().c_str(), L"out", 0, name) != 0)
        kept.reset(_wfopen(name, L"w+bTD"));
    if (kept == nullptr || output < 0)
        throw Failure(
            "cannot set the standard output aside; is the folder for temporary files full?");
    std::fflush(stdout);
    _dup2(_fileno(kept.get()), _fileno(stdout));
}

OutputCapture::~OutputCapture() {
    std::fflush(stdout);
    _dup2(output, _fileno(stdout));
    _close(output);
}

// The standard output goes on where it was, as both have one position.
std::string OutputCapture::text() const {
    std::fflush(stdout);
    const int file = _fileno(kept.get());
    const long long end = _telli64(file);
    std::string written(static_cast<std::size_t>(end), '\0');
    _lseeki64(file, 0, SEEK_SET);
    written.resize(static_cast<std::size_t>(
        std::max(0, _read(file, written.data(), static_cast<unsigned>(written.size())))));
    _lseeki64(file, end, SEEK_SET);
    return written;
}

void* LibraryFile::load(const fs::path& file, std::string& reason) {
    const HMODULE library = LoadLibraryW(file.c_str());
    if (library == nullptr) {
        const DWORD error = GetLastError();
        reason = plain_reason(error) + std::system_category().message(static_cast<int>(error));
    }
    return library;
}

LibraryFile::~LibraryFile() {
    if (library != nullptr)
        FreeLibrary(static_cast<HMODULE>(library));
}

fs::path file_of(void* library) {
    return path_of_module(static_cast<HMODULE>(library));
}

void* own_function(void* library, const char* name) {
    void* const function =
        reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
    return function != nullptr && holds(library, function) ? function : nullptr;
}

bool holds(void* library, void* address) {
    HMODULE holder = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                  GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                              static_cast<const wchar_t*>(address), &holder) != 0 &&
           holder == library;
}

} // namespace tool::platform
