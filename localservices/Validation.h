// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QJsonObject>
#include <QStringList>

namespace LocalServices {

/**
 * Collects what is invalid in a request: a word for each rule, and after a colon and a space what violates
 * it, for example "keys: client_id is missing".
 */
class Validation
{
public:
    QStringList problems() const { return m_problems; }

    void check(bool isGood, const char *rule, const QString &violation = {});

    /** Checks that an object has these keys and no others. */
    void checkKeys(const QJsonObject &object, const QStringList &keys, const char *rule);

private:
    QStringList m_problems;
};

} // namespace LocalServices
