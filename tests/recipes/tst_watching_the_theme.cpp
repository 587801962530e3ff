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
#include <optional>

namespace {

const QString schema = QStringLiteral("org.gnome.desktop.interface");
constexpr int timeoutMs = 60000;

bool isInstalled(const char *program)
{
    return !QStandardPaths::findExecutable(utf8(program)).isEmpty();
}

bool set(const QString &key, const QString &value)
{
    return QProcess::execute(utf8("gsettings"), {utf8("set"), schema, key, value}) == 0;
}

// Counts the single-shot timers of this process that have fired.
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

// The recipe while it watches.
class RunningRecipe
{
public:
    explicit RunningRecipe(const QStringList &command = {QStringLiteral(RECIPE)})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(command.first(), command.mid(1));
    }
    ~RunningRecipe()
    {
        m_process.kill();
        m_process.waitForFinished(timeoutMs);
    }

    // Returns the next line that it prints.
    QString line()
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(timeoutMs))
                return QString();
        }
        return QString::fromUtf8(m_process.readLine().trimmed());
    }

    // Returns the rest of the output after Enter, or "crashed" if the recipe does not end normally.
    QString pressEnter()
    {
        m_process.write("\n");
        const bool isNormalEnd = m_process.waitForFinished(timeoutMs)
                                 && m_process.exitStatus() == QProcess::NormalExit
                                 && m_process.exitCode() == 0;
        return isNormalEnd ? QString::fromUtf8(m_process.readAllStandardOutput()) : utf8("crashed");
    }

private:
    Q_DISABLE_COPY(RunningRecipe)
    QProcess m_process;
};

} // namespace

class TestWatchingTheTheme : public QObject
{
    Q_OBJECT

private:
    QString config(const char *name) const { return m_home->filePath(utf8(".config/") + utf8(name)); }

    // Installs a gsettings that waits for the file "go" and prints the content of the file "theme".
    void installTools()
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
    int queries() const { return m_tools->calls().filter(utf8("which")).size(); }

    std::optional<TemporaryHome> m_home;
    std::unique_ptr<FakeTools> m_tools;
    QByteArray m_path;
    int m_threads = 0;

private Q_SLOTS:
    void initTestCase()
    {
        m_path = qgetenv("PATH");
        m_threads = ProcessFigures::threadCount();
        qputenv("QT_QPA_PLATFORM", "minimal"); // for the recipes
    }
    void init()
    {
        for (const char *variable :
             {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION", "XDG_CURRENT_DESKTOP"})
            qunsetenv(variable);
        m_home.emplace();
        qputenv("GSETTINGS_BACKEND", "keyfile");
    }
    void cleanup()
    {
        // A query can outlive its watcher and still use the tools of this test.
        QTRY_COMPARE_WITH_TIMEOUT(ProcessFigures::threadCount(), m_threads, timeoutMs);
        qputenv("PATH", m_path);
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        m_tools.reset();
        m_home.reset();
    }

    void emitsChangeOfDesktopTheme()
    {
        if (!isInstalled("gsettings"))
            QSKIP("gsettings is not installed");
        RunningRecipe recipe;
        QCOMPARE(recipe.line(), utf8("light"));
        if (!set(utf8("gtk-theme"), utf8("Adwaita-dark")))
            QSKIP("the schemas of GNOME are not installed");
        QCOMPARE(recipe.line(), utf8("dark"));
        QVERIFY(set(utf8("gtk-theme"), utf8("Adwaita")));
        QCOMPARE(recipe.line(), utf8("light"));
        QCOMPARE(recipe.pressEnter(), QString());
    }

    // GNOME stores its settings in a database that a service of the session replaces.
    void emitsChangeOfSettingsDatabase()
    {
        if (!isInstalled("dbus-run-session") || !isInstalled("gsettings"))
            QSKIP("dbus-run-session or gsettings is not installed");
        qputenv("GSETTINGS_BACKEND", "dconf");
        RunningRecipe recipe({utf8("dbus-run-session"), utf8("--"), utf8("sh"), utf8("-c"),
                              utf8("echo \"$DBUS_SESSION_BUS_ADDRESS\"; exec \"$0\""),
                              QStringLiteral(RECIPE)});
        qputenv("DBUS_SESSION_BUS_ADDRESS", recipe.line().toUtf8());
        QCOMPARE(recipe.line(), utf8("light"));
        if (!set(utf8("gtk-theme"), utf8("Adwaita-dark")) || !QFile::exists(config("dconf/user")))
            QSKIP("dconf or the schemas of GNOME are not installed");
        QCOMPARE(recipe.line(), utf8("dark"));
        QVERIFY(set(utf8("gtk-theme"), utf8("Adwaita-light")));
        QCOMPARE(recipe.line(), utf8("light"));
        QCOMPARE(recipe.pressEnter(), QString());
    }

    void emitsChangeOfRewrittenFile()
    {
        installTools();
        writeFile(tool("theme"), "");
        QVERIFY(writeFile(config("plasmarc"), "[Theme]\nname=breeze-light\n"));
        RunningRecipe recipe;
        QCOMPARE(recipe.line(), utf8("light"));
        for (const char *theme : {"dark", "light", "dark"}) {
            QVERIFY(writeFile(config("plasmarc"), "[Theme]\nname=breeze-" + QByteArray(theme) + "\n"));
            QCOMPARE(recipe.line(), utf8(theme));
        }
    }

    void emitsEachChangeOfReplacedFile()
    {
        installTools();
        writeFile(tool("theme"), "");
        QVERIFY(QDir().mkpath(config("gtk-3.0")));
        const QString file = config("gtk-3.0/settings.ini");
        QVERIFY(writeFile(file, "[Settings]\ngtk-theme-name=Arc-light\n"));
        RunningRecipe recipe;
        QCOMPARE(recipe.line(), utf8("light"));
        for (const char *theme : {"dark", "light", "dark"}) {
            QVERIFY(writeFile(file + utf8(".new"), "[Settings]\ngtk-theme-name=" + QByteArray(theme) + "\n"));
            QVERIFY(QFile::remove(file) && QFile::rename(file + utf8(".new"), file));
            QCOMPARE(recipe.line(), utf8(theme));
        }
    }

    void emitsChangeInNewFolder()
    {
        installTools();
        writeFile(tool("theme"), "");
        QVERIFY(QDir(config("")).removeRecursively());
        RunningRecipe recipe;
        QCOMPARE(recipe.line(), utf8("light"));
        QVERIFY(QDir().mkpath(config("kylin-qt5")));
        QVERIFY(writeFile(config("kylin-qt5/qt5ct.conf"), "[Appearance]\nstyle=ukui-dark\n"));
        QCOMPARE(recipe.line(), utf8("dark"));
        QVERIFY(writeFile(config("kylin-qt5/qt5ct.conf"), "[Appearance]\nstyle=ukui-light\n"));
        QCOMPARE(recipe.line(), utf8("light"));
    }

    void emitsChangeWithoutSignAfterInterval()
    {
        installTools();
        RunningRecipe recipe({QStringLiteral(RECIPE), utf8("50")});
        QCOMPARE(recipe.line(), utf8("light"));
        QVERIFY(writeFile(tool("theme"), "'Adwaita-dark'"));
        QCOMPARE(recipe.line(), utf8("dark"));
    }

    void queriesAfterPaletteChange()
    {
        installTools();
        ThemeWatcher watcher;
        QSignalSpy changes(&watcher, &ThemeWatcher::darkChanged);
        QVERIFY(changes.wait(timeoutMs));
        QCOMPARE(changes.takeFirst().first().toBool(), false);
        QVERIFY(writeFile(tool("theme"), "'Adwaita-dark'"));
        QGuiApplication::setPalette(QPalette(Qt::black));
        QVERIFY(changes.wait(timeoutMs));
        QCOMPARE(changes.takeFirst().first().toBool(), true);
    }

    void runsOneQueryAtATime()
    {
        installTools();
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
            QVERIFY(changes.wait(timeoutMs));
        }
        QVERIFY(!QFile::exists(tool("overlap")));
    }

    void repeatsQueryAfterChangeDuringQuery()
    {
        installTools();
        QVERIFY(QFile::remove(tool("go")));
        ThemeWatcher watcher;
        QSignalSpy changes(&watcher, &ThemeWatcher::darkChanged);
        QTRY_COMPARE(m_tools->calls().size(), 2);
        FiredTimers timers; // the watcher's timer fires when the next query is due
        QVERIFY(writeFile(config("plasmarc"), "sign"));
        QTRY_COMPARE_WITH_TIMEOUT(timers.count, 1, timeoutMs);
        QVERIFY(writeFile(tool("go"), ""));
        QTRY_COMPARE_WITH_TIMEOUT(queries(), 2, timeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(changes.size(), 1, timeoutMs);
    }

    void combinesManySignsIntoOneQuery()
    {
        installTools();
        ThemeWatcher watcher;
        QSignalSpy changes(&watcher, &ThemeWatcher::darkChanged);
        QVERIFY(changes.wait(timeoutMs));
        QVERIFY(writeFile(tool("theme"), "'Adwaita-dark'"));
        for (int i = 0; i < 50; ++i)
            QVERIFY(writeFile(config("plasmarc"), QByteArray::number(i)));
        QVERIFY(changes.wait(timeoutMs));
        QVERIFY2(queries() <= 3, QByteArray::number(queries()).constData());
    }

    void quitsWhileToolHangs()
    {
        installTools();
        m_tools->add(utf8("gsettings"), "read line"); // blocks until the recipe ends
        RunningRecipe recipe;
        QTRY_VERIFY_WITH_TIMEOUT(m_tools->calls().size() == 2, timeoutMs);
        QElapsedTimer time;
        time.start();
        QCOMPARE(recipe.pressEnter(), QString());
        QVERIFY(time.elapsed() < 25000); // the library's limit is 30 seconds
    }

    void ignoresResultForDeletedWatcher()
    {
        installTools();
        QVERIFY(QFile::remove(tool("go")));
        auto watcher = std::make_unique<ThemeWatcher>();
        QTRY_COMPARE(m_tools->calls().size(), 2);
        watcher.reset();
        QVERIFY(writeFile(tool("go"), ""));
        ThemeWatcher other; // its result comes after the first one's
        QSignalSpy changes(&other, &ThemeWatcher::darkChanged);
        QVERIFY(changes.wait(timeoutMs));
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
