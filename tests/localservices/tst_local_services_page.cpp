// SPDX-License-Identifier: LGPL-2.1-or-later

#include <PageServer.h>

#include "Browser.h"
#include "ChildProcess.h"
#include "Files.h"
#include "LocalServicesProcess.h"
#include "Requests.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTest>

#include <unistd.h>

namespace {

const QByteArray secret = QByteArrayLiteral("0123456789abcdef0123456789ABCDEF");

const QString rowCount = QStringLiteral("return document.querySelectorAll('#list > details').length");
const QString visibleNames =
    QStringLiteral("return [...document.querySelectorAll('#list > details')].filter(row => "
                   "row.checkVisibility()).map(row => row.querySelector('.name').textContent).join(' ')");
const QString state = QStringLiteral("return document.getElementById('state').textContent");

QString textOf(const char *selector)
{
    return QStringLiteral("const found = document.querySelector('%1');"
                          "return found && found.checkVisibility() ? found.innerText : ''")
        .arg(QLatin1String(selector));
}

QByteArray eventBody(const QByteArray &name, const QByteArray &label)
{
    return "{\"client_id\":\"device\",\"events\":[{\"name\":\"" + name
           + "\",\"params\":{\"event_category\":\"file\",\"event_label\":\"" + label
           + "\"}}],\"user_id\":\"device\"}";
}

} // namespace

// The page in a real browser.
class TestLocalServicesPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        if (!Browser::isAvailable())
            QSKIP("chromium or chromium-driver is not installed");
        m_browser = std::make_unique<Browser>();
        const bool isRunning = m_browser->start();
        if (!m_browser->printsPort())
            QSKIP("this chromedriver does not print its port");
        // Some machines do not allow the sandbox that the browser needs.
        if (!isRunning && ::geteuid() != 0)
            QSKIP(qPrintable(QStringLiteral("chromium cannot run on this machine: ") + m_browser->error()));
        QVERIFY2(isRunning, qPrintable(m_browser->error()));
    }

    void cleanupTestCase() { m_browser.reset(); }

    void init()
    {
        m_program = std::make_unique<LocalServicesProcess>();
        QVERIFY(m_program->start());
        QVERIFY2(m_browser->open(m_program->page()), qPrintable(m_browser->error()));
        QVERIFY(m_browser->waitFor(state, QStringLiteral("connected")));
    }

    void cleanup()
    {
        if (!m_program)
            return;
        m_browser->open(QUrl(QStringLiteral("about:blank")));
        m_program.reset();
    }

    void showsInstructionsIfEmpty()
    {
        const QString text = m_browser->run(textOf("#empty")).toString();
        QVERIFY(text.contains(QLatin1String("Nothing has arrived yet")));
        QVERIFY(text.contains(QLatin1String("export LOCAL_SERVICES=")
                              + m_program->filePath(QStringLiteral("services.json"))));
        QCOMPARE(m_browser->errors(), QStringList());
    }

    void showsNewestArrivalFirst()
    {
        sendEvent("open_file", "pdf");
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("open_file")));
        QCOMPARE(m_browser->run(textOf("#list > details .kind")).toString(), QStringLiteral("event"));
        QVERIFY(m_browser->run(textOf("#list > details summary"))
                    .toString()
                    .contains(QStringLiteral("file · pdf")));
        QVERIFY(!m_browser->run(textOf("#list > details time")).toString().isEmpty());
        QVERIFY(m_browser->waitFor(
            QStringLiteral("return document.getElementById('empty').checkVisibility()"), false));
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("install open_file")));
        QCOMPARE(m_browser->run(textOf("#shown")).toString(), QStringLiteral("2 arrived"));
        QCOMPARE(m_browser->errors(), QStringList());
    }

    void showsSignatureAndReason()
    {
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(textOf("#list > details .signature.good"),
                                   QStringLiteral("✓ signature good")));
        QCOMPARE(sendRecord(m_program->url("statistics"), "another secret").status, 403);
        QVERIFY(
            m_browser->waitFor(textOf("#list > details .signature.bad"), QStringLiteral("✗ signature bad")));
        QVERIFY(m_browser->waitFor(
            textOf(".reasons"),
            QStringLiteral("Signature bad: it does not match the secret, time stamp and body.")));
    }

    void showsProblems()
    {
        sendEvent("9lives", "pdf");
        QVERIFY(m_browser->waitFor(textOf("#list > details .validation.bad"), QStringLiteral("✗ 1 problem")));
        QVERIFY(m_browser->waitFor(QStringLiteral("return document.querySelectorAll('.reasons').length"), 1));
        QVERIFY(m_browser->run(textOf(".reasons")).toString().startsWith(QLatin1String("An event's name")));
    }

    void formatsAndColoursJsonBody()
    {
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(rowCount, 1));
        QVERIFY(m_browser->waitFor(textOf("pre.body"),
                                   QStringLiteral("{\n    \"action\": \"install\",\n"
                                                  "    \"day\": \"2026-11-20 17:05:09\",\n"
                                                  "    \"device_id\": \"device\",\n    \"os\": \"linux\",\n"
                                                  "    \"product\": \"test\",\n    \"qd\": \"home\",\n"
                                                  "    \"status\": \"end\",\n    \"version\": \"1.0\"\n}")));
        QCOMPARE(m_browser->run(textOf("pre.body .key")).toString(), QStringLiteral("\"action\""));
        QCOMPARE(m_browser->run(textOf("pre.body .text")).toString(), QStringLiteral("\"install\""));
    }

    void showsOtherBodyUnchanged()
    {
        request("POST", m_program->url("statistics"), "no\n  { json");
        QVERIFY(m_browser->waitFor(textOf("pre.body"), QStringLiteral("no\n  { json")));
    }

    void showsHeadersOnClick()
    {
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(rowCount, 1));
        QCOMPARE(m_browser->run(textOf("pre.sent")).toString(), QString());
        QVERIFY(click(QStringLiteral(".inside details summary")));
        const QString sent = m_browser->run(textOf("pre.sent")).toString();
        QVERIFY(sent.startsWith(QLatin1String("POST /report?sign=")));
        QVERIFY(sent.contains(QLatin1String("\nContent-Type: application/json\n")));
        QVERIFY(sent.contains(QLatin1String("\n\n{\"action\":\"install\",\"day\"")));
    }

    void opensAndClosesRowOnClick()
    {
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(textOf("#list > details[open] .name"), QStringLiteral("install")));
        sendEvent("open_file", "pdf");
        QVERIFY(m_browser->waitFor(textOf("#list > details[open] .name"), QStringLiteral("open_file")));
        // After a click, new rows do not open automatically.
        QVERIFY(click(QStringLiteral("#list > details[open] > summary")));
        QVERIFY(m_browser->waitFor(textOf("#list > details[open] .name"), QString()));
        sendEvent("close_file", "pdf");
        QVERIFY(m_browser->waitFor(rowCount, 3));
        QCOMPARE(m_browser->run(textOf("#list > details[open] .name")).toString(), QString());
        QVERIFY(click(QStringLiteral("#list > details:last-child > summary")));
        QVERIFY(m_browser->waitFor(textOf("#list > details[open] .name"), QStringLiteral("install")));
    }

    void showsMarkupAsText()
    {
        const QByteArray markup =
            "<img src=x onerror=document.title='owned'><script>document.title='owned'</script>";
        sendEvent(markup, markup);
        QCOMPARE(sendRecord(m_program->url("statistics"), secret, markup).status, 200);
        request("POST", QUrl(m_program->value("statistics") + QStringLiteral("?<b>bold</b>")), markup);
        QVERIFY(m_browser->waitFor(rowCount, 3));
        for (const char *row : {"1", "2"}) {
            QVERIFY(click(QStringLiteral("#list > details:nth-child(%1) > summary").arg(QLatin1String(row))));
        }
        m_browser->run(
            QStringLiteral("document.querySelectorAll('details').forEach(each => each.open = true)"));
        QVERIFY(m_browser->waitFor(QStringLiteral("return document.querySelectorAll('pre.sent').length"), 3));
        m_browser->run(
            QStringLiteral("document.querySelectorAll('details').forEach(each => each.open = true)"));
        QCOMPARE(
            m_browser
                ->run(QStringLiteral("return document.querySelectorAll('img, b b, #list script').length"))
                .toInt(),
            0);
        QCOMPARE(m_browser->run(textOf("#list > details:nth-child(2) .name")).toString(),
                 QString::fromLatin1(markup));
        QVERIFY(m_browser->run(textOf("#list > details:last-child pre.body"))
                    .toString()
                    .contains(QString::fromLatin1(markup)));
        QCOMPARE(m_browser->run(textOf("#list > details:first-child pre.body")).toString(),
                 QString::fromLatin1(markup));
        QCOMPARE(m_browser->run(QStringLiteral("return document.title")).toString(),
                 QStringLiteral("Local services"));
        QCOMPARE(m_browser->errors(), QStringList());
    }

    void filtersByTextAndKind()
    {
        sendEvent("open_file", "pdf");
        sendEvent("9lives", "needle in the label");
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("install 9lives open_file")));
        const auto choose = [&](const char *kind) {
            return click(QStringLiteral("#kinds [data-kind=%1]").arg(QLatin1String(kind)));
        };
        QVERIFY(choose("event"));
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("9lives open_file")));
        QCOMPARE(m_browser->run(textOf("#shown")).toString(), QStringLiteral("2 match"));
        QVERIFY(choose("record"));
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("install")));
        QVERIFY(choose("problem"));
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("9lives")));
        QVERIFY(choose("all"));
        QVERIFY(m_browser->type(QStringLiteral("#filter"), QStringLiteral("NEEDLE in")));
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("9lives")));
        // The filter applies to new arrivals too.
        sendEvent("print_file", "paper");
        sendEvent("close_file", "another needle in it");
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("close_file 9lives")));
        QVERIFY(m_browser->type(QStringLiteral("#filter"), QStringLiteral("?")));
        QVERIFY(m_browser->waitFor(textOf("#unmatched h2"), QStringLiteral("No arrival matches")));
        QVERIFY(click(QStringLiteral("#all")));
        QVERIFY(m_browser->waitFor(rowCount, 5));
    }

    void reachesAllArrivals()
    {
        for (int i = 1; i <= 101; ++i)
            sendEvent("event_" + QByteArray::number(i), "pdf");
        QVERIFY(m_browser->open(QUrl(QStringLiteral("about:blank"))));
        QVERIFY(m_browser->open(m_program->page()));
        QVERIFY(m_browser->waitFor(textOf("#shown"), QStringLiteral("100 or more arrived")));
        QVERIFY(click(QStringLiteral("#older")));
        QVERIFY(m_browser->waitFor(textOf("#shown"), QStringLiteral("101 arrived")));
        QCOMPARE(m_browser->run(textOf("#list > details:last-of-type .name")).toString(),
                 QStringLiteral("event_1"));
    }

    void keepsListWhileUserReads()
    {
        sendEvent("open_file", "pdf");
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("open_file")));
        QVERIFY(click(QStringLiteral("#list summary")));
        QVERIFY(click(QStringLiteral("#list summary")));
        sendEvent("close_file", "pdf");
        sendEvent("print_file", "pdf");
        QVERIFY(m_browser->waitFor(textOf("#pending"), QStringLiteral("2 new")));
        QCOMPARE(m_browser->run(visibleNames).toString(), QStringLiteral("open_file"));
        QVERIFY(click(QStringLiteral("#pending")));
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("print_file close_file open_file")));
        QVERIFY(!m_browser->run(QStringLiteral("return document.getElementById('pending').checkVisibility()"))
                     .toBool());
    }

    void opensLinkToOneArrival()
    {
        sendEvent("open_file", "pdf");
        sendEvent("close_file", "pdf");
        QVERIFY(m_browser->waitFor(rowCount, 2));
        QVERIFY(click(QStringLiteral("#list > details:last-of-type > summary")));
        QVERIFY(click(QStringLiteral("#list > details:last-of-type .link")));
        QVERIFY(m_browser->waitFor(textOf("#list > details[open] .name"), QStringLiteral("open_file")));
        QCOMPARE(m_browser->run(visibleNames).toString(), QStringLiteral("open_file"));
        QVERIFY(m_browser->run(QStringLiteral("location.hash = '12345'")).isNull());
        QVERIFY(m_browser->waitFor(textOf("#reason"),
                                   QStringLiteral("Arrival 12345 is not stored. It may have been removed.")));
        QVERIFY(click(QStringLiteral("#all")));
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("close_file open_file")));
    }

    void copiesCommandThatSendsAgain_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("event") << QStringLiteral("event");
        QTest::newRow("record") << QStringLiteral("record");
    }
    void copiesCommandThatSendsAgain()
    {
        QFETCH(QString, kind);
        if (QStandardPaths::findExecutable(QStringLiteral("curl")).isEmpty())
            QSKIP("curl is not installed");
        if (kind == QLatin1String("event"))
            sendEvent("it's", "pdf");
        else
            sendRecord(m_program->url("statistics"), secret, "it's");
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("it's")));
        m_browser->run(
            QStringLiteral("navigator.clipboard.writeText = async text => { window.copied = text; }"));
        QVERIFY(click(QStringLiteral(".copy")));
        QVERIFY(m_browser->waitFor(textOf(".copy"), QStringLiteral("Copied")));
        ChildProcess shell({QStringLiteral("sh"), QStringLiteral("-c"),
                            m_browser->run(QStringLiteral("return window.copied")).toString()});
        QVERIFY(shell.start());
        QCOMPARE(shell.finish(), 0);
        const QJsonArray arrivals = m_program->arrivals();
        QCOMPARE(arrivals.size(), 2);
        for (const char *field : {"kind", "name", "method", "target", "body", "good"})
            QCOMPARE(arrivals.at(1).toObject().value(QLatin1String(field)),
                     arrivals.at(0).toObject().value(QLatin1String(field)));
    }

    void movesFocusByKeys()
    {
        sendEvent("open_file", "pdf");
        sendEvent("close_file", "pdf");
        QVERIFY(m_browser->waitFor(rowCount, 2));
        const QString focused =
            QStringLiteral("return document.activeElement.innerText || document.activeElement.id");
        const auto press = [&](const char *keys, const char *expected) {
            return m_browser->type(QStringLiteral(":focus, body:not(:has(:focus))"), QLatin1String(keys))
                   && m_browser->run(focused).toString().contains(QLatin1String(expected));
        };
        QVERIFY(press("j", "close_file"));
        QVERIFY(press("j", "open_file"));
        QVERIFY(press("j", "open_file"));
        QVERIFY(press("k", "close_file"));
        QVERIFY(press("/", "filter"));
    }

    void separatesNamesFromRightToLeft()
    {
        const QByteArray reversing = "\xe2\x80\xae"; // U+202E, reverses what follows
        sendEvent(reversing + "eman", "pdf");
        QVERIFY(m_browser->waitFor(rowCount, 1));
        QVERIFY(m_browser
                    ->run(QStringLiteral(
                        "const [name, detail] = document.querySelectorAll('.what bdi');"
                        "return name.getBoundingClientRect().right <= detail.getBoundingClientRect().left"))
                    .toBool());
    }

    void keepsArrivalsUntilUserConfirms()
    {
        sendEvent("open_file", "pdf");
        QVERIFY(m_browser->waitFor(rowCount, 1));
        QVERIFY(click(QStringLiteral("#clear")));
        QVERIFY(click(QStringLiteral("#keep")));
        QCOMPARE(m_program->arrivals().size(), 1);
        QVERIFY(click(QStringLiteral("#clear")));
        QCOMPARE(m_program->end(), 0);
        QVERIFY(click(QStringLiteral("#remove")));
        QVERIFY(m_browser->waitFor(
            textOf("#failure"),
            QStringLiteral("The arrivals are not removed: the local services do not answer.")));
        QCOMPARE(m_browser->run(rowCount).toInt(), 1);
    }

    void removesAllOnClear()
    {
        sendEvent("open_file", "pdf");
        QVERIFY(m_browser->waitFor(rowCount, 1));
        clearAll();
        QVERIFY(m_browser->waitFor(rowCount, 0));
        QCOMPARE(m_program->arrivals(), QJsonArray());
        QVERIFY(m_browser->open(m_program->page()));
        QVERIFY(m_browser->waitFor(state, QStringLiteral("connected")));
        sendEvent("close_file", "pdf");
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("close_file")));
    }

    void reconnectsToNextRunAndShowsMissedArrivals()
    {
        sendEvent("open_file", "pdf");
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("open_file")));
        const QString port = QString::number(m_program->url("page").port());
        QCOMPARE(m_program->end(), 0);
        QVERIFY(m_browser->waitFor(state, QStringLiteral("reconnecting")));
        // A run to which the page is not connected.
        QVERIFY(m_program->start());
        sendEvent("missed", "pdf");
        QCOMPARE(m_program->end(), 0);
        QVERIFY(m_program->start({QStringLiteral("--port"), port}));
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("missed open_file")));
        QVERIFY(m_browser->waitFor(state, QStringLiteral("connected")));
        sendEvent("after", "pdf");
        QVERIFY(m_browser->waitFor(visibleNames, QStringLiteral("after missed open_file")));
    }

    void reconnectsAfterServerWasFull()
    {
        m_browser->open(QUrl(QStringLiteral("about:blank")));
        std::vector<std::unique_ptr<FeedReader>> readers;
        // The connection of the closed page ends shortly after.
        const auto fillUp = [&] {
            readers.push_back(std::make_unique<FeedReader>(m_program->page(QStringLiteral("feed"))));
            if (!readers.back()->head().startsWith("HTTP/1.1 200"))
                readers.pop_back();
            return readers.size() == PageServer::maximumReaders;
        };
        QVERIFY(QTest::qWaitFor(fillUp, 60000));
        QVERIFY(m_browser->open(m_program->page()));
        QVERIFY(m_browser->waitFor(state, QStringLiteral("reconnecting")));
        readers.clear();
        QVERIFY(m_browser->waitFor(state, QStringLiteral("connected")));
    }

    void takesScreenshots()
    {
        QDir().mkpath(QStringLiteral(PICTURES_FOLDER));
        sendEvent("open_file", "pdf");
        sendEvent("print_file", "laser printer");
        QCOMPARE(sendRecord(m_program->url("statistics"), "another secret", "update").status, 403);
        sendEvent("2nd_window", "a name that begins with a digit");
        sendEvent("close_file", "pdf");
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(rowCount, 6));
        m_browser->setSize(1100, 760);
        take("light", "local-services-light");
        take("dark", "local-services-dark");
        m_browser->setSize(420, 900);
        take("light", "local-services-narrow");
        m_browser->setSize(1100, 700);
        QVERIFY(click(QStringLiteral("#list > details:nth-child(1) > summary")));
        QVERIFY(click(QStringLiteral("#list > details:nth-child(4) > summary")));
        take("light", "local-services");
        clearAll();
        QVERIFY(m_browser->waitFor(rowCount, 0));
        take("dark", "local-services-empty");
    }

    void fitsNarrowWindow()
    {
        m_browser->setSize(340, 700);
        sendEvent(QByteArray(120, 'x'), QByteArray(300, 'y'));
        QCOMPARE(sendRecord(m_program->url("statistics"), "another secret").status, 403);
        QVERIFY(m_browser->waitFor(rowCount, 2));
        m_browser->run(
            QStringLiteral("document.querySelectorAll('details').forEach(each => each.open = true)"));
        QVERIFY(m_browser->waitFor(QStringLiteral("return document.querySelectorAll('pre.sent').length"), 2));
        m_browser->run(
            QStringLiteral("document.querySelectorAll('details').forEach(each => each.open = true)"));
        QVERIFY(m_browser->run(QStringLiteral("return document.documentElement.scrollWidth")).toInt() <= 340);
        QVERIFY(m_browser
                    ->run(QStringLiteral("return [...document.querySelectorAll('#list pre')].every("
                                         "each => each.scrollWidth <= each.clientWidth)"))
                    .toBool());
    }

    // Accessibility, if axe-core is there: scripts/check-docs installs it.
    void isAccessible_data()
    {
        QTest::addColumn<QString>("scheme");
        QTest::newRow("light") << QStringLiteral("light");
        QTest::newRow("dark") << QStringLiteral("dark");
    }
    void isAccessible()
    {
        QFETCH(QString, scheme);
        const QByteArray axe = readFile(qEnvironmentVariable("ZYBASE_AXE"));
        if (axe.isEmpty())
            QSKIP("the environment variable ZYBASE_AXE does not name axe.min.js");
        m_browser->setColorScheme(scheme);
        m_browser->run(QString::fromUtf8(axe));
        const QString findings = QStringLiteral(
            "return axe.run(document, {preload: false}).then(result =>"
            "  result.violations.map(rule => rule.id + ' ' + rule.nodes[0].html).join('\\n'))");
        QCOMPARE(m_browser->run(findings).toString(), QString());
        sendEvent("9lives", "pdf");
        QCOMPARE(sendRecord(m_program->url("statistics"), secret).status, 200);
        QVERIFY(m_browser->waitFor(rowCount, 2));
        QVERIFY(m_browser->waitFor(QStringLiteral("return document.getAnimations().length"), 0));
        QCOMPARE(m_browser->run(findings).toString(), QString());
        QVERIFY(click(QStringLiteral("#clear")));
        QCOMPARE(m_browser->run(findings).toString(), QString());
        QVERIFY(click(QStringLiteral("#keep")));
        QVERIFY(m_browser->type(QStringLiteral("#filter"), QStringLiteral("nothing like this")));
        QVERIFY(m_browser->waitFor(textOf("#unmatched h2"), QStringLiteral("No arrival matches")));
        QCOMPARE(m_browser->run(findings).toString(), QString());
    }

private:
    // Contents of an opened row are added shortly after, and move what is below them.
    bool click(const QString &selector)
    {
        return m_browser->waitFor(
                   QStringLiteral("return document.querySelectorAll('details[open] > :only-child').length"),
                   0)
               && m_browser->click(selector);
    }

    void sendEvent(const QByteArray &name, const QByteArray &label)
    {
        const QUrl proxy = m_program->url("proxy");
        const Answer answer =
            request("POST",
                    QUrl(QStringLiteral(
                        "http://www.google-analytics.com/mp/collect?measurement_id=G-1&api_secret=s")),
                    eventBody(name, label),
                    QNetworkProxy(QNetworkProxy::HttpProxy, proxy.host(), quint16(proxy.port())));
        QCOMPARE(answer.status, 204);
    }

    void clearAll()
    {
        QVERIFY(click(QStringLiteral("#clear")));
        QVERIFY(click(QStringLiteral("#remove")));
    }

    void take(const char *scheme, const char *name)
    {
        m_browser->setColorScheme(QLatin1String(scheme));
        // The frame of a new row fades.
        QVERIFY(m_browser->waitFor(QStringLiteral("return document.getAnimations().length"), 0));
        const QByteArray picture = m_browser->screenshot();
        QVERIFY(picture.startsWith("\x89PNG"));
        // The build directory can belong to another user.
        if (QFileInfo(QStringLiteral(PICTURES_FOLDER)).isWritable())
            QVERIFY(writeFile(QStringLiteral(PICTURES_FOLDER "/%1.png").arg(QLatin1String(name)), picture));
    }

    std::unique_ptr<Browser> m_browser;
    std::unique_ptr<LocalServicesProcess> m_program;
};

QTEST_GUILESS_MAIN(TestLocalServicesPage)
#include "tst_local_services_page.moc"
