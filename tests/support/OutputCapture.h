// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "MessageCapture.h"

#include <QStringList>
#include <QTemporaryFile>

/**
 * Keeps what this process writes to Qt's message log and to its standard error stream while the object
 * exists. In sanitized builds the standard error stream is left alone.
 */
class OutputCapture
{
public:
    OutputCapture();

    /** Restores both. */
    ~OutputCapture();

    /** The messages, followed by the lines of the standard error stream. */
    QStringList lines();

private:
    Q_DISABLE_COPY(OutputCapture)

    MessageCapture m_messages;
    QTemporaryFile m_standardError;
    int m_previousStandardError = -1; ///< a duplicate of the descriptor; -1 if it is left alone
};
