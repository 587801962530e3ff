// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/ChildProcess.h>

#include <QTest>

using ZyBase::runTool;
using ZyBase::takeOutput;

namespace {

const QString quiet = QStringLiteral("");

void runShell(QProcess &process, const char *script)
{
    runTool(process, "sh", {QStringLiteral("-c"), QLatin1String(script)});
}

} // namespace

// A tool of the desktop, as the questions for the theme and the default application run it.
class TestChildProcess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void outputIsTakenAsText_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("output");
        QTest::newRow("white space around it")
            << QByteArray("printf ' \\t\\n a b \\r\\n'") << QStringLiteral("a b");
        QTest::newRow("UTF-8") << QByteArray("printf '\\303\\244'") << QStringLiteral("\u00e4");
        QTest::newRow("up to a NUL byte") << QByteArray("printf 'a\\0b'") << QStringLiteral("a");
        QTest::newRow("nothing") << QByteArray("true") << quiet;
        QTest::newRow("white space alone") << QByteArray("printf ' \\n'") << quiet;
        QTest::newRow("errors are no output") << QByteArray("echo wrong >&2") << quiet;
        QTest::newRow("of a tool that fails") << QByteArray("echo said; exit 3") << QStringLiteral("said");
    }
    void outputIsTakenAsText()
    {
        QFETCH(QByteArray, script);
        QProcess process;
        runShell(process, script.constData());
        const QString taken = takeOutput(process);
        QTEST(taken, "output");
        QVERIFY(!taken.isNull());
    }

    void toolHasEndedWhenTheCallReturns()
    {
        QProcess process;
        runShell(process, "sleep 0.2; exit 3");
        QCOMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(process.exitCode(), 3);
    }

    void argumentsArriveAsTheyAre()
    {
        QProcess process;
        runTool(process, "printf",
                {QStringLiteral("[%s]"), QStringLiteral("a b"), QStringLiteral("$HOME\"'")});
        QCOMPARE(takeOutput(process), QStringLiteral("[a b][$HOME\"']"));
    }

    void missingToolSaysNothing()
    {
        QProcess process;
        runTool(process, "no-such-tool", {});
        QCOMPARE(process.error(), QProcess::FailedToStart);
        QCOMPARE(takeOutput(process), quiet);
    }
};

QTEST_GUILESS_MAIN(TestChildProcess)

#include "tst_child_process.moc"
