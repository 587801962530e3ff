// SPDX-License-Identifier: LGPL-2.1-or-later

#include "OutputCapture.h"

#include <QNetworkAccessManager>

namespace {

// Qt 5.15 may log these if a request is aborted at the moment in which it fails.
bool isLoggedByQt(const QString &message)
{
    return message.startsWith(QLatin1String("QNetworkReplyImplPrivate::error: Internal problem"))
           || message == QLatin1String("QIODevice::read (QNetworkReplyHttpImpl): device not open");
}

} // namespace

OutputCapture::OutputCapture()
{
    // Qt 5.15 may print a line if the first managers of a process are created in several threads at once.
    QNetworkAccessManager();
}

QStringList OutputCapture::lines()
{
    QStringList lines;
    const QList<MessageCapture::Message> messages = m_messages.messages();
    for (const MessageCapture::Message &message : messages) {
        if (!isLoggedByQt(message.text))
            lines << message.text;
    }
    return lines + m_standardError.lines();
}

QString OutputCapture::take(std::unique_ptr<OutputCapture> &capture)
{
    const QStringList lines = capture->lines();
    capture.reset();
    return lines.join(QLatin1Char('\n'));
}
