// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/CSystemUtils.h>

#include "EightThreads.h"
#include "FakeClock.h"
#include "Files.h"
#include "FirstCalls.h"
#include "HostProcess.h"
#include "TemporaryHome.h"
#include "Waiting.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QJsonObject>
#include <QNetworkInterface>
#include <QSet>
#include <QTest>

#include <atomic>
#include <functional>
#include <optional>
#include <thread>

using ZyBase::CSystemUtils;

namespace {

const QByteArray identifier = "0123456789abcdef0123456789abcdef";
const QByteArray otherIdentifier = "fedcba9876543210fedcba9876543210";
const QString loopbackOnly = QStringLiteral("true");
const QString addCard = QStringLiteral("ip link add card type bridge\n"
                                       "ip link set card address 02:00:00:00:00:0a up\n");
const QString cardAddress = QStringLiteral("02:00:00:00:00:0A");

QString digest(const QByteArray &text)
{
    return QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex());
}

std::atomic<int> threadsBeforeTime {0}; // that have no better source

// Makes the first calls of this process in eight threads, and returns true if all identifiers have a time.
bool haveFirstCallsTimes()
{
    QDir(qEnvironmentVariable("XDG_CONFIG_HOME")).removeRecursively();
    QSet<QString> withoutTime;
    for (int number = 1; number <= 999; ++number)
        withoutTime << digest(QByteArray::number(number));
    const int correctCalls = sumOfEightThreads([&withoutTime](int thread) {
        const QString pcid = CSystemUtils::GetPCID(QString(), QStringLiteral("first%1").arg(thread));
        return pcid.size() == 32 && !withoutTime.contains(pcid) ? 1 : 0;
    });
    return correctCalls == 8;
}

QStringList toStrings(const QJsonValue &array)
{
    QStringList texts;
    const QJsonArray values = array.toArray();
    for (const QJsonValue &value : values)
        texts << value.toString();
    return texts;
}

} // namespace

// Called instead of Qt's function, because symbols of the program come first. The library reads the clock
// next: all eight threads do so at the same time.
__attribute__((visibility("default"))) QList<QNetworkInterface> QNetworkInterface::allInterfaces()
{
    for (++threadsBeforeTime; threadsBeforeTime < 8;)
        std::this_thread::yield();
    return {};
}

// The sources of the identifier, on a machine whose files and network are the test's.
class TestMachineIdentity : public QObject
{
    Q_OBJECT

private:
    // Writes the two files of the machine's identifier; a null array for no file.
    void writeIdentifiers(const QByteArray &inEtc, const QByteArray &inDbus)
    {
        if (!inEtc.isNull())
            QVERIFY(writeFile(m_etc->filePath(QStringLiteral("machine-id")), inEtc));
        if (!inDbus.isNull()) {
            const QDir lib(m_lib->path());
            QVERIFY(lib.mkpath(QStringLiteral("dbus")));
            QVERIFY(writeFile(lib.filePath(QStringLiteral("dbus/machine-id")), inDbus));
        }
    }
    Sandbox machine(const QString &network = QString()) const
    {
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/etc"), m_etc->path());
        sandbox.replace(QStringLiteral("/var/lib"), m_lib->path());
        if (!network.isNull())
            sandbox.ownNetwork(network);
        return sandbox;
    }
    void start(const Sandbox &sandbox)
    {
        m_sandbox = sandbox;
        m_host->setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        QVERIFY(m_host->start(sandbox));
    }
    // On a busy machine, Qt sometimes returns no interface at all in a new network. The query is then
    // repeated, several times in each process.
    QString retry(const std::function<QString()> &query, const QString &expected)
    {
        constexpr int queriesOfProcess = 20;
        QString answer = query();
        int queries = 1;
        for (const QDeadlineTimer deadline(longestWaitMs); answer != expected && !deadline.hasExpired();) {
            if (queries++ % queriesOfProcess == 0) {
                m_host = std::make_unique<HostProcess>();
                start(m_sandbox);
            }
            answer = query();
        }
        return answer;
    }
    QString address(const QString &expected)
    {
        return retry([this] { return sources().value(QStringLiteral("address")).toString(); }, expected);
    }
    QString newPcid(const QString &expected)
    {
        const auto make = [this] {
            QFile::remove(deviceFile());
            return pcid();
        };
        return retry(make, expected);
    }
    QJsonObject sources() { return m_host->call(QStringLiteral("identity.sources")).toObject(); }
    QString pcid(const QString &name = QStringLiteral("reader"))
    {
        return toStrings(m_host->call(QStringLiteral("identity.pcid"), {QString(), name})).value(0);
    }
    bool isNewUser()
    {
        return m_host->call(QStringLiteral("identity.isNewUser"), {QString(), QStringLiteral("reader")})
            .toBool();
    }
    QString deviceFile() const { return m_home->filePath(QStringLiteral(".config/reader/device.conf")); }

    std::unique_ptr<QTemporaryDir> m_etc;
    std::unique_ptr<QTemporaryDir> m_lib;
    std::optional<TemporaryHome> m_home;
    std::unique_ptr<HostProcess> m_host;
    Sandbox m_sandbox; ///< of the last start()

private Q_SLOTS:
    void initTestCase()
    {
        if (!Sandbox::isAvailable())
            QSKIP("bubblewrap is not installed or not allowed here");
    }
    void init()
    {
        m_etc = std::make_unique<QTemporaryDir>();
        m_lib = std::make_unique<QTemporaryDir>();
        m_home.emplace();
        m_host = std::make_unique<HostProcess>();
    }
    void cleanup()
    {
        if (m_host)
            QCOMPARE(m_host->standardError(), QString());
        m_host.reset();
        m_home.reset();
    }

    // Qt reads only the file of D-Bus, up to 32 bytes and without trimming. The library then reads the file
    // in /etc.
    void returnsIdentifierOfQtOrOfFileInEtc_data()
    {
        QTest::addColumn<QByteArray>("etc");
        QTest::addColumn<QByteArray>("dbus");
        QTest::addColumn<QString>("system");
        QTest::addColumn<QByteArray>("hashed");
        const QByteArray none;
        const QByteArray line = identifier + '\n';
        const QByteArray otherLine = otherIdentifier + '\n';
        QTest::newRow("both the same") << line << line << QString::fromLatin1(identifier) << identifier;
        QTest::newRow("file in /etc only") << line << none << QString::fromLatin1(identifier) << identifier;
        QTest::newRow("file of D-Bus only") << none << line << QString::fromLatin1(identifier) << identifier;
        QTest::newRow("they differ") << line << otherLine << QString::fromLatin1(otherIdentifier)
                                     << otherIdentifier;
        QTest::newRow("white space around in /etc")
            << " \t\r\n" + identifier + "\n\n " << none << QString::fromLatin1(identifier) << identifier;
        QTest::newRow("short word in /etc") << QByteArray("abc\n") << none << "abc" << QByteArray("abc");
        QTest::newRow("no line end in /etc") << QByteArray("abc") << none << "abc" << QByteArray("abc");
        QTest::newRow("two lines in /etc") << QByteArray("a\r\nb\n") << none << "a\nb" << QByteArray("a\nb");
        QTest::newRow("non-ASCII characters in /etc")
            << QByteArray("Größe 文件\n") << none << "Größe 文件" << QByteArray("Größe 文件");
        QTest::newRow("NUL byte in /etc")
            << QByteArray("a\0b\n", 4) << none << QStringLiteral("a\0b") << QByteArray("a\0b", 3);
        QTest::newRow("long in /etc")
            << QByteArray(5000, 'x') << none << QString(5000, QLatin1Char('x')) << QByteArray(5000, 'x');
        QTest::newRow("long of D-Bus")
            << line << otherIdentifier + "0123" << QString::fromLatin1(otherIdentifier) << otherIdentifier;
        QTest::newRow("white space around of D-Bus") << line << QByteArray(" ab \n") << " ab \n"
                                                     << QByteArray("ab");
        QTest::newRow("non-ASCII characters of D-Bus")
            << line << QByteArray("Größe") << "Größe" << QByteArray("Größe");
        QTest::newRow("NUL byte of D-Bus") << line << QByteArray("ab\0cd", 5) << "ab" << QByteArray("ab");
        QTest::newRow("leading NUL byte of D-Bus")
            << line << QByteArray("\0ab", 3) << QString::fromLatin1(identifier) << identifier;
        QTest::newRow("empty of D-Bus")
            << line << QByteArray("") << QString::fromLatin1(identifier) << identifier;
    }
    void returnsIdentifierOfQtOrOfFileInEtc()
    {
        QFETCH(QByteArray, etc);
        QFETCH(QByteArray, dbus);
        QFETCH(QByteArray, hashed);
        writeIdentifiers(etc, dbus);
        start(machine());
        QTEST(sources().value(QStringLiteral("system")).toString(), "system");
        QCOMPARE(pcid(), digest(hashed));
        QCOMPARE(readFile(deviceFile()), "[General]\nPCID=" + digest(hashed).toLatin1() + '\n');
    }

    void returnsTrimmedFileInEtc_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected");
        QTest::newRow("one line") << identifier + '\n' << QString::fromLatin1(identifier);
        QTest::newRow("white space around") << QByteArray("\n\t a b \r\n") << "a b";
        QTest::newRow("white space only") << QByteArray(" \n") << "";
        QTest::newRow("empty") << QByteArray("") << "";
        QTest::newRow("Windows line ends inside") << QByteArray("a\r\nb") << "a\nb";
        QTest::newRow("UTF-16") << QByteArray("\xff\xfe\x87\x65\n\0", 6) << "文";
    }
    void returnsTrimmedFileInEtc()
    {
        QFETCH(QByteArray, content);
        writeIdentifiers(content, otherIdentifier);
        start(machine());
        QTEST(sources().value(QStringLiteral("file")).toString(), "expected");
    }

    void returnsNullIfFileInEtcCannotBeOpened()
    {
        start(machine());
        QVERIFY(sources().value(QStringLiteral("file")).isNull());
        QCOMPARE(sources().value(QStringLiteral("system")).toString(), QString());
        QVERIFY(QDir(m_etc->path()).mkdir(QStringLiteral("machine-id")));
        QVERIFY(sources().value(QStringLiteral("file")).isNull());
    }

    void returnsSameIdentifierForAllApplications()
    {
        writeIdentifiers(identifier, QByteArray());
        start(machine());
        QCOMPARE(pcid(), digest(identifier));
        QCOMPARE(pcid(QStringLiteral("writer")), digest(identifier));
        QVERIFY(QFile::remove(deviceFile()));
        QCOMPARE(pcid(), digest(identifier));
    }

    void keepsStoredIdentifierAfterChangeOfMachine()
    {
        writeIdentifiers(identifier, QByteArray());
        start(machine());
        QCOMPARE(pcid(), digest(identifier));
        writeIdentifiers(otherIdentifier, QByteArray());
        QCOMPARE(pcid(), digest(identifier));
        QVERIFY(QFile::remove(deviceFile()));
        QCOMPARE(pcid(), digest(otherIdentifier));
    }

    void returnsResultsIfHomeCannotBeWritten()
    {
        writeIdentifiers(identifier, QByteArray());
        Sandbox sandbox = machine();
        sandbox.readOnly(m_home->path());
        start(sandbox);
        for (int i = 0; i < 2; ++i) {
            QCOMPARE(pcid(), digest(identifier));
            QVERIFY(isNewUser());
        }
        QVERIFY(!QFile::exists(deviceFile()));
    }

    void usesHardwareAddressAsSecondSource_data()
    {
        QTest::addColumn<QByteArray>("dbus");
        QTest::newRow("no identifier") << QByteArray();
        QTest::newRow("empty identifier") << QByteArray("");
        QTest::newRow("white space") << QByteArray(" \n");
    }
    void usesHardwareAddressAsSecondSource()
    {
        QFETCH(QByteArray, dbus);
        if (!Sandbox::hasNetwork(addCard))
            QSKIP("this machine does not allow network interfaces to be created");
        writeIdentifiers(QByteArray(" \n"), dbus);
        start(machine(addCard));
        QCOMPARE(address(cardAddress), cardAddress);
        const QString expected = digest(cardAddress.toLatin1());
        QCOMPARE(newPcid(expected), expected);
    }

    void returnsAddressOfFirstInterfaceThatQualifies_data()
    {
        QTest::addColumn<QString>("network");
        QTest::addColumn<QString>("expected");
        const QString laterCard = QStringLiteral("ip link add later type bridge\n"
                                                 "ip link set later address 02:00:00:00:00:01 up\n");
        QTest::newRow("loopback only") << loopbackOnly << QString();
        QTest::newRow("two") << addCard + laterCard << cardAddress;
        QTest::newRow("two in the other order") << laterCard + addCard << "02:00:00:00:00:01";
        QTest::newRow("first is down")
            << addCard + laterCard + QStringLiteral("ip link set card down") << "02:00:00:00:00:01";
        QTest::newRow("all are down") << addCard + QStringLiteral("ip link set card down") << QString();
        QTest::newRow("point-to-point tunnel")
            << QStringLiteral("ip tuntap add dev tunnel mode tun\nip link set tunnel up\n") << QString();
        QTest::newRow("card after a point-to-point tunnel")
            << QStringLiteral("ip tuntap add dev tunnel mode tun\nip link set tunnel up\n") + addCard
            << cardAddress;
        QTest::newRow("card after a tunnel without an address")
            << QStringLiteral("ip link add tunnel type xfrm dev lo if_id 1\nip link set tunnel up\n")
                   + addCard
            << cardAddress;
    }
    void returnsAddressOfFirstInterfaceThatQualifies()
    {
        QFETCH(QString, network);
        QFETCH(QString, expected);
        if (!Sandbox::hasNetwork(network))
            QSKIP("this machine does not allow such network interfaces to be created");
        start(machine(network));
        QCOMPARE(address(expected), expected);
        if (expected.isNull())
            QVERIFY(sources().value(QStringLiteral("address")).isNull());
    }

    void usesTimeAndRandomNumberAsThirdSource()
    {
        if (!Sandbox::hasNetwork(loopbackOnly))
            QSKIP("network namespaces are not allowed here");
        if (!FakeClock::isAvailable())
            QSKIP("faketime is not installed");
        if (ZYBASE_EMULATED)
            QSKIP("the sandbox is a program of another processor and cannot load faketime");
        // Local time, two hours before noon in UTC.
        m_host->setEnvironment(QStringLiteral("TZ"), QStringLiteral("ABC-5"));
        const FakeClock clock(QDateTime({2024, 2, 3}, {4, 5, 6}, Qt::UTC));
        clock.install(m_host.get());
        QSet<QString> possible;
        for (int number = 1; number <= 999; ++number)
            possible << digest("2024-02-03 09:05:06.000" + QByteArray::number(number));

        Sandbox sandbox = machine(loopbackOnly);
        sandbox.readOnly(m_home->path());
        start(sandbox);
        constexpr int calls = 25000; // one of the numbers is missing once in 75 million runs
        const QStringList made = toStrings(
            m_host->call(QStringLiteral("identity.pcid"), {QString(), QStringLiteral("reader"), calls}));
        m_host->quit(); // before the clock, which removes its shared memory
        QCOMPARE(made.size(), calls);
        QCOMPARE(QSet<QString>(made.begin(), made.end()), possible);
    }

    void usesTimeInFirstCallsOfSeveralThreads()
    {
        ChildProcess process({QCoreApplication::applicationFilePath(), QLatin1String(firstCallsArgument)});
        process.setSandbox(machine());
        QVERIFY(process.start());
        QCOMPARE(process.finish(), EXIT_SUCCESS);
    }

    void keepsTimeBasedIdentifierOnlyInFile()
    {
        if (!Sandbox::hasNetwork(loopbackOnly))
            QSKIP("network namespaces are not allowed here");
        start(machine(loopbackOnly));
        const QString first = pcid();
        QCOMPARE(first.size(), 32);
        QCOMPARE(pcid(), first);
        QVERIFY(pcid(QStringLiteral("writer")) != first);
        QVERIFY(QFile::remove(deviceFile()));
        QVERIFY(pcid() != first);
    }
};

int main(int argc, char **argv)
{
    // There is no application object here, because it may load Qt's locale data before the first call.
    if (argc == 2 && qstrcmp(argv[1], firstCallsArgument) == 0)
        return makeFirstCalls(haveFirstCallsTimes);
    const QCoreApplication application(argc, argv);
    TestMachineIdentity test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_machine_identity.moc"
