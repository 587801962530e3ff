// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CStringUtils.h>

#include <QStringList>
#include <QTest>

using ZyBase::CStringUtils;

namespace {

constexpr int pieceLength = 100;

// Returns a string without repeated characters in a piece, so that a lost or moved one is noticed.
QString sample(int length)
{
    QString text;
    for (int i = 0; i < length; ++i)
        text += QChar(0x4e00 + i % 7919);
    return text;
}

QString joinedPieces(const QString &text)
{
    QStringList pieces;
    for (int position = 0; position < text.length(); position += pieceLength)
        pieces << text.mid(position, pieceLength);
    return pieces.join(QLatin1Char('\n'));
}

} // namespace

class TestStringUtils : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addsLineFeedAfterEvery100Characters_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("lineFeeds");
        QTest::newRow("1") << 1 << 0;
        QTest::newRow("99") << 99 << 0;
        QTest::newRow("100") << 100 << 0;
        QTest::newRow("101") << 101 << 1;
        QTest::newRow("199") << 199 << 1;
        QTest::newRow("200") << 200 << 1;
        QTest::newRow("201") << 201 << 2;
        QTest::newRow("300") << 300 << 2;
        QTest::newRow("10,000") << 10000 << 99;
        QTest::newRow("1,000,001") << 1000001 << 10000;
    }
    void addsLineFeedAfterEvery100Characters()
    {
        QFETCH(int, length);
        QFETCH(int, lineFeeds);
        const QString text = sample(length);
        const QString wrapped = CStringUtils::SplitString(text);
        QCOMPARE(wrapped, joinedPieces(text));
        QCOMPARE(wrapped.length(), length + lineFeeds);
        QCOMPARE(wrapped.count(QLatin1Char('\n')), lineFeeds);
        QVERIFY(!wrapped.endsWith(QLatin1Char('\n')));
    }

    void returnsNullStringForEmptyString()
    {
        QVERIFY(CStringUtils::SplitString(QString()).isNull());
        QVERIFY(CStringUtils::SplitString(QStringLiteral("")).isNull());
        QVERIFY(joinedPieces(QString()).isNull());
    }

    void splits101Characters()
    {
        const QString text = sample(101);
        QCOMPARE(CStringUtils::SplitString(text), text.left(100) + QLatin1Char('\n') + text.right(1));
    }

    void countsLineFeedsAsCharacters()
    {
        const QString text = QStringLiteral("0123456789\n").repeated(20);
        QCOMPARE(CStringUtils::SplitString(text), joinedPieces(text));
        const QString feeds(101, QLatin1Char('\n'));
        QCOMPARE(CStringUtils::SplitString(feeds), QString(102, QLatin1Char('\n')));
    }

    void splitsWords()
    {
        const QString text = QString(98, QLatin1Char('a')) + QStringLiteral(" word");
        QCOMPARE(CStringUtils::SplitString(text), QString(98, QLatin1Char('a')) + QStringLiteral(" w\nord"));
    }

    void splitsSurrogatePairs()
    {
        const QString face = QStringLiteral("😀");
        const QString wrapped = CStringUtils::SplitString(QString(99, QLatin1Char('a')) + face);
        QCOMPARE(wrapped.length(), 102);
        QCOMPARE(wrapped.at(99), face.at(0));
        QCOMPARE(wrapped.at(100), QChar(QLatin1Char('\n')));
        QCOMPARE(wrapped.at(101), face.at(1));
    }

    void countsNulAsCharacter()
    {
        const QString text = QString(250, QChar(0));
        QCOMPARE(CStringUtils::SplitString(text), joinedPieces(text));
    }
};

QTEST_GUILESS_MAIN(TestStringUtils)

#include "tst_string_utils.moc"
