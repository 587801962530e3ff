// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Background.h"

#include <QCoreApplication>

namespace {

// More than pages have calls that wait. They cost no processor.
constexpr int mostWaitingCalls = 16;

} // namespace

// The application's own pool, for whose calls it waits at its end.
QThreadPool *waitingThreads()
{
    QThreadPool *const pool = QThreadPool::globalInstance();
    if (pool->maxThreadCount() < mostWaitingCalls)
        pool->setMaxThreadCount(mostWaitingCalls);
    return pool;
}

void tidyThread()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
