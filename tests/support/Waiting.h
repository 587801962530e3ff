// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QTest>

#include <chrono>

/** How long a test waits for what must happen. On a busy machine a moment can become many seconds. */
constexpr int longestWaitMs = 60000;

/** Less than the time limit of a request. What happens within this time is not caused by the limit. */
constexpr int beforeTimeLimitMs = 9000;

/**
 * Returns whether @p condition stays true for @p duration, while events are delivered. Use it to verify
 * that something does not happen; for what must happen there is QTRY_VERIFY_WITH_TIMEOUT().
 */
template <class Condition> bool staysTrueFor(std::chrono::milliseconds duration, Condition condition)
{
    return !QTest::qWaitFor([&condition] { return !condition(); }, int(duration.count()));
}
