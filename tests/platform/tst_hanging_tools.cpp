// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeTools.h"
#include "Files.h"
#include "HostProcess.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <functional>
#include <list>
#include <map>
#include <memory>

namespace {

constexpr int patienceOfTheLibrary = 30000; // ms
constexpr int longestStart = 3000; // ms, from the first case to the last
constexpr int pollingInterval = 20; // ms
constexpr int longestWait = 60000; // ms, for the last answer
constexpr int longestDelay = 15000; // ms, on a machine that is busy with other things

// A host of its own with tools of its own: all wait at the same time.
struct Case
{
    FakeTools tools;
    QTemporaryDir home;
    HostProcess host;
    QJsonValue answer;
    qint64 answeredAfter = 0; // ms

    QString file(const char *name) const { return home.filePath(QString::fromLatin1(name)); }

    // A script's part that never ends, and tells which process it is.
    QByteArray hang() const
    {
        return "echo $$ >'" + QFile::encodeName(file("pid")) + "'\nexec /bin/sleep 1000\n";
    }

    bool hungToolIsGone() const
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
constexpr const char *mateTheme = "org.mate.interface gtk-theme";

} // namespace

// Tools that outlast the half minute that the library waits for them. The cases run side by side and
// are judged one by one.
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
        QElapsedTimer timer;
        timer.start();
        std::list<Case *> waiting;
        for (const auto &entry : m_cases)
            waiting.push_back(entry.second.get());
        while (!waiting.empty() && timer.elapsed() < longestWait) {
            for (Case *testCase : waiting) {
                if (testCase->host.hasAnswer(pollingInterval)) {
                    testCase->answer = testCase->host.answer();
                    testCase->answeredAfter = timer.elapsed();
                }
            }
            waiting.remove_if([](const Case *testCase) { return testCase->answeredAfter > 0; });
        }
    }

    static bool tookHalfAMinute(const Case &testCase)
    {
        return testCase.answeredAfter >= patienceOfTheLibrary - longestStart
               && testCase.answeredAfter < patienceOfTheLibrary + longestDelay;
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
        startTheme(QStringLiteral("ends in the time of the next"), gnome, "exit 0", [](const Case &) {
            return get(gnomeTheme, "echo \"'Adwaita'\"; /bin/sleep 33; echo \"'prefer-dark'\"\n")
                   + get(gnomeScheme, "echo \"'prefer-light'\"\n");
        });
        startTheme(QStringLiteral("which hangs"), gnome, "/bin/sleep 33", [](const Case &) {
            return get(gnomeTheme, "echo \"'dark'\"\n") + get(gnomeScheme, "echo \"'prefer-light'\"\n");
        });
        startTheme(QStringLiteral("UKUI hangs"), chain, "exit 0", [](const Case &testCase) {
            return get(ukuiStyle, "echo \"'ukui-dark'\"\n" + testCase.hang());
        });
        startTheme(QStringLiteral("MATE hangs"), chain, "exit 0",
                   [](const Case &testCase) { return get(mateTheme, testCase.hang()); });
        startAssoc(QStringLiteral("query hangs"), QStringLiteral("assoc.isPdfLauncher"));
        startAssoc(QStringLiteral("setting hangs"), QStringLiteral("assoc.setPdfLauncher"));

        takeAnswers();
    }
    void cleanupTestCase() { m_cases.clear(); }

    void outputSoFarDecidesAndTheToolIsEnded()
    {
        const Case &testCase = add(QStringLiteral("dark and hangs"));
        QCOMPARE(testCase.answer, QJsonValue(1));
        QVERIFY(tookHalfAMinute(testCase));
        QCOMPARE(testCase.tools.calls().size(), 2);
        QVERIFY(testCase.hungToolIsGone());
    }

    void toolThatIsStillRunningIsWaitedForInPlaceOfTheNext()
    {
        // One process object does a detector's reads: the second is not started beside the first.
        Case &testCase = add(QStringLiteral("ends in the time of the next"));
        QCOMPARE(testCase.answer, QJsonValue(1));
        QVERIFY(tookHalfAMinute(testCase));
        QCOMPARE(testCase.tools.calls().size(), 2);
    }

    void guardThatHangsPasses()
    {
        // The theme's read falls into the time of "which"; the colour scheme's is the first of its own.
        Case &testCase = add(QStringLiteral("which hangs"));
        QCOMPARE(testCase.answer, QJsonValue(0));
        QVERIFY(tookHalfAMinute(testCase));
        QCOMPARE(testCase.tools.calls().size(), 2);
        QVERIFY(testCase.tools.calls().last().contains(QStringLiteral("color-scheme")));
    }

    void detectorOfUkuiGoesOnWithTheOutputSoFar()
    {
        Case &testCase = add(QStringLiteral("UKUI hangs"));
        QCOMPARE(testCase.answer, QJsonValue(true));
        QVERIFY(tookHalfAMinute(testCase));
        QVERIFY(testCase.hungToolIsGone());
        const QString log = testCase.host.standardError();
        QVERIFY2(log.contains(QStringLiteral("UKUI style-name: \"ukui-dark\"")), qPrintable(log));
        QVERIFY2(log.contains(QStringLiteral("Detected via UKUI GSettings")), qPrintable(log));
    }

    void detectorOfMateGoesOnWithoutOutput()
    {
        Case &testCase = add(QStringLiteral("MATE hangs"));
        QCOMPARE(testCase.answer, QJsonValue(false));
        QVERIFY(tookHalfAMinute(testCase));
        QVERIFY(testCase.hungToolIsGone());
        const QString log = testCase.host.standardError();
        QVERIFY2(log.contains(QStringLiteral("MATE gtk-theme: \"\"")), qPrintable(log));
        QVERIFY2(!log.contains(QStringLiteral("Detected via")), qPrintable(log));
    }

    void queryGoesByTheOutputSoFar()
    {
        const Case &testCase = add(QStringLiteral("query hangs"));
        QCOMPARE(testCase.answer, QJsonValue(true));
        QVERIFY(tookHalfAMinute(testCase));
        QVERIFY(testCase.hungToolIsGone());
    }

    void settingIsTrueAllTheSame()
    {
        const Case &testCase = add(QStringLiteral("setting hangs"));
        QCOMPARE(testCase.answer, QJsonValue(true));
        QVERIFY(tookHalfAMinute(testCase));
        QVERIFY(testCase.hungToolIsGone());
    }
};

QTEST_GUILESS_MAIN(TestHangingTools)

#include "tst_hanging_tools.moc"
