// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Opens a log where this user may write, or says why there is none.
//
//     recipe-the-directory-of-the-log

#include "LogDirectory.h"

#include <ZyBase/base/LoggerObject.h>

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("example"));
    QCoreApplication::setApplicationName(QStringLiteral("reader"));
    QTextStream out(stdout);
    out.setCodec("UTF-8");

    const LogDirectory directory = prepareLogDirectory(QStringLiteral("reader.log"), 6);
    if (directory.problem.isNull())
        ZyBase::LoggerObject::InitLogger("reader.log", directory.base.toUtf8().constData());
    else
        out << "no log: " << directory.problem << '\n'; // a host shows it once, and works without a log

    ZyBase::LoggerObject::info("started"); // while there is no log this does nothing
    if (directory.problem.isNull())
        out << "the log is in " << directory.base << "/log/reader.log\n";
    ZyBase::LoggerObject::ReleaseLogger();
    return 0;
}
