// SPDX-License-Identifier: 0BSD

#include "Background.h"

#include <QCoreApplication>

namespace {

// More than all blocking calls of the pages. They take no processor time.
constexpr int maxBlockingCalls = 16;

} // namespace

// The global pool: the application object waits for its calls when it is destroyed.
QThreadPool *blockingCallThreads()
{
    QThreadPool *const pool = QThreadPool::globalInstance();
    if (pool->maxThreadCount() < maxBlockingCalls)
        pool->setMaxThreadCount(maxBlockingCalls);
    return pool;
}

void deleteLeftObjects()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
