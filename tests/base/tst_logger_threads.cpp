// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/base/LoggerObject.h>

#include "Files.h"
#include "HostProcess.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <thread>
#include <vector>

using ZyBase::LoggerObject;

namespace {

constexpr int threadCount = 16;
constexpr int linesPerThread = 2000;

} // namespace

class TestLoggerThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesWholeLinesOfSixteenThreads()
    {
        const QTemporaryDir directory;
        LoggerObject::InitLogger("threads.log", directory.path().toUtf8().constData());
        std::vector<std::thread> threads;
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([thread] {
                for (int i = 0; i < linesPerThread; ++i) {
                    const QByteArray text = QByteArray::number(thread) + ':' + QByteArray::number(i) + ':'
                                            + QByteArray(i % 300, 'x') + '.';
                    LoggerObject::info(text.constData());
                }
            });
        }
        for (std::thread &thread : threads)
            thread.join();
        LoggerObject::ReleaseLogger();

        const QStringList lines = readLines(directory.filePath(QStringLiteral("log/threads.log")));
        QCOMPARE(lines.size(), threadCount * linesPerThread);
        static const QRegularExpression form(
            QStringLiteral(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} INFO   - (\d+):(\d+):(x*)\.$)"));
        // Every line of a thread exists once, in the order in which it was logged.
        std::vector<int> next(threadCount, 0);
        for (const QString &line : lines) {
            const QRegularExpressionMatch match = form.match(line);
            QVERIFY2(match.hasMatch(), qPrintable(line));
            const auto thread = size_t(match.captured(1).toInt());
            QCOMPARE(match.captured(2).toInt(), next[thread]);
            QCOMPARE(match.capturedLength(3), next[thread] % 300);
            ++next[thread];
        }
    }

    void keepsLinesOfKilledProcess()
    {
        const QTemporaryDir directory;
        HostProcess host;
        QVERIFY(host.start());
        host.call(QStringLiteral("log.init"), {QStringLiteral("app.log"), directory.path()});
        for (int i = 0; i < 100; ++i)
            host.call(QStringLiteral("log.info"), {QString::number(i)});
        QVERIFY(host.call(QStringLiteral("process.die")).isUndefined());
        QCOMPARE(host.quit(), -1);
        const QStringList lines = readLines(directory.filePath(QStringLiteral("log/app.log")));
        QCOMPARE(lines.size(), 100);
        QVERIFY(lines.last().endsWith(QStringLiteral(" INFO   - 99")));
    }
};

QTEST_GUILESS_MAIN(TestLoggerThreads)

#include "tst_logger_threads.moc"
