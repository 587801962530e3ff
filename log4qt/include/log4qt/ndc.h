// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "log4qtexport.h"

#include <QString>

namespace Log4Qt {
inline namespace zy {

/**
 * Nested diagnostic context: one stack of strings for each thread. TTCCLayout prints the top of the stack.
 *
 * @code
 * Log4Qt::NDC::push(QStringLiteral("import"));
 * importFiles(); // lines that this thread logs contain "import"
 * Log4Qt::NDC::pop();
 * @endcode
 *
 * **Threads.** All functions are thread-safe. They change the stack of the calling thread only.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT NDC
{
public:
    NDC() = delete;

    /** Removes all strings. */
    static void clear();

    /** Returns the number of strings. */
    static int depth();

    /** Returns the top string; a null string if the stack is empty. */
    static QString peek();

    /** Removes the top string and returns it; a null string if the stack is empty. */
    static QString pop();

    /** Adds a string on top. */
    static void push(const QString &message);
};

} // namespace zy
} // namespace Log4Qt
