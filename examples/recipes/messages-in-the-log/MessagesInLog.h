// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

/**
 * Puts what Qt, the library and the host say by Qt's message functions into the log, from any thread, and
 * still shows it where it was shown before. To be called first thing in main(): what is said before
 * openLog() is kept for the log.
 */
void captureMessages();

/** Opens the log of ZyBase::LoggerObject and writes to it what was kept. */
void openLog(const QString &fileName, const QString &baseDir);

/**
 * Takes the former message handler back, waits for the thread that is writing a message, and closes the
 * log. What is said from here on doesn't reach it.
 */
void closeLog();
