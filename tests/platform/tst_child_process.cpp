// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/ChildProcess.h>

#include "Utf8.h"

#include <QTest>

#include <dlfcn.h>

using ZyBase::ChildProcess;

namespace {

const QString emptyString = QStringLiteral("");
constexpr int notExecutableCode = 255;

QList<QIODevice::OpenMode> openModes; // of all starts

void runShell(ChildProcess &process, const char *script)
{
    process.run("sh", {QStringLiteral("-c"), utf8(script)});
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

// Runs tools as the theme detectors and the default application functions do.
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
        QTest::newRow("tool that fails") << QByteArray("echo said; exit 3") << QStringLiteral("said");
    }
    void returnsOutput()
    {
        QFETCH(QByteArray, script);
        ChildProcess process;
        runShell(process, script.constData());
        const QString output = process.takeOutput();
        QTEST(output, "output");
        QVERIFY(!output.isNull());
        QCOMPARE(process.takeOutput(), emptyString);
    }

    void waitsForTheEnd()
    {
        ChildProcess process;
        runShell(process, "sleep 0.2; exit 3");
        QCOMPARE(process.exitCode(), 3);
    }

    void runsSeveralTools()
    {
        ChildProcess process;
        runShell(process, "echo first; exit 3");
        QCOMPARE(process.takeOutput(), QStringLiteral("first"));
        runShell(process, "echo second");
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(process.takeOutput(), QStringLiteral("second"));
    }

    void passesArgumentsUnchanged()
    {
        ChildProcess process;
        process.run("printf", {QStringLiteral("[%s]"), QStringLiteral("a b"), QStringLiteral("$HOME\"'")});
        QCOMPARE(process.takeOutput(), QStringLiteral("[a b][$HOME\"']"));
    }

    void returnsNoOutputOfMissingTool()
    {
        ChildProcess process;
        process.run("no-such-tool", {});
        QCOMPARE(process.exitCode(), notExecutableCode);
        QCOMPARE(process.takeOutput(), emptyString);
    }

    void opensToolForReadingAndWriting()
    {
        openModes.clear();
        ChildProcess process;
        runShell(process, "true");
        runShell(process, "true");
        QCOMPARE(openModes, QList<QIODevice::OpenMode>({QIODevice::ReadWrite, QIODevice::ReadWrite}));
    }
};

QTEST_GUILESS_MAIN(TestChildProcess)

#include "tst_child_process.moc"
