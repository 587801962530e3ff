// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ChildProcess.h"
#include "Trend.h"

#include <QTest>

// The program of scripts/soak: the line that it fits, and one round of its parts.
class TestSoak : public QObject
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

    void runsParts_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("two applications")
            << QStringList {QStringLiteral("--mode"), QStringLiteral("two-hosts")};
        QTest::newRow("Qt alone") << QStringList {QStringLiteral("--control")};
    }
    void runsParts()
    {
        QFETCH(QStringList, options);
        ChildProcess soak({QStringLiteral(ZYBASE_SOAK), QStringLiteral("--minutes"), QStringLiteral("0")});
        QVERIFY(soak.start(options));
        const int exitCode = soak.finish();
        const QByteArray output = soak.standardError();
        QVERIFY2(exitCode == 0, output.constData());
        QVERIFY2(output.contains("1 rounds in "), output.constData());
    }

    void rejectsUnknownPart()
    {
        ChildProcess soak(
            {QStringLiteral(ZYBASE_SOAK), QStringLiteral("--part"), QStringLiteral("nonsense")});
        QVERIFY(soak.start());
        QCOMPARE(soak.finish(), 2);
        QVERIFY(soak.standardError().endsWith("soak: there is no part nonsense\n"));
    }
};

QTEST_GUILESS_MAIN(TestSoak)

#include "tst_soak.moc"
