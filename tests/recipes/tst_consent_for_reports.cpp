// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "SeenServices.h"
#include "TemporaryHome.h"

#include <localservices/HttpServer.h>

#include <QDirIterator>
#include <QElapsedTimer>
#include <QTest>

#include <optional>

using LocalServices::HttpServer;

namespace {

constexpr int timeoutMs = 60000;
constexpr int afterLastStopMs = 1000; // the recipe repeats its stops for half of this time
constexpr int stopTimeoutMs = 6000; // less than the time limit of a request

const QString allowed = QStringLiteral("Reports are sent");
const QString forbidden = QStringLiteral("No reports are sent");
const QString reported = QStringLiteral("Something to report");

} // namespace

class TestConsentForReports : public QObject
{
    Q_OBJECT

private:
    // Sends the command and waits for the line that the recipe prints for it.
    static bool execute(RecipeProcess &recipe, const QString &command, const QString &line)
    {
        const int before = recipe.lines().size();
        recipe.write(command);
        return QTest::qWaitFor([&] { return recipe.lines().size() > before; }, timeoutMs)
               && recipe.lines().at(before) == line;
    }
    static bool report(RecipeProcess &recipe) { return execute(recipe, QStringLiteral("report"), reported); }
    static bool allow(RecipeProcess &recipe) { return execute(recipe, QStringLiteral("allow"), allowed); }
    static bool forbid(RecipeProcess &recipe) { return execute(recipe, QStringLiteral("forbid"), forbidden); }

    // Returns true after a time without an open connection, and false if a connection stays open.
    static bool hasNoConnectionFor(const HttpServer &server, int timeMs)
    {
        QElapsedTimer timer;
        timer.start();
        const auto isClosedLongEnough = [&] {
            if (server.openConnections() > 0)
                timer.restart();
            return timer.elapsed() >= timeMs;
        };
        return QTest::qWaitFor(isClosedLongEnough, stopTimeoutMs);
    }

    static int quit(RecipeProcess &recipe)
    {
        recipe.closeInput();
        return recipe.finish();
    }
    bool start(RecipeProcess &recipe, const QString &choice)
    {
        m_services.leadThere(&recipe);
        return recipe.start() && recipe.waitForLine(choice);
    }

    int arrivedReports()
    {
        return m_services.collector().events().size() + m_services.backend().records().size();
    }
    // Returns whether the identifier of this machine is stored.
    bool hasIdentifier() const
    {
        QDirIterator files(m_home->path(), {QStringLiteral("device.conf")}, QDir::Files | QDir::Hidden,
                           QDirIterator::Subdirectories);
        return files.hasNext();
    }

    std::optional<TemporaryHome> m_home;
    SeenServices m_services;

private Q_SLOTS:
    void init() { m_home.emplace(); }
    void cleanup() { m_home.reset(); }

    void sendsNothingBeforeConsent()
    {
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        const int before = m_services.requests();
        QVERIFY(start(recipe, forbidden));
        for (int i = 0; i < 3; ++i)
            QVERIFY(report(recipe));
        QCOMPARE(quit(recipe), 0);
        QCOMPARE(m_services.requests(), before); // the recipe has ended, so nothing can follow
        QVERIFY(!hasIdentifier());
    }

    void appliesChoiceAtOnce()
    {
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        const int before = arrivedReports();
        QVERIFY(start(recipe, forbidden));
        QVERIFY(allow(recipe));
        QVERIFY(!hasIdentifier()); // there was no report yet
        QVERIFY(report(recipe));
        QTRY_COMPARE(arrivedReports(), before + 2);
        QVERIFY(hasIdentifier());

        QVERIFY(forbid(recipe));
        const int requests = m_services.requests();
        for (int i = 0; i < 3; ++i)
            QVERIFY(report(recipe));
        QVERIFY(allow(recipe));
        QVERIFY(report(recipe));
        QTRY_COMPARE(arrivedReports(), before + 4);
        QCOMPARE(quit(recipe), 0);
        QCOMPARE(m_services.requests(), requests + 2);
        for (const LocalServices::GaCollector::Event &event : m_services.collector().events())
            QCOMPARE(event.problems, QStringList());
        for (const LocalServices::StatisticsBackend::Record &record : m_services.backend().records())
            QCOMPARE(record.problems, QStringList());
    }

    void keepsChoiceForNextStart()
    {
        RecipeProcess first(QStringLiteral("consent-for-reports"));
        QVERIFY(start(first, forbidden));
        QVERIFY(allow(first));
        QCOMPARE(quit(first), 0);

        RecipeProcess second(QStringLiteral("consent-for-reports"));
        const int before = arrivedReports();
        QVERIFY(start(second, allowed));
        QVERIFY(report(second));
        QTRY_COMPARE(arrivedReports(), before + 2);
        QVERIFY(forbid(second));
        QCOMPARE(quit(second), 0);

        RecipeProcess third(QStringLiteral("consent-for-reports"));
        const int requests = m_services.requests();
        QVERIFY(start(third, forbidden));
        QVERIFY(report(third));
        QCOMPARE(quit(third), 0);
        QCOMPARE(m_services.requests(), requests);
    }

    void stopsRunningRequestsOnWithdrawal_data()
    {
        QTest::addColumn<bool>("isJustStarted");
        QTest::newRow("request that waits for its answer") << false;
        QTest::newRow("request that has just started") << true;
    }
    void stopsRunningRequestsOnWithdrawal()
    {
        QFETCH(bool, isJustStarted);
        const HttpServer silent;
        m_services.setStatistics(silent.url(QStringLiteral("/never")));
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        QVERIFY(start(recipe, forbidden));
        QVERIFY(allow(recipe));
        if (isJustStarted) {
            // The last requests have just started and miss the first stop.
            recipe.write(QStringLiteral("report\n").repeated(10) + QStringLiteral("forbid"));
        } else {
            QVERIFY(report(recipe));
            QTRY_COMPARE(silent.openConnections(), 1);
            recipe.write(QStringLiteral("forbid"));
        }
        QTRY_COMPARE(recipe.lines().count(forbidden), 2);
        QVERIFY(hasNoConnectionFor(silent, afterLastStopMs)); // a missed request stays open for ten seconds
        QCOMPARE(quit(recipe), 0);
    }

    void keepsRequestsThatAreAllowedLater()
    {
        const HttpServer silent;
        m_services.setStatistics(silent.url(QStringLiteral("/never")));
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        QVERIFY(start(recipe, forbidden));
        recipe.write(QStringLiteral("allow\nreport\nforbid\nallow\nreport"));
        QTRY_VERIFY(silent.openConnections() > 0);
        QVERIFY(!hasNoConnectionFor(silent, afterLastStopMs));
        QCOMPARE(quit(recipe), 0);
    }

    void reportsChoiceThatCannotBeStored()
    {
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        recipe.setEnvironment(QStringLiteral("XDG_CONFIG_HOME"),
                              QStringLiteral("/proc")); // not even root can write there
        QVERIFY(start(recipe, forbidden));
        QVERIFY(allow(recipe));
        QVERIFY(recipe.waitForLine(QStringLiteral("The choice cannot be stored")));
        QCOMPARE(quit(recipe), 0);
    }
};

QTEST_GUILESS_MAIN(TestConsentForReports)

#include "tst_consent_for_reports.moc"
