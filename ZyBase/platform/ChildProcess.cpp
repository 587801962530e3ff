// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ChildProcess.h"

namespace ZyBase {

namespace {

constexpr int s_nToolTimeout = 30000; // ms

} // namespace

void runTool(QProcess &process, const char *pszProgram, const QStringList &arguments)
{
    process.start(QLatin1String(pszProgram), arguments, QIODevice::ReadWrite);
    process.waitForFinished(s_nToolTimeout);
}

QString takeOutput(QProcess &process)
{
    const QByteArray output = process.readAllStandardOutput().trimmed();
    return QString::fromUtf8(output.constData()); // without a length it ends at the first NUL byte
}

} // namespace ZyBase
