// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "MessageCapture.h"
#include "StandardErrorCapture.h"

#include <QStringList>

#include <memory>

/**
 * Stores what this process writes with Qt's message functions and to its standard error stream, except
 * messages of Qt that depend on the timing.
 */
class OutputCapture
{
public:
    OutputCapture() = default;

    /** Returns the messages, followed by the lines of the standard error stream. */
    QStringList lines();

    /** Ends the capture and returns its lines as one string. */
    static QString take(std::unique_ptr<OutputCapture> &capture);

private:
    Q_DISABLE_COPY(OutputCapture)

    MessageCapture m_messages;
    StandardErrorCapture m_standardError;
};
