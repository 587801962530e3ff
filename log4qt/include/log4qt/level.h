// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "log4qtexport.h"

#include <QString>

namespace Log4Qt {
inline namespace zy {

/** How severe an event is; ordered by its number, from NULL_INT (not set) to OFF_INT (nothing passes). */
class LOG4QT_EXPORT Level
{
public:
    enum Value {
        NULL_INT = 0,
        ALL_INT = 32,
        TRACE_INT = 64,
        DEBUG_INT = 96,
        INFO_INT = 128,
        WARN_INT = 150,
        ERROR_INT = 182,
        FATAL_INT = 214,
        OFF_INT = 255
    };

    Level(Value value = NULL_INT) // NOLINT: implicit, so that a host writes setLevel(Level::INFO_INT)
        : m_value(value)
    {
    }

    int toInt() const { return m_value; }

    /** The level's word in capitals, e.g. "INFO"; "NULL" for one that is not set. */
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
