// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Resolver.h"
#include "Stage.h"

#include <QElapsedTimer>
#include <QThreadPool>

namespace {

constexpr int patience = Stage::patience;

// A call that waits where the window's events are handled keeps them for seconds, up to ten.
constexpr int longestGapMs = ZYBASE_SANITIZED ? 4000 : 2000;
constexpr int enoughTicks = 300;

/** Measures how long the events of this thread have to wait while it lives. */
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

// While all that can hang does.
class TestGalleryWaiting : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<Stage> m_stage;

private Q_SLOTS:
    void initTestCase()
    {
        if (const char *obstacle = Stage::obstacle())
            QSKIP(obstacle);
        m_stage = std::make_unique<Stage>();
        m_stage->open();
    }
    void cleanupTestCase()
    {
        if (!m_stage)
            return;
        m_stage->close();
        QThreadPool::globalInstance()->waitForDone(patience);
        Stage::lastMoment();
    }

    void windowStaysResponsive()
    {
        m_stage->holdTheme();
        Gallery &gallery = m_stage->reopen(m_stage->services());
        m_stage->world().setSilent(true);
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
        QTRY_VERIFY_WITH_TIMEOUT(ticker.ticks() > enoughTicks, patience);

        QCOMPARE(gallery.text("verdict"), QStringLiteral("Asking the desktop …"));
        QCOMPARE(gallery.text("location"), QStringLiteral("Asking …"));
        QCOMPARE(gallery.text("network"), QStringLiteral("Asking …"));
        QCOMPARE(gallery.text("requestOutcome"), QStringLiteral("Waiting"));
        QCOMPARE(gallery.text("downloadState"), QStringLiteral("Running"));
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("requestOutcome"), QStringLiteral("Timeout"), patience);
        QVERIFY2(ticker.longestGap() < longestGapMs, qPrintable(QString::number(ticker.longestGap())));

        // What waited goes on as soon as it can.
        gallery.click("downloadStop");
        m_stage->releaseTheme();
        m_stage->world().setSilent(false);
        Resolver::release();
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("verdict"), QStringLiteral("The desktop is light"), patience);
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("location"), QStringLiteral("No service answers"), patience);
        QTRY_COMPARE_WITH_TIMEOUT(gallery.text("network"), QStringLiteral("Names are resolved"), patience);
        QVERIFY(gallery.text("downloadState").startsWith(QStringLiteral("Stopped")));
    }
};

int main(int argc, char **argv)
{
    return Stage::run<TestGalleryWaiting>(argc, argv);
}

#include "tst_gallery_waiting.moc"
