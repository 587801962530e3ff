// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QDate>

namespace ZyBase {

// Call it before each formatting of a date. Qt 5 loads the system's locale when a date is first formatted,
// and is not thread-safe then: the string can be empty in other threads. The initialiser of the static, which
// only one thread runs, formats a date before any other thread of the library does.
inline void prepareDateFormatting()
{
    static const bool bIsPrepared = !QDate(2000, 1, 1).toString(QStringLiteral("MM/dd/yyyy")).isEmpty();
    Q_UNUSED(bIsPrepared)
}

} // namespace ZyBase
