// SPDX-License-Identifier: 0BSD
//
// Opens a log in the user's data directory, or prints why there is none.
//
//     recipe-the-directory-of-the-log

#include "../PrintLine.h"
#include "LogDirectory.h"

#include <ZyBase/base/LoggerObject.h>

#include <QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("example"));
    QCoreApplication::setApplicationName(QStringLiteral("reader"));

    const LogDirectory directory = prepareLogDirectory(QStringLiteral("reader.log"), 6);
    if (directory.problem.isNull())
        ZyBase::LoggerObject::InitLogger("reader.log", directory.base.toUtf8().constData());
    else
        printLine(QStringLiteral("no log: ") + directory.problem); // the application works without a log

    ZyBase::LoggerObject::info("started"); // does nothing without a log
    if (directory.problem.isNull())
        printLine(QStringLiteral("the log is %1/log/reader.log").arg(directory.base));
    ZyBase::LoggerObject::ReleaseLogger();
    return 0;
}
