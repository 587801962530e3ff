// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

/** The argument of a test program that makes first calls instead of running its tests. */
constexpr const char *firstCallsArgument = "--first-calls";

/**
 * Runs the function in many new processes, because first calls are made once in a process. Call it without an
 * application object, which may load Qt's locale data. Returns the exit code: success if all returned true.
 */
template <class Function> int makeFirstCalls(Function areCorrect)
{
    constexpr int attempts = ZYBASE_SANITIZED ? 10 : 100;
    for (int i = 0; i < attempts; ++i) {
        const pid_t child = fork();
        if (child == 0)
            _exit(areCorrect() ? EXIT_SUCCESS : EXIT_FAILURE);
        int status = -1;
        waitpid(child, &status, 0);
        if (status != 0)
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
