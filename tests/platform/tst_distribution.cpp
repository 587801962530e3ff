// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Files.h"
#include "HostProcess.h"

#include <QDir>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <sys/inotify.h>

#include <unistd.h>

namespace {

// The file as shipped by the distributions.
const QByteArray debian =
    "PRETTY_NAME=\"Debian GNU/Linux 12 (bookworm)\"\nNAME=\"Debian GNU/Linux\"\n"
    "VERSION_ID=\"12\"\nVERSION=\"12 (bookworm)\"\nVERSION_CODENAME=bookworm\nID=debian\n"
    "HOME_URL=\"https://www.debian.org/\"\nSUPPORT_URL=\"https://www.debian.org/support\"\n"
    "BUG_REPORT_URL=\"https://bugs.debian.org/\"\n";
const QByteArray ubuntu = "PRETTY_NAME=\"Ubuntu 22.04.3 LTS\"\nNAME=\"Ubuntu\"\nVERSION_ID=\"22.04\"\n"
                          "VERSION=\"22.04.3 LTS (Jammy Jellyfish)\"\nVERSION_CODENAME=jammy\nID=ubuntu\n"
                          "ID_LIKE=debian\nHOME_URL=\"https://www.ubuntu.com/\"\nUBUNTU_CODENAME=jammy\n";
const QByteArray ubuntuKylin =
    "NAME=\"Ubuntu Kylin\"\nVERSION=\"16.04 LTS (Xenial Xerus)\"\nID=ubuntukylin\n"
    "ID_LIKE=debian\nPRETTY_NAME=\"Ubuntu Kylin 16.04 LTS\"\nVERSION_ID=\"16.04\"\n"
    "HOME_URL=\"http://www.ubuntukylin.com/\"\n";
const QByteArray kylin = "NAME=\"Kylin\"\nVERSION=\"银河麒麟桌面操作系统V10 (SP1)\"\n"
                         "VERSION_US=\"Kylin Linux Desktop V10 (SP1)\"\nID=kylin\nID_LIKE=debian\n"
                         "PRETTY_NAME=\"Kylin V10 SP1\"\nVERSION_ID=\"v10\"\n"
                         "HOME_URL=\"http://www.kylinos.cn/\"\nUBUNTU_CODENAME=kylin\n";
const QByteArray kylinServer = "NAME=\"Kylin Linux Advanced Server\"\nVERSION=\"V10 (Lance)\"\nID=\"kylin\"\n"
                               "VERSION_ID=\"V10\"\nPRETTY_NAME=\"Kylin Linux Advanced Server V10 (Lance)\"\n"
                               "ANSI_COLOR=\"0;31\"\n";
const QByteArray openKylin = "NAME=\"openKylin\"\nVERSION=\"1.0 (Yangtze)\"\nID=openkylin\n"
                             "PRETTY_NAME=\"openKylin 1.0\"\nVERSION_ID=\"1.0\"\n";
const QByteArray uos = "PRETTY_NAME=\"UnionTech OS Desktop 20 Pro\"\nNAME=\"uos\"\nVERSION_ID=\"20\"\n"
                       "VERSION=\"20\"\nID=uos\nHOME_URL=\"https://www.chinauos.com/\"\n";
const QByteArray uosServer = "PRETTY_NAME=\"UnionTech OS Server 20\"\nNAME=\"UnionTech OS Server 20\"\n"
                             "VERSION_ID=\"20\"\nVERSION=\"20\"\nID=\"uos\"\n";
const QByteArray deepin =
    "PRETTY_NAME=\"Deepin 20.9\"\nNAME=\"Deepin\"\nVERSION_ID=\"20.9\"\nVERSION=\"20.9\"\n"
    "VERSION_CODENAME=\"apricot\"\nID=Deepin\nHOME_URL=\"https://www.deepin.org/\"\n";
const QByteArray openEuler = "NAME=\"openEuler\"\nVERSION=\"22.03 (LTS-SP2)\"\nID=\"openEuler\"\n"
                             "VERSION_ID=\"22.03\"\nPRETTY_NAME=\"openEuler 22.03 (LTS-SP2)\"\n"
                             "ANSI_COLOR=\"0;31\"\n";

// Counts how often a file is opened, by any process.
class OpenCounter
{
public:
    explicit OpenCounter(const QString &path)
        : m_descriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        // Equal events in a row are reported once; the close events separate those of opening.
        inotify_add_watch(m_descriptor, QFile::encodeName(path).constData(), IN_OPEN | IN_CLOSE);
    }
    ~OpenCounter() { close(m_descriptor); }

    int count() const
    {
        int opened = 0;
        inotify_event event = {};
        while (read(m_descriptor, &event, sizeof(event)) == ssize_t(sizeof(event)))
            opened += (event.mask & IN_OPEN) != 0 ? 1 : 0;
        return opened;
    }

private:
    Q_DISABLE_COPY(OpenCounter)
    int m_descriptor;
};

enum { IsNeither = 0, IsKylin = 1, IsUos = 2 };

} // namespace

// The name of the distribution, on a machine whose /etc is the test's.
class TestDistribution : public QObject
{
    Q_OBJECT

private:
    QString osRelease() const { return m_etc.filePath(QStringLiteral("os-release")); }
    QJsonObject distribution() { return m_host.call(QStringLiteral("system.distribution")).toObject(); }
    static QJsonObject unknown()
    {
        return {{QStringLiteral("name"), QStringLiteral("Unknown")},
                {QStringLiteral("isNull"), false},
                {QStringLiteral("isKylin"), false},
                {QStringLiteral("isUos"), false}};
    }

    QTemporaryDir m_etc;
    HostProcess m_host;

private Q_SLOTS:
    void initTestCase()
    {
        if (!Sandbox::isAvailable())
            QSKIP("bubblewrap is not installed or not allowed here");
        Sandbox sandbox;
        sandbox.replace(QStringLiteral("/etc"), m_etc.path());
        m_host.setEnvironment(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
        QVERIFY(m_host.start(sandbox));
    }
    void cleanup()
    {
        QFile::remove(osRelease());
        QDir(osRelease()).removeRecursively();
    }
    void cleanupTestCase() { QCOMPARE(m_host.standardError(), QString()); }

    void returnsValueOfFirstLineWithKey_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("family");

        QTest::newRow("Debian") << debian << "Debian GNU/Linux" << int(IsNeither);
        QTest::newRow("Ubuntu") << ubuntu << "Ubuntu" << int(IsNeither);
        QTest::newRow("Ubuntu Kylin") << ubuntuKylin << "Ubuntu Kylin" << int(IsKylin);
        QTest::newRow("Kylin V10") << kylin << "Kylin" << int(IsKylin);
        QTest::newRow("Kylin V10 server") << kylinServer << "Kylin Linux Advanced Server" << int(IsKylin);
        QTest::newRow("openKylin") << openKylin << "openKylin" << int(IsKylin);
        QTest::newRow("UOS") << uos << "uos" << int(IsUos);
        QTest::newRow("UOS server") << uosServer << "UnionTech OS Server 20" << int(IsUos);
        QTest::newRow("Deepin") << deepin << "Deepin" << int(IsNeither);
        QTest::newRow("openEuler") << openEuler << "openEuler" << int(IsNeither);

        QTest::newRow("no quotes") << QByteArray("NAME=Fedora Linux\n") << "Fedora Linux" << int(IsNeither);
        QTest::newRow("quotes anywhere") << QByteArray("NAME=A \"B\" C\"D\n") << "A B CD" << int(IsNeither);
        QTest::newRow("single quotes are kept") << QByteArray("NAME='Kylin'\n") << "'Kylin'" << int(IsKylin);
        QTest::newRow("spaces are kept") << QByteArray("NAME=  \" a \"\t \n") << "   a \t " << int(IsNeither);
        QTest::newRow("more equals signs") << QByteArray("NAME=\"a=b==c=\"\n") << "a=b==c=" << int(IsNeither);
        QTest::newRow("two names: the first")
            << QByteArray("NAME=first\nNAME=Kylin\n") << "first" << int(IsNeither);
        QTest::newRow("empty") << QByteArray("NAME=\nNAME=Kylin\n") << "" << int(IsNeither);
        QTest::newRow("empty in quotes") << QByteArray("NAME=\"\"\n") << "" << int(IsNeither);
        QTest::newRow("empty and no line end") << QByteArray("NAME=") << "" << int(IsNeither);
        QTest::newRow("last line without its end") << QByteArray("ID=x\nNAME=y") << "y" << int(IsNeither);
        QTest::newRow("after an empty line") << QByteArray("\n\nNAME=y\n") << "y" << int(IsNeither);
        QTest::newRow("Windows line ends")
            << QByteArray("ID=x\r\nNAME=\"y\"\r\nA=b\r\n") << "y" << int(IsNeither);
        QTest::newRow("carriage returns inside are removed")
            << QByteArray("NAME=\"a\rb\"\n") << "ab" << int(IsNeither);
        QTest::newRow("escapes are kept") << QByteArray("NAME=\"a\\$b\"\n") << "a\\$b" << int(IsNeither);
        QTest::newRow("Chinese") << QByteArray("NAME=\"银河麒麟\"\n") << "银河麒麟" << int(IsNeither);
        QTest::newRow("UTF-16") << QByteArray::fromRawData("\xff\xfeN\0A\0M\0E\0=\0y\0\n\0", 16) << "y"
                                << int(IsNeither);

        QTest::newRow("Kylin in upper case") << QByteArray("NAME=NEOKYLIN\n") << "NEOKYLIN" << int(IsKylin);
        QTest::newRow("Kylin in lower case") << QByteArray("NAME=kylin\n") << "kylin" << int(IsKylin);
        QTest::newRow("UnionTech in lower case")
            << QByteArray("NAME=my uniontech\n") << "my uniontech" << int(IsUos);
        QTest::newRow("UnionTech with a space")
            << QByteArray("NAME=Union Tech\n") << "Union Tech" << int(IsNeither);
        QTest::newRow("UOS in a longer word")
            << QByteArray("NAME=Virtuoso Linux\n") << "Virtuoso Linux" << int(IsUos);
        QTest::newRow("both") << QByteArray("NAME=Kylin on UOS\n") << "Kylin on UOS" << int(IsKylin | IsUos);
        QTest::newRow("Unknown as the name") << QByteArray("NAME=Unknown\n") << "Unknown" << int(IsNeither);
    }
    void returnsValueOfFirstLineWithKey()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, name);
        QFETCH(int, family);
        QVERIFY(writeFile(osRelease(), content));
        const QJsonObject answer = distribution();
        QCOMPARE(answer.value(QStringLiteral("name")).toString(), name);
        QCOMPARE(answer.value(QStringLiteral("isNull")), QJsonValue(false));
        QCOMPARE(answer.value(QStringLiteral("isKylin")).toBool(), (family & IsKylin) != 0);
        QCOMPARE(answer.value(QStringLiteral("isUos")).toBool(), (family & IsUos) != 0);
    }

    void returnsUnknownWithoutSuchLine_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("empty file") << QByteArray("");
        QTest::newRow("other keys") << QByteArray("PRETTY_NAME=\"Kylin\"\nID=uos\nCODENAME=Kylin\n");
        QTest::newRow("space before the key") << QByteArray(" NAME=Kylin\n");
        QTest::newRow("tab before the key") << QByteArray("\tNAME=Kylin\n");
        QTest::newRow("space after the key") << QByteArray("NAME =Kylin\n");
        QTest::newRow("lower case") << QByteArray("name=Kylin\nName=UOS\n");
        QTest::newRow("comment") << QByteArray("#NAME=Kylin\n");
        QTest::newRow("no equals sign") << QByteArray("NAME\nNAMES=Kylin\n");
    }
    void returnsUnknownWithoutSuchLine()
    {
        QFETCH(QByteArray, content);
        QVERIFY(writeFile(osRelease(), content));
        QCOMPARE(distribution(), unknown());
    }

    void returnsUnknownIfFileCannotBeOpened()
    {
        QCOMPARE(distribution(), unknown());
        QVERIFY(QDir().mkdir(osRelease()));
        QCOMPARE(distribution(), unknown());
    }

    void followsLink()
    {
        QVERIFY(writeFile(m_etc.filePath(QStringLiteral("elsewhere")), kylin));
        QVERIFY(QFile::link(QStringLiteral("elsewhere"), osRelease()));
        QCOMPARE(distribution().value(QStringLiteral("name")).toString(), QStringLiteral("Kylin"));
    }

    void readsFileOncePerFunction()
    {
        QVERIFY(writeFile(osRelease(), debian)); // neither of the two words of UOS
        const OpenCounter counter(osRelease());
        QCOMPARE(distribution().value(QStringLiteral("isUos")), QJsonValue(false));
        QCOMPARE(counter.count(), 3); // name, Kylin, UOS
    }

    void readsFileAtEachCall()
    {
        for (int i = 0; i < 3; ++i) {
            QVERIFY(writeFile(osRelease(), uos));
            QCOMPARE(distribution().value(QStringLiteral("isUos")), QJsonValue(true));
            QVERIFY(writeFile(osRelease(), kylin));
            QCOMPARE(distribution().value(QStringLiteral("isKylin")), QJsonValue(true));
            QVERIFY(QFile::remove(osRelease()));
            QCOMPARE(distribution(), unknown());
        }
    }
};

QTEST_GUILESS_MAIN(TestDistribution)

#include "tst_distribution.moc"
