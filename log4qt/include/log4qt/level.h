// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "log4qtexport.h"

#include <QString>

namespace Log4Qt {
inline namespace zy {

/**
 * Severity of an event.
 *
 * Levels are ordered by their number, from NULL_INT to OFF_INT.
 *
 * **Threads.** Reentrant.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT Level
{
public:
    enum Value {
        NULL_INT = 0, ///< not set
        ALL_INT = 32, ///< as a threshold: every event passes
        TRACE_INT = 64,
        DEBUG_INT = 96,
        INFO_INT = 128,
        WARN_INT = 150,
        ERROR_INT = 182,
        FATAL_INT = 214,
        OFF_INT = 255 ///< as a threshold: no event passes
    };

    /** Creates a level. The constructor is implicit: setLevel(Level::INFO_INT) compiles. */
    Level(Value value = NULL_INT) // NOLINT: implicit
        : m_value(value)
    {
    }

    /** Returns the number of the level. */
    int toInt() const { return m_value; }

    /** Returns the name in capitals, for example "INFO"; "NULL" if the level is not set. */
    QString toString() const;

    friend bool operator==(Level a, Level b) { return a.m_value == b.m_value; }
    friend bool operator!=(Level a, Level b) { return a.m_value != b.m_value; }
    friend bool operator<(Level a, Level b) { return a.m_value < b.m_value; }
    friend bool operator<=(Level a, Level b) { return a.m_value <= b.m_value; }
    friend bool operator>(Level a, Level b) { return a.m_value > b.m_value; }
    friend bool operator>=(Level a, Level b) { return a.m_value >= b.m_value; }

private:
    Value m_value;
};

} // namespace zy
} // namespace Log4Qt

Q_DECLARE_TYPEINFO(Log4Qt::Level, Q_MOVABLE_TYPE);
