// SPDX-License-Identifier: 0BSD

#pragma once

#include <QCoreApplication>
#include <QUrl>

#include <functional>

/** The application's own checks. They find the cause of a failure, because the library does not report it. */
class Checks
{
    Q_DECLARE_TR_FUNCTIONS(Checks)

public:
    /** Returns the meaning of an HTTP status. */
    static QString meaningOf(int status);

    /** Returns why @p bytes more bytes cannot be written to the file; empty if there is no reason. */
    static QString writeProblem(const QString &path, qint64 bytes = 1);

    /** Returns why the file cannot be read as a zip archive; empty if there is no reason. */
    static QString archiveProblem(const QString &path);

    using CauseReceiver = std::function<void(const QString &cause, bool isAnswered)>;

    /**
     * Requests the head of @p url, and then calls @p done with the cause of the failure and with whether a
     * server answered. @p done is not called if @p receiver is destroyed first.
     */
    static void findCause(const QUrl &url, QObject *receiver, const CauseReceiver &done);

    /** Calls @p done with whether a program listens on the port of the URL, without using a proxy. */
    static void findListener(const QUrl &url, QObject *receiver, const std::function<void(bool)> &done);
};
