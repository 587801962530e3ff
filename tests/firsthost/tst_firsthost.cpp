// SPDX-License-Identifier: LGPL-2.1-or-later

#include "TemporaryHome.h"

#include <QDirIterator>
#include <QProcess>
#include <QTest>

#include <optional>

namespace {

constexpr int timeoutMs = 120000;
const QString bothArrived = QStringLiteral("1 event (1 good) and 1 record (1 good) arrived");
const QString nothingArrived = QStringLiteral("0 events (0 good) and 0 records (0 good) arrived");

} // namespace

// The first application, run as README describes, by a user with a home of its own.
class TestFirstHost : public QObject
{
    Q_OBJECT

private:
    QString run(const QStringList &options, const QByteArray &input = QByteArray())
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral(LOCAL_SERVICES_PROGRAM),
                      QStringList {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--folder"),
                                   m_home->filePath(QStringLiteral("services")), QStringLiteral(FIRSTHOST)}
                          + options);
        process.write(input);
        process.closeWriteChannel();
        if (!process.waitForFinished(timeoutMs) || process.exitCode() != 0)
            return QStringLiteral("failed: ") + QString::fromUtf8(process.readAll());
        return QString::fromUtf8(process.readAll());
    }

    bool hasFile(const QString &name) const
    {
        return QDirIterator(m_home->path(), {name}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories)
            .hasNext();
    }

    std::optional<TemporaryHome> m_home;

private Q_SLOTS:
    void init() { m_home.emplace(); }
    void cleanup() { m_home.reset(); }

    void logsAndDownloads()
    {
        const QString output = run({});
        QVERIFY2(output.contains(QLatin1String("Downloaded ")), qUtf8Printable(output));
        QVERIFY(hasFile(QStringLiteral("firsthost.log")));
        QVERIFY(hasFile(QStringLiteral("first.bin")));
    }

    void sendsNothingWithoutConsent_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("input");

        QTest::newRow("no answer") << QStringList() << QByteArray();
        QTest::newRow("empty answer") << QStringList() << QByteArray("\n");
        QTest::newRow("no") << QStringList() << QByteArray("no\n");
        QTest::newRow("option") << QStringList {QStringLiteral("--forbid-reports")} << QByteArray("yes\n");
    }
    void sendsNothingWithoutConsent()
    {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, input);
        const QString output = run(options, input);
        QVERIFY2(output.contains(nothingArrived), qUtf8Printable(output));
        QVERIFY(!hasFile(QStringLiteral("device.conf")));
    }

    void sendsReportsWithConsent_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("input");

        QTest::newRow("yes") << QStringList() << QByteArray("yes\n");
        QTest::newRow("option") << QStringList {QStringLiteral("--allow-reports")} << QByteArray();
    }
    void sendsReportsWithConsent()
    {
        QFETCH(QStringList, options);
        QFETCH(QByteArray, input);
        const QString output = run(options, input);
        QVERIFY2(output.contains(bothArrived), qUtf8Printable(output));
        QVERIFY(hasFile(QStringLiteral("device.conf")));
    }

    void keepsConsentUntilWithdrawn()
    {
        QVERIFY(run({}, "y\n").contains(bothArrived));
        const QString second = run({});
        QVERIFY(second.contains(bothArrived));
        QVERIFY(!second.contains(QLatin1String("[y/N]")));
        QVERIFY(run({QStringLiteral("--forbid-reports")}).contains(nothingArrived));
        QVERIFY(run({}).contains(nothingArrived));
    }

    void failsWithoutLocalServices()
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("LOCAL_SERVICES"));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(FIRSTHOST), QStringList());
        QVERIFY(process.waitForFinished(timeoutMs));
        QCOMPARE(process.exitCode(), 1);
        QVERIFY(process.readAllStandardError().contains("scripts/local-services"));
    }
};

QTEST_GUILESS_MAIN(TestFirstHost)

#include "tst_firsthost.moc"
