// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeTools.h"
#include "Files.h"
#include "HostProcess.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <functional>
#include <list>
#include <map>
#include <memory>

namespace {

constexpr int toolTimeoutMs = 30000; // of the library
constexpr int pollingIntervalMs = 20;
constexpr int longestWaitMs = 90000; // for the last answer
constexpr int longestDelayMs = 25000; // on a busy machine

// Each case has a host and tools of its own, so that all wait at the same time.
struct Case
{
    FakeTools tools;
    QTemporaryDir home;
    HostProcess host;
    QJsonValue answer;
    QElapsedTimer clock; // started with the command
    qint64 answeredAfterMs = 0;

    QString file(const char *name) const { return home.filePath(QString::fromLatin1(name)); }

    // Part of a script: writes the process identifier and never ends.
    QByteArray hang() const
    {
        return "echo $$ >'" + QFile::encodeName(file("pid")) + "'\nexec /bin/sleep 1000\n";
    }

    bool hungToolHasEnded() const
    {
        const qint64 pid = readFile(file("pid")).trimmed().toLongLong();
        return pid > 0 && kill(pid_t(pid), 0) == -1;
    }
};

QByteArray get(const char *setting, const QByteArray &script)
{
    return QByteArray("if [ \"$*\" = 'get ") + setting + "' ]; then\n" + script + "exit 0\nfi\n";
}

constexpr const char *gnomeTheme = "org.gnome.desktop.interface gtk-theme";
constexpr const char *gnomeScheme = "org.gnome.desktop.interface color-scheme";
constexpr const char *ukuiStyle = "org.ukui.style style-name";
constexpr const char *ukuiMode = "org.ukui.style theme-mode";
constexpr const char *mateTheme = "org.mate.interface gtk-theme";

} // namespace

// Tools that run longer than the library's timeout. The cases run at the same time; each test function
// verifies one of them.
class TestHangingTools : public QObject
{
    Q_OBJECT

private:
    Case &add(const QString &name) { return *m_cases.emplace(name, std::make_unique<Case>()).first->second; }

    void start(Case &testCase, const QString &command, const QJsonArray &arguments = {})
    {
        HostProcess &host = testCase.host;
        host.setEnvironment(QStringLiteral("PATH"), testCase.tools.path());
        host.setEnvironment(QStringLiteral("XDG_CONFIG_HOME"), testCase.home.path());
        for (const char *variable : {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION"})
            host.setEnvironment(QString::fromLatin1(variable), QString());
        QVERIFY(host.start());
        testCase.clock.start();
        host.send(command, arguments);
    }

    void startTheme(const QString &name, const QString &command, const QByteArray &which,
                    const std::function<QByteArray(const Case &)> &gsettings)
    {
        Case &testCase = add(name);
        testCase.tools.add(QStringLiteral("which"), which);
        testCase.tools.add(QStringLiteral("gsettings"), gsettings(testCase) + "exit 1");
        start(testCase, command);
    }

    void startAssoc(const QString &name, const QString &command)
    {
        Case &testCase = add(name);
        testCase.tools.add(QStringLiteral("xdg-mime"), "echo reader.desktop\n" + testCase.hang());
        start(testCase, command, {QStringLiteral("reader")});
    }

    void takeAnswers()
    {
        std::list<Case *> waiting;
        for (const auto &entry : m_cases)
            waiting.push_back(entry.second.get());
        const QDeadlineTimer deadline(longestWaitMs);
        while (!waiting.empty() && !deadline.hasExpired()) {
            for (Case *testCase : waiting) {
                if (testCase->host.hasAnswer(pollingIntervalMs)) {
                    testCase->answer = testCase->host.answer();
                    testCase->answeredAfterMs = testCase->clock.elapsed();
                }
            }
            waiting.remove_if([](const Case *testCase) { return testCase->answeredAfterMs > 0; });
        }
    }

    static bool tookOneTimeout(const Case &testCase)
    {
        return testCase.answeredAfterMs >= toolTimeoutMs
               && testCase.answeredAfterMs < toolTimeoutMs + longestDelayMs;
    }

    std::map<QString, std::unique_ptr<Case>> m_cases;

private Q_SLOTS:
    void initTestCase()
    {
        const QString gnome = QStringLiteral("theme.gnome");
        const QString chain = QStringLiteral("theme.isDark");
        startTheme(QStringLiteral("dark and hangs"), gnome, "exit 0", [](const Case &testCase) {
            return get(gnomeTheme, "echo \"'Adwaita-dark'\"\n" + testCase.hang())
                   + get(gnomeScheme, "echo \"'prefer-light'\"\n");
        });
        startTheme(QStringLiteral("ends while the next waits"), gnome, "exit 0", [](const Case &) {
            return get(gnomeTheme, "echo \"'Adwaita'\"; /bin/sleep 33; echo \"'prefer-dark'\"\n")
                   + get(gnomeScheme, "echo \"'prefer-light'\"\n");
        });
        startTheme(QStringLiteral("which hangs"), gnome, "/bin/sleep 33", [](const Case &) {
            return get(gnomeTheme, "echo \"'dark'\"\n") + get(gnomeScheme, "echo \"'prefer-light'\"\n");
        });
        startTheme(QStringLiteral("UKUI hangs"), chain, "exit 0", [](const Case &testCase) {
            return get(ukuiStyle, "echo \"'ukui-dark'\"\n" + testCase.hang());
        });
        startTheme(QStringLiteral("UKUI ends while the next waits"), chain, "exit 0", [](const Case &) {
            return get(ukuiStyle, "echo \"'ukui'\"; /bin/sleep 33; echo \"'dark'\"\n")
                   + get(ukuiMode, "echo \"'light'\"\n");
        });
        startTheme(QStringLiteral("MATE hangs"), chain, "exit 0",
                   [](const Case &testCase) { return get(mateTheme, testCase.hang()); });
        startAssoc(QStringLiteral("query hangs"), QStringLiteral("assoc.isPdfLauncher"));
        startAssoc(QStringLiteral("setting hangs"), QStringLiteral("assoc.setPdfLauncher"));

        takeAnswers();
    }
    void cleanupTestCase() { m_cases.clear(); }

    void usesOutputSoFarAndEndsTool()
    {
        const Case &testCase = add(QStringLiteral("dark and hangs"));
        QCOMPARE(testCase.answer, QJsonValue(1));
        QVERIFY(tookOneTimeout(testCase));
        QCOMPARE(testCase.tools.calls().size(), 2);
        QVERIFY(testCase.hungToolHasEnded());
    }

    void waitsForRunningToolInsteadOfStartingNext()
    {
        // One process object runs all tools of a detector, so the second read is not started.
        Case &testCase = add(QStringLiteral("ends while the next waits"));
        QCOMPARE(testCase.answer, QJsonValue(1));
        QVERIFY(tookOneTimeout(testCase));
        QCOMPARE(testCase.tools.calls().size(), 2);
    }

    void continuesAfterHangingGuard()
    {
        // The read of the theme is not started while "which" runs. The read of the color scheme is.
        Case &testCase = add(QStringLiteral("which hangs"));
        QCOMPARE(testCase.answer, QJsonValue(0));
        QVERIFY(tookOneTimeout(testCase));
        QCOMPARE(testCase.tools.calls().size(), 2);
        QVERIFY(testCase.tools.calls().last().contains(QStringLiteral("color-scheme")));
    }

    void usesOutputSoFarForUkui()
    {
        Case &testCase = add(QStringLiteral("UKUI hangs"));
        QCOMPARE(testCase.answer, QJsonValue(true));
        QVERIFY(tookOneTimeout(testCase));
        QVERIFY(testCase.hungToolHasEnded());
        const QString log = testCase.host.standardError();
        QVERIFY2(log.contains(QStringLiteral("UKUI style-name: \"ukui-dark\"")), qPrintable(log));
        QVERIFY2(log.contains(QStringLiteral("Detected via UKUI GSettings")), qPrintable(log));
    }

    void waitsForRunningToolOfUkuiInsteadOfStartingNext()
    {
        // The output of the first read counts as that of the second.
        Case &testCase = add(QStringLiteral("UKUI ends while the next waits"));
        QCOMPARE(testCase.answer, QJsonValue(true));
        QVERIFY(tookOneTimeout(testCase));
        const QString log = testCase.host.standardError();
        QVERIFY2(log.contains(QStringLiteral("UKUI theme-mode: \"dark\"")), qPrintable(log));
        QVERIFY(testCase.tools.calls().last().contains(QStringLiteral("style-name")));
    }

    void continuesWithoutOutputForMate()
    {
        Case &testCase = add(QStringLiteral("MATE hangs"));
        QCOMPARE(testCase.answer, QJsonValue(false));
        QVERIFY(tookOneTimeout(testCase));
        QVERIFY(testCase.hungToolHasEnded());
        const QString log = testCase.host.standardError();
        QVERIFY2(log.contains(QStringLiteral("MATE gtk-theme: \"\"")), qPrintable(log));
        QVERIFY2(!log.contains(QStringLiteral("Detected via")), qPrintable(log));
    }

    void usesOutputSoFarForQuery()
    {
        const Case &testCase = add(QStringLiteral("query hangs"));
        QCOMPARE(testCase.answer, QJsonValue(true));
        QVERIFY(tookOneTimeout(testCase));
        QVERIFY(testCase.hungToolHasEnded());
    }

    void returnsTrueForHangingSetting()
    {
        const Case &testCase = add(QStringLiteral("setting hangs"));
        QCOMPARE(testCase.answer, QJsonValue(true));
        QVERIFY(tookOneTimeout(testCase));
        QVERIFY(testCase.hungToolHasEnded());
    }
};

QTEST_GUILESS_MAIN(TestHangingTools)

#include "tst_hanging_tools.moc"
