// SPDX-License-Identifier: LGPL-2.1-or-later

// A library to preload into a program: the system creates no process for it, as if its user had reached the
// limit. No signal is sent. Each refused process and each signal is reported on the standard error stream.

#include <sys/syscall.h>
#include <sys/types.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

long refuseProcess()
{
    static_cast<void>(std::fputs("refused a process\n", stderr));
    errno = EAGAIN;
    return -1;
}

long refuseSignal(long processId)
{
    static_cast<void>(std::fprintf(stderr, "refused a signal to %ld\n", processId));
    return 0;
}

} // namespace

#define REPLACES_THE_C_LIBRARYS extern "C" __attribute__((visibility("default")))

REPLACES_THE_C_LIBRARYS pid_t fork()
{
    return pid_t(refuseProcess());
}

REPLACES_THE_C_LIBRARYS pid_t vfork()
{
    return pid_t(refuseProcess());
}

REPLACES_THE_C_LIBRARYS int kill(pid_t processId, int)
{
    return int(refuseSignal(processId));
}

// Qt calls clone() this way. The kernel does not set the descriptor of a process that it does not create, so
// the caller finds there what was there before: any value. Here it is that of the environment variable.
REPLACES_THE_C_LIBRARYS long syscall(long number, ...)
{
    constexpr int argumentCount = 6;
    long arguments[argumentCount] = {};
    va_list list;
    va_start(list, number);
    for (long &argument : arguments)
        argument = va_arg(list, long);
    va_end(list);

    if (number == SYS_kill)
        return refuseSignal(arguments[0]);
    if (number == SYS_clone) {
        if (const char *const descriptor = std::getenv("ZYBASE_TEST_PIDFD"))
            *reinterpret_cast<int *>(arguments[2]) = std::atoi(descriptor);
        return refuseProcess();
    }
    using Syscall = long (*)(long, long, long, long, long, long, long);
    static const auto original = reinterpret_cast<Syscall>(dlsym(RTLD_NEXT, "syscall"));
    return original(number, arguments[0], arguments[1], arguments[2], arguments[3], arguments[4],
                    arguments[5]);
}
