// SPDX-License-Identifier: 0BSD

#include "QuitInTime.h"

#include <cstdio>
#include <cstdlib>
#include <thread>

void endProcessAfter(std::chrono::milliseconds limit, int exitCode)
{
    std::thread([limit, exitCode] {
        std::this_thread::sleep_for(limit);
        std::_Exit(exitCode);
    }).detach();
}

void endProcess(int exitCode)
{
    std::fflush(nullptr);
    std::_Exit(exitCode);
}
