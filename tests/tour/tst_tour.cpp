// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeTools.h"

#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <map>
#include <memory>
#include <numeric>

namespace {

constexpr int timeoutMs = 120000;
constexpr int runsAtOnce = 6; // most of a run is waiting

// One run of the tour in a directory of its own.
class Run
{
public:
    explicit Run(const QStringList &environment = {})
    {
        m_process.setEnvironment(QProcess::systemEnvironment() + environment);
        m_process.start(QStringLiteral(TOUR), {m_directory.filePath(QStringLiteral("tour"))});
    }

    bool waitForEnd() { return m_process.waitForFinished(timeoutMs) || isEnded(); }
    bool isEnded() const { return m_process.state() == QProcess::NotRunning; }
    int exitCode() const
    {
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

    QString output()
    {
        m_output += m_process.readAllStandardOutput();
        return QString::fromUtf8(m_output);
    }

    QStringList lines() { return output().split(QLatin1Char('\n')); }
    QString summary() { return output().trimmed().section(QLatin1Char('\n'), -1); }

private:
    QTemporaryDir m_directory;
    QProcess m_process;
    QByteArray m_output;
};

QStringList namesOfStubs()
{
    QStringList names;
    QLibrary library(QStringLiteral(TOUR_STUBS));
    using GetStubNames = void (*)(QStringList *);
    if (const auto getStubNames = reinterpret_cast<GetStubNames>(library.resolve("getStubNames")))
        getStubNames(&names);
    return names;
}

bool needsXdgMime(const QString &stub)
{
    return stub.startsWith(QLatin1String("CAssocUtils::"));
}

bool isInstalled(const char *tool)
{
    return !QStandardPaths::findExecutable(QLatin1String(tool)).isEmpty();
}

// Constructors and destructors have no result; most signals are only connected.
bool isNotCalled(const QString &function)
{
    const QString name = function.section(QStringLiteral("::"), 1);
    return name == function.section(QStringLiteral("::"), 0, 0) || name.startsWith(QLatin1Char('~'))
           || (name.startsWith(QLatin1String("signal"), Qt::CaseInsensitive)
               && name != QLatin1String("SignalStopRequest"));
}

int columns(const QString &line)
{
    return std::accumulate(line.begin(), line.end(), 0, [](int sum, QChar character) {
        return sum + (character.unicode() >= 0x2e80 && character.unicode() <= 0xffef ? 2 : 1);
    });
}

} // namespace

// The tour as a user runs it, with the library as it is and with one that has a defect.
class TestTour : public QObject
{
    Q_OBJECT

private:
    void runWithEachStub()
    {
        const QStringList stubs = namesOfStubs();
        for (const QString &stub : stubs) {
            QVERIFY(QTest::qWaitFor([this] { return runningCount() < runsAtOnce; }, timeoutMs));
            m_runs[stub] = std::make_unique<Run>(QStringList {QStringLiteral("LD_PRELOAD=" TOUR_STUBS),
                                                              QStringLiteral("ZYBASE_STUB=") + stub});
        }
        QVERIFY(QTest::qWaitFor([this] { return runningCount() == 0; }, timeoutMs));
    }

    int runningCount() const
    {
        return int(std::count_if(m_runs.begin(), m_runs.end(),
                                 [](const auto &run) { return !run.second->isEnded(); }));
    }

    std::map<QString, std::unique_ptr<Run>> m_runs;

private Q_SLOTS:
    void keepsAllPromises()
    {
        Run run;
        QVERIFY(run.waitForEnd());
        QVERIFY2(run.exitCode() == 0, qUtf8Printable(run.output()));
        const int skipped = (isInstalled("xdg-mime") ? 0 : 1) + (isInstalled("zbarimg") ? 0 : 1);
        const auto match =
            QRegularExpression(QStringLiteral("^(\\d+) of (\\d+) promises kept(, \\d skipped)?$"))
                .match(run.summary());
        QVERIFY2(match.hasMatch(), qUtf8Printable(run.summary()));
        QCOMPARE(match.captured(2).toInt() - match.captured(1).toInt(), skipped);
    }

    void printsLinesOf80ColumnsAtMost()
    {
        Run run;
        QVERIFY(run.waitForEnd());
        for (const QString &line : run.lines())
            QVERIFY2(columns(line) <= 80, qUtf8Printable(line));
    }

    void skipsPromisesWithoutTools()
    {
        const FakeTools noTools;
        Run run({QStringLiteral("PATH=") + noTools.path()});
        QVERIFY(run.waitForEnd());
        QVERIFY2(run.exitCode() == 0, qUtf8Printable(run.output()));
        QVERIFY(run.output().contains(QLatin1String("  skipped, because xdg-mime is not installed:\n")));
        QVERIFY(run.output().contains(QLatin1String("  skipped, because zbarimg is not installed:\n")));
        QVERIFY2(run.summary().endsWith(QLatin1String(" promises kept, 2 skipped")),
                 qUtf8Printable(run.summary()));
    }

    void noticesScannerThatReadsNothing()
    {
        FakeTools tools;
        tools.add(QStringLiteral("zbarimg"), "exit 4");
        Run run({QStringLiteral("PATH=") + tools.path()});
        QVERIFY(run.waitForEnd());
        QCOMPARE(run.exitCode(), 1);
        QVERIFY(run.output().contains(QLatin1String("  BROKEN A scanner reads the encoded string\n")));
        QVERIFY2(run.summary().endsWith(QLatin1String(" promises kept, 1 skipped, 1 broken")),
                 qUtf8Printable(run.summary()));
    }

    void rejectsDirectoryWithFiles()
    {
        QProcess process;
        process.start(QStringLiteral(TOUR), {QStringLiteral("/")});
        QVERIFY(process.waitForFinished(timeoutMs));
        QCOMPARE(process.exitCode(), 2);
        QVERIFY(process.readAllStandardOutput().isEmpty());
    }

    void hasStubForEachFunction()
    {
        QProcess nm;
        nm.start(QStringLiteral(NM), {QStringLiteral("--dynamic"), QStringLiteral("--demangle"),
                                      QStringLiteral("--undefined-only"), QStringLiteral(TOUR)});
        QVERIFY(nm.waitForFinished(timeoutMs));
        const QString symbols = QString::fromUtf8(nm.readAllStandardOutput());
        // Symbols of other libraries have a version: "@Qt_5".
        const QRegularExpression called(QStringLiteral("^ +U (?:ZyBase::)?((?:\\w+::)?~?\\w+)\\([^@]*$"),
                                        QRegularExpression::MultilineOption);
        const QStringList stubs = namesOfStubs();
        int functions = 0;
        for (auto matches = called.globalMatch(symbols); matches.hasNext(); ++functions) {
            const QString function = matches.next().captured(1);
            QVERIFY2(isNotCalled(function) || stubs.contains(function), qUtf8Printable(function));
        }
        QVERIFY(functions > 0);
    }

    void noticesWrongResult_data()
    {
        QTest::addColumn<QString>("stub");
        const QStringList stubs = namesOfStubs();
        for (const QString &stub : stubs)
            QTest::newRow(qPrintable(stub)) << stub;
    }
    void noticesWrongResult()
    {
        QFETCH(QString, stub);
        if (m_runs.empty())
            runWithEachStub();
        if (needsXdgMime(stub) && !isInstalled("xdg-mime"))
            QSKIP("xdg-mime is not installed");
        Run &run = *m_runs.at(stub);
        QVERIFY2(run.exitCode() == 1, qUtf8Printable(run.output()));
        QVERIFY2(run.output().contains(QLatin1String("\n  BROKEN ")), qUtf8Printable(run.output()));
    }
};

QTEST_GUILESS_MAIN(TestTour)

#include "tst_tour.moc"
