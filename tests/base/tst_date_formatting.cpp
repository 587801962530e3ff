// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/base/DateFormatting.h>

#include "ChildProcess.h"
#include "EightThreads.h"
#include "FirstCalls.h"

#include <QCoreApplication>
#include <QTest>

namespace {

// Formats the first dates of this process in eight threads. Returns true if no string is empty or wrong.
bool areFirstDatesFormatted()
{
    return sumOfEightThreads([](int) {
               ZyBase::prepareDateFormatting();
               return QDate(2001, 2, 3).toString(QStringLiteral("MM/dd/yyyy")) == QLatin1String("02/03/2001");
           })
           == 8;
}

} // namespace

class TestDateFormatting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatsFirstDatesOfSeveralThreads()
    {
        ChildProcess process({QCoreApplication::applicationFilePath(), QLatin1String(firstCallsArgument)});
        QVERIFY(process.start());
        QCOMPARE(process.finish(), EXIT_SUCCESS);
    }
};

int main(int argc, char **argv)
{
    if (argc == 2 && qstrcmp(argv[1], firstCallsArgument) == 0)
        return makeFirstCalls(areFirstDatesFormatted);
    const QCoreApplication application(argc, argv);
    TestDateFormatting test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_date_formatting.moc"
