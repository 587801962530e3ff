// SPDX-License-Identifier: LGPL-2.1-or-later

// Runs a test program and leaves nothing behind:
//
//     testrunner PROGRAM [ARGUMENT...]
//
// The program has a temporary directory of its own, which is removed after it. All its processes end with it,
// also if testrunner is killed, as CTest does at a test's time limit. The exit code is that of the program,
// or 1 if the program leaves a process or a file.
//
// Three processes take part: testrunner, a guard and the program. The guard is not a child of testrunner, so
// it remains if testrunner is killed with all its children. Orphans of the program become children of the
// guard.

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int failure = 1;
constexpr int pollingIntervalMs = 10;
constexpr mode_t writableForAll = 01777; // some tests run as another user

using Pipe = std::array<int, 2>;

Pipe createPipe()
{
    Pipe ends {};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        std::perror("testrunner: pipe2");
        std::exit(failure);
    }
    return ends;
}

// Waits a short time. Returns false if the other end of the pipe is closed.
bool isOpen(int pipeEnd)
{
    pollfd end {pipeEnd, POLLIN, 0};
    return poll(&end, 1, pollingIntervalMs) == 0;
}

void pause()
{
    poll(nullptr, 0, pollingIntervalMs);
}

// Returns the running children of this process.
std::vector<pid_t> children()
{
    while (waitpid(-1, nullptr, WNOHANG) > 0) {}
    std::vector<pid_t> found;
    std::ifstream list("/proc/self/task/" + std::to_string(getpid()) + "/children");
    for (pid_t child = 0; list >> child;)
        found.push_back(child);
    return found;
}

void killChildren()
{
    for (std::vector<pid_t> left = children(); !left.empty(); left = children()) {
        for (const pid_t child : left)
            kill(child, SIGKILL);
        pause();
    }
}

pid_t startProgram(char **command, const std::string &directory)
{
    const pid_t program = fork();
    if (program != 0)
        return program;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, SIG_DFL);
    setenv("TMPDIR", directory.c_str(), 1);
    execvp(command[0], command);
    std::perror(command[0]);
    _exit(failure);
}

// The guard: returns the exit code of the program. If testrunner ends first, ends the program.
int guard(char **command, int testrunner)
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, SIG_IGN);
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    std::string directory = fs::temp_directory_path() / "zybase-test-XXXXXX";
    if (!mkdtemp(directory.data()) || chmod(directory.c_str(), writableForAll) != 0) {
        std::perror("testrunner: mkdtemp");
        return failure;
    }

    const pid_t program = startProgram(command, directory);
    int status = 0;
    bool hasEnded = false;
    while (!hasEnded && isOpen(testrunner))
        hasEnded = waitpid(program, &status, WNOHANG) != 0;
    if (hasEnded && WIFSIGNALED(status))
        std::fprintf(stderr, "testrunner: the program ended with signal %d\n", WTERMSIG(status));
    killChildren();
    std::error_code ignored;
    fs::remove_all(directory, ignored);
    return hasEnded && WIFEXITED(status) ? WEXITSTATUS(status) : failure;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fputs("Usage: testrunner PROGRAM [ARGUMENT...]\n", stderr);
        return failure;
    }
    const Pipe life = createPipe(); // the guard reads its end
    const Pipe result = createPipe();
    const pid_t between = fork();
    if (between == 0) {
        if (fork() != 0)
            _exit(0);
        close(life[1]);
        close(result[0]);
        const char code = char(guard(argv + 1, life[0]));
        _exit(write(result[1], &code, 1) == 1 ? 0 : failure);
    }
    waitpid(between, nullptr, 0);
    close(life[0]);
    close(result[1]);
    unsigned char code = failure;
    return read(result[0], &code, 1) == 1 ? code : failure;
}
