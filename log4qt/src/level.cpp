// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/level.h>

namespace Log4Qt {
inline namespace zy {

QString Level::toString() const
{
    switch (m_value) {
    case NULL_INT:
        return QStringLiteral("NULL");
    case ALL_INT:
        return QStringLiteral("ALL");
    case TRACE_INT:
        return QStringLiteral("TRACE");
    case DEBUG_INT:
        return QStringLiteral("DEBUG");
    case INFO_INT:
        return QStringLiteral("INFO");
    case WARN_INT:
        return QStringLiteral("WARN");
    case ERROR_INT:
        return QStringLiteral("ERROR");
    case FATAL_INT:
        return QStringLiteral("FATAL");
    case OFF_INT:
        return QStringLiteral("OFF");
    }
    return QStringLiteral("NULL");
}

} // namespace zy
} // namespace Log4Qt
