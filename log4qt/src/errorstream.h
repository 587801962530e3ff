// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

namespace Log4Qt {
inline namespace zy {

/**
 * Says on the standard error stream what kept an event from its place. Not by Qt's messages: a host
 * that sends those to its log would come back here.
 */
void reportError(const QString &message);

} // namespace zy
} // namespace Log4Qt
