// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>

/** Returns a UTF-8 string literal as a QString. */
inline QString utf8(const char *string)
{
    return QString::fromUtf8(string);
}
