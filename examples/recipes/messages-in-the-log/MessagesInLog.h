// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>

/**
 * Starts to capture the messages of qDebug(), qInfo(), qWarning(), qCritical() and qFatal() from all threads.
 *
 * Call it first in main(). Messages before openLog() are stored and written to the log later. The previous
 * message handler still gets each message.
 */
void captureMessages();

/** Opens the log with ZyBase::LoggerObject::InitLogger() and writes the stored messages to it. */
void openLog(const QString &fileName, const QString &baseDir);

/**
 * Restores the previous message handler and closes the log with ZyBase::LoggerObject::ReleaseLogger().
 *
 * Waits for a thread that is writing a message. Later messages are not written to the log.
 */
void closeLog();
