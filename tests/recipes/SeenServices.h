// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "RecipeProcess.h"

#include <ZyBase/analytics/SigningSecret.h>

#include <localservices/GaCollector.h>
#include <localservices/Proxy.h>
#include <localservices/StatisticsBackend.h>

#include <QTemporaryDir>

/** The local services of a developer, with what they received, and the file that leads a host to them. */
class SeenServices
{
public:
    SeenServices();

    /** Records go there in the place of the backend. */
    void setStatistics(const QUrl &url);

    void leadThere(RecipeProcess *recipe) const;

    LocalServices::GaCollector &collector() { return m_collector; }
    LocalServices::StatisticsBackend &backend() { return m_backend; }

    /** All that arrived, good or bad; records don't come through the proxy. */
    int requests() const { return m_proxy.requestLines().size() + m_backend.records().size(); }

private:
    Q_DISABLE_COPY(SeenServices)
    void describe();
    QString description() const { return m_directory.filePath(QStringLiteral("services.json")); }

    QTemporaryDir m_directory;
    QUrl m_statistics;
    LocalServices::Authority m_authority;
    LocalServices::GaCollector m_collector;
    LocalServices::StatisticsBackend m_backend;
    LocalServices::Proxy m_proxy;
};
