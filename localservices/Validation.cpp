// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Validation.h"

namespace LocalServices {

void Validation::check(bool isGood, const char *rule, const QString &violation)
{
    if (isGood)
        return;
    const QString separator = violation.isEmpty() ? QString() : QStringLiteral(": ");
    m_problems << QLatin1String(rule) + separator + violation;
}

void Validation::checkKeys(const QJsonObject &object, const QStringList &keys, const char *rule)
{
    for (const QString &key : keys)
        check(object.contains(key), rule, key + QStringLiteral(" is missing"));
    const QStringList actual = object.keys();
    for (const QString &key : actual)
        check(keys.contains(key), rule, key + QStringLiteral(" is unknown"));
}

} // namespace LocalServices
