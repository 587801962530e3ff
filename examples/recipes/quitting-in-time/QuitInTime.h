// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <chrono>

/**
 * Ends the process with @p exitCode when it is still there after @p limit, whatever it waits for.
 *
 * Nothing is destroyed then and no file buffer is written, so save what the host has to save before.
 */
void endProcessAfter(std::chrono::milliseconds limit, int exitCode);

/**
 * Ends the process at once, as endProcessAfter() does: for the last line of main(), so that no thread that
 * is still running meets static objects that are gone.
 */
[[noreturn]] void endProcess(int exitCode);
