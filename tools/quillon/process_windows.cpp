// SPDX-License-Identifier: MIT
// Processes of this program: the child's side and the parent's.
#include "child.h"
#include "command.h"
#include "platform.h"

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <sstream>
#include <thread>

#include <io.h>
#include <windows.h>

namespace fs = std::filesystem;

namespace tool::platform {
namespace {

using Clock = std::chrono::steady_clock;

// What std::abort ends a child with; the runtime's own code is an ordinary 3.
constexpr DWORD ABORTED = 0xE0AB0127;

HANDLE report_output = nullptr;

std::atomic<bool> is_interrupted = false;

std::string system_text() {
    return std::system_category().message(static_cast<int>(GetLastError()));
}

class Handle {
public:
    explicit Handle(HANDLE opened) : handle(opened) {}

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    ~Handle() { close(); }

    void close() {
        if (handle != nullptr)
            CloseHandle(handle);
        handle = nullptr;
    }

    HANDLE get() const { return handle; }

private:
    HANDLE handle;
};

// Notes interruptions instead of ending, so that what the tool has set up is put away.
class InterruptionsNoted {
public:
    InterruptionsNoted() { SetConsoleCtrlHandler(note, TRUE); }

    InterruptionsNoted(const InterruptionsNoted&) = delete;
    InterruptionsNoted& operator=(const InterruptionsNoted&) = delete;

    ~InterruptionsNoted() { SetConsoleCtrlHandler(note, FALSE); }

private:
    static BOOL WINAPI note(DWORD /*event*/) {
        is_interrupted = true;
        return TRUE;
    }
};

// The child inherits the writing end alone.
class Pipe {
public:
    Pipe() : Pipe(make()) {}

    // Appends what has been written so far.
    void read_into(std::string& text) const {
        DWORD count = 0;
        while (PeekNamedPipe(reader.get(), nullptr, 0, nullptr, &count, nullptr) != 0 &&
               count > 0) {
            const std::size_t before = text.size();
            text.resize(before + count);
            if (ReadFile(reader.get(), &text[before], count, &count, nullptr) == 0)
                count = 0;
            text.resize(before + count);
        }
    }

    Handle reader;
    Handle writer;

private:
    using Ends = std::pair<HANDLE, HANDLE>;

    explicit Pipe(const Ends& ends) : reader(ends.first), writer(ends.second) {}

    static Ends make() {
        SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
        Ends ends;
        if (CreatePipe(&ends.first, &ends.second, &inheritable, 0) == 0)
            throw Failure("cannot make a pipe: " + system_text());
        SetHandleInformation(ends.first, HANDLE_FLAG_INHERIT, 0);
        return ends;
    }
};

// The folder for temporary files of the processes that are started as long as the object lives: all
// that they leave there goes with it.
class ScratchOfChildren {
public:
    ScratchOfChildren() : before(fs::temp_directory_path()), folder(make_scratch_folder()) {
        SetEnvironmentVariableW(L"TMP", folder.c_str());
    }

    ScratchOfChildren(const ScratchOfChildren&) = delete;
    ScratchOfChildren& operator=(const ScratchOfChildren&) = delete;

    ~ScratchOfChildren() {
        SetEnvironmentVariableW(L"TMP", before.c_str());
        remove_folder(folder);
    }

private:
    fs::path before;
    fs::path folder;
};

// As CommandLineToArgvW takes words apart: a backslash is doubled ahead of a quote only.
std::wstring quoted(const std::wstring& word) {
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : word) {
        if (character == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        text += character;
    }
    return text.append(backslashes, L'\\') + L"\"";
}

std::wstring command_line(const std::vector<std::string>& arguments) {
    std::wstring line = quoted(executable().wstring());
    for (const std::string& argument : arguments)
        line += L" " + quoted(to_path(argument).wstring());
    return line;
}

// Starts this program; it waits for ResumeThread. Null handles are the closed standard streams.
PROCESS_INFORMATION start(const std::vector<std::string>& arguments, HANDLE out, HANDLE error) {
    STARTUPINFOW streams{};
    streams.cb = sizeof streams;
    streams.dwFlags = STARTF_USESTDHANDLES;
    streams.hStdOutput = out;
    streams.hStdError = error;
    std::wstring line = command_line(arguments);
    PROCESS_INFORMATION started{};
    if (CreateProcessW(executable().c_str(), line.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                       nullptr, nullptr, &streams, &started) == 0)
        throw Failure("cannot start a process: " + system_text());
    return started;
}

// The processes in it end with the object.
HANDLE make_job() {
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

std::string crash_text(DWORD code) {
    switch (code) {
    case ABORTED:
        return "crashes (Aborted)";
    case EXCEPTION_ACCESS_VIOLATION:
        return "crashes (Access violation)";
    case EXCEPTION_STACK_OVERFLOW:
        return "crashes (Stack overflow)";
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
        return "crashes (Division by zero)";
    case EXCEPTION_ILLEGAL_INSTRUCTION:
        return "crashes (Illegal instruction)";
    default:
        break;
    }
    std::ostringstream text;
    text << "crashes (exception 0x" << std::hex << code << ")";
    return text.str();
}

// Sorts the code of a process that has ended by itself. Those of exceptions have both upper bits.
void read_exit_code(HANDLE process, ProcessRun& run) {
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    if (code >= 0xC0000000)
        run.fate = crash_text(code);
    else
        run.exit_code = static_cast<int>(code);
}

std::string time_limit_text(double seconds) {
    std::ostringstream text;
    text << "does not come back within " << seconds << " seconds";
    return text.str();
}

} // namespace

fs::path make_scratch_folder() {
    static int number = 0;
    const std::string start = "quillon-" + std::to_string(GetCurrentProcessId()) + "-";
    for (;;) {
        const fs::path folder = fs::temp_directory_path() / (start + std::to_string(++number));
        std::error_code failure;
        if (fs::create_directory(folder, failure))
            return folder;
        if (failure)
            throw Failure("cannot make the folder '" + folder.string() + "': " + failure.message());
    }
}

// A loaded library cannot be removed, so another process tries until this one has ended.
void remove_folder(const fs::path& folder) {
    std::error_code failure;
    fs::remove_all(folder, failure);
    if (!failure)
        return;
    const PROCESS_INFORMATION remover =
        start({CHILD_ARGUMENT, "remove", folder.string()}, nullptr, nullptr);
    ResumeThread(remover.hThread);
    CloseHandle(remover.hThread);
    CloseHandle(remover.hProcess);
}

void link_file(const fs::path& file, const fs::path& name) {
    if (CreateHardLinkW(name.c_str(), file.c_str(), nullptr) == 0)
        fs::copy_file(file, name);
}

ProcessRun run_self(const std::vector<std::string>& arguments, double seconds) {
    const InterruptionsNoted guard;
    const ScratchOfChildren scratch;
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(seconds));
    Pipe out;
    Pipe error;
    Handle job(make_job());
    const PROCESS_INFORMATION started = start(arguments, out.writer.get(), error.writer.get());
    const Handle process(started.hProcess);
    AssignProcessToJobObject(job.get(), process.get());
    ResumeThread(started.hThread);
    CloseHandle(started.hThread);
    out.writer.close();
    error.writer.close();

    ProcessRun run;
    bool has_ended = false;
    while (!has_ended && !is_interrupted && Clock::now() < end) {
        has_ended = WaitForSingleObject(process.get(), 5) == WAIT_OBJECT_0;
        out.read_into(run.out);
        error.read_into(run.error);
    }
    job.close();
    WaitForSingleObject(process.get(), INFINITE);
    if (is_interrupted)
        throw Failure("interrupted");
    if (has_ended)
        read_exit_code(process.get(), run);
    else
        run.fate = time_limit_text(seconds);
    return run;
}

void prepare_child() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    std::signal(SIGABRT, [](int) { TerminateProcess(GetCurrentProcess(), ABORTED); });
    report_output = GetStdHandle(STD_OUTPUT_HANDLE);
    SetStdHandle(STD_OUTPUT_HANDLE, GetStdHandle(STD_ERROR_HANDLE));
    // The C library's descriptor keeps a handle of its own.
    DuplicateHandle(GetCurrentProcess(), report_output, GetCurrentProcess(), &report_output, 0,
                    FALSE, DUPLICATE_SAME_ACCESS);
    if (_fileno(stderr) >= 0)
        _dup2(_fileno(stderr), _fileno(stdout));
}

void write_report(const std::string& text) {
    DWORD count = 0;
    for (std::size_t written = 0; written < text.size(); written += count)
        if (WriteFile(report_output, text.data() + written,
                      static_cast<DWORD>(text.size() - written), &count, nullptr) == 0)
            return;
}

// Windows open on the desktop of the thread that makes them.
void hide_display() {
    if (const HDESK desktop = CreateDesktopW(L"quillon", nullptr, nullptr, 0, GENERIC_ALL, nullptr))
        SetThreadDesktop(desktop);
}

} // namespace tool::platform
