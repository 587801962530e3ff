// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "RecipeProcess.h"

#include <localservices/HttpServer.h>
#include <localservices/RawServer.h>

#include <QCryptographicHash>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using LocalServices::Connection;
using LocalServices::HttpServer;
using LocalServices::RawServer;

namespace {

const QByteArray oldContent = QByteArrayLiteral("old");
constexpr int sizeBytes = 300000;

QByteArray md5()
{
    return QCryptographicHash::hash(HttpServer::content(sizeBytes), QCryptographicHash::Md5).toHex();
}

} // namespace

class TestDownloadingWell : public QObject
{
    Q_OBJECT

private:
    QString path() const { return m_directory->filePath(QStringLiteral("file.bin")); }
    QString address(const char *path) const { return m_server.url(QLatin1String(path)).toString(); }

    // Returns the last line that the recipe prints.
    QString run(const QStringList &arguments, const QStringList &before = {})
    {
        RecipeProcess recipe(QStringLiteral("downloading-well"));
        if (!before.isEmpty())
            recipe.setCommand(before + QStringList {QStringLiteral(RECIPE)});
        recipe.setEnvironment(QStringLiteral("STALL_TIMEOUT_MS"), m_stallTimeout);
        recipe.start(arguments);
        recipe.finish();
        return recipe.lines().value(recipe.lines().size() - 1);
    }

    bool hasOnlyOldFile() const
    {
        const QDir::Filters all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        return readFile(path()) == oldContent && QDir(m_directory->path()).entryList(all).size() == 1;
    }

    const HttpServer m_server;
    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_stallTimeout;

private Q_SLOTS:
    void init()
    {
        m_directory = std::make_unique<QTemporaryDir>();
        QVERIFY(writeFile(path(), oldContent));
        m_stallTimeout.clear();
    }

    void replacesOldFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("digest");
        QTest::newRow("without a digest") << address("/bytes/300000/a.bin") << QByteArray();
        QTest::newRow("with a digest") << address("/bytes/300000/a.bin") << md5();
        QTest::newRow("upper case") << address("/bytes/300000/a.bin") << md5().toUpper();
        QTest::newRow("in chunks") << address("/chunked/300000/a.bin") << md5();
    }
    void replacesOldFile()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, digest);
        QCOMPARE(run({file, path(), QString::fromLatin1(digest)}), QStringLiteral("Complete: ") + path());
        QCOMPARE(readFile(path()), HttpServer::content(sizeBytes));
        QVERIFY(QFile::remove(path()));
        QVERIFY(QDir(m_directory->path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void keepsOldFileAndTellsReason_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("reason");
        QTest::newRow("no such file") << address("/status/404") << QStringLiteral("Not Found");
        QTest::newRow("another file")
            << address("/bytes/5000/a.bin") << QStringLiteral("not the expected one");
        QTest::newRow("moved") << address("/redirect/302?to=/echo") << QStringLiteral("The file has moved");
        QTest::newRow("no server") << QStringLiteral("http://127.0.0.1:1/a.bin")
                                   << QStringLiteral("Connection refused");
        QTest::newRow("no file name") << address("/") << QStringLiteral("does not name a file");
    }
    void keepsOldFileAndTellsReason()
    {
        QFETCH(QString, file);
        QFETCH(QString, reason);
        const QString line = run({file, path(), QString::fromLatin1(md5())});
        QVERIFY2(line.startsWith(QLatin1String("Failed: ")) && line.contains(reason), qPrintable(line));
        QVERIFY(hasOnlyOldFile());
    }

    void tellsThatDirectoryIsMissing()
    {
        const QString line = run({address("/bytes/5000/a.bin"), path() + QStringLiteral("/b.bin")});
        QVERIFY2(line.startsWith(QLatin1String("Failed: No file can be written there: ")), qPrintable(line));
        QVERIFY(hasOnlyOldFile());
    }

    // Qt sometimes takes the end of the connection for the end of the file.
    void keepsOldFileIfConnectionBreaksOff()
    {
        const QString line = run({address("/cut/300000"), path()});
        QVERIFY2(line == QLatin1String("Failed: The connection broke off")
                     || line.startsWith(QLatin1String("Failed: The file is not complete")),
                 qPrintable(line));
        QVERIFY(hasOnlyOldFile());
    }

    void keepsOldFileOnFullDisk()
    {
        const QStringList limited {QStringLiteral("sh"), QStringLiteral("-c"),
                                   QStringLiteral("trap '' XFSZ; ulimit -f 100; exec \"$0\" \"$@\"")};
        const QString line = run({address("/bytes/300000/a.bin"), path()}, limited);
        QVERIFY2(line.startsWith(QLatin1String("Failed: The file is not complete")), qPrintable(line));
        QVERIFY(hasOnlyOldFile());
    }

    void endsIfServerStopsSending()
    {
        m_stallTimeout = QStringLiteral("200");
        const RawServer server([](Connection &client) {
            client.write("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc");
            client.sleep(600000);
        });
        QCOMPARE(run({server.url().resolved(QUrl(QStringLiteral("/a.bin"))).toString(), path()}),
                 QStringLiteral("Failed: The server stopped sending"));
        QVERIFY(hasOnlyOldFile());
    }

    void continuesWhileServerSends()
    {
        m_stallTimeout = QStringLiteral("2000");
        QCOMPARE(run({address("/bytes/300000/a.bin?rate=100000"), path()}),
                 QStringLiteral("Complete: ") + path());
    }

    void cancels()
    {
        const HttpServer server;
        RecipeProcess recipe(QStringLiteral("downloading-well"));
        QVERIFY(recipe.start({server.url(QStringLiteral("/never")).toString(), path()}));
        QTRY_COMPARE_WITH_TIMEOUT(server.requests().size(), 1, ChildProcess::timeoutMs);
        recipe.write(QStringLiteral("stop"));
        QCOMPARE(recipe.finish(), 1);
        QCOMPARE(recipe.lines().last(), QStringLiteral("Cancelled"));
        QVERIFY(hasOnlyOldFile());
    }
};

QTEST_GUILESS_MAIN(TestDownloadingWell)

#include "tst_downloading_well.moc"
