// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

namespace ZyBase {

/**
 * Functions for strings.
 *
 * **Threads.** All functions are thread-safe.
 *
 * **Blocking.** Never blocks.
 *
 * **Failures.** No function can fail.
 *
 * **Lifetime.** All functions are static. Do not create objects of this class.
 *
 * @since 0.1.0
 */
class ZYBASE_EXPORT CStringUtils
{
public:
    /**
     * Returns the string with a line feed after every 100 characters, except at the end.
     *
     * Characters are QChars. Line feeds in @p strText count as characters. Despite its name, the function
     * returns one string, not a list.
     *
     * @param strText the string
     * @return the string with line feeds, or a null string if @p strText is empty
     *
     * @warning A line feed can split a word, or the two QChars of a character above U+FFFF. For words, use
     * QTextLayout or the word wrap of a widget.
     */
    static QString SplitString(const QString &strText);
};

} // namespace ZyBase
