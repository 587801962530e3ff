// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "MessageCapture.h"

#include <QStringList>
#include <QTemporaryFile>

#include <memory>

/**
 * Stores what this process writes with Qt's message functions and to its standard error stream, until it is
 * destroyed. In sanitized builds the standard error stream is not captured.
 */
class OutputCapture
{
public:
    OutputCapture();

    /** Restores both. */
    ~OutputCapture();

    /** Returns the messages, followed by the lines of the standard error stream. */
    QStringList lines();

    /** Ends the capture and returns its lines as one string. */
    static QString take(std::unique_ptr<OutputCapture> &capture);

private:
    Q_DISABLE_COPY(OutputCapture)

    MessageCapture m_messages;
    QTemporaryFile m_standardError;
    int m_previousStandardError = -1; ///< a duplicate of the descriptor; -1 if it is not captured
};
