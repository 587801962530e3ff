// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/files/CFileUtils.h>

#include "Files.h"
#include "FilesTest.h"

#include <QDir>
#include <QLocale>

#include <limits>

using ZyBase::CFileUtils;

class TestFileNames : public FilesTest
{
    Q_OBJECT

private:
    void createFile(const char *name) { QVERIFY(writeFile(path(name), "existing")); }

private Q_SLOTS:
    void rejectsNamesWithForbiddenCharacters_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("valid");
        QTest::newRow("null") << QString() << true;
        QTest::newRow("empty") << utf8("") << true;
        QTest::newRow("space") << utf8(" ") << true;
        QTest::newRow("plain") << utf8("report.pdf") << true;
        QTest::newRow("backslash") << utf8("a\\b") << false;
        QTest::newRow("slash") << utf8("a/b") << false;
        QTest::newRow("colon") << utf8("a:b") << false;
        QTest::newRow("asterisk") << utf8("a*b") << false;
        QTest::newRow("question mark") << utf8("a?b") << false;
        QTest::newRow("double quote") << utf8("a\"b") << false;
        QTest::newRow("less-than") << utf8("a<b") << false;
        QTest::newRow("greater-than") << utf8("a>b") << false;
        QTest::newRow("vertical bar") << utf8("a|b") << false;
        QTest::newRow("forbidden at the start") << utf8("*a") << false;
        QTest::newRow("forbidden at the end") << utf8("a*") << false;
        QTest::newRow("only forbidden") << utf8("|") << false;
        QTest::newRow("forbidden on a later line") << utf8("a\nb?c") << false;
        QTest::newRow("all other ASCII punctuation") << utf8("!#$%&'()+,-.;=@[]^_`{}~") << true;
        QTest::newRow("brackets and plus sign") << utf8("[a]+") << true;
        QTest::newRow("control characters") << utf8("a\x01\t\n\x7f") << true;
        QTest::newRow("NUL") << QString(QChar(0)) << true;
        QTest::newRow("forbidden after NUL") << QString(QChar(0)) + utf8("*") << false;
        QTest::newRow("two dots") << utf8("..") << true;
        QTest::newRow("space and dot at the end") << utf8("a. .") << true;
        QTest::newRow("reserved device name") << utf8("CON") << true;
        QTest::newRow("very long") << QString(100000, QLatin1Char('a')) << true;
        QTest::newRow("very long with forbidden character at the end")
            << QString(100000, QLatin1Char('a')) + utf8("?") << false;
        QTest::newRow("Chinese") << utf8("文件名") << true;
        QTest::newRow("full-width colon and slash") << utf8("：／＊？") << true;
        QTest::newRow("emoji") << utf8("😀") << true;
    }
    void rejectsNamesWithForbiddenCharacters()
    {
        QFETCH(QString, name);
        QFETCH(bool, valid);
        QCOMPARE(CFileUtils::CheckFileNameValid(name), valid);
        QCOMPARE(CFileUtils::CheckFileNameValid(name), valid);
    }

    void acceptsOnlyDrivePaths_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("valid");
        QTest::newRow("null") << QString() << false;
        QTest::newRow("empty") << utf8("") << false;
        QTest::newRow("absolute Linux path") << utf8("/home/user/a.pdf") << false;
        QTest::newRow("root directory") << utf8("/") << false;
        QTest::newRow("relative path") << utf8("a/b") << false;
        QTest::newRow("drive path") << utf8("C:\\Users\\a.pdf") << true;
        QTest::newRow("drive path with slashes") << utf8("C:/Users/a.pdf") << true;
        QTest::newRow("only the drive") << utf8("C:\\") << true;
        QTest::newRow("only a colon") << utf8(":") << false;
        QTest::newRow("two characters") << utf8("C:") << false;
        QTest::newRow("three characters, colon first") << utf8(":ab") << true;
        QTest::newRow("three characters, colon second") << utf8("a:b") << true;
        QTest::newRow("three characters, colon third") << utf8("ab:") << true;
        QTest::newRow("three colons") << utf8(":::") << true;
        QTest::newRow("colon first of more") << utf8(":abc") << true;
        QTest::newRow("colon third of more") << utf8("ab:c") << true;
        QTest::newRow("colon fourth") << utf8("abc:d") << false;
        QTest::newRow("colon fourth and last") << utf8("abc:") << false;
        QTest::newRow("colon in a Linux path") << utf8("/home/a:b") << false;
        QTest::newRow("colon early in a Linux path") << utf8("/a:b/c") << true;
        QTest::newRow("second colon") << utf8("C:\\a:b") << false;
        QTest::newRow("asterisk") << utf8("C:\\a*b") << false;
        QTest::newRow("question mark") << utf8("C:\\a?b") << false;
        QTest::newRow("double quote") << utf8("C:\\a\"b") << false;
        QTest::newRow("less-than") << utf8("C:\\a<b") << false;
        QTest::newRow("greater-than") << utf8("C:\\a>b") << false;
        QTest::newRow("vertical bar") << utf8("C:\\a|b") << false;
        QTest::newRow("forbidden fourth character") << utf8("C:\\*") << false;
        QTest::newRow("forbidden in the first three characters") << utf8("*:?a") << true;
        QTest::newRow("backslashes and slashes") << utf8("C:\\a/b\\\\c//d") << true;
        QTest::newRow("Chinese") << utf8("D:\\文件\\报告.pdf") << true;
    }
    void acceptsOnlyDrivePaths()
    {
        QFETCH(QString, path);
        QFETCH(bool, valid);
        QCOMPARE(CFileUtils::CheckFilePathValid(path), valid);
        QCOMPARE(CFileUtils::CheckFilePathValid(path), valid);
    }

    void acceptsNamesThatAreNotUtf16()
    {
        // QRegularExpression does not match a string that is not valid UTF-16.
        const QString halfPair = QString(QChar(0xd800));
        QVERIFY(CFileUtils::CheckFileNameValid(halfPair + utf8("*")));
        QVERIFY(CFileUtils::CheckFilePathValid(utf8("C:\\") + halfPair + utf8("*")));
        // The check starts at the fourth character, which is the second half of a pair.
        QVERIFY(CFileUtils::CheckFilePathValid(utf8("ab\U0001F600:*")));
    }

    void formatsSizeWithUnit_data()
    {
        QTest::addColumn<qlonglong>("size");
        QTest::addColumn<QString>("expected");
        const auto row = [](qlonglong size, const char *expected) {
            QTest::newRow(qPrintable(QString::number(size))) << size << utf8(expected);
        };
        row(0, "0.00 B");
        row(1, "1.00 B");
        row(512, "512.00 B");
        row(1023, "1023.00 B");
        row(1024, "1.00 KB");
        row(1029, "1.00 KB");
        row(1030, "1.01 KB");
        row(1536, "1.50 KB");
        row(1048570, "1023.99 KB");
        row(1048575, "1024.00 KB");
        row(1048576, "1.00 MB");
        row(1073741823, "1024.00 MB");
        row(1073741824, "1.00 GB");
        row(1099511627775, "1024.00 GB");
        row(1099511627776, "1.00 TB");
        row(1125899906842624, "1024.00 TB");
        row(1152921504606846976, "1048576.00 TB");
        row(std::numeric_limits<qlonglong>::max(), "8388608.00 TB");
        row(-1, "-1.00 B");
        row(-5000, "-5000.00 B");
        row(-1099511627776, "-1099511627776.00 B");
        row(std::numeric_limits<qlonglong>::min(), "-9223372036854775808.00 B");
    }
    void formatsSizeWithUnit()
    {
        QFETCH(qlonglong, size);
        QFETCH(QString, expected);
        QCOMPARE(CFileUtils::FormatFileSize(size), expected);
    }

    void formatsSizeWithFullStopInEveryLocale()
    {
        const QLocale previous;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        const QString german = CFileUtils::FormatFileSize(1610612736);
        QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
        const QString arabic = CFileUtils::FormatFileSize(1536);
        QLocale::setDefault(previous);
        QCOMPARE(german, utf8("1.50 GB"));
        QCOMPARE(arabic, utf8("1.50 KB"));
    }

    void returnsPreferredNameIfFree_data()
    {
        QTest::addColumn<QString>("preferred");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *preferred, const char *extension, const char *expected) {
            QTest::newRow(qPrintable(utf8(preferred) + utf8(" + ") + utf8(extension)))
                << utf8(preferred) << utf8(extension) << utf8(expected);
        };
        row("/nowhere/a.pdf", "", "/nowhere/a.pdf");
        row("/nowhere/a.pdf", "txt", "/nowhere/a.txt");
        row("/nowhere/a.pdf", "pdf", "/nowhere/a.pdf");
        row("/nowhere/a", "", "/nowhere/a.");
        row("/nowhere/a", "pdf", "/nowhere/a.pdf");
        row("/nowhere/a.", "", "/nowhere/a.");
        row("/nowhere/a.tar.gz", "", "/nowhere/a.tar.gz");
        row("/nowhere/a.tar.gz", "zip", "/nowhere/a.tar.zip");
        row("/nowhere/a.tar.gz", "tar.xz", "/nowhere/a.tar.tar.xz");
        row("/nowhere/a.pdf", ".txt", "/nowhere/a..txt");
        row("/nowhere/.hidden", "", "/nowhere/.hidden");
        row("/nowhere/a/../b.pdf", "", "/nowhere/a/../b.pdf");
        row("/nowhere/a b.pdf", "", "/nowhere/a b.pdf");
        row("/nowhere/%1%2%3%4.%1", "", "/nowhere/%1%2%3%4.%1");
        row("/nowhere/%3.pdf", "%1", "/nowhere/%3.%1");
        row("/%2/%1.pdf", "", "/%2/%1.pdf");
        row("/nowhere/文件.pdf", "", "/nowhere/文件.pdf");
        row("no such file.pdf", "", "./no such file.pdf");
        row("nowhere/a.pdf", "", "nowhere/a.pdf");
        row("/no such file.pdf", "", "//no such file.pdf");
        row("/nowhere/", "", "/nowhere/.");
        row(":/nowhere/a.pdf", "", ":/nowhere/a.pdf");
    }
    void returnsPreferredNameIfFree()
    {
        QFETCH(QString, preferred);
        QFETCH(QString, extension);
        QFETCH(QString, expected);
        QCOMPARE(CFileUtils::getUniqueFileName(preferred, extension), expected);
    }

    void treatsNullExtensionAsEmpty()
    {
        QCOMPARE(CFileUtils::getUniqueFileName(path("a.pdf"), QString()), path("a.pdf"));
    }

    void addsCounterToExistingName_data()
    {
        QTest::addColumn<QStringList>("existing");
        QTest::addColumn<QString>("preferred");
        QTest::addColumn<QString>("extension");
        QTest::addColumn<QString>("expected");
        QStringList many {utf8("a.pdf")};
        for (int i = 1; i <= 11; ++i)
            many << utf8("a(%1).pdf").arg(i);
        QTest::newRow("one file exists")
            << QStringList {utf8("a.pdf")} << utf8("a.pdf") << "" << utf8("a(1).pdf");
        QTest::newRow("two files exist")
            << QStringList {utf8("a.pdf"), utf8("a(1).pdf")} << utf8("a.pdf") << "" << utf8("a(2).pdf");
        QTest::newRow("twelve files exist") << many << utf8("a.pdf") << "" << utf8("a(12).pdf");
        QTest::newRow("gap in the counters")
            << QStringList {utf8("a.pdf"), utf8("a(2).pdf")} << utf8("a.pdf") << "" << utf8("a(1).pdf");
        QTest::newRow("only the name with a counter exists")
            << QStringList {utf8("a(1).pdf")} << utf8("a.pdf") << "" << utf8("a.pdf");
        QTest::newRow("two suffixes")
            << QStringList {utf8("a.tar.gz")} << utf8("a.tar.gz") << "" << utf8("a.tar(1).gz");
        QTest::newRow("no suffix") << QStringList {utf8("a.")} << utf8("a") << "" << utf8("a(1).");
        QTest::newRow("no suffix, name without dot exists")
            << QStringList {utf8("a")} << utf8("a") << "" << utf8("a.");
        QTest::newRow("hidden") << QStringList {utf8(".hidden")} << utf8(".hidden") << ""
                                << utf8("(1).hidden");
        QTest::newRow("with extension")
            << QStringList {utf8("a.pdf"), utf8("a.txt")} << utf8("a.pdf") << "txt" << utf8("a(1).txt");
        QTest::newRow("other extension exists")
            << QStringList {utf8("a.pdf")} << utf8("a.pdf") << "txt" << utf8("a.txt");
        QTest::newRow("counter in the preferred name")
            << QStringList {utf8("a(1).pdf")} << utf8("a(1).pdf") << "" << utf8("a(1)(1).pdf");
        QTest::newRow("percent signs in the name")
            << QStringList {utf8("%1%2%3%4.pdf")} << utf8("%1%2%3%4.pdf") << "" << utf8("%1%2%3%4(1).pdf");
        QTest::newRow("other case") << QStringList {utf8("A.pdf")} << utf8("a.pdf") << "" << utf8("a.pdf");
    }
    void addsCounterToExistingName()
    {
        QFETCH(QStringList, existing);
        QFETCH(QString, preferred);
        QFETCH(QString, extension);
        QFETCH(QString, expected);
        for (const QString &name : qAsConst(existing))
            QVERIFY(writeFile(path(name), "existing"));
        const QString found = CFileUtils::getUniqueFileName(path(preferred), extension);
        QCOMPARE(found, path(expected));
        QVERIFY(!QFile::exists(found));
    }

    void addsCounterIfDirectoryExists()
    {
        QVERIFY(QDir(directoryPath()).mkdir(utf8("a.pdf")));
        QCOMPARE(CFileUtils::getUniqueFileName(path("a.pdf"), QString()), path("a(1).pdf"));
    }

    void returnsNameInDirectoryForTrailingSlash()
    {
        QCOMPARE(CFileUtils::getUniqueFileName(directoryPath() + utf8("/"), QString()), path("(1)."));
    }

    void treatsDanglingLinkAsFree()
    {
        QVERIFY(QFile::link(path("missing"), path("a.pdf")));
        QCOMPARE(CFileUtils::getUniqueFileName(path("a.pdf"), QString()), path("a.pdf"));
        createFile("missing");
        QCOMPARE(CFileUtils::getUniqueFileName(path("a.pdf"), QString()), path("a(1).pdf"));
    }

    void searchesCurrentDirectoryForNameWithoutDirectory()
    {
        createFile("a.pdf");
        const QString previous = QDir::currentPath();
        QVERIFY(QDir::setCurrent(directoryPath()));
        const QString found = CFileUtils::getUniqueFileName(utf8("a.pdf"), QString());
        QVERIFY(QDir::setCurrent(previous));
        QCOMPARE(found, utf8("./a(1).pdf"));
    }

    void createsNoFileAndLogsNothing()
    {
        CFileUtils::getUniqueFileName(path("a.pdf"), QString());
        CFileUtils::getUniqueFileName(QString(), QString());
        CFileUtils::CheckFileNameValid(utf8("*"));
        CFileUtils::CheckFilePathValid(utf8("C:\\*"));
        CFileUtils::FormatFileSize(-1);
        QVERIFY(QDir(directoryPath()).isEmpty());
        QCOMPARE(messages().size(), 0);
    }
};

QTEST_GUILESS_MAIN(TestFileNames)

#include "tst_file_names.moc"
