// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Trend.h"

#include <QTest>

// The line that scripts/soak fits.
class TestTrend : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnsGrowthOfLine()
    {
        Trend trend;
        for (int second = 100; second <= 200; ++second)
            trend.add(second, 1e9 + 3.0 * second);
        QCOMPARE(trend.count(), 101);
        QVERIFY(qAbs(trend.growth() - 300) < 1e-3);
        QVERIFY(trend.growthError() < 1e-2);
    }

    void returnsErrorLargerThanGrowthForNoise()
    {
        Trend trend;
        for (int second = 0; second < 100; ++second)
            trend.add(second, second % 2 == 0 ? 0 : 1000);
        QVERIFY(qAbs(trend.growth()) < 3 * trend.growthError());
    }

    void findsSmallGrowthInNoise()
    {
        Trend trend;
        for (int second = 0; second < 1000; ++second)
            trend.add(second, second + (second % 2 == 0 ? 0 : 100));
        QVERIFY(qAbs(trend.growth() - 999) < 3 * trend.growthError() + 1);
        QVERIFY(trend.growth() > 3 * trend.growthError());
    }

    void returnsZeroForFewValues()
    {
        Trend trend;
        QCOMPARE(trend.growth(), 0.0);
        trend.add(5, 7);
        QCOMPARE(trend.growth(), 0.0);
        QCOMPARE(trend.growthError(), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestTrend)

#include "tst_trend.moc"
