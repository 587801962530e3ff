// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Folder.h"
#include "LocalServers.h"
#include "PageServer.h"

#include <QStringList>

class Termination;

/** The options of the command line. */
struct Options
{
    QString folder;
    int port; ///< of the page; anyPreferred uses the default port, or another one if it is in use
    QStringList command; ///< empty to run until a signal ends the program

    static constexpr int anyPreferred = -1;
};

/** One run of the program. */
class Program
{
public:
    explicit Program(const Options &options);

    /** Runs until the command ends, or a signal if there is no command. Returns the exit code. */
    int run(Termination &termination);

private:
    Q_DISABLE_COPY(Program)

    int runCommand(Termination &termination, LocalServers &servers, const QUrl &page) const;
    static void waitForSignal(Termination &termination);
    void printInstructions(const QUrl &page) const;
    static void printCounts(const ArrivalFeed::Counts &counts);

    const Options m_options;
    const Folder m_folder;
};
