// SPDX-License-Identifier: 0BSD

#pragma once

#include <chrono>

/**
 * Ends the process with @p exitCode after @p limit, even if something still blocks it.
 *
 * Nothing is destroyed and no file buffer is written then. Save everything before this call.
 */
void endProcessAfter(std::chrono::milliseconds limit, int exitCode);

/**
 * Ends the process at once, without destroying static objects.
 *
 * Call it as the last line of main(), so that no thread uses a static object that is already destroyed.
 * Output streams of C are written before.
 */
[[noreturn]] void endProcess(int exitCode);
