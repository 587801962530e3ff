// SPDX-License-Identifier: LGPL-2.1-or-later

#include "MessageCapture.h"

#include <QMutexLocker>

MessageCapture *MessageCapture::s_current = nullptr;

MessageCapture::MessageCapture()
{
    Q_ASSERT(!s_current);
    s_current = this;
    m_previous = qInstallMessageHandler(&MessageCapture::handle);
}

MessageCapture::~MessageCapture()
{
    qInstallMessageHandler(m_previous);
    s_current = nullptr;
}

QList<MessageCapture::Message> MessageCapture::messages() const
{
    const QMutexLocker lock(&m_mutex);
    return m_messages;
}

void MessageCapture::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type == QtFatalMsg)
        s_current->m_previous(type, context, text); // ends the process
    const QMutexLocker lock(&s_current->m_mutex);
    s_current->m_messages.append({type, text, QString::fromUtf8(context.category),
                                  QString::fromUtf8(context.file), context.line,
                                  QString::fromUtf8(context.function)});
}
