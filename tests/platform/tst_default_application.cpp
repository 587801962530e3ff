// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CAssocUtils.h>
#include <ZyBase/platform/COperateSystem.h>

#include "FakeTools.h"
#include "OutputCapture.h"

#include <QTest>

#include <memory>
#include <type_traits>

using ZyBase::CAssocUtils;
using ZyBase::COperateSystem;

namespace {

const QString reader = QStringLiteral("org.example.reader");
const QString textType = QStringLiteral("text/plain");
const QString queryPdf = QStringLiteral("xdg-mime [query] [default] [application/pdf]");

} // namespace

// The calls of xdg-mime, and the results for its output.
class TestDefaultApplication : public QObject
{
    Q_OBJECT

private:
    void provideTool(const QByteArray &script) { m_tools->add(QStringLiteral("xdg-mime"), script); }

    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<OutputCapture> m_output;

private Q_SLOTS:
    void init()
    {
        m_tools = std::make_unique<FakeTools>();
        qputenv("PATH", QFile::encodeName(m_tools->path()));
        m_output = std::make_unique<OutputCapture>();
    }
    void cleanup() { QCOMPARE(OutputCapture::take(m_output), QString()); }

    void returnsTrueIfOutputContainsName_data()
    {
        QTest::addColumn<QByteArray>("output");
        QTest::addColumn<QString>("application");
        QTest::addColumn<bool>("isDefault");
        const QByteArray entry("org.example.reader.desktop\n");
        QTest::newRow("name of the entry") << entry << "org.example.reader" << true;
        QTest::newRow("name with the suffix") << entry << "org.example.reader.desktop" << true;
        QTest::newRow("first part") << entry << "org.exam" << true;
        QTest::newRow("middle part") << entry << "reader" << true;
        QTest::newRow("last part") << entry << ".desktop" << true;
        QTest::newRow("longer name") << entry << "org.example.reader2" << false;
        QTest::newRow("another name") << entry << "okular" << false;
        QTest::newRow("upper-case character") << entry << "org.example.Reader" << false;
        QTest::newRow("upper-case character in the output")
            << QByteArray("Reader.desktop\n") << "reader" << false;
        QTest::newRow("line end is removed") << entry << "org.example.reader.desktop\n" << false;
        QTest::newRow("white space before it is removed") << QByteArray(" \t\na\n") << " " << false;
        QTest::newRow("line ends inside are kept") << QByteArray("a.desktop\nb.desktop\n") << "p\nb" << true;
        QTest::newRow("after a NUL byte") << QByteArray("a\0org.example.reader", 20) << "reader" << false;
        QTest::newRow("before a NUL byte") << QByteArray("reader\0b", 8) << "reader" << true;
        QTest::newRow("Chinese") << QByteArray("阅读器.desktop\n") << "阅读器" << true;
        QTest::newRow("empty name") << entry << "" << true;
        QTest::newRow("null name") << entry << QString() << true;
        QTest::newRow("empty name and no output") << QByteArray("") << "" << true;
        QTest::newRow("no output") << QByteArray("") << "reader" << false;
    }
    void returnsTrueIfOutputContainsName()
    {
        QFETCH(QByteArray, output);
        QFETCH(QString, application);
        QFETCH(bool, isDefault);
        provideTool(FakeTools::print(output));
        QCOMPARE(CAssocUtils::IsPdfLauncher(application), isDefault);
        QCOMPARE(COperateSystem::IsDefaultLauncher(application, textType), isDefault);
        QCOMPARE(m_tools->calls(),
                 QStringList({queryPdf, QStringLiteral("xdg-mime [query] [default] [text/plain]")}));
    }

    void ignoresExitCodeOfQuery_data()
    {
        QTest::addColumn<QByteArray>("end");
        QTest::newRow("exit code 4") << QByteArray("exit 4");
        QTest::newRow("crash") << QByteArray("kill -9 $$");
    }
    void ignoresExitCodeOfQuery()
    {
        QFETCH(QByteArray, end);
        provideTool("echo reader.desktop\n" + end);
        QVERIFY(CAssocUtils::IsPdfLauncher(QStringLiteral("reader")));
        QVERIFY(!CAssocUtils::IsPdfLauncher(QStringLiteral("okular")));
        QVERIFY(CAssocUtils::SetPdfLauncher(reader, QString(), false));
    }

    void ignoresStandardError()
    {
        provideTool("echo reader >&2");
        QVERIFY(!CAssocUtils::IsPdfLauncher(QStringLiteral("reader")));
    }

    void passesEntryAndType_data()
    {
        QTest::addColumn<QString>("application");
        QTest::addColumn<QString>("entry");
        QTest::newRow("name") << reader << "org.example.reader.desktop";
        QTest::newRow("name with the suffix") << "org.example.reader.desktop"
                                              << "org.example.reader.desktop.desktop";
        QTest::newRow("empty") << ""
                               << ".desktop";
        QTest::newRow("null") << QString() << ".desktop";
        QTest::newRow("spaces and quotes") << "my \"own\" 'reader'"
                                           << "my \"own\" 'reader'.desktop";
        QTest::newRow("Chinese") << "阅读器"
                                 << "阅读器.desktop";
    }
    void passesEntryAndType()
    {
        QFETCH(QString, application);
        QFETCH(QString, entry);
        provideTool("echo not read; exit 0");
        QVERIFY(CAssocUtils::SetPdfLauncher(application, QString(), false));
        QVERIFY(COperateSystem::SetDefaultLauncher(application, textType, QString(), false));
        QCOMPARE(m_tools->calls(),
                 QStringList({QStringLiteral("xdg-mime [default] [%1] [application/pdf]").arg(entry),
                              QStringLiteral("xdg-mime [default] [%1] [text/plain]").arg(entry)}));
    }

    void ignoresOtherArguments()
    {
        provideTool("exit 0");
        for (const QString &unread : {QString(), QStringLiteral(""), QStringLiteral("other")}) {
            for (const bool flag : {true, false}) {
                QVERIFY(CAssocUtils::SetPdfLauncher(reader, unread, flag));
                QVERIFY(COperateSystem::SetDefaultLauncher(reader, QStringLiteral("application/pdf"), unread,
                                                           flag));
            }
        }
        QStringList calls = m_tools->calls();
        QCOMPARE(calls.size(), 12);
        calls.removeDuplicates();
        QCOMPARE(calls, QStringList {QStringLiteral(
                            "xdg-mime [default] [org.example.reader.desktop] [application/pdf]")});
    }

    void returnsTrueForEveryOutcomeOfSetting_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::newRow("exit code 1") << QByteArray("exit 1");
        QTest::newRow("exit code 4 and an error message") << QByteArray("echo no such entry >&2; exit 4");
        QTest::newRow("crash") << QByteArray("kill -9 $$");
    }
    void returnsTrueForEveryOutcomeOfSetting()
    {
        QFETCH(QByteArray, script);
        provideTool(script);
        QVERIFY(CAssocUtils::SetPdfLauncher(reader, QString(), true));
        QCOMPARE(m_tools->calls().size(), 1);
    }

    void returnsFixedResultsWithoutTool()
    {
        QVERIFY(!CAssocUtils::IsPdfLauncher(reader));
        QVERIFY(CAssocUtils::IsPdfLauncher(QString()));
        QVERIFY(CAssocUtils::SetPdfLauncher(reader, QString(), false));
        QVERIFY(CAssocUtils::ResetPdfLauncher(reader));
    }

    void changesNothingOnReset()
    {
        provideTool("exit 0");
        QVERIFY(CAssocUtils::ResetPdfLauncher(reader));
        QVERIFY(CAssocUtils::ResetPdfLauncher(QString()));
        QVERIFY(COperateSystem::ResetDefaultLauncher(reader, textType));
        QCOMPARE(m_tools->calls(), QStringList());
    }

    void runsToolAtEachCall()
    {
        provideTool("echo reader.desktop");
        QVERIFY(CAssocUtils::IsPdfLauncher(QStringLiteral("reader")));
        provideTool("echo okular.desktop");
        QVERIFY(!CAssocUtils::IsPdfLauncher(QStringLiteral("reader")));
    }

    void hasNoData()
    {
        QVERIFY(std::is_empty<CAssocUtils>::value && !std::is_polymorphic<CAssocUtils>::value);
    }
};

QTEST_GUILESS_MAIN(TestDefaultApplication)

#include "tst_default_application.moc"
