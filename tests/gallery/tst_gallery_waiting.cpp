// SPDX-License-Identifier: LGPL-2.1-or-later

#include "GalleryFixture.h"
#include "Resolver.h"

#include <QElapsedTimer>
#include <QThreadPool>

namespace {

constexpr int timeoutMs = GalleryFixture::timeoutMs;

// A blocking call in the thread of the window would delay its events for up to ten seconds.
constexpr int longestGapMs = ZYBASE_SANITIZED ? 4000 : 2000;
constexpr int expectedTicks = 300;

/** Measures the longest delay of a timer event in this thread. */
class Ticker : public QObject
{
public:
    Ticker()
    {
        m_clock.start();
        startTimer(10);
    }
    int ticks() const { return m_ticks; }
    qint64 longestGap() const { return qMax(m_longestGap, m_clock.elapsed()); }

protected:
    void timerEvent(QTimerEvent *) override
    {
        m_longestGap = qMax(m_longestGap, m_clock.restart());
        ++m_ticks;
    }

private:
    QElapsedTimer m_clock;
    qint64 m_longestGap = 0;
    int m_ticks = 0;
};

} // namespace

// All services that can block do so at the same time.
class TestGalleryWaiting : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<GalleryFixture> m_fixture;

private Q_SLOTS:
    void initTestCase()
    {
        if (const char *skipReason = GalleryFixture::skipReason())
            QSKIP(skipReason);
        m_fixture = std::make_unique<GalleryFixture>();
        m_fixture->open();
    }
    void cleanupTestCase()
    {
        if (!m_fixture)
            return;
        m_fixture->close();
        QThreadPool::globalInstance()->waitForDone(timeoutMs);
        GalleryFixture::waitForDeletionOfRequests();
    }

    void keepsWindowResponsive()
    {
        m_fixture->holdTheme();
        Gallery &gallery = m_fixture->reopen(m_fixture->services());
        m_fixture->network().setSilent(true);
        Resolver::hold();

        const Ticker ticker;
        gallery.open(Machine);
        gallery.click("locate");
        gallery.click("online");
        gallery.open(Request);
        gallery.type("requestUrl", QStringLiteral("http://service.example.org/never"));
        gallery.click("requestSend");
        gallery.open(Download);
        gallery.type("downloadUrl", QStringLiteral("http://downloads.example.org/never/file.bin"));
        gallery.click("downloadStart");
        QTRY_VERIFY_WITH_TIMEOUT(ticker.ticks() > expectedTicks, timeoutMs);

        QCOMPARE(gallery.text("desktopTheme"), QStringLiteral("Reading the desktop …"));
        QCOMPARE(gallery.text("location"), QStringLiteral("Checking …"));
        QCOMPARE(gallery.text("network"), QStringLiteral("Checking …"));
        QCOMPARE(gallery.text("requestOutcome"), QStringLiteral("Waiting"));
        QCOMPARE(gallery.text("downloadState"), QStringLiteral("Running"));
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("requestOutcome"), QStringLiteral("Timeout"), timeoutMs);
        QVERIFY2(ticker.longestGap() < longestGapMs, qPrintable(QString::number(ticker.longestGap())));

        // All calls continue when their services answer.
        gallery.click("downloadStop");
        m_fixture->releaseTheme();
        m_fixture->network().setSilent(false);
        Resolver::release();
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("desktopTheme"), QStringLiteral("The desktop is light"),
                                  timeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("location"), QStringLiteral("No service returned a location"),
                                  timeoutMs);
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("network"), QStringLiteral("Names can be resolved"),
                                  timeoutMs);
        QVERIFY(gallery.text("downloadState").startsWith(QStringLiteral("Stopped")));
    }
};

int main(int argc, char **argv)
{
    return GalleryFixture::run<TestGalleryWaiting>(argc, argv);
}

#include "tst_gallery_waiting.moc"
