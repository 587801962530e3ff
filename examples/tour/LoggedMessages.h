// SPDX-License-Identifier: 0BSD

#pragma once

#include <QStringList>

/** Keeps the messages of qDebug(), qInfo() and qWarning() until it is destroyed, instead of printing them. */
class LoggedMessages
{
public:
    LoggedMessages()
        : m_previous(qInstallMessageHandler(&keep))
    {
        s_messages.clear();
    }

    ~LoggedMessages() { qInstallMessageHandler(m_previous); }

    QStringList all() const { return s_messages; }

private:
    Q_DISABLE_COPY(LoggedMessages)

    static void keep(QtMsgType, const QMessageLogContext &, const QString &message) { s_messages << message; }

    static inline QStringList s_messages;
    const QtMessageHandler m_previous;
};
