// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "Folder.h"
#include "PageServer.h"
#include "StandIns.h"

#include <QStringList>

class Termination;

/** What the command line asks for. */
struct Options
{
    QString folder;
    int port; ///< of the page; anyPreferred for the usual one, or another where that is taken
    QStringList command; ///< empty to run until it is ended

    static constexpr int anyPreferred = -1;
};

/** One run of local-services. */
class Program
{
public:
    explicit Program(const Options &options);

    /** @return the exit code: the command's own where there is one */
    int run(Termination &termination);

private:
    Q_DISABLE_COPY(Program)

    bool describe(const StandIns &standIns, const QUrl &page) const;
    int runCommand(Termination &termination, StandIns &standIns, const QUrl &page) const;
    static void waitForEnd(Termination &termination);
    void announce(const QUrl &page) const;
    static void tell(const ArrivalFeed::Counts &counts);

    const Options m_options;
    const Folder m_folder;
};
