// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/COperateSystem.h>
#include <ZyBase/platform/CSystemUtils.h>

#include "MessageCapture.h"
#include "TemporaryHome.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QTest>

#include <sys/utsname.h>

#include <type_traits>

using ZyBase::COperateSystem;
using ZyBase::CSystemUtils;

namespace {

bool isEmptyAndNotNull(const QString &text)
{
    return text.isEmpty() && !text.isNull();
}

QStringList entriesBelow(const QString &path)
{
    QStringList entries;
    QDirIterator iterator(path, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext())
        entries << iterator.next();
    entries.sort();
    return entries;
}

QString kernelArchitecture()
{
    utsname names {};
    uname(&names);
    return QString::fromLatin1(names.machine);
}

} // namespace

// The functions that return a fixed result or a value of Qt.
class TestSystemInformation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void returnsThreeZerosForMonitors()
    {
        const auto words = CSystemUtils::GetDpiFromMonitors();
        static_assert(sizeof(words) == 3 * sizeof(quint64), "three words of 64 bits");
        for (const quint64 word : words)
            QCOMPARE(word, quint64(0));
    }

    void enablesHighDpiSupportForEitherArgument_data()
    {
        QTest::addColumn<bool>("argument");
        QTest::newRow("true") << true;
        QTest::newRow("false") << false;
    }
    void enablesHighDpiSupportForEitherArgument()
    {
        QFETCH(bool, argument);
        const MessageCapture warnings;
        QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, false);
        QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, false);
        CSystemUtils::EnableHighDPISupport(argument);
        QVERIFY(QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling));
        QVERIFY(QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
    }

    void returnsTrueForFixedSystemChecks()
    {
        QCOMPARE(CSystemUtils::IsOn64BitSystem(), true);
        QCOMPARE(CSystemUtils::IsWindows11OrGreater(), true);
    }

    void returnsProductNameOfQt()
    {
        QVERIFY(!CSystemUtils::GetSystemVersion().isEmpty());
        QCOMPARE(CSystemUtils::GetSystemVersion(), QSysInfo::prettyProductName());
    }

    void returnsArchitectureOfProcessor()
    {
        QCOMPARE(CSystemUtils::GetHardwareCpuArchitecture(), QSysInfo::currentCpuArchitecture());
        if (kernelArchitecture() == QLatin1String("x86_64"))
            QCOMPARE(CSystemUtils::GetHardwareCpuArchitecture(), QStringLiteral("x86_64"));
    }

    void returnsEmptyStringsForCryptography_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("key");
        QTest::newRow("null") << QString() << QString();
        QTest::newRow("empty") << ""
                               << "";
        QTest::newRow("string and key") << "secret"
                                        << "-----BEGIN PUBLIC KEY-----";
    }
    void returnsEmptyStringsForCryptography()
    {
        QFETCH(QString, text);
        QFETCH(QString, key);
        QVERIFY(isEmptyAndNotNull(CSystemUtils::RsaPublicEncrypt(text, key)));
        QVERIFY(isEmptyAndNotNull(CSystemUtils::RsaPrivateDecrypt(text, key)));
    }

    void changesAndLogsNothingForPowerAndAutoStart()
    {
        const TemporaryHome home;
        const QStringList before = entriesBelow(home.path());
        const MessageCapture messages;
        CSystemUtils::SleepComputer();
        CSystemUtils::ShutdownComputer();
        COperateSystem::SleepComputer();
        COperateSystem::ShutdownComputer();
        for (const bool on : {true, false}) {
            CSystemUtils::SetSelfAutoStart(on);
            CSystemUtils::SetAppAutoStart(QStringLiteral("reader"), on);
        }
        QCOMPARE(entriesBelow(home.path()), before);
        QCOMPARE(messages.messages().size(), 0);
    }

    void hasNoData()
    {
        QVERIFY(std::is_empty<CSystemUtils>::value && !std::is_polymorphic<CSystemUtils>::value);
        QVERIFY(std::is_empty<COperateSystem>::value && !std::is_polymorphic<COperateSystem>::value);
    }
};

QTEST_GUILESS_MAIN(TestSystemInformation)

#include "tst_system_information.moc"
