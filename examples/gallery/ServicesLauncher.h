// SPDX-License-Identifier: 0BSD

#pragma once

#include <DevelopmentServices.h>

#include <QProcess>
#include <QTimer>

/** Returns the path in LOCAL_SERVICES if that file describes no running services; otherwise nothing. */
QString brokenDescription();

/** Runs the program local-services until it is destroyed. */
class ServicesLauncher : public QObject
{
    Q_OBJECT

public:
    /** @param folder of the services; it is created */
    explicit ServicesLauncher(const QString &folder, QObject *parent = nullptr);
    ~ServicesLauncher() override;

    /** Starts the program. One of the signals follows. */
    void start();

Q_SIGNALS:
    void started(const DevelopmentServices &services);

    /** Emitted if the program cannot be started, or has ended. */
    void failed(const QString &cause);

private:
    // Ends with the gallery, even if that crashes.
    class ChildProcess : public QProcess
    {
    protected:
        void setupChildProcess() override;
    };

    void findDescription();
    void reportEnd();

    const QString m_folder;
    ChildProcess m_process;
    QTimer m_search;
};
