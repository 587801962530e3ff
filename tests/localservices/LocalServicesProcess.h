// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include <csignal>

/** The program local-services as a process, in a private folder that stays for the next run. */
class LocalServicesProcess
{
public:
    LocalServicesProcess();
    ~LocalServicesProcess();

    /** A folder that isn't there yet. */
    QString folder() const { return m_directory.filePath(QStringLiteral("kept")); }
    QString filePath(const QString &name) const { return folder() + QLatin1Char('/') + name; }

    /** Starts it without a command; true once services.json is there. */
    bool start(const QStringList &options = {QStringLiteral("--port"), QStringLiteral("0")});

    /** Starts it with these arguments behind "--folder" and "--port 0"; @return its exit code. */
    int run(const QStringList &command, const QByteArray &input = QByteArray());

    /** The two halves of run(). */
    bool startCommand(const QStringList &command);
    int waitForExitCode();

    /** Ends it by the signal; @return its exit code. */
    int end(int signal = SIGTERM);
    void kill() { end(SIGKILL); }

    qint64 processId() const { return m_process.processId(); }
    QByteArray standardOutput() { return m_process.readAllStandardOutput(); }

    /** All of it so far. */
    QByteArray standardError() { return m_standardError += m_process.readAllStandardError(); }
    bool waitForStandardError(const QByteArray &text);

    /** A value of services.json. */
    QString value(const char *key) const;
    QUrl url(const char *key) const { return QUrl(value(key)); }

    /** A path of the page's server. */
    QUrl page(const QString &path = QString()) const { return QUrl(value("page") + path); }

    /** What the page's server says has arrived. */
    QJsonArray arrivals() const;

private:
    Q_DISABLE_COPY(LocalServicesProcess)

    QTemporaryDir m_directory;
    QProcess m_process;
    QByteArray m_standardError;
    QJsonObject m_services;
};
