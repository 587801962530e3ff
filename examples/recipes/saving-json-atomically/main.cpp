// SPDX-License-Identifier: LGPL-2.1-or-later
//
// Counts its runs in a settings file that no crash and no full disk cuts short.
//
//     recipe-saving-json-atomically FILE [RUNS]    RUNS: how many runs to count, 1 by default

#include "AtomicJson.h"

#include <ZyBase/files/CJsonReader.h>

#include <QFile>
#include <QTextStream>

int main(int argc, char **argv)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    if (argc < 2) {
        out << "recipe-saving-json-atomically FILE [RUNS]\n";
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
            out << "not saved: " << problem << '\n';
            return 1;
        }
        out << "saved: run " << runs << '\n';
    }
    return 0;
}
