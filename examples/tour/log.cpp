// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/base/LoggerObject.h>

#include <QFile>

using ZyBase::LoggerObject;

namespace {

QStringList readLines(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeLast();
    return lines;
}

bool endWith(const QStringList &lines, const QStringList &ends)
{
    if (lines.size() != ends.size())
        return false;
    for (int i = 0; i < lines.size(); ++i) {
        if (!lines.at(i).endsWith(ends.at(i)))
            return false;
    }
    return true;
}

} // namespace

void showLog(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("File log"), QStringLiteral("ZyBase/base/LoggerObject.h"));

    LoggerObject::info("before InitLogger: goes nowhere");
    LoggerObject::InitLogger("tour.log", directory.path().toUtf8().constData());
    LoggerObject::info("the tour begins");
    LoggerObject::debug("detail for the host's own appenders only");
    LoggerObject::warn("UTF-8 arrives as it is: Größe 文件");
    LoggerObject::error("100% as given: %s is no format");
    LoggerObject::ReleaseLogger();
    LoggerObject::info("after ReleaseLogger: goes nowhere");

    const QString path = directory.filePath(QStringLiteral("log/tour.log"));
    const QStringList lines = readLines(path);
    report.line(QStringLiteral("seven messages, file"), path);
    report.excerpt(lines);
    report.promise(
        QStringLiteral("info, warn and error stand in the file, debug and what came before or after don't"),
        endWith(lines, {QStringLiteral(" INFO   - the tour begins"),
                        QStringLiteral(" WARN   - UTF-8 arrives as it is: Größe 文件"),
                        QStringLiteral(" ERROR  - 100% as given: %s is no format")}));
}
