// SPDX-License-Identifier: LGPL-2.1-or-later

// The whole input is an archive. It is extracted twice, the second time without overwriting.

#include "Fuzzing.h"
#include "MemoryFile.h"
#include "WriteGuard.h"

#include <ZyBase/files/ZipManager.h>

#include <QDir>
#include <QFile>

using ZyBase::ZipManager;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    static MemoryFile archive;
    static const WriteGuard guard; // refuses to write outside of its directory
    dropMessages();
    archive.write(Input(data, sizeBytes).takeRest());

    const QString target = guard.path() + QLatin1String("/target");
    const bool isExtracted = ZipManager::QuaUnzipFile(archive.path(), target, true);
    FUZZ_VERIFY(ZipManager::QuaUnzipFile(archive.path(), target, false) == isExtracted);
    guard.clear();
    return 0;
}
