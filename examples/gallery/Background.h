// SPDX-License-Identifier: 0BSD

#pragma once

#include <QFutureWatcher>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>

/** Returns the threads for blocking calls. There are enough that no call waits for another. */
QThreadPool *blockingCallThreads();

/**
 * Deletes the objects that a call left to the event loop with deleteLater(). The threads of the pool run no
 * event loop.
 */
void deleteLeftObjects();

/**
 * Calls @p work in another thread, and then @p done with its result in the thread of @p receiver.
 *
 * @p done is not called if @p receiver is destroyed first. @p work must not use objects that may be destroyed
 * while it runs.
 */
template <typename Work, typename Done> void inBackground(QObject *receiver, Work work, Done done)
{
    auto *const watcher = new QFutureWatcher<decltype(work())>(receiver);
    QObject::connect(watcher, &QFutureWatcherBase::finished, receiver, [watcher, done] {
        watcher->deleteLater();
        done(watcher->result());
    });
    watcher->setFuture(QtConcurrent::run(blockingCallThreads(), [work] {
        auto result = work();
        deleteLeftObjects();
        return result;
    }));
}
