// SPDX-License-Identifier: LGPL-2.1-or-later

#include "OutputCapture.h"

#include "Files.h"

#include <QNetworkAccessManager>

#include <unistd.h>

#include <cstdio>

OutputCapture::OutputCapture()
{
    // Qt 5.15 may print a line if the first managers of a process are created in several threads at once.
    QNetworkAccessManager();
    if (ZYBASE_SANITIZED || !m_standardError.open())
        return;
    m_previousStandardError = ::dup(STDERR_FILENO);
    ::dup2(m_standardError.handle(), STDERR_FILENO);
}

OutputCapture::~OutputCapture()
{
    if (m_previousStandardError == -1)
        return;
    std::fflush(stderr);
    ::dup2(m_previousStandardError, STDERR_FILENO);
    ::close(m_previousStandardError);
}

QStringList OutputCapture::lines()
{
    QStringList lines;
    const QList<MessageCapture::Message> messages = m_messages.messages();
    for (const MessageCapture::Message &message : messages)
        lines << message.text;
    std::fflush(stderr);
    return m_previousStandardError == -1 ? lines : lines + readLines(m_standardError.fileName());
}

QString OutputCapture::take(std::unique_ptr<OutputCapture> &capture)
{
    const QStringList lines = capture->lines();
    capture.reset();
    return lines.join(QLatin1Char('\n'));
}
