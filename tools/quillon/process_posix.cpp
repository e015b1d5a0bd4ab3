// SPDX-License-Identifier: MIT
// Processes of this program: the child's side and the parent's.
#include "command.h"
#include "platform.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tool::platform {
namespace {

using Clock = std::chrono::steady_clock;

int report_descriptor = STDOUT_FILENO;

volatile std::sig_atomic_t interruption = 0;

constexpr std::array<int, 3> INTERRUPTIONS = {SIGINT, SIGTERM, SIGHUP};

// Notes interruptions instead of ending, so that what the tool has set up is put away.
class InterruptionsNoted {
public:
    InterruptionsNoted() {
        struct sigaction note {};

        note.sa_handler = [](int signal) { interruption = signal; };
        for (std::size_t i = 0; i < before.size(); ++i)
            sigaction(INTERRUPTIONS[i], &note, &before[i]);
    }

    InterruptionsNoted(const InterruptionsNoted&) = delete;
    InterruptionsNoted& operator=(const InterruptionsNoted&) = delete;

    ~InterruptionsNoted() {
        for (std::size_t i = 0; i < before.size(); ++i)
            sigaction(INTERRUPTIONS[i], &before[i], nullptr);
    }

private:
    std::array<struct sigaction, INTERRUPTIONS.size()> before{};
};

// Both ends close with a program that is started.
class Pipe {
public:
    Pipe() {
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw Failure(std::string("cannot make a pipe: ") + std::strerror(errno));
    }

    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    ~Pipe() {
        close_writer();
        close(ends[0]);
    }

    int reader() const { return ends[0]; }

    int writer() const { return ends[1]; }

    void close_writer() {
        if (ends[1] >= 0)
            close(ends[1]);
        ends[1] = -1;
    }

private:
    int ends[2] = {-1, -1};
};

[[noreturn]] void become(const std::vector<std::string>& arguments, int out, int error,
                         pid_t parent) {
    setpgid(0, 0);
    // Nobody else ends a plug-in that hangs once this tool was killed.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
        _exit(127);
    const std::string program = executable();
    std::vector<char*> words = {const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(error, STDERR_FILENO);
    execv(program.c_str(), words.data());
    _exit(127);
}

// Reads both pipes to their ends, which come when the child is gone, or until the time is over or
// an interruption; true at the ends. Forgets each descriptor at its end.
bool read_until(Clock::time_point end, std::array<pollfd, 2>& readers,
                const std::array<std::string*, 2>& texts, pid_t child) {
    while (readers[0].fd >= 0 || readers[1].fd >= 0) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 || interruption != 0)
            return false;
        // A grandchild may hold the pipes open longer than the child lives.
        siginfo_t info{};
        waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT);
        if (poll(readers.data(), readers.size(), static_cast<int>(std::min<long>(left, 100))) <=
                0 &&
            info.si_pid != 0)
            return true;
        for (std::size_t i = 0; i < readers.size(); ++i) {
            if (readers[i].fd < 0 || readers[i].revents == 0)
                continue;
            char block[4096];
            const ssize_t count = read(readers[i].fd, block, sizeof block);
            if (count > 0)
                texts[i]->append(block, static_cast<std::size_t>(count));
            else
                readers[i].fd = -1;
        }
    }
    return true;
}

// Waits for the end of a process that has closed its output.
bool wait_until(Clock::time_point end, pid_t child) {
    for (siginfo_t info{}; Clock::now() < end && interruption == 0; usleep(2000))
        if (waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
            info.si_pid != 0)
            return true;
    return false;
}

std::string seconds_text(double seconds) {
    std::ostringstream text;
    text << seconds;
    return text.str();
}

} // namespace

std::filesystem::path make_scratch_folder() {
    std::string name = std::filesystem::temp_directory_path() / "quillon-XXXXXX";
    if (mkdtemp(name.data()) == nullptr)
        throw Failure("cannot make the folder '" + name + "': " + std::strerror(errno));
    return name;
}

void remove_folder(const std::filesystem::path& folder) {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

void link_file(const std::filesystem::path& file, const std::filesystem::path& name) {
    std::filesystem::create_symlink(file, name);
}

ProcessRun run_self(const std::vector<std::string>& arguments, double seconds) {
    const InterruptionsNoted guard;
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                        std::chrono::duration<double>(seconds));
    Pipe out;
    Pipe error;
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0)
        throw Failure(std::string("cannot start a process: ") + std::strerror(errno));
    if (child == 0)
        become(arguments, out.writer(), error.writer(), parent);
    setpgid(child, child);
    out.close_writer();
    error.close_writer();

    ProcessRun run;
    std::array<pollfd, 2> readers = {{{out.reader(), POLLIN, 0}, {error.reader(), POLLIN, 0}}};
    const bool is_in_time =
        read_until(end, readers, {&run.out, &run.error}, child) && wait_until(end, child);
    kill(-child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    if (interruption != 0)
        throw Failure("interrupted");
    if (!is_in_time)
        run.fate = "does not come back within " + seconds_text(seconds) + " seconds";
    else if (WIFSIGNALED(status))
        run.fate = "crashes (" + std::string(strsignal(WTERMSIG(status))) + ")";
    else
        run.exit_code = WEXITSTATUS(status);
    return run;
}

void prepare_child() {
    report_descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    dup2(STDERR_FILENO, STDOUT_FILENO);
    const rlimit none{};
    setrlimit(RLIMIT_CORE, &none);
}

void write_report(const std::string& text) {
    for (std::size_t written = 0; written < text.size();) {
        const ssize_t count =
            write(report_descriptor, text.data() + written, text.size() - written);
        if (count < 0 && errno != EINTR)
            return;
        written += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
}

void hide_display() {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
}

} // namespace tool::platform
