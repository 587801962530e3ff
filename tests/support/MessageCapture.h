// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QList>
#include <QMessageLogContext>
#include <QMutex>
#include <QString>

/** Stores all Qt messages of the process instead of printing them. Thread-safe. */
class MessageCapture
{
public:
    struct Message
    {
        QtMsgType type;
        QString text;
        QString category;
        QString file; ///< null if unknown
        int line;
        QString function; ///< null if unknown
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
