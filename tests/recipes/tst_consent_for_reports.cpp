// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "SeenServices.h"
#include "TemporaryHome.h"

#include <localservices/HttpServer.h>

#include <QDirIterator>
#include <QTest>

using LocalServices::HttpServer;

namespace {

const QString allowed = QStringLiteral("Reports are sent");
const QString forbidden = QStringLiteral("No reports are sent");
const QString reported = QStringLiteral("Something to report");

} // namespace

class TestConsentForReports : public QObject
{
    Q_OBJECT

private:
    // The host does what it is told, and then that it has.
    static bool tell(RecipeProcess &recipe, const QString &command, const QString &answer)
    {
        const int before = recipe.lines().size();
        recipe.write(command);
        return QTest::qWaitFor([&] { return recipe.lines().size() > before; }, 60000)
               && recipe.lines().at(before) == answer;
    }
    static bool report(RecipeProcess &recipe) { return tell(recipe, QStringLiteral("report"), reported); }
    static bool allow(RecipeProcess &recipe) { return tell(recipe, QStringLiteral("allow"), allowed); }
    static bool forbid(RecipeProcess &recipe) { return tell(recipe, QStringLiteral("forbid"), forbidden); }
    static int end(RecipeProcess &recipe)
    {
        recipe.closeInput();
        return recipe.finish();
    }
    bool start(RecipeProcess &recipe, const QString &choice)
    {
        m_services.leadThere(&recipe);
        return recipe.start() && recipe.waitForLine(choice);
    }

    int arrived() { return m_services.collector().events().size() + m_services.backend().records().size(); }
    // Whether the identifier of this machine is on disk.
    bool hasIdentifier() const
    {
        QDirIterator files(m_home->path(), {QStringLiteral("device.conf")}, QDir::Files | QDir::Hidden,
                           QDirIterator::Subdirectories);
        return files.hasNext();
    }

    std::unique_ptr<TemporaryHome> m_home;
    SeenServices m_services;

private Q_SLOTS:
    void init() { m_home = std::make_unique<TemporaryHome>(); }
    void cleanup() { m_home.reset(); }

    void nothingIsSentOrMadeBeforeConsent()
    {
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        const int before = m_services.requests();
        QVERIFY(start(recipe, forbidden));
        for (int i = 0; i < 3; ++i)
            QVERIFY(report(recipe));
        QCOMPARE(end(recipe), 0);
        QCOMPARE(m_services.requests(), before); // its threads are gone with it
        QVERIFY(!hasIdentifier());
    }

    void consentHoldsAtOnceAndWithdrawalToo()
    {
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        const int before = arrived();
        QVERIFY(start(recipe, forbidden));
        QVERIFY(allow(recipe));
        QVERIFY(!hasIdentifier()); // there was nothing to report
        QVERIFY(report(recipe));
        QTRY_COMPARE(arrived(), before + 2);
        QVERIFY(hasIdentifier());

        QVERIFY(forbid(recipe));
        const int requests = m_services.requests();
        for (int i = 0; i < 3; ++i)
            QVERIFY(report(recipe));
        QVERIFY(allow(recipe));
        QVERIFY(report(recipe));
        QTRY_COMPARE(arrived(), before + 4);
        QCOMPARE(end(recipe), 0);
        QCOMPARE(m_services.requests(), requests + 2);
        for (const LocalServices::GaCollector::Event &event : m_services.collector().events())
            QCOMPARE(event.problems, QStringList());
        for (const LocalServices::StatisticsBackend::Record &record : m_services.backend().records())
            QCOMPARE(record.problems, QStringList());
    }

    void choiceIsKept()
    {
        RecipeProcess first(QStringLiteral("consent-for-reports"));
        QVERIFY(start(first, forbidden));
        QVERIFY(allow(first));
        QCOMPARE(end(first), 0);

        RecipeProcess second(QStringLiteral("consent-for-reports"));
        const int before = arrived();
        QVERIFY(start(second, allowed));
        QVERIFY(report(second));
        QTRY_COMPARE(arrived(), before + 2);
        QVERIFY(forbid(second));
        QCOMPARE(end(second), 0);

        RecipeProcess third(QStringLiteral("consent-for-reports"));
        const int requests = m_services.requests();
        QVERIFY(start(third, forbidden));
        QVERIFY(report(third));
        QCOMPARE(end(third), 0);
        QCOMPARE(m_services.requests(), requests);
    }

    void withdrawalStopsWhatIsUnderWay_data()
    {
        QTest::addColumn<bool>("isJustStarted");
        QTest::newRow("a request that waits for its answer") << false;
        QTest::newRow("a request that has only just started") << true;
    }
    void withdrawalStopsWhatIsUnderWay()
    {
        QFETCH(bool, isJustStarted);
        const HttpServer silent;
        m_services.setStatistics(silent.url(QStringLiteral("/never")));
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        QVERIFY(start(recipe, forbidden));
        QVERIFY(allow(recipe));
        if (isJustStarted) {
            // The last ones are not listening yet when they are told to stop.
            recipe.write(QStringLiteral("report\n").repeated(10) + QStringLiteral("forbid"));
        } else {
            QVERIFY(report(recipe));
            QTRY_COMPARE(silent.openConnections(), 1);
            recipe.write(QStringLiteral("forbid"));
        }
        QTRY_COMPARE(recipe.lines().count(forbidden), 2);
        QTest::qWait(1000); // those that were missed are open then, and stay so for nine seconds
        QTRY_COMPARE(silent.openConnections(), 0);
        QCOMPARE(end(recipe), 0);
    }

    void withdrawalStopsNothingThatIsAllowedLater()
    {
        const HttpServer silent;
        m_services.setStatistics(silent.url(QStringLiteral("/never")));
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        QVERIFY(start(recipe, forbidden));
        recipe.write(QStringLiteral("allow\nreport\nforbid\nallow\nreport"));
        QTRY_VERIFY(silent.openConnections() > 0);
        QVERIFY(!QTest::qWaitFor([&] { return silent.openConnections() == 0; }, 1500));
        QCOMPARE(end(recipe), 0);
    }

    void choiceThatCanNotBeKeptIsTold()
    {
        RecipeProcess recipe(QStringLiteral("consent-for-reports"));
        recipe.setEnvironment(QStringLiteral("XDG_CONFIG_HOME"), QStringLiteral("/proc")); // for root as well
        QVERIFY(start(recipe, forbidden));
        QVERIFY(allow(recipe));
        QVERIFY(recipe.waitForLine(QStringLiteral("The choice can't be kept")));
        QCOMPARE(end(recipe), 0);
    }
};

QTEST_GUILESS_MAIN(TestConsentForReports)

#include "tst_consent_for_reports.moc"
