// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "LocalServicesProcess.h"
#include "Requests.h"

#include <localservices/ReservedPort.h>

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSslCertificate>
#include <QTest>

#include <sys/stat.h>

namespace {

const QString shell = QStringLiteral("sh");
const QString commandText = QStringLiteral("-c");

// The signing secret of the library and its backend.
const QByteArray secret = QByteArrayLiteral("0123456789abcdef0123456789ABCDEF");

QStringList asShell(const char *text)
{
    return {shell, commandText, QString::fromLatin1(text)};
}

QString textOf(const QJsonValue &arrival, const char *key)
{
    return arrival.toObject().value(QLatin1String(key)).toString();
}

int modeOf(const QString &path)
{
    struct stat info
    {
    };
    ::stat(QFile::encodeName(path).constData(), &info);
    return int(info.st_mode & 07777);
}

} // namespace

// The program from its command line to its end.
class TestLocalServicesProgram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesAddressesOfAllServices()
    {
        LocalServicesProcess program;
        QVERIFY(program.start());
        const QRegularExpression address(QStringLiteral("\\Ahttp://127\\.0\\.0\\.1:[0-9]+\\z"));
        QVERIFY(address.match(program.value("proxy")).hasMatch());
        QVERIFY(program.value("page").endsWith(QLatin1Char('/')));
        QVERIFY(program.value("downloads").endsWith(QLatin1Char('/')));
        QVERIFY(program.value("statistics").endsWith(QLatin1String("/report")));
        for (const char *key : {"page", "downloads", "statistics"}) {
            const QUrl url = program.url(key);
            QVERIFY(address.match(QStringLiteral("http://") + url.authority()).hasMatch());
        }
        const QString authority = program.value("authority");
        QCOMPARE(authority, program.filePath(QStringLiteral("authority.pem")));
        const QList<QSslCertificate> certificates = QSslCertificate::fromPath(authority);
        QCOMPARE(certificates.size(), 1);
        QVERIFY(!readFile(authority).contains("PRIVATE KEY"));
        QVERIFY(program.waitForStandardError("Press Ctrl-C"));
        const QByteArray output = program.standardError();
        QVERIFY(output.contains(program.value("page").toUtf8()));
        QVERIFY(output.contains(
            "export LOCAL_SERVICES=" + program.filePath(QStringLiteral("services.json")).toUtf8() + "\n"));
        QVERIFY(output.contains("scripts/local-services COMMAND"));
    }

    void createsPrivateFolder()
    {
        LocalServicesProcess program;
        QVERIFY(program.start());
        QCOMPARE(modeOf(program.folder()), 0700);
    }

    void leavesOnlyArrivalsAfterSignal_data()
    {
        QTest::addColumn<int>("signal");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }
    void leavesOnlyArrivalsAfterSignal()
    {
        QFETCH(int, signal);
        LocalServicesProcess program;
        QVERIFY(program.start());
        FeedReader reader(program.page(QStringLiteral("feed")));
        QVERIFY(reader.head().startsWith("HTTP/1.1 200"));
        QCOMPARE(sendRecord(program.url("statistics"), secret).status, 200);
        QCOMPARE(program.end(signal), 0);
        QVERIFY(program.standardError().endsWith(
            "local-services: 0 events (0 good) and 1 record (1 good) arrived\n"));
        QCOMPARE(QDir(program.folder()).entryList(QDir::Files),
                 QStringList {QStringLiteral("arrivals.sqlite")});
    }

    void showsEarlierArrivalsAfterRestart()
    {
        LocalServicesProcess program;
        QVERIFY(program.start());
        QCOMPARE(sendRecord(program.url("statistics"), secret).status, 200);
        QCOMPARE(program.end(), 0);
        QVERIFY(program.start());
        QCOMPARE(program.arrivals().size(), 1);
        QCOMPARE(textOf(program.arrivals().first(), "name"), QStringLiteral("install"));
    }

    void startsAfterKilledRun()
    {
        LocalServicesProcess program;
        QVERIFY(program.start());
        QCOMPARE(sendRecord(program.url("statistics"), secret).status, 200);
        program.kill();
        QVERIFY(QFileInfo::exists(program.filePath(QStringLiteral("services.json"))));
        QVERIFY(program.start());
        QCOMPARE(program.arrivals().size(), 1);
    }

    void returnsExitCodeOfCommand_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<int>("exitCode");
        QTest::newRow("success") << QStringList {QStringLiteral("true")} << 0;
        QTest::newRow("own code") << asShell("exit 7") << 7;
        QTest::newRow("signal") << asShell("kill -9 $$") << 128 + SIGKILL;
        QTest::newRow("missing") << QStringList {QStringLiteral("/no/such/command")} << 127;
    }
    void returnsExitCodeOfCommand()
    {
        QFETCH(QStringList, command);
        LocalServicesProcess program;
        QTEST(program.run(command), "exitCode");
        const QByteArray output = program.standardError();
        QVERIFY(output.endsWith("local-services: 0 events (0 good) and 0 records (0 good) arrived\n"));
        QCOMPARE(output.contains("local-services: /no/such/command: "),
                 command.size() == 1 && command.first() != QLatin1String("true"));
        QVERIFY(!QFileInfo::exists(program.filePath(QStringLiteral("services.json"))));
    }

    void passesStreamsAndArgumentsToCommand()
    {
        LocalServicesProcess program;
        QCOMPARE(
            program.run({shell, commandText, QStringLiteral("cat; printf '%s|' \"$@\"; echo oops >&2"),
                         QStringLiteral("name"), QStringLiteral("--port"), QStringLiteral("a b"), QString()},
                        "input\n"),
            0);
        QCOMPARE(program.standardOutput(), QByteArray("input\n--port|a b||"));
        QVERIFY(program.standardError().contains("oops\n"));
    }

    void setsEnvironmentOfCommand()
    {
        LocalServicesProcess program;
        QCOMPARE(program.run(asShell("echo \"$LOCAL_SERVICES\"; test -f \"$LOCAL_SERVICES\"")), 0);
        QCOMPARE(program.standardOutput(), program.filePath(QStringLiteral("services.json")).toUtf8() + '\n');
    }

    void sendsSignalToCommand()
    {
        LocalServicesProcess program;
        // The shell runs the trap only between commands, so each one is short.
        QVERIFY(program.startCommand(
            asShell("trap 'echo got it; exit 9' TERM; echo ready; while :; do sleep 0.05; done")));
        QByteArray output;
        QTRY_VERIFY_WITH_TIMEOUT((output += program.standardOutput()).contains("ready"), 60000);
        QCOMPARE(program.end(SIGTERM), 9);
        QVERIFY(program.standardOutput().contains("got it"));
    }

    void acceptsEventAndRecordOfApplication()
    {
        LocalServicesProcess program;
        QCOMPARE(program.run({QStringLiteral(REPORTING_HOST), QStringLiteral("paper"), QStringLiteral("5")}),
                 5);
        QVERIFY(program.standardError().endsWith(
            "local-services: 1 event (1 good) and 1 record (1 good) arrived\n"));
        QVERIFY(program.start());
        const QJsonArray arrivals = program.arrivals();
        QCOMPARE(arrivals.size(), 2);
        QCOMPARE(textOf(arrivals.at(0), "kind"), QStringLiteral("event"));
        QCOMPARE(textOf(arrivals.at(0), "name"), QStringLiteral("open_file"));
        QCOMPARE(textOf(arrivals.at(0), "detail"), QStringLiteral("file · paper"));
        QCOMPARE(textOf(arrivals.at(0), "target"),
                 QStringLiteral("/mp/collect?measurement_id=G-HOST&api_secret=secret"));
        QCOMPARE(textOf(arrivals.at(1), "kind"), QStringLiteral("record"));
        QCOMPARE(textOf(arrivals.at(1), "signature"), QStringLiteral("good"));
        QCOMPARE(arrivals.at(1).toObject().value(QStringLiteral("good")), QJsonValue(true));
    }

    void countsRecordSentJustBeforeEnd()
    {
        LocalServicesProcess program;
        QCOMPARE(program.run({QStringLiteral("bash"), commandText,
                              QStringLiteral("address=$(grep statistics \"$LOCAL_SERVICES\");"
                                             "port=${address##*:}; exec 3<>/dev/tcp/127.0.0.1/${port%%/*};"
                                             "printf 'POST /report?sign=1 HTTP/1.1\\r\\nHost: h\\r\\n"
                                             "Content-Length: 2\\r\\n\\r\\n{}' >&3")}),
                 0);
        QVERIFY(program.standardError().endsWith(
            "local-services: 0 events (0 good) and 1 record (0 good) arrived\n"));
    }

    void reportsBadSignature()
    {
        LocalServicesProcess program;
        QVERIFY(program.start());
        QCOMPARE(sendRecord(program.url("statistics"), "another secret").status, 403);
        QCOMPARE(textOf(program.arrivals().first(), "signature"),
                 QStringLiteral("bad: it does not match the secret, time stamp and body"));
        QCOMPARE(program.arrivals().first().toObject().value(QStringLiteral("good")), QJsonValue(false));
        QCOMPARE(program.end(), 0);
        QVERIFY(program.standardError().contains("1 record (0 good)"));
    }

    void runsOtherServices()
    {
        LocalServicesProcess program;
        QVERIFY(program.start());
        const QUrl proxyUrl = program.url("proxy");
        const QNetworkProxy proxy(QNetworkProxy::HttpProxy, proxyUrl.host(), quint16(proxyUrl.port()));
        const auto download = [&](const char *path) {
            return request("GET", QUrl(program.value("downloads") + QLatin1String(path)));
        };
        QCOMPARE(request("POST", QUrl(QStringLiteral("http://ip-api.com/json")), "{}", proxy).status, 200);
        QCOMPARE(request("GET", QUrl(QStringLiteral("http://other.example/")), {}, proxy).status, 502);
        QCOMPARE(download("bytes/1000/a.bin").body.size(), 1000);
        QCOMPARE(download("files/notes.txt").headers.value("content-type"),
                 QByteArray("text/plain; charset=utf-8"));
        QCOMPARE(download("files/version.json").headers.value("content-type"),
                 QByteArray("application/json"));
        QCOMPARE(download("files/picture.svg").headers.value("content-type"), QByteArray("image/svg+xml"));
        QCOMPARE(download("files/other").status, 404);
    }

    void rejectsFolderOpenToOthers()
    {
        LocalServicesProcess program;
        QVERIFY(QDir().mkdir(program.folder()));
        QFile::setPermissions(program.folder(), QFile::Permissions(0x7755));
        QCOMPARE(program.run({QStringLiteral("true")}), 1);
        QVERIFY(program.standardError().contains("other users can read"));
        QCOMPARE(QDir(program.folder()).entryList(QDir::Files), QStringList());
        QCOMPARE(modeOf(program.folder()), 0755);
        QFile::setPermissions(program.folder(), QFile::Permissions(0x7700));
        QCOMPARE(program.run({QStringLiteral("true")}), 0);
    }

    void rejectsFolderThatCannotBeCreated()
    {
        LocalServicesProcess program;
        QVERIFY(writeFile(program.folder(), "a file"));
        QCOMPARE(program.run({QStringLiteral("true")}), 1);
        QVERIFY(program.standardError().contains("cannot be created"));
    }

    void rejectsInvalidDatabase()
    {
        LocalServicesProcess program;
        QCOMPARE(program.run({QStringLiteral("true")}), 0);
        QVERIFY(writeFile(program.filePath(QStringLiteral("arrivals.sqlite")), QByteArray(4096, 'x')));
        QCOMPARE(program.run({QStringLiteral("true")}), 1);
        QVERIFY(program.standardError().contains("arrivals.sqlite: file is not a database"));
    }

    void rejectsFolderInUse()
    {
        if (ZYBASE_EMULATED)
            QSKIP("the executable of the process is the emulator");
        LocalServicesProcess program;
        QVERIFY(program.start());
        ChildProcess second({QStringLiteral("/proc/%1/exe").arg(program.processId()),
                             QStringLiteral("--folder"), program.folder(), QStringLiteral("true")});
        QVERIFY(second.start());
        QCOMPARE(second.finish(), 1);
        QVERIFY(second.standardError().contains("is used by another local-services"));
        QCOMPARE(request("GET", program.page()).status, 200);
    }

    void rejectsPortInUse()
    {
        LocalServicesProcess first;
        QVERIFY(first.start());
        const QString port = QString::number(first.url("page").port());
        LocalServicesProcess second;
        QVERIFY(!second.start({QStringLiteral("--port"), port}));
        QVERIFY(second.standardError().contains("the port " + port.toLatin1() + " is in use"));
    }

    void usesRequestedPortInEachRun()
    {
        const LocalServices::ReservedPort port;
        LocalServicesProcess program;
        for (int run = 0; run < 2; ++run) {
            QVERIFY(program.start({QStringLiteral("--port"), QString::number(port.number())}));
            QCOMPARE(program.page(), port.url());
            QCOMPARE(request("GET", program.page()).status, 200);
            QCOMPARE(program.end(), 0);
        }
    }

    void usesAnotherPortIfDefaultIsInUse()
    {
        LocalServicesProcess first;
        LocalServicesProcess second;
        QVERIFY(first.start({}));
        QVERIFY(second.start({}));
        QVERIFY(first.url("page").port() != second.url("page").port());
    }

    void rejectsInvalidPort_data()
    {
        QTest::addColumn<QString>("port");
        for (const char *port : {"many", "-1", "65536", ""})
            QTest::addRow("\"%s\"", port) << QString::fromLatin1(port);
    }
    void rejectsInvalidPort()
    {
        QFETCH(QString, port);
        LocalServicesProcess program;
        QVERIFY(!program.start({QStringLiteral("--port=") + port}));
        QCOMPARE(program.waitForExitCode(), 2);
        QVERIFY(!QFileInfo::exists(program.folder()));
    }
};

QTEST_GUILESS_MAIN(TestLocalServicesProgram)
#include "tst_local_services_program.moc"
