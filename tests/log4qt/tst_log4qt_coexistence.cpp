// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "HostProcess.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

namespace {

// The log4qt that desktop plug-ins load into applications. Null if it is not installed.
QString desktopLibrary()
{
    for (const char *directory : {"/usr/lib", "/usr/lib/x86_64-linux-gnu", "/usr/lib/aarch64-linux-gnu"}) {
        const QString path = QLatin1String(directory) + QStringLiteral("/libukui-log4qt.so.1");
        if (QFile::exists(path))
            return path;
    }
    return QString();
}

} // namespace

// Two libraries with the classes of log4qt in one process, as on such a desktop.
class TestLog4QtCoexistence : public QObject
{
    Q_OBJECT

private:
    static void logAndCompare(HostProcess *host, const QTemporaryDir &directory, const QString &name)
    {
        QVERIFY(host->call(QStringLiteral("log.init"), {name, directory.path()}).toBool());
        QVERIFY(host->call(QStringLiteral("log.info"), {QStringLiteral("ours")}).toBool());
        QVERIFY(host->call(QStringLiteral("log.error"), {QStringLiteral("ours too")}).toBool());
        const QStringList lines = readLines(directory.filePath(QStringLiteral("log/") + name));
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.at(0).endsWith(QStringLiteral(" INFO   - ours")));
        QVERIFY(lines.at(1).endsWith(QStringLiteral(" ERROR  - ours too")));
        QVERIFY(host->call(QStringLiteral("log.release")).toBool());
    }

private Q_SLOTS:
    void initTestCase()
    {
        if (desktopLibrary().isEmpty())
            QSKIP("libukui-log4qt1 is not installed");
    }

    void logsIfDesktopLibraryIsLoadedFirst()
    {
        const QTemporaryDir directory;
        HostProcess host;
        host.setEnvironment(QStringLiteral("LD_PRELOAD"), desktopLibrary());
        host.setEnvironment(QStringLiteral("ASAN_OPTIONS"),
                            QStringLiteral("verify_asan_link_order=0:detect_leaks=0"));
        QVERIFY(host.start());
        logAndCompare(&host, directory, QStringLiteral("first.log"));
        QCOMPARE(host.quit(), 0);
    }

    void logsIfDesktopLibraryIsLoadedLater()
    {
        const QTemporaryDir directory;
        HostProcess host;
        host.setEnvironment(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        QVERIFY(host.start());
        logAndCompare(&host, directory, QStringLiteral("before.log"));
        QCOMPARE(host.call(QStringLiteral("process.loadLibrary"), {desktopLibrary()}), QJsonValue(true));
        logAndCompare(&host, directory, QStringLiteral("after.log"));
        QCOMPARE(host.quit(), 0);
    }

    void logsBesideDesktopLogger()
    {
        const QTemporaryDir directory;
        HostProcess host;
        host.setEnvironment(QStringLiteral("ASAN_OPTIONS"), QStringLiteral("detect_leaks=0"));
        QVERIFY(host.start());
        QVERIFY(
            host.call(QStringLiteral("log.init"), {QStringLiteral("app.log"), directory.path()}).toBool());
        QCOMPARE(host.call(QStringLiteral("process.loadLibrary"), {desktopLibrary()}), QJsonValue(true));
        // Its root logger is a different object from ours and accepts a message.
        QCOMPARE(
            host.call(QStringLiteral("log.warnOnForeignRoot"), {desktopLibrary(), QStringLiteral("theirs")}),
            QJsonValue(true));
        QVERIFY(host.call(QStringLiteral("log.info"), {QStringLiteral("ours")}).toBool());
        const QStringList lines = readLines(directory.filePath(QStringLiteral("log/app.log")));
        QCOMPARE(lines.size(), 1);
        QVERIFY(lines.first().endsWith(QStringLiteral(" - ours")));
        QCOMPARE(host.quit(), 0);
    }

    void exportsNoSymbolOfPlainLog4qt()
    {
        QProcess nm;
        nm.start(QStringLiteral("nm"), {QStringLiteral("-D"), QStringLiteral("--defined-only"),
                                        QStringLiteral(ZYBASE_LOG4QT_LIBRARY)});
        if (!nm.waitForFinished() || nm.exitCode() != 0)
            QSKIP("binutils are not installed");
        const QList<QByteArray> symbols = nm.readAllStandardOutput().split('\n');
        int own = 0;
        for (const QByteArray &symbol : symbols) {
            if (symbol.contains("6Log4Qt")) {
                ++own;
                QVERIFY2(symbol.contains("6Log4Qt2zy"), symbol.constData());
            }
        }
        QVERIFY(own > 100);
    }
};

QTEST_GUILESS_MAIN(TestLog4QtCoexistence)

#include "tst_log4qt_coexistence.moc"
