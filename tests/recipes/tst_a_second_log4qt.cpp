// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "RecipeRun.h"
#include "Utf8.h"

#include <QTemporaryDir>
#include <QTest>

#ifdef OTHER_LOG4QT
namespace {

// The log4qt that desktop plug-ins load into applications. Null if it is not installed.
QString desktopLibrary()
{
    for (const char *directory : {"/usr/lib", "/usr/lib/x86_64-linux-gnu", "/usr/lib/aarch64-linux-gnu"}) {
        QString path = utf8(directory) + utf8("/libukui-log4qt.so.1");
        if (QFile::exists(path))
            return path;
    }
    return QString();
}

} // namespace
#endif

class TestASecondLog4Qt : public QObject
{
    Q_OBJECT

private:
    void expectOnlyOwnLog(const QStringList &lines)
    {
        QStringList expected {utf8("the log's log4qt: " LOG4QT_LOGGER)};
        expected << lines << utf8("to be shown: the disk is nearly full");
        QCOMPARE(m_run->lines, expected);
        QCOMPARE(m_run->exitCode, 0);
        const QStringList log = readLines(m_directory->filePath(utf8("log/host.log")));
        QCOMPARE(log.size(), 2);
        QVERIFY(log.first().endsWith(utf8(" INFO   - the host runs")));
        QVERIFY(log.last().endsWith(utf8(" WARN   - the disk is nearly full")));
    }
    void run(const QStringList &arguments)
    {
        m_run = std::make_unique<RecipeRun>(QStringList {QStringLiteral(RECIPE), m_directory->path()}
                                            + arguments);
    }

    std::unique_ptr<QTemporaryDir> m_directory;
    std::unique_ptr<RecipeRun> m_run;

private Q_SLOTS:
    void init() { m_directory = std::make_unique<QTemporaryDir>(); }
    void cleanup() { qunsetenv("LD_PRELOAD"); }

    void showsWarningsInOwnAppender()
    {
        run({});
        expectOnlyOwnLog({});
    }

#ifdef OTHER_LOG4QT
    void keepsOwnLogWhenPluginIsLoadedLater()
    {
        run({QStringLiteral(OTHER_LOG4QT)});
        expectOnlyOwnLog({utf8("plug-in loaded")});
        QCOMPARE(m_run->standardError, utf8("the plug-in's root logger\nthe plug-in's log: loaded\n"));
    }

    // If two libraries define a symbol, the process uses that of the first.
    void keepsOwnLogWhenPluginIsLoadedFirst()
    {
        qputenv("LD_PRELOAD", OTHER_LOG4QT);
        qputenv("ASAN_OPTIONS", "verify_asan_link_order=0");
        run({});
        expectOnlyOwnLog({});
        QCOMPARE(m_run->standardError, utf8("the plug-in's root logger\nthe plug-in's log: loaded\n"));
    }

    void keepsOwnLogBesideDesktopLibrary()
    {
        if (desktopLibrary().isEmpty())
            QSKIP("libukui-log4qt1 is not installed");
        qputenv("ASAN_OPTIONS", "detect_leaks=0");
        run({desktopLibrary()});
        expectOnlyOwnLog({utf8("plug-in loaded")});
    }
#endif

    void reportsMissingPlugin()
    {
        run({m_directory->filePath(utf8("none.so"))});
        expectOnlyOwnLog({utf8("no plug-in")});
    }
};

QTEST_GUILESS_MAIN(TestASecondLog4Qt)

#include "tst_a_second_log4qt.moc"
