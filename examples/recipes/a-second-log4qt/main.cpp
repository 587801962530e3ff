// SPDX-License-Identifier: 0BSD
//
// Shows the log's warnings with an appender of the application, beside a plug-in that loads another log4qt.
//
//     recipe-a-second-log4qt DIRECTORY [PLUGIN]    the log file is DIRECTORY/log/host.log

#include "WarningsAppender.h"

#include <ZyBase/base/LoggerObject.h>

#include <log4qt/logger.h>

#include <QCoreApplication>
#include <QFile>
#include <QLibrary>
#include <QTextStream>

using ZyBase::LoggerObject;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    if (argc < 2) {
        out << "recipe-a-second-log4qt DIRECTORY [PLUGIN]\n";
        return 2;
    }
    // "Log4Qt::zy::Logger" is the library's own log4qt, "Log4Qt::Logger" an installed one.
    out << "the log's log4qt: " << Log4Qt::Logger::staticMetaObject.className() << '\n';

    LoggerObject::InitLogger("host.log", argv[1]);
    auto *const warnings = new WarningsAppender;
    const Log4Qt::AppenderSharedPtr appender(warnings); // owns it and deletes it with deleteLater()
    Log4Qt::Logger::rootLogger()->addAppender(appender); // after InitLogger()

    if (argc > 2) {
        QLibrary plugin(QFile::decodeName(argv[2]));
        out << (plugin.load() ? "plug-in loaded" : "no plug-in") << '\n';
    }
    LoggerObject::info("the host runs");
    LoggerObject::warn("the disk is nearly full");

    out << "to be shown: " << warnings->texts().join(QStringLiteral(", ")) << '\n';
    LoggerObject::ReleaseLogger(); // also removes the application's appender
    return 0;
}
