// SPDX-License-Identifier: 0BSD
//
// Checks an archive, extracts it to a new directory, and checks what was extracted.
//
//     recipe-checking-an-archive ARCHIVE NEW-DIRECTORY

#include "../PrintLine.h"
#include "ArchiveCheck.h"

#include <QFile>

int main(int argc, char **argv)
{
    if (argc != 3) {
        printLine(QStringLiteral("recipe-checking-an-archive ARCHIVE NEW-DIRECTORY"));
        return 2;
    }
    const QString problem = extractArchive(QFile::decodeName(argv[1]), QFile::decodeName(argv[2]));
    printLine(problem.isNull() ? QStringLiteral("extracted") : QStringLiteral("refused: ") + problem);
    return problem.isNull() ? 0 : 1;
}
