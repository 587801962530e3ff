// SPDX-License-Identifier: LGPL-2.1-or-later

// An application that uses the log, a function with a Qt Gui type, and log4qt itself.
//
//     consumer DIRECTORY    writes the log to DIRECTORY/log

#include <ZyBase/ZyBase.h>

#include <log4qt/logger.h>

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    ZyBase::LoggerObject::InitLogger("consumer.log", argv[1]);
    Log4Qt::Logger::rootLogger()->info(QStringLiteral("by log4qt itself"));
    ZyBase::LoggerObject::info("built against " ZYBASE_VERSION_STR);
    ZyBase::LoggerObject::ReleaseLogger();

    const QImage symbol = ZyBase::CSystemUtils::GenerateQRCode(QStringLiteral("consumer"), QSize(64, 64));
    QTextStream(stdout) << ZyBase::CSystemUtils::GetStringMd5(QStringLiteral("consumer")) << ' '
                        << symbol.width() << '\n';
    return ZYBASE_VERSION >= ZYBASE_VERSION_CHECK(ZYBASE_VERSION_MAJOR, 0, 0) ? 0 : 1;
}
