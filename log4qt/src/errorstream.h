// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

namespace Log4Qt {
inline namespace zy {

/**
 * Writes "log4qt: ", @p message and a line feed to the standard error stream.
 *
 * Does not use Qt's message functions: an application that sends Qt's messages to its log would call the
 * failing appender again.
 */
void reportError(const QString &message);

} // namespace zy
} // namespace Log4Qt
