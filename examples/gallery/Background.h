// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QFutureWatcher>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

/** Threads for calls that wait; one that hangs doesn't keep the others from running. */
QThreadPool *waitingThreads();

/** Deletes what a call with an event loop of its own left to the next one, which this thread never runs. */
void tidyThread();

/**
 * Runs the blocking call @p work in a thread of its own, and then @p done with its result in that of
 * @p receiver, if that still lives. @p work must refer to nothing that may go earlier.
 */
template <typename Work, typename Done> void inBackground(QObject *receiver, Work work, Done done)
{
    auto *const watcher = new QFutureWatcher<decltype(work())>(receiver);
    QObject::connect(watcher, &QFutureWatcherBase::finished, receiver, [watcher, done] {
        watcher->deleteLater();
        done(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(waitingThreads(), [work] {
        auto result = work();
        tidyThread();
        return result;
    }));
}
