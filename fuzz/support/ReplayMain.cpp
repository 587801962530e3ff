// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Fuzzing.h"

#include <QDirIterator>

#include <cstdio>

// The main() of targets that are built without libFuzzer: runs the target once with each file of the
// arguments. An argument may be a directory. Options of libFuzzer are ignored.

namespace {

bool replayFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
        return false;
    }
    const QByteArray content = file.readAll();
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(content.constData()),
                           std::size_t(content.size()));
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const QString path = QFile::decodeName(argv[i]);
        if (path.startsWith(QLatin1Char('-')))
            continue;
        QStringList files {path};
        if (QFileInfo(path).isDir()) {
            files.clear();
            for (QDirIterator entries(path, QDir::Files); entries.hasNext();)
                files << entries.next();
        }
        for (const QString &file : qAsConst(files)) {
            if (!replayFile(file))
                return 1;
            ++count;
        }
    }
    std::printf("%d inputs replayed\n", count);
}
