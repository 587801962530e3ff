// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include <QRandomGenerator>
#include <QTest>

#include <limits>

using ZyBase::CSystemUtils;

namespace {

constexpr int smallest = std::numeric_limits<int>::min();
constexpr int largest = std::numeric_limits<int>::max();

struct Draw
{
    const QRandomGenerator *generator;
    qint64 bytes;
};

QList<Draw> draws;
quint32 bits = 0;

} // namespace

// Called instead of Qt's function, because symbols of the program come first. Records each call and returns
// the bits of the test.
__attribute__((visibility("default"))) void QRandomGenerator::_fillRange(void *begin, void *end)
{
    draws.append({this, static_cast<char *>(end) - static_cast<char *>(begin)});
    for (auto *word = static_cast<quint32 *>(begin); word != end; ++word)
        *word = bits;
}

class TestRandomNumbers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scalesRangeByRandomBits_data()
    {
        QTest::addColumn<int>("minimum");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<quint32>("random");
        QTest::addColumn<int>("expected");
        constexpr quint32 none = 0;
        constexpr quint32 half = 0x80000000;
        constexpr quint32 all = 0xffffffff;
        QTest::newRow("lowest") << 0 << 10 << none << 0;
        QTest::newRow("highest") << 0 << 10 << all << 9;
        QTest::newRow("middle") << 0 << 10 << half << 5;
        QTest::newRow("last bits of the lowest") << 0 << 10 << quint32(0x19999999) << 0;
        QTest::newRow("first bits of the next") << 0 << 10 << quint32(0x1999999a) << 1;
        QTest::newRow("one possible result, lowest") << 1 << 2 << none << 1;
        QTest::newRow("one possible result, highest") << 1 << 2 << all << 1;
        QTest::newRow("equal arguments, lowest") << 5 << 5 << none << 5;
        QTest::newRow("equal arguments, highest") << 5 << 5 << all << 5;
        QTest::newRow("three digits, lowest") << 1 << 1000 << none << 1;
        QTest::newRow("three digits, highest") << 1 << 1000 << all << 999;
        QTest::newRow("below zero, lowest") << -10 << -5 << none << -10;
        QTest::newRow("below zero, highest") << -10 << -5 << all << -6;
        QTest::newRow("across zero") << -4 << 4 << half << 0;
        QTest::newRow("all ints, lowest") << smallest << largest << none << smallest;
        QTest::newRow("all ints, highest") << smallest << largest << all << largest - 1;
        QTest::newRow("all ints, middle") << smallest << largest << half << -1;
        // The range wraps to 2^32 - 5 numbers.
        QTest::newRow("maximum below the minimum, lowest") << 10 << 5 << none << 10;
        QTest::newRow("maximum below the minimum, middle") << 10 << 5 << half << smallest + 7;
        QTest::newRow("maximum below the minimum, highest") << 10 << 5 << all << 4;
        QTest::newRow("largest and smallest") << largest << smallest << all << largest;
    }
    void scalesRangeByRandomBits()
    {
        QFETCH(int, minimum);
        QFETCH(int, maximum);
        QFETCH(quint32, random);
        bits = random;
        QTEST(CSystemUtils::GetRandomNum(minimum, maximum), "expected");
    }

    void draws32BitsFromGlobalGenerator()
    {
        const QRandomGenerator *const processWide = QRandomGenerator::global();
        draws.clear();
        CSystemUtils::GetRandomNum(0, 10);
        QCOMPARE(draws.size(), 1);
        QCOMPARE(draws.first().generator, processWide);
        QCOMPARE(draws.first().bytes, qint64(4));
    }
};

QTEST_GUILESS_MAIN(TestRandomNumbers)

#include "tst_random_numbers.moc"
