// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/ChildProcess.h>

#include "Utf8.h"

#include <QTest>

#include <dlfcn.h>

using ZyBase::runTool;
using ZyBase::takeOutput;

namespace {

const QString emptyString = QStringLiteral("");
constexpr int notExecutableCode = 255;

QList<QIODevice::OpenMode> openModes; // of all starts

void runShell(QProcess &process, const char *script)
{
    runTool(process, "sh", {QStringLiteral("-c"), utf8(script)});
}

} // namespace

// Called instead of Qt's function, because symbols of the program come first. Records the mode.
__attribute__((visibility("default"))) void QProcess::start(const QString &program,
                                                            const QStringList &arguments, OpenMode mode)
{
    openModes << mode;
    using Start = void (*)(QProcess *, const QString &, const QStringList &, OpenMode);
    static const auto original = reinterpret_cast<Start>(
        dlsym(RTLD_NEXT, "_ZN8QProcess5startERK7QStringRK11QStringList6QFlagsIN9QIODevice12OpenModeFlagEE"));
    original(this, program, arguments, mode);
}

// Tools are run as by the theme detectors and the default application functions.
class TestChildProcess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnsOutput_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("output");
        QTest::newRow("white space around it")
            << QByteArray("printf ' \\t\\n a b \\r\\n'") << QStringLiteral("a b");
        QTest::newRow("UTF-8") << QByteArray("printf '\\303\\244'") << QStringLiteral("\u00e4");
        QTest::newRow("up to a NUL byte") << QByteArray("printf 'a\\0b'") << QStringLiteral("a");
        QTest::newRow("no output") << QByteArray("true") << emptyString;
        QTest::newRow("only white space") << QByteArray("printf ' \\n'") << emptyString;
        QTest::newRow("only standard error") << QByteArray("echo wrong >&2") << emptyString;
        QTest::newRow("tool that fails") << QByteArray("echo output; exit 3") << QStringLiteral("output");
    }
    void returnsOutput()
    {
        QFETCH(QByteArray, script);
        QProcess process;
        runShell(process, script.constData());
        const QString output = takeOutput(process);
        QTEST(output, "output");
        QVERIFY(!output.isNull());
        QCOMPARE(takeOutput(process), emptyString);
    }

    void waitsForTheEnd()
    {
        QProcess process;
        runShell(process, "sleep 0.2; exit 3");
        QCOMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(process.exitCode(), 3);
    }

    void runsSeveralTools()
    {
        QProcess process;
        runShell(process, "echo first; exit 3");
        QCOMPARE(takeOutput(process), QStringLiteral("first"));
        runShell(process, "echo second");
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(takeOutput(process), QStringLiteral("second"));
    }

    void passesArgumentsUnchanged()
    {
        QProcess process;
        runTool(process, "printf",
                {QStringLiteral("[%s]"), QStringLiteral("a b"), QStringLiteral("$HOME\"'")});
        QCOMPARE(takeOutput(process), QStringLiteral("[a b][$HOME\"']"));
    }

    void returnsNoOutputOfMissingTool()
    {
        QProcess process;
        runTool(process, "no-such-tool", {});
        QCOMPARE(process.error(), QProcess::FailedToStart);
        QCOMPARE(process.exitCode(), notExecutableCode);
        QCOMPARE(takeOutput(process), emptyString);
    }

    void opensToolForReadingAndWriting()
    {
        openModes.clear();
        QProcess process;
        runShell(process, "true");
        runShell(process, "true");
        QCOMPARE(openModes, QList<QIODevice::OpenMode>({QIODevice::ReadWrite, QIODevice::ReadWrite}));
    }
};

QTEST_GUILESS_MAIN(TestChildProcess)

#include "tst_child_process.moc"
