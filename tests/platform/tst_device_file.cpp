// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "Files.h"
#include "HostProcess.h"
#include "MessageCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryHome.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>

#include <sys/stat.h>

#include <memory>
#include <optional>
#include <thread>
#include <vector>

using ZyBase::CSystemUtils;
using ZyBase::ReadRegeditValue;

namespace {

const QString prefix = QStringLiteral("maker/");
const QString name = QStringLiteral("reader");

QString pcid()
{
    return CSystemUtils::GetPCID(prefix, name);
}

bool isNewUser()
{
    return CSystemUtils::IsNewUser(prefix, name);
}

bool isDigest(const QString &text)
{
    static const QRegularExpression digits(QStringLiteral("\\A[0-9a-f]{32}\\z"));
    return digits.match(text).hasMatch();
}

QStringList filesBelow(const QString &directory)
{
    QStringList files;
    QDirIterator iterator(directory, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (iterator.hasNext())
        files << QDir(directory).relativeFilePath(iterator.next());
    files.sort();
    return files;
}

// Changes whenever the file is written or replaced, also with the same bytes.
QPair<quint64, QByteArray> stateOf(const QString &path)
{
    struct stat status = {};
    stat(QFile::encodeName(path).constData(), &status);
    return {quint64(status.st_ino), QByteArray::number(qint64(status.st_mtim.tv_sec)) + '.'
                                        + QByteArray::number(qint64(status.st_mtim.tv_nsec)) + '\n'
                                        + readFile(path)};
}

} // namespace

// How GetPCID() and IsNewUser() read and write device.conf.
class TestDeviceFile : public QObject
{
    Q_OBJECT

private:
    QString config() const { return m_home->filePath(QStringLiteral(".config")); }
    QString path() const { return config() + QStringLiteral("/maker/reader/device.conf"); }
    void write(const QByteArray &content)
    {
        QDir().mkpath(QFileInfo(path()).path());
        QVERIFY(writeFile(path(), content));
    }

    std::optional<TemporaryHome> m_home;

private Q_SLOTS:
    void init() { m_home.emplace(); }
    void cleanup() { m_home.reset(); }

    void joinsConfigurationDirectoryAndBothArguments_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<QString>("expected");
        QTest::newRow("no separator between them") << "a"
                                                   << "b"
                                                   << "ab/device.conf";
        QTest::newRow("slash in the first") << "a/"
                                            << "b"
                                            << "a/b/device.conf";
        QTest::newRow("slash in the second") << "a"
                                             << "/b"
                                             << "a/b/device.conf";
        QTest::newRow("three levels") << "a/b/"
                                      << "c"
                                      << "a/b/c/device.conf";
        QTest::newRow("first only") << "a"
                                    << ""
                                    << "a/device.conf";
        QTest::newRow("second only") << QString() << "b"
                                     << "b/device.conf";
        QTest::newRow("neither") << QString() << QString() << "device.conf";
        QTest::newRow("place markers are kept") << "%2"
                                                << "%1"
                                                << "%2%1/device.conf";
        QTest::newRow("spaces and non-ASCII characters") << " Größe "
                                                         << "文件.d"
                                                         << " Größe 文件.d/device.conf";
        QTest::newRow("parent directory") << "a/.."
                                          << "/b"
                                          << "b/device.conf";
    }
    void joinsConfigurationDirectoryAndBothArguments()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(QString, expected);
        QDir().mkpath(config() + QStringLiteral("/a")); // its parent must be reachable
        const QString identifier = CSystemUtils::GetPCID(first, second);
        QCOMPARE(filesBelow(m_home->path()), QStringList {QStringLiteral(".config/") + expected});
        QVERIFY(CSystemUtils::IsNewUser(first, second));
        QVERIFY(!CSystemUtils::IsNewUser(first, second));
        QCOMPARE(CSystemUtils::GetPCID(first, second), identifier);
        QCOMPARE(filesBelow(m_home->path()), QStringList {QStringLiteral(".config/") + expected});
    }

    void keepsPlaceMarkersInConfigurationDirectory()
    {
        const QString directory = m_home->filePath(QStringLiteral("%1 %2 config"));
        QDir().mkpath(directory);
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(directory));
        pcid();
        QCOMPARE(filesBelow(m_home->path()),
                 QStringList {QStringLiteral("%1 %2 config/maker/reader/device.conf")});
    }

    void readsConfigurationDirectoryAtEachCall()
    {
        write("[General]\nPCID=first\nNewUser=true\n");
        QCOMPARE(pcid(), QStringLiteral("first"));
        const QString other = m_home->filePath(QStringLiteral("other"));
        QDir().mkpath(other);
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(other));
        QVERIFY(isDigest(pcid()));
        QVERIFY(isNewUser());
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(config()));
        QCOMPARE(pcid(), QStringLiteral("first"));
        QVERIFY(!isNewUser());
    }

    void usesGenericConfigurationDirectoryOfQt()
    {
        QStandardPaths::setTestModeEnabled(true);
        const QString directory = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
        pcid();
        QStandardPaths::setTestModeEnabled(false);
        QVERIFY(directory.startsWith(m_home->path()) && directory != config());
        QVERIFY(QFile::exists(directory + QStringLiteral("/maker/reader/device.conf")));
        QVERIFY(!QFile::exists(path()));
    }

    void writesIdentifierToGeneralSection()
    {
        const QString identifier = pcid();
        QVERIFY2(isDigest(identifier), qPrintable(identifier));
        QCOMPARE(readFile(path()), "[General]\nPCID=" + identifier.toLatin1() + '\n');
    }

    void writesTrueAsMarkOfFirstRun()
    {
        QVERIFY(isNewUser());
        QCOMPARE(readFile(path()), QByteArray("[General]\nNewUser=true\n"));
        QVERIFY(!isNewUser());
        QVERIFY(!isNewUser());
    }

    void changesOnlyItsOwnKey()
    {
        write("[General]\nNewUser=false\nOther=x\n\n[PCID]\nPCID=y\n");
        const QString identifier = pcid();
        QVERIFY(isDigest(identifier));
        QSettings settings(path(), QSettings::IniFormat);
        QCOMPARE(settings.allKeys(), QStringList({QStringLiteral("NewUser"), QStringLiteral("Other"),
                                                  QStringLiteral("PCID"), QStringLiteral("PCID/PCID")}));
        QCOMPARE(settings.value(QStringLiteral("NewUser")).toString(), QStringLiteral("false"));
        QCOMPARE(settings.value(QStringLiteral("Other")).toString(), QStringLiteral("x"));
        QCOMPARE(settings.value(QStringLiteral("PCID/PCID")).toString(), QStringLiteral("y"));

        write("[General]\nPCID=z\n");
        QVERIFY(isNewUser());
        QCOMPARE(readFile(path()), QByteArray("[General]\nNewUser=true\nPCID=z\n"));
    }

    void keepsFirstRunAndIdentifierIndependent()
    {
        QVERIFY(isNewUser());
        const QString identifier = pcid();
        QVERIFY(!isNewUser());
        QCOMPARE(pcid(), identifier);
        QFile::remove(path());
        pcid();
        QVERIFY(isNewUser());
    }

    void usesAnotherFileForOtherArguments()
    {
        write("[General]\nPCID=stored\nNewUser=true\n");
        const QString another = QStringLiteral("writer");
        QVERIFY(CSystemUtils::IsNewUser(prefix, another));
        QVERIFY(isDigest(CSystemUtils::GetPCID(prefix, another)));
        QCOMPARE(pcid(), QStringLiteral("stored"));
    }

    void returnsStoredString_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        QTest::newRow("digest") << QByteArray("[General]\nPCID=0123456789abcdef0123456789abcdef\n")
                                << "0123456789abcdef0123456789abcdef";
        QTest::newRow("short word") << QByteArray("[General]\nPCID=abc\n") << "abc";
        QTest::newRow("upper-case characters") << QByteArray("[General]\nPCID=ABC\n") << "ABC";
        QTest::newRow("number") << QByteArray("[General]\nPCID=0012\n") << "0012";
        QTest::newRow("true") << QByteArray("[General]\nPCID=true\n") << "true";
        QTest::newRow("no section") << QByteArray("PCID=abc\n") << "abc";
        QTest::newRow("no line end") << QByteArray("[General]\nPCID=abc") << "abc";
        QTest::newRow("Windows line ends") << QByteArray("[General]\r\nPCID=abc\r\n") << "abc";
        QTest::newRow("spaces in quotes") << QByteArray("[General]\nPCID=\"  \"\n") << "  ";
        QTest::newRow("spaces around it") << QByteArray("[General]\nPCID =  a b  \n") << "a b";
        QTest::newRow("escapes") << QByteArray("[General]\nPCID=\\x6587\\n\\\"\n") << "文\n\"";
        QTest::newRow("bytes") << QByteArray("[General]\nPCID=@ByteArray(abc)\n") << "abc";
        QTest::newRow("two values: the last") << QByteArray("[General]\nPCID=a\nPCID=b\n") << "b";
    }
    void returnsStoredString()
    {
        QFETCH(QByteArray, content);
        write(content);
        const auto before = stateOf(path());
        QTEST(pcid(), "expected");
        QTEST(pcid(), "expected");
        QCOMPARE(stateOf(path()), before);
        QCOMPARE(filesBelow(m_home->path()).size(), 1);
    }

    void createsIdentifierIfNoStringIsStored_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty file") << QByteArray();
        QTest::newRow("empty") << QByteArray("[General]\nPCID=\n");
        QTest::newRow("empty quotes") << QByteArray("[General]\nPCID=\"\"\n");
        QTest::newRow("invalid") << QByteArray("[General]\nPCID=@Invalid()\n");
        QTest::newRow("list") << QByteArray("[General]\nPCID=a, b\n");
        QTest::newRow("in another section") << QByteArray("[Device]\nPCID=abc\n");
        QTest::newRow("in another case") << QByteArray("[General]\npcid=abc\n");
        QTest::newRow("commented out") << QByteArray("[General]\n;PCID=abc\n");
        QTest::newRow("no ini file") << QByteArray("{\"PCID\": \"abc\"}\n");
    }
    void createsIdentifierIfNoStringIsStored()
    {
        QFETCH(QByteArray, content);
        write(content);
        const QString identifier = pcid();
        QVERIFY2(isDigest(identifier), qPrintable(identifier));
        QCOMPARE(ReadRegeditValue(path(), QStringLiteral("PCID")), QVariant(identifier));
        const auto before = stateOf(path());
        QCOMPARE(pcid(), identifier);
        QCOMPARE(stateOf(path()), before);
    }

    void returnsNoNewUserForAnyStoredValue_data()
    {
        QTest::addColumn<QByteArray>("value");
        for (const char *value : {"true", "false", "0", "1", "no", "a, b", "@ByteArray()", "\"\"", ""})
            QTest::newRow(value) << QByteArray(value);
    }
    void returnsNoNewUserForAnyStoredValue()
    {
        QFETCH(QByteArray, value);
        write("[General]\nNewUser=" + value + '\n');
        const auto before = stateOf(path());
        QVERIFY(!isNewUser());
        QCOMPARE(stateOf(path()), before);
    }

    void returnsNewUserForNullOrMissingMark_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("invalid") << QByteArray("[General]\nNewUser=@Invalid()\n");
        QTest::newRow("null string") << QByteArray(
            "[General]\nNewUser=@Variant(\\0\\0\\0\\n\\xff\\xff\\xff\\xff)\n");
        QTest::newRow("in another section") << QByteArray("[Device]\nNewUser=true\n");
        QTest::newRow("in another case") << QByteArray("[General]\nnewuser=true\n");
    }
    void returnsNewUserForNullOrMissingMark()
    {
        QFETCH(QByteArray, content);
        write(content);
        QVERIFY(isNewUser());
        QVERIFY(!isNewUser());
        QVERIFY(readFile(path()).contains("\nNewUser=true\n"));
    }

    void treatsUnreadableFileAsEmpty()
    {
        m_home.reset();
        const OrdinaryUser user;
        if (!user.isOrdinary())
            QSKIP("permission checks do not apply to root");
        m_home.emplace();
        const QByteArray content = "[General]\nPCID=stored\nNewUser=true\n";
        write(content);
        QFile::setPermissions(path(), {});
        QVERIFY(!ReadRegeditValue(path(), QStringLiteral("PCID")).isValid());
        QVERIFY(isDigest(pcid()));
        QVERIFY(isNewUser());
        QVERIFY(isNewUser());
        QFile::setPermissions(path(), QFile::ReadOwner);
        QCOMPARE(readFile(path()), content);
        m_home.reset();
    }

    void returnsResultsIfFileCannotBeWritten()
    {
        // A file has the name of the directory.
        QDir().mkpath(config());
        QVERIFY(writeFile(config() + QStringLiteral("/maker"), "x"));
        const MessageCapture messages;
        QVERIFY(isDigest(pcid()));
        QVERIFY(isNewUser());
        QVERIFY(isNewUser());
        QCOMPARE(filesBelow(m_home->path()), QStringList {QStringLiteral(".config/maker")});
        QCOMPARE(messages.messages().size(), 0);
    }

    void keepsDirectoryInPlaceOfFile()
    {
        QDir().mkpath(path());
        QVERIFY(isDigest(pcid()));
        QVERIFY(isNewUser());
        QVERIFY(isNewUser());
        QVERIFY(QFileInfo(path()).isDir());
        QCOMPARE(filesBelow(m_home->path()), QStringList());
    }

    void storesOneResultForConcurrentThreads()
    {
        std::vector<std::thread> threads;
        std::vector<QString> identifiers(12);
        std::vector<int> answers(12);
        for (size_t i = 0; i < identifiers.size(); ++i) {
            threads.emplace_back([&identifiers, &answers, i] {
                identifiers[i] = pcid();
                answers[i] = isNewUser() ? 1 : 0;
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        QVERIFY(std::find(answers.begin(), answers.end(), 1) != answers.end());
        const QString stored = pcid();
        QVERIFY(std::find(identifiers.begin(), identifiers.end(), stored) != identifiers.end());
        QVERIFY(!isNewUser());
        QCOMPARE(readFile(path()), "[General]\nNewUser=true\nPCID=" + stored.toLatin1() + '\n');
    }

    void storesOneResultForConcurrentProcesses()
    {
        std::vector<std::unique_ptr<HostProcess>> hosts;
        for (int i = 0; i < 6; ++i) {
            hosts.push_back(std::make_unique<HostProcess>());
            QVERIFY(hosts.back()->start());
        }
        for (size_t i = 0; i < hosts.size(); ++i)
            hosts[i]->send(i % 2 ? QStringLiteral("identity.pcid") : QStringLiteral("identity.isNewUser"),
                           {prefix, name});
        QStringList identifiers;
        int newUsers = 0;
        for (size_t i = 0; i < hosts.size(); ++i) {
            const QJsonValue answer = hosts[i]->answer();
            if (i % 2)
                identifiers << answer.toArray().first().toString();
            else
                newUsers += answer.toBool() ? 1 : 0;
        }
        QVERIFY(newUsers >= 1);
        QVERIFY(identifiers.contains(pcid()));
        QVERIFY(!isNewUser());
    }

    void returnsStoredValue_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("text") << "text" << QVariant(QStringLiteral("a b"));
        QTest::newRow("number is a string") << "number" << QVariant(QStringLiteral("12"));
        QTest::newRow("true is a string") << "truth" << QVariant(QStringLiteral("true"));
        QTest::newRow("empty") << "empty" << QVariant(QStringLiteral(""));
        QTest::newRow("list") << "list" << QVariant(QStringList {QStringLiteral("a"), QStringLiteral("b")});
        QTest::newRow("bytes") << "bytes" << QVariant(QByteArray("ab"));
        QTest::newRow("in a section") << "window/width" << QVariant(QStringLiteral("800"));
        QTest::newRow("stored as invalid") << "invalid" << QVariant();
        QTest::newRow("lacking") << "lacking" << QVariant();
        QTest::newRow("in another case") << "Text" << QVariant();
        QTest::newRow("a section is no key") << "window" << QVariant();
    }
    void returnsStoredValue()
    {
        QFETCH(QString, key);
        QFETCH(QVariant, expected);
        write("[General]\ntext=a b\nnumber=12\ntruth=true\nempty=\nlist=a, b\nbytes=@ByteArray(ab)\n"
              "invalid=@Invalid()\n\n[window]\nwidth=800\n");
        const auto before = stateOf(path());
        const QVariant value = ReadRegeditValue(path(), key);
        QCOMPARE(value, expected);
        QCOMPARE(value.type(), expected.type());
        QCOMPARE(value.isNull(), expected.isNull());
        QCOMPARE(stateOf(path()), before);
    }

    void returnsInvalidValueAndCreatesNoMissingFile()
    {
        const QVariant value = ReadRegeditValue(path(), QStringLiteral("PCID"));
        QVERIFY(!value.isValid());
        QCOMPARE(filesBelow(m_home->path()), QStringList());
        QVERIFY(!QFile::exists(QFileInfo(path()).path()));
    }

    void acceptsRelativePath()
    {
        write("[General]\na=b\n");
        QVERIFY(QDir::setCurrent(QFileInfo(path()).path()));
        const QVariant value = ReadRegeditValue(QStringLiteral("device.conf"), QStringLiteral("a"));
        QDir::setCurrent(QDir::rootPath());
        QCOMPARE(value, QVariant(QStringLiteral("b")));
    }
};

QTEST_GUILESS_MAIN(TestDeviceFile)

#include "tst_device_file.moc"
