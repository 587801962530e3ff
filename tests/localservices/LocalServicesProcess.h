// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "ChildProcess.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QUrl>

#include <csignal>
#include <memory>

/** The program local-services as a process. Its folder is kept for the next run. */
class LocalServicesProcess
{
public:
    /** The program's folder, which does not exist before the first run. */
    QString folder() const { return m_directory.filePath(QStringLiteral("kept")); }
    QString filePath(const QString &name) const { return folder() + QLatin1Char('/') + name; }

    /** Starts the program without a command; returns true when services.json exists. */
    bool start(const QStringList &options = {QStringLiteral("--port"), QStringLiteral("0")});

    /** Runs the program with "--folder", "--port 0" and these arguments, and returns its exit code. */
    int run(const QStringList &command, const QByteArray &input = QByteArray());

    /** Together these do the same as run(). */
    bool startCommand(const QStringList &command);
    int waitForExitCode() { return m_process->finish(); }

    /** Ends the program with the signal and returns its exit code. */
    int end(int signal = SIGTERM);
    void kill() { end(SIGKILL); }

    qint64 processId() const { return m_process->processId(); }
    QByteArray standardOutput() { return m_process->standardOutput(); }

    QByteArray standardError() { return m_process->standardError(); }
    bool waitForStandardError(const QByteArray &text);

    /** A value of services.json. */
    QString value(const char *key) const;
    QUrl url(const char *key) const { return QUrl(value(key)); }

    /** The URL of a path on the page's server. */
    QUrl page(const QString &path = QString()) const { return QUrl(value("page") + path); }

    /** The arrivals that the page's server lists. */
    QJsonArray arrivals() const;

private:
    bool startProcess(const QStringList &arguments);

    QTemporaryDir m_directory;
    std::unique_ptr<ChildProcess> m_process; ///< of the last run
    QJsonObject m_services;
};
