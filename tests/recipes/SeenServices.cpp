// SPDX-License-Identifier: LGPL-2.1-or-later

#include "SeenServices.h"

#include "Files.h"

#include <QJsonDocument>

SeenServices::SeenServices()
    : m_backend(ZyBase::pszSigningSecret)
    , m_proxy(m_authority)
{
    m_statistics = m_backend.url();
    m_proxy.routeAll(m_collector.url());
    writeFile(m_directory.filePath(QStringLiteral("authority.pem")), m_authority.certificate());
    describe();
}

void SeenServices::setStatistics(const QUrl &url)
{
    m_statistics = url;
    describe();
}

void SeenServices::leadThere(RecipeProcess *recipe) const
{
    recipe->setEnvironment(QStringLiteral("LOCAL_SERVICES"), description());
}

void SeenServices::describe()
{
    const QJsonObject services {
        {QStringLiteral("proxy"), QStringLiteral("http://127.0.0.1:%1").arg(m_proxy.port())},
        {QStringLiteral("authority"), m_directory.filePath(QStringLiteral("authority.pem"))},
        {QStringLiteral("statistics"), m_statistics.toString()},
        {QStringLiteral("downloads"), QStringLiteral("http://127.0.0.1:1/")},
        {QStringLiteral("page"), QStringLiteral("http://127.0.0.1:1/page")}};
    writeFile(description(), QJsonDocument(services).toJson());
}
