// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QTest>

#include <chrono>

/**
 * Returns whether @p condition stays true for @p duration, while events are delivered. Use it to verify
 * that something does not happen; for what must happen there is QTRY_VERIFY().
 */
template <class Condition> bool staysTrueFor(std::chrono::milliseconds duration, Condition condition)
{
    return !QTest::qWaitFor([&condition] { return !condition(); }, int(duration.count()));
}
