// SPDX-License-Identifier: 0BSD

#include "Update.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int md5Digits = 32;

QString entry(const QJsonObject &description, const char *key)
{
    return description.value(QLatin1String(key)).toString();
}

} // namespace

bool Update::isNewer() const
{
    return version > QVersionNumber::fromString(QCoreApplication::applicationVersion());
}

Update readUpdate(const QByteArray &json, const QUrl &address)
{
    const QJsonObject description = QJsonDocument::fromJson(json).object();
    const Update update {QVersionNumber::fromString(entry(description, "version")),
                         address.resolved(QUrl(entry(description, "url"))),
                         entry(description, "md5").toLatin1()};
    return update.md5.size() == md5Digits ? update : Update();
}
