// SPDX-License-Identifier: LGPL-2.1-or-later

// The whole input is a JSON file. It is read in all three ways, and what was read is written and read again.

#include "Fuzzing.h"
#include "MemoryFile.h"

#include <ZyBase/files/CJsonReader.h>

#include <QJsonArray>

using ZyBase::CJsonReader;

namespace {

constexpr const char *byteOrderMark = "\xef\xbb\xbf";

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    static MemoryFile file;
    static MemoryFile saved;
    file.write(Input(data, sizeBytes).takeRest());

    const QJsonObject object = CJsonReader::ParseJsonFileToObject(file.path());
    const QJsonArray array = CJsonReader::ParseJsonFileToArray(file.path());
    FUZZ_VERIFY(object.isEmpty() || array.isEmpty());
    const QString key = object.isEmpty() ? QString() : object.begin().key();
    const QJsonValue value = CJsonReader::ParseJsonFile(file.path(), key);
    FUZZ_VERIFY(object.isEmpty() ? value.isNull() : value == object.value(key));

    if (object.isEmpty())
        return 0;
    CJsonReader::SaveJsonFile(saved.path(), object);
    const QJsonObject stored = CJsonReader::ParseJsonFileToObject(saved.path());
    FUZZ_VERIFY(stored.size() == object.size());
    // Qt rounds large integers once, and drops a byte order mark at the start of a string each time.
    if (saved.read().contains(byteOrderMark))
        return 0;
    CJsonReader::SaveJsonFile(saved.path(), stored);
    FUZZ_VERIFY(CJsonReader::ParseJsonFileToObject(saved.path()) == stored);
    return 0;
}
