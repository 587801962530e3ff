// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "log4qtexport.h"

#include <QString>

namespace Log4Qt {
inline namespace zy {

/** The nested diagnostic context: a stack of words for each thread, whose top stands in its lines. */
class LOG4QT_EXPORT NDC
{
public:
    NDC() = delete;

    /** Drops all words of this thread. */
    static void clear();

    static int depth();

    /** The top word; empty without one. */
    static QString peek();

    /** Removes the top word and returns it; empty without one. */
    static QString pop();

    static void push(const QString &message);
};

} // namespace zy
} // namespace Log4Qt
