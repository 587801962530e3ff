// SPDX-License-Identifier: LGPL-2.1-or-later

#include "HostProcess.h"
#include "Sandbox.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <memory>

namespace {

constexpr int belowToolTimeoutMs = 25000; // the library waits 30 seconds for one tool

} // namespace

// The calls that run a tool, if the system creates no process.
class TestRefusedProcesses : public QObject
{
    Q_OBJECT

private:
    void start(const QByteArray &descriptor)
    {
        m_host = std::make_unique<HostProcess>();
        m_host->setCommand(Sandbox::inOwnProcesses(
            {QStringLiteral("env"), QStringLiteral("LD_PRELOAD=" ZYBASE_REFUSE_PROCESSES),
             QStringLiteral("ZYBASE_TEST_PIDFD=") + QString::fromLatin1(descriptor),
             HostProcess::program()}));
        for (const char *variable : {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION"})
            m_host->setEnvironment(QString::fromLatin1(variable), QString());
        m_host->setEnvironment(QStringLiteral("XDG_CONFIG_HOME"), QStringLiteral("/nowhere"));
        QVERIFY(m_host->start());
    }
    int descriptorTableSize()
    {
        const QString status =
            m_host->call(QStringLiteral("process.readFile"), {QStringLiteral("/proc/self/status")})
                .toString();
        static const QRegularExpression line(QStringLiteral("\nFDSize:\\s*(\\d+)\n"));
        return line.match(status).captured(1).toInt();
    }

    std::unique_ptr<HostProcess> m_host;

private Q_SLOTS:
    void initTestCase()
    {
        if (ZYBASE_SANITIZED)
            QSKIP("sanitizers cannot be loaded after another library");
        if (!Sandbox::hasOwnProcesses())
            QSKIP("bubblewrap is not installed, or may not make a process namespace here");
    }
    void cleanup() { m_host.reset(); }

    void returnsAtOnceAndSendsNoSignal_data()
    {
        QTest::addColumn<QByteArray>("descriptor");
        QTest::newRow("as Qt expects it after a failure") << QByteArray("-1");
        QTest::newRow("negative: Qt would wait and send a signal to all") << QByteArray("-1673954528");
        QTest::newRow("not open: Qt would read an exit code") << QByteArray("257522464");
    }
    void returnsAtOnceAndSendsNoSignal()
    {
        QFETCH(QByteArray, descriptor);
        start(descriptor);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(m_host->call(QStringLiteral("theme.gnome")), QJsonValue(2));
        QCOMPARE(m_host->call(QStringLiteral("assoc.isPdfLauncher"), {QStringLiteral("reader")}),
                 QJsonValue(false));
        QCOMPARE(m_host->call(QStringLiteral("assoc.setPdfLauncher"), {QStringLiteral("reader")}),
                 QJsonValue(true));
        QCOMPARE(m_host->call(QStringLiteral("theme.isDark")), QJsonValue(false));
        QVERIFY(timer.elapsed() < belowToolTimeoutMs);
        m_host->quit();

        // Every read counts as an empty one.
        QStringList lines = m_host->standardError().split(QLatin1Char('\n'));
        QCOMPARE(lines.removeAll(QStringLiteral("refused a process")), 3 + 1 + 1 + 8);
        QCOMPARE(lines, QStringList({QStringLiteral("UKUI style-name: \"\""),
                                     QStringLiteral("UKUI theme-mode: \"\""),
                                     QStringLiteral("UKUI control-center theme: \"\""),
                                     QStringLiteral("MATE gtk-theme: \"\""), QString()}));
    }

    void keepsNoDescriptorOpen()
    {
        start("-1673954528");
        const int sizeBefore = descriptorTableSize();
        QVERIFY(sizeBefore > 0);
        for (int i = 0; i < sizeBefore; ++i)
            QCOMPARE(m_host->call(QStringLiteral("theme.gnome")), QJsonValue(2));
        QCOMPARE(descriptorTableSize(), sizeBefore);
    }
};

QTEST_GUILESS_MAIN(TestRefusedProcesses)

#include "tst_refused_processes.moc"
