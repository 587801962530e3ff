// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeTools.h"
#include "Files.h"
#include "ProcessFigures.h"
#include "TemporaryHome.h"
#include "ThemeWatcher.h"
#include "Utf8.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPalette>
#include <QProcess>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <memory>

namespace {

const QString schema = QStringLiteral("org.gnome.desktop.interface");
constexpr int patience = 60000;

bool isInstalled(const char *program)
{
    return !QStandardPaths::findExecutable(utf8(program)).isEmpty();
}

bool set(const QString &key, const QString &value)
{
    return QProcess::execute(utf8("gsettings"), {utf8("set"), schema, key, value}) == 0;
}

// Counts the timers of this process that are over once and for all.
class FiredTimers : public QObject
{
public:
    FiredTimers() { QCoreApplication::instance()->installEventFilter(this); }
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *const timer = qobject_cast<QTimer *>(watched);
        if (timer && timer->isSingleShot() && event->type() == QEvent::Timer)
            ++count;
        return QObject::eventFilter(watched, event);
    }
    int count = 0;
};

// The recipe's host while it watches.
class Host
{
public:
    explicit Host(const QStringList &command = {QStringLiteral(RECIPE)})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(command.first(), command.mid(1));
    }
    ~Host()
    {
        m_process.kill();
        m_process.waitForFinished(patience);
    }

    // The next line that it prints.
    QString line()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(patience))
                return QString();
        }
        return QString::fromUtf8(m_process.readLine().trimmed());
    }

    // What it has printed besides until Enter ends it; "crashed" where it doesn't end well.
    QString pressEnter()
    {
        m_process.write("\n");
        const bool isWell = m_process.waitForFinished(patience)
                            && m_process.exitStatus() == QProcess::NormalExit && m_process.exitCode() == 0;
        return isWell ? QString::fromUtf8(m_process.readAllStandardOutput()) : utf8("crashed");
    }

private:
    Q_DISABLE_COPY(Host)
    QProcess m_process;
};

} // namespace

class TestWatchingTheTheme : public QObject
{
    Q_OBJECT

private:
    QString config(const char *name) const { return m_home->filePath(utf8(".config/") + utf8(name)); }

    // gsettings tells the theme that the file "theme" names, once the file "go" is there.
    void provideTools()
    {
        m_tools = std::make_unique<FakeTools>();
        m_tools->add(utf8("which"), "exit 0");
        const QByteArray folder = QFile::encodeName(m_tools->path());
        m_tools->add(utf8("gsettings"), "while [ -d '" + folder + "' ] && [ ! -e '" + folder
                                            + "/go' ]; do /bin/sleep 0.01; done\n/bin/cat '" + folder
                                            + "/theme'");
        qputenv("PATH", folder);
        writeFile(tool("theme"), "'Adwaita-light'");
        writeFile(tool("go"), "");
    }
    QString tool(const char *name) const { return m_tools->path() + QLatin1Char('/') + utf8(name); }
    int questions() const { return m_tools->calls().filter(utf8("which")).size(); }

    std::unique_ptr<TemporaryHome> m_home;
    std::unique_ptr<FakeTools> m_tools;
    QByteArray m_path;
    int m_threads = 0;

private Q_SLOTS:
    void initTestCase()
    {
        m_path = qgetenv("PATH");
        m_threads = ProcessFigures::threadCount();
        qputenv("QT_QPA_PLATFORM", "minimal"); // for the hosts
    }
    void init()
    {
        for (const char *variable :
             {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION", "XDG_CURRENT_DESKTOP"})
            qunsetenv(variable);
        m_home = std::make_unique<TemporaryHome>();
        qputenv("GSETTINGS_BACKEND", "keyfile");
    }
    void cleanup()
    {
        // A question that outlived its watcher still asks this test's tools.
        QTRY_COMPARE_WITH_TIMEOUT(ProcessFigures::threadCount(), m_threads, patience);
        qputenv("PATH", m_path);
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        m_tools.reset();
        m_home.reset();
    }

    void switchOfTheDesktopIsSeen()
    {
        if (!isInstalled("gsettings"))
            QSKIP("gsettings is not installed");
        Host host;
        QCOMPARE(host.line(), utf8("light"));
        if (!set(utf8("gtk-theme"), utf8("Adwaita-dark")))
            QSKIP("the schemas of GNOME are not installed");
        QCOMPARE(host.line(), utf8("dark"));
        QVERIFY(set(utf8("gtk-theme"), utf8("Adwaita")));
        QCOMPARE(host.line(), utf8("light"));
        QCOMPARE(host.pressEnter(), QString());
    }

    // Where GNOME keeps its settings: a database that a service of the session replaces as a whole.
    void switchThroughTheSessionsServiceIsSeen()
    {
        if (!isInstalled("dbus-run-session") || !isInstalled("gsettings"))
            QSKIP("dbus-run-session or gsettings is not installed");
        qputenv("GSETTINGS_BACKEND", "dconf");
        Host host({utf8("dbus-run-session"), utf8("--"), utf8("sh"), utf8("-c"),
                   utf8("echo \"$DBUS_SESSION_BUS_ADDRESS\"; exec \"$0\""), QStringLiteral(RECIPE)});
        qputenv("DBUS_SESSION_BUS_ADDRESS", host.line().toUtf8());
        QCOMPARE(host.line(), utf8("light"));
        if (!set(utf8("gtk-theme"), utf8("Adwaita-dark")) || !QFile::exists(config("dconf/user")))
            QSKIP("dconf or the schemas of GNOME are not installed");
        QCOMPARE(host.line(), utf8("dark"));
        QVERIFY(set(utf8("gtk-theme"), utf8("Adwaita-light")));
        QCOMPARE(host.line(), utf8("light"));
        QCOMPARE(host.pressEnter(), QString());
    }

    void fileThatIsWrittenInPlaceIsSeen()
    {
        provideTools();
        writeFile(tool("theme"), "");
        QVERIFY(writeFile(config("plasmarc"), "[Theme]\nname=breeze-light\n"));
        Host host;
        QCOMPARE(host.line(), utf8("light"));
        for (const char *theme : {"dark", "light", "dark"}) {
            QVERIFY(writeFile(config("plasmarc"), "[Theme]\nname=breeze-" + QByteArray(theme) + "\n"));
            QCOMPARE(host.line(), utf8(theme));
        }
    }

    void fileThatIsReplacedIsSeenEachTime()
    {
        provideTools();
        writeFile(tool("theme"), "");
        QVERIFY(QDir().mkpath(config("gtk-3.0")));
        const QString file = config("gtk-3.0/settings.ini");
        QVERIFY(writeFile(file, "[Settings]\ngtk-theme-name=Arc-light\n"));
        Host host;
        QCOMPARE(host.line(), utf8("light"));
        for (const char *theme : {"dark", "light", "dark"}) {
            QVERIFY(writeFile(file + utf8(".new"), "[Settings]\ngtk-theme-name=" + QByteArray(theme) + "\n"));
            QVERIFY(QFile::remove(file) && QFile::rename(file + utf8(".new"), file));
            QCOMPARE(host.line(), utf8(theme));
        }
    }

    void folderThatComesIntoBeingIsWatchedToo()
    {
        provideTools();
        writeFile(tool("theme"), "");
        QVERIFY(QDir(config("")).removeRecursively());
        Host host;
        QCOMPARE(host.line(), utf8("light"));
        QVERIFY(QDir().mkpath(config("kylin-qt5")));
        QVERIFY(writeFile(config("kylin-qt5/qt5ct.conf"), "[Appearance]\nstyle=ukui-dark\n"));
        QCOMPARE(host.line(), utf8("dark"));
        QVERIFY(writeFile(config("kylin-qt5/qt5ct.conf"), "[Appearance]\nstyle=ukui-light\n"));
        QCOMPARE(host.line(), utf8("light"));
    }

    void changeWithoutASignIsSeenAtTheNextInterval()
    {
        provideTools();
        Host host({QStringLiteral(RECIPE), utf8("50")});
        QCOMPARE(host.line(), utf8("light"));
        QVERIFY(writeFile(tool("theme"), "'Adwaita-dark'"));
        QCOMPARE(host.line(), utf8("dark"));
    }

    void paletteOfTheApplicationIsASign()
    {
        provideTools();
        ThemeWatcher watcher;
        QSignalSpy changes(&watcher, &ThemeWatcher::darkChanged);
        QVERIFY(changes.wait(patience));
        QCOMPARE(changes.takeFirst().first().toBool(), false);
        QVERIFY(writeFile(tool("theme"), "'Adwaita-dark'"));
        QGuiApplication::setPalette(QPalette(Qt::black));
        QVERIFY(changes.wait(patience));
        QCOMPARE(changes.takeFirst().first().toBool(), true);
    }

    void oneQuestionAtATimeIsAsked()
    {
        provideTools();
        m_tools->add(utf8("gsettings"), "/bin/mkdir '" + QFile::encodeName(tool("busy")) + "' || : >'"
                                            + QFile::encodeName(tool("overlap"))
                                            + "'\n/bin/sleep 0.5; /bin/cat '"
                                            + QFile::encodeName(tool("theme")) + "'; /bin/rmdir '"
                                            + QFile::encodeName(tool("busy")) + "'");
        ThemeWatcher watcher;
        watcher.setInterval(std::chrono::milliseconds(10));
        QSignalSpy changes(&watcher, &ThemeWatcher::darkChanged);
        for (const char *theme : {"dark", "light", "dark"}) {
            QVERIFY(writeFile(tool("theme"), theme));
            QVERIFY(changes.wait(patience));
        }
        QVERIFY(!QFile::exists(tool("overlap")));
    }

    void changeDuringAQuestionIsAskedForBehindIt()
    {
        provideTools();
        QVERIFY(QFile::remove(tool("go")));
        ThemeWatcher watcher;
        QSignalSpy changes(&watcher, &ThemeWatcher::darkChanged);
        QTRY_COMPARE(m_tools->calls().size(), 2);
        FiredTimers timers; // such as the watcher's, which says that it would ask now
        QVERIFY(writeFile(config("plasmarc"), "sign"));
        QTRY_COMPARE_WITH_TIMEOUT(timers.count, 1, patience);
        QVERIFY(writeFile(tool("go"), ""));
        QTRY_COMPARE_WITH_TIMEOUT(questions(), 2, patience);
        QTRY_COMPARE_WITH_TIMEOUT(changes.size(), 1, patience);
    }

    void manySignsAreOneQuestion()
    {
        provideTools();
        ThemeWatcher watcher;
        QSignalSpy changes(&watcher, &ThemeWatcher::darkChanged);
        QVERIFY(changes.wait(patience));
        QVERIFY(writeFile(tool("theme"), "'Adwaita-dark'"));
        for (int i = 0; i < 50; ++i)
            QVERIFY(writeFile(config("plasmarc"), QByteArray::number(i)));
        QVERIFY(changes.wait(patience));
        QVERIFY2(questions() <= 3, QByteArray::number(questions()).constData());
    }

    void toolThatHangsHoldsTheHostAtNoTime()
    {
        provideTools();
        m_tools->add(utf8("gsettings"), "read line"); // until its host is gone
        Host host;
        QTRY_VERIFY_WITH_TIMEOUT(m_tools->calls().size() == 2, patience);
        QElapsedTimer time;
        time.start();
        QCOMPARE(host.pressEnter(), QString());
        QVERIFY(time.elapsed() < 25000); // the library waits for 30 s
    }

    void watcherThatIsDeletedMeanwhileIsNotTold()
    {
        provideTools();
        QVERIFY(QFile::remove(tool("go")));
        auto watcher = std::make_unique<ThemeWatcher>();
        QTRY_COMPARE(m_tools->calls().size(), 2);
        watcher.reset();
        QVERIFY(writeFile(tool("go"), ""));
        ThemeWatcher other; // its answer comes behind the first one's
        QSignalSpy changes(&other, &ThemeWatcher::darkChanged);
        QVERIFY(changes.wait(patience));
        QCOMPARE(changes.size(), 1);
    }
};

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    const QGuiApplication application(argc, argv);
    TestWatchingTheTheme test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_watching_the_theme.moc"
