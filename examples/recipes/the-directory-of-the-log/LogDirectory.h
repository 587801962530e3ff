// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

/** Where the log lies; one of the two texts is null. */
struct LogDirectory
{
    QString base; ///< for LoggerObject::InitLogger(), in UTF-8
    QString problem; ///< why there can be no log, in words for the user
};

/**
 * Makes what the log file needs in the user's own data directory of this application, which only the user
 * may read. To be called before LoggerObject::InitLogger(), by one process at a time: it sets the file of
 * a former month aside and deletes all finished months but the latest @p keptMonths.
 */
LogDirectory prepareLogDirectory(const QString &fileName, int keptMonths);
