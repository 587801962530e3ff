// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>

/** The result of prepareLogDirectory(). One of the two strings is null. */
struct LogDirectory
{
    QString base; ///< the base directory for LoggerObject::InitLogger()
    QString problem; ///< why there can be no log, as a message for the user
};

/**
 * Creates the directory of the log in the user's data directory, so that only the user can read it.
 *
 * Also renames the log file of an earlier month, and deletes all finished months except the latest
 * @p keptMonths. Call it before LoggerObject::InitLogger(). Only one process may use it at a time.
 */
LogDirectory prepareLogDirectory(const QString &fileName, int keptMonths);
