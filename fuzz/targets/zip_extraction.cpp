// SPDX-License-Identifier: LGPL-2.1-or-later

// The whole input is an archive. It is extracted twice, the second time without overwriting.

#include "Fuzzing.h"
#include "MemoryFile.h"
#include "WriteGuard.h"

#include <ZyBase/files/ZipManager.h>

#include <QDir>
#include <QFile>

using ZyBase::ZipManager;

namespace {

// QuaZip reads the extra field of a directory entry in steps of four bytes, also beyond the end of the
// archive. A field of 65,535 bytes takes a tenth of a second, so the length is at most 255.
QByteArray limitExtraFields(QByteArray archive)
{
    constexpr int highByteOfLength = 31;
    const QByteArray signature = QByteArrayLiteral("PK\x01\x02");
    for (int i = archive.indexOf(signature); i >= 0; i = archive.indexOf(signature, i + 1)) {
        if (i + highByteOfLength < archive.size())
            archive[i + highByteOfLength] = '\0';
    }
    return archive;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    static MemoryFile archive;
    static const WriteGuard guard; // refuses to write outside of its directory
    dropMessages();
    archive.write(limitExtraFields(Input(data, sizeBytes).takeRest()));

    const QString target = guard.path() + QLatin1String("/target");
    const bool isExtracted = ZipManager::QuaUnzipFile(archive.path(), target, true);
    FUZZ_VERIFY(ZipManager::QuaUnzipFile(archive.path(), target, false) == isExtracted);
    guard.clear();
    return 0;
}
