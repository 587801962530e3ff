// SPDX-License-Identifier: LGPL-2.1-or-later

#include "NetInfoTest.h"

#include "Files.h"
#include "Waiting.h"

#include <ZyBase/base/LoggerObjectPrivate.h>

#include <QDir>

namespace {

// Qt ends the threads of its requests late; the leak sanitizer reports what they own at process exit.
bool hasRequestThreads()
{
    const QDir threads(QStringLiteral("/proc/self/task"));
    const QStringList identifiers = threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return std::any_of(identifiers.begin(), identifiers.end(), [&threads](const QString &identifier) {
        return readFile(threads.filePath(identifier + QStringLiteral("/comm"))).startsWith("QNetworkAccess");
    });
}

} // namespace

void NetInfoTest::addUnusableAnswers(const QByteArray &usable)
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("not JSON") << QByteArray("<html>busy</html>");
    QTest::newRow("truncated") << usable.chopped(1);
    QTest::newRow("character after the end") << usable + 'x';
    QTest::newRow("NUL byte in the object") << QByteArray(usable).insert(usable.size() - 1, '\0');
    QTest::newRow("NUL byte after the end") << usable + '\0';
    QTest::newRow("empty object") << QByteArray("{}");
    QTest::newRow("array") << '[' + usable + ']';
    QTest::newRow("string") << QByteArray("\"success\"");
}

void NetInfoTest::init()
{
    m_output = std::make_unique<OutputCapture>();
    m_network = std::make_unique<LocalServices::FakeNetwork>();
    m_network->installProxy();
}

void NetInfoTest::cleanup()
{
    m_network.reset();
    QTRY_VERIFY_WITH_TIMEOUT(!hasRequestThreads(), longestWaitMs);
    QCOMPARE(OutputCapture::take(m_output), QString());
    QVERIFY(!LoggerObjectPrivate::s_pLogger); // the log is not used
}
