// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QStringList>
#include <QTemporaryFile>

/**
 * Stores what this process and its child processes write to the standard error stream, until it is destroyed.
 * In sanitized builds nothing is captured.
 */
class StandardErrorCapture
{
public:
    StandardErrorCapture();

    /** Restores the stream. */
    ~StandardErrorCapture();

    /** Returns the lines so far. */
    QStringList lines();

private:
    Q_DISABLE_COPY(StandardErrorCapture)

    QTemporaryFile m_file;
    int m_previous = -1; ///< a duplicate of the descriptor; -1 if the stream is not captured
};
