// SPDX-License-Identifier: LGPL-2.1-or-later

// Input: secret (1 line), JSON object.

#include "Fuzzing.h"

#include <ZyBase/http/CHttpPostRequest.h>
#include <ZyBase/platform/CSystemUtils.h>

#include <QJsonDocument>

using ZyBase::CHttpPostRequest;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t sizeBytes)
{
    Input input(data, sizeBytes);
    const QString secret = QString::fromUtf8(input.takeLine());
    const QJsonObject object = QJsonDocument::fromJson(input.takeRest()).object();

    const QString signature = CHttpPostRequest::SignObject(object, secret);
    FUZZ_VERIFY(signature.size() == 32);
    for (const QChar digit : signature)
        FUZZ_VERIFY((digit >= QLatin1Char('0') && digit <= QLatin1Char('9'))
                    || (digit >= QLatin1Char('a') && digit <= QLatin1Char('f')));
    if (object.isEmpty())
        FUZZ_VERIFY(signature == ZyBase::CSystemUtils::GetStringMd5(secret));
    return 0;
}
