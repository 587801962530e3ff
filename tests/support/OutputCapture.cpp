// SPDX-License-Identifier: LGPL-2.1-or-later

#include "OutputCapture.h"

#include <algorithm>
#include <iterator>

namespace {

// Qt 5.15 may log the first two if a request is aborted at the moment in which it fails, and the third if the
// first requests of a process start in several threads at once.
bool isLoggedByQt(const QString &message)
{
    const QLatin1String beginnings[] = {
        QLatin1String("QNetworkReplyImplPrivate::error: Internal problem"),
        QLatin1String("QIODevice::read (QNetworkReplyHttpImpl): device not open"),
        QLatin1String("Type conversion already registered from type ")};
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&message](QLatin1String beginning) { return message.startsWith(beginning); });
}

} // namespace

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
