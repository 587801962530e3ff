// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QList>
#include <QMessageLogContext>
#include <QMutex>
#include <QString>

/** Takes all Qt messages of the process while it lives; they are kept instead of shown. Any thread. */
class MessageCapture
{
public:
    struct Message
    {
        QtMsgType type;
        QString text;
        QString category;
        QString file; ///< null for none
        int line;
        QString function; ///< null for none
    };

    MessageCapture();
    ~MessageCapture();

    QList<Message> messages() const;

private:
    Q_DISABLE_COPY(MessageCapture)
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &text);

    static MessageCapture *s_current;
    QtMessageHandler m_previous;
    mutable QMutex m_mutex;
    QList<Message> m_messages;
};
