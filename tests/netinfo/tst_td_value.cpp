// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/netinfo/CNetworkUtils.h>

#include <QTest>

#include <type_traits>

class TestTdValue : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnsTextOfFirstCell_data()
    {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("expected");
        QTest::newRow("cell") << "<td>Berlin</td>"
                              << "Berlin";
        QTest::newRow("spaces are kept") << "  <td> New  York\t</td>  "
                                         << " New  York\t";
        QTest::newRow("entities are kept") << "<td>Trinidad &amp; Tobago&nbsp;</td>"
                                           << "Trinidad &amp; Tobago&nbsp;";
        QTest::newRow("other characters")
            << "<td>Größe 文件 \U0001F30D</td>" << QStringLiteral("Größe 文件 \U0001F30D");
        QTest::newRow("attributes") << "<td class=\"x\">Berlin</td>"
                                    << "Berlin";
        QTest::newRow("two cells: the first") << "<td>a</td><td>b</td>"
                                              << "a";
        QTest::newRow("text before the cell") << "x <td>a</td>"
                                              << "a";
        QTest::newRow("nested tag") << "<td><b>a</b></td>"
                                    << "";
        QTest::newRow("empty cell") << "<td></td>"
                                    << "";
        QTest::newRow("empty line") << ""
                                    << "";
        QTest::newRow("null") << QString() << "";
        QTest::newRow("ends with its first >") << "<td>"
                                               << "";
        QTest::newRow("> only") << ">"
                                << "";
        QTest::newRow("one character after >") << ">a"
                                               << "a";
        QTest::newRow("no end") << "<td>Berlin"
                                << "Berlin";
        QTest::newRow("no end, carriage return") << "<td>Berlin\r"
                                                 << "Berlin\r";
        QTest::newRow("no markup") << "Berlin"
                                   << "Berlin";
        QTest::newRow("no >") << "Berlin</td"
                              << "Berlin";
        QTest::newRow("no >, < first") << "<td"
                                       << "";
        QTest::newRow("further > belongs to the text") << "<td>a > b</td>"
                                                       << "a > b";
        QTest::newRow("< before the first > is ignored") << "a<b>c<d"
                                                         << "c";
    }
    void returnsTextOfFirstCell()
    {
        QFETCH(QString, line);
        const QString value = ParseTdValue(line);
        QTEST(value, "expected");
        QVERIFY(!value.isNull());
    }

    void hasNoStateAndNoVirtualFunctions()
    {
        QVERIFY(std::is_empty<ZyBase::CNetworkUtils>::value);
        QVERIFY(!std::is_polymorphic<ZyBase::CNetworkUtils>::value);
    }
};

QTEST_APPLESS_MAIN(TestTdValue)

#include "tst_td_value.moc"
