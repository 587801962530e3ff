// SPDX-License-Identifier: 0BSD
//
// Counts its runs in a settings file that survives a crash and a full disk.
//
//     recipe-saving-json-atomically FILE [RUNS]    RUNS: how many runs to count, 1 by default

#include "../PrintLine.h"
#include "AtomicJson.h"

#include <ZyBase/files/CJsonReader.h>

#include <QFile>

int main(int argc, char **argv)
{
    if (argc < 2) {
        printLine(QStringLiteral("recipe-saving-json-atomically FILE [RUNS]"));
        return 2;
    }
    const QString path = QFile::decodeName(argv[1]);
    const QLatin1String key("runs");
    for (int left = argc > 2 ? QByteArray(argv[2]).toInt() : 1; left > 0; --left) {
        QJsonObject settings = ZyBase::CJsonReader::ParseJsonFileToObject(path);
        const int runs = settings.value(key).toInt() + 1;
        settings.insert(key, runs);
        const QString problem = saveJsonAtomically(path, settings);
        if (!problem.isNull()) {
            printLine(QStringLiteral("not saved: ") + problem);
            return 1;
        }
        printLine(QStringLiteral("saved: run %1").arg(runs));
    }
    return 0;
}
