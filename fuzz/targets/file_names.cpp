// SPDX-License-Identifier: LGPL-2.1-or-later

// Input: size (8 bytes), extension (1 line), file name or path. The name is UTF-8, and also taken as UTF-16.

#include "Fuzzing.h"

#include <ZyBase/files/CFileUtils.h>
#include <ZyBase/files/CStringUtils.h>

#include <QFile>

using ZyBase::CFileUtils;
using ZyBase::CStringUtils;

namespace {

bool containsAnyOf(const QString &characters, const QString &name)
{
    for (const QChar character : characters) {
        if (name.contains(character))
            return true;
    }
    return false;
}

bool isValidUtf16(const QString &string)
{
    return QString::fromUtf8(string.toUtf8()) == string;
}

void checkName(const QString &name)
{
    const QString wrapped = CStringUtils::SplitString(name);
    FUZZ_VERIFY(wrapped.count(QLatin1Char('\n')) - name.count(QLatin1Char('\n'))
                == qMax(0, name.size() - 1) / 100);

    const bool isNameValid = CFileUtils::CheckFileNameValid(name);
    const bool isPathValid = CFileUtils::CheckFilePathValid(name);
    // The functions accept every name that is not valid UTF-16. The third character can be half of a pair.
    if (isValidUtf16(name))
        FUZZ_VERIFY(isNameValid == !containsAnyOf(QStringLiteral("\\/:*?\"<>|"), name));
    if (isValidUtf16(name.mid(3)))
        FUZZ_VERIFY(!isPathValid || name.leftRef(3).contains(QLatin1Char(':')));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    Input input(data, sizeBytes);
    const QString size = CFileUtils::FormatFileSize(input.takeNumber());
    FUZZ_VERIFY(size.endsWith(QLatin1Char('B')) && size.count(QLatin1Char(' ')) == 1);
    const QString extension = QString::fromUtf8(input.takeLine());
    const QByteArray bytes = input.takeRest();
    const QString name = QString::fromUtf8(bytes);

    FUZZ_VERIFY(!QFile::exists(CFileUtils::getUniqueFileName(name, extension)));
    checkName(name);
    checkName(QString(reinterpret_cast<const QChar *>(bytes.constData()), bytes.size() / int(sizeof(QChar))));
    return 0;
}
