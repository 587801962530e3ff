// SPDX-License-Identifier: LGPL-2.1-or-later

// The checked variants of the functions would be defined in this file as well.
#undef _FORTIFY_SOURCE

#include "Faults.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/select.h>
#include <sys/sendfile.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

using Faults::Kind;

namespace {

std::atomic<pid_t> armedProcess {0}; // a forked child calls these functions, too; 0 while disarmed
std::atomic<Kind> armedKind {Kind::Any};
std::atomic<int> armedNth {0};
std::atomic<int> armedAction {0};
std::atomic<bool> isLasting {false};
std::atomic<int> count {0};
std::atomic<const char *> failed {nullptr};
std::atomic<bool> triedToSignalAll {false};
std::atomic<int> clockDescriptor {-1}; // of the file that faketime reads, while it is open; it must not fail

// Returns the function that would be called without this file: that of the C library or of a sanitizer.
template <typename Function> Function next(Function, const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Returns the action for this call, or 0 if it must not fail.
int actionFor(Kind kind, const char *function, bool isTransfer = false)
{
    const pid_t process = armedProcess.load();
    if (process == 0)
        return 0;
    const bool counts = armedKind == Kind::Any ? kind != Kind::Poll : armedKind == kind;
    const int action = armedAction;
    const bool needsTransfer = action == Faults::Shorten || action == Faults::Tear;
    if (!counts || (needsTransfer && !isTransfer) || process != pid_t(::syscall(SYS_getpid)))
        return 0;
    const int number = ++count;
    if (armedNth == 0 || number < armedNth || (number > armedNth && !isLasting))
        return 0;
    const char *none = nullptr;
    failed.compare_exchange_strong(none, function);
    if (action == Faults::Kill)
        ::syscall(SYS_kill, process, SIGKILL);
    return action;
}

// Sets errno and returns true if this call must fail.
bool fails(Kind kind, const char *function)
{
    const int action = actionFor(kind, function);
    if (action > 0)
        errno = action;
    return action > 0;
}

// Faketime's fstat() waits for a lock that faketime keeps while it reads a file, so this is a system call.
mode_t typeOf(int descriptor)
{
    struct statx status
    {
    };
    const int savedErrno = errno;
    const bool isKnown = ::syscall(SYS_statx, descriptor, "", AT_EMPTY_PATH, STATX_TYPE, &status) == 0;
    errno = savedErrno;
    return isKnown ? status.stx_mode & S_IFMT : 0;
}

// Calls the function with all bytes, with half of them, or not at all.
template <typename Call>
ssize_t transfer(Kind ofFiles, Kind ofSockets, int descriptor, size_t size, const char *function, Call call)
{
    if (armedProcess == 0 || descriptor == clockDescriptor)
        return call(size);
    const mode_t type = typeOf(descriptor);
    if (type != S_IFREG && type != S_IFSOCK)
        return call(size);
    const int action = actionFor(type == S_IFREG ? ofFiles : ofSockets, function, size > 1);
    if (action > 0) {
        errno = action;
        return -1;
    }
    const ssize_t result = call(action == 0 ? size : size / 2);
    if (action == Faults::Tear)
        ::syscall(SYS_kill, ::syscall(SYS_getpid), SIGKILL);
    return result;
}

bool isClockFile(const char *path)
{
    const char *const clockFile = ::getenv("FAKETIME_TIMESTAMP_FILE");
    return clockFile && std::strcmp(path, clockFile) == 0;
}

mode_t modeArgument(int flags, va_list list)
{
    return flags & (O_CREAT | O_TMPFILE) ? mode_t(va_arg(list, unsigned)) : mode_t(0);
}

} // namespace

namespace Faults {

void arm(Kind kind, int nth, int action, bool lasts)
{
    armedKind = kind;
    armedNth = nth;
    armedAction = action;
    isLasting = lasts;
    count = 0;
    failed = nullptr;
    armedProcess = pid_t(::syscall(SYS_getpid));
}

void disarm()
{
    armedProcess = 0;
}

int callCount()
{
    return count;
}

const char *failedFunction()
{
    const char *const function = failed;
    return function ? function : "";
}

bool hasSignalledAll()
{
    return triedToSignalAll;
}

} // namespace Faults

#define REPLACES_THE_C_LIBRARYS extern "C" __attribute__((visibility("default")))

// A function that returns -1 if it fails.
#define CAN_FAIL(kind, name, ...)                                                                            \
    static const auto original = next(&::name, #name);                                                       \
    return fails(Kind::kind, #name) ? -1 : original(__VA_ARGS__);

#define CAN_FAIL_TO_OPEN(name, ...)                                                                          \
    va_list list;                                                                                            \
    va_start(list, flags);                                                                                   \
    const mode_t mode = modeArgument(flags, list);                                                           \
    va_end(list);                                                                                            \
    if (isClockFile(path))                                                                                   \
        return clockDescriptor = next(&::name, #name)(__VA_ARGS__, flags, mode);                             \
    CAN_FAIL(Open, name, __VA_ARGS__, flags, mode)

REPLACES_THE_C_LIBRARYS int open(const char *path, int flags, ...) {CAN_FAIL_TO_OPEN(open, path)}

REPLACES_THE_C_LIBRARYS int open64(const char *path, int flags, ...) {CAN_FAIL_TO_OPEN(open64, path)}

REPLACES_THE_C_LIBRARYS
    int openat(int directory, const char *path, int flags, ...) {CAN_FAIL_TO_OPEN(openat, directory, path)}

REPLACES_THE_C_LIBRARYS DIR *opendir(const char *path)
{
    static const auto original = next(&::opendir, "opendir");
    return fails(Kind::Open, "opendir") ? nullptr : original(path);
}

REPLACES_THE_C_LIBRARYS ssize_t read(int descriptor, void *data, size_t size)
{
    static const auto original = next(&::read, "read");
    return transfer(Kind::Read, Kind::Receive, descriptor, size, "read",
                    [=](size_t part) { return original(descriptor, data, part); });
}

REPLACES_THE_C_LIBRARYS ssize_t recv(int descriptor, void *data, size_t size, int flags)
{
    static const auto original = next(&::recv, "recv");
    return transfer(Kind::Read, Kind::Receive, descriptor, size, "recv",
                    [=](size_t part) { return original(descriptor, data, part, flags); });
}

REPLACES_THE_C_LIBRARYS ssize_t write(int descriptor, const void *data, size_t size)
{
    static const auto original = next(&::write, "write");
    return transfer(Kind::Write, Kind::Send, descriptor, size, "write",
                    [=](size_t part) { return original(descriptor, data, part); });
}

REPLACES_THE_C_LIBRARYS ssize_t send(int descriptor, const void *data, size_t size, int flags)
{
    static const auto original = next(&::send, "send");
    return transfer(Kind::Write, Kind::Send, descriptor, size, "send",
                    [=](size_t part) { return original(descriptor, data, part, flags); });
}

REPLACES_THE_C_LIBRARYS ssize_t sendfile(int to, int from, off_t *offset, size_t size) __THROW
{
    static const auto original = next(&::sendfile, "sendfile");
    return transfer(Kind::Write, Kind::Send, to, size, "sendfile",
                    [=](size_t part) { return original(to, from, offset, part); });
}

// The system closes the descriptor also when it reports a failure.
REPLACES_THE_C_LIBRARYS int close(int descriptor)
{
    static const auto original = next(&::close, "close");
    if (descriptor == clockDescriptor) {
        clockDescriptor = -1;
        return original(descriptor);
    }
    const int action = actionFor(Kind::Close, "close");
    const int result = original(descriptor);
    if (action <= 0)
        return result;
    errno = action;
    return -1;
}

REPLACES_THE_C_LIBRARYS int fsync(int descriptor) {CAN_FAIL(Sync, fsync, descriptor)}

REPLACES_THE_C_LIBRARYS int fdatasync(int descriptor) {CAN_FAIL(Sync, fdatasync, descriptor)}

REPLACES_THE_C_LIBRARYS off_t lseek(int descriptor, off_t offset,
                                    int whence) __THROW {CAN_FAIL(Seek, lseek, descriptor, offset, whence)}

REPLACES_THE_C_LIBRARYS off64_t lseek64(int descriptor, off64_t offset, int whence) __THROW {
    CAN_FAIL(Seek, lseek64, descriptor, offset, whence)}

REPLACES_THE_C_LIBRARYS
    int ftruncate(int descriptor, off_t size) __THROW {CAN_FAIL(Truncate, ftruncate, descriptor, size)}

REPLACES_THE_C_LIBRARYS
    int ftruncate64(int descriptor, off64_t size) __THROW {CAN_FAIL(Truncate, ftruncate64, descriptor, size)}

REPLACES_THE_C_LIBRARYS
    int rename(const char *from, const char *to) __THROW {CAN_FAIL(Rename, rename, from, to)}

REPLACES_THE_C_LIBRARYS int renameat2(int fromDirectory, const char *from, int toDirectory, const char *to,
                                      unsigned flags) __THROW {
    CAN_FAIL(Rename, renameat2, fromDirectory, from, toDirectory, to, flags)}

REPLACES_THE_C_LIBRARYS int link(const char *from, const char *to) __THROW {CAN_FAIL(Rename, link, from, to)}

REPLACES_THE_C_LIBRARYS
    int linkat(int fromDirectory, const char *from, int toDirectory, const char *to,
               int flags) __THROW {CAN_FAIL(Rename, linkat, fromDirectory, from, toDirectory, to, flags)}

REPLACES_THE_C_LIBRARYS
    int mkdir(const char *path, mode_t mode) __THROW {CAN_FAIL(MakeDirectory, mkdir, path, mode)}

REPLACES_THE_C_LIBRARYS int unlink(const char *path) __THROW {CAN_FAIL(Remove, unlink, path)}

REPLACES_THE_C_LIBRARYS int rmdir(const char *path) __THROW {CAN_FAIL(Remove, rmdir, path)}

REPLACES_THE_C_LIBRARYS
    int statx(int directory, const char *path, int flags, unsigned mask,
              struct statx *status) __THROW {CAN_FAIL(Stat, statx, directory, path, flags, mask, status)}

REPLACES_THE_C_LIBRARYS
    int chmod(const char *path, mode_t mode) __THROW {CAN_FAIL(Permissions, chmod, path, mode)}

REPLACES_THE_C_LIBRARYS
    int fchmod(int descriptor, mode_t mode) __THROW {CAN_FAIL(Permissions, fchmod, descriptor, mode)}

REPLACES_THE_C_LIBRARYS
    int flock(int descriptor, int operation) __THROW {CAN_FAIL(Lock, flock, descriptor, operation)}

REPLACES_THE_C_LIBRARYS
    int pipe2(int *descriptors, int flags) __THROW {CAN_FAIL(Descriptor, pipe2, descriptors, flags)}

REPLACES_THE_C_LIBRARYS
    int eventfd(unsigned value, int flags) __THROW {CAN_FAIL(Descriptor, eventfd, value, flags)}

REPLACES_THE_C_LIBRARYS int dup(int descriptor) __THROW {CAN_FAIL(Descriptor, dup, descriptor)}

REPLACES_THE_C_LIBRARYS
    int socket(int domain, int type, int protocol) __THROW {CAN_FAIL(Socket, socket, domain, type, protocol)}

REPLACES_THE_C_LIBRARYS int connect(int descriptor, const sockaddr *address,
                                    socklen_t size) {CAN_FAIL(Connect, connect, descriptor, address, size)}

REPLACES_THE_C_LIBRARYS int poll(pollfd *descriptors, nfds_t size,
                                 int timeoutMs) {CAN_FAIL(Poll, poll, descriptors, size, timeoutMs)}

REPLACES_THE_C_LIBRARYS
    int ppoll(pollfd *descriptors, nfds_t size, const timespec *timeout,
              const sigset_t *mask) {CAN_FAIL(Poll, ppoll, descriptors, size, timeout, mask)}

REPLACES_THE_C_LIBRARYS
    int select(int size, fd_set *toRead, fd_set *toWrite, fd_set *exceptions,
               timeval *timeout) {CAN_FAIL(Poll, select, size, toRead, toWrite, exceptions, timeout)}

REPLACES_THE_C_LIBRARYS int pthread_create(pthread_t *thread, const pthread_attr_t *attributes,
                                           void *(*start)(void *), void *argument) __THROWNL
{
    static const auto original = next(&::pthread_create, "pthread_create");
    const int action = actionFor(Kind::Thread, "pthread_create");
    return action > 0 ? action : original(thread, attributes, start, argument);
}

REPLACES_THE_C_LIBRARYS pid_t fork() __THROWNL {CAN_FAIL(Process, fork)}

// Qt sends a signal to the process -1, which means all of them, if it treats a process that was not created
// as one of its own.
REPLACES_THE_C_LIBRARYS int kill(pid_t process, int signal) __THROW
{
    static const auto original = next(&::kill, "kill");
    if (process > 0)
        return original(process, signal);
    triedToSignalAll = true;
    return 0;
}

// Qt calls clone() this way.
REPLACES_THE_C_LIBRARYS long syscall(long number, ...) __THROW
{
    constexpr int argumentCount = 6;
    long arguments[argumentCount] = {};
    va_list list;
    va_start(list, number);
    for (long &argument : arguments)
        argument = va_arg(list, long);
    va_end(list);
    if (number == SYS_clone && fails(Kind::Process, "clone"))
        return -1;
    using Syscall = long (*)(long, long, long, long, long, long, long);
    static const auto original = reinterpret_cast<Syscall>(dlsym(RTLD_NEXT, "syscall"));
    return original(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4],
                    arguments[5]);
}
