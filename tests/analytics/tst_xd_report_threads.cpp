// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/analytics/CXdReport.h>

#include "ChildProcess.h"
#include "EightThreads.h"
#include "FirstCalls.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <atomic>
#include <thread>

namespace {

std::atomic<int> threadsBeforeDate {0}; // that have read the clock
thread_local bool isReporting = false; // an installed log4qt reads the clock before main()
thread_local QString sentDay;

// Makes the first reports of this process in eight threads. Returns true if all records have their date. The
// reporters are not deleted, because their requests still run when the process ends.
bool haveFirstRecordsDates()
{
    return sumOfEightThreads([](int) {
               auto *const reporter = new CXdReport;
               reporter->InitData(QStringLiteral("http://127.0.0.1:1/"), QString(), QString(), QString(),
                                  QString());
               isReporting = true;
               reporter->ReportXdData(QStringLiteral("install"), QStringLiteral("end"));
               return sentDay == QLatin1String("2001-02-03 04:05:06") ? 1 : 0;
           })
           == 8;
}

} // namespace

// These two are called instead of Qt's functions, because symbols of the program come first. The library
// formats the date next: all eight threads do so at the same time.
__attribute__((visibility("default"))) QDateTime QDateTime::currentDateTime()
{
    if (isReporting) {
        for (++threadsBeforeDate; threadsBeforeDate < 8;)
            std::this_thread::yield();
    }
    return QDateTime({2001, 2, 3}, {4, 5, 6}, Qt::UTC);
}

__attribute__((visibility("default"))) void QJsonDocument::setObject(const QJsonObject &record)
{
    sentDay = record.value(QLatin1String("day")).toString();
}

class TestXdReportThreads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatsDateInFirstCallsOfSeveralThreads()
    {
        ChildProcess process({QCoreApplication::applicationFilePath(), QLatin1String(firstCallsArgument)});
        QVERIFY(process.start());
        QCOMPARE(process.finish(), EXIT_SUCCESS);
    }
};

int main(int argc, char **argv)
{
    if (argc == 2 && qstrcmp(argv[1], firstCallsArgument) == 0)
        return makeFirstCalls(haveFirstRecordsDates);
    const QCoreApplication application(argc, argv);
    TestXdReportThreads test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_xd_report_threads.moc"
