// SPDX-License-Identifier: 0BSD

#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

/** Longer than any request of the library, so that a request that times out is noticed as such. */
constexpr std::chrono::milliseconds longestWait(12000);

/** Runs the event loop until the condition is true. @return false if it is still false after @p limit */
template <typename Condition> bool waitFor(Condition condition, std::chrono::milliseconds limit = longestWait)
{
    const QDeadlineTimer deadline(limit);
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (condition() || deadline.hasExpired())
            loop.quit();
    });
    poll.start(std::chrono::milliseconds(10));
    loop.exec();
    return condition();
}

/** Runs the event loop for a time. */
inline void runEventLoop(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}
