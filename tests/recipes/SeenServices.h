// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "RecipeProcess.h"

#include <localservices/FakeNetwork.h>

#include <QTemporaryDir>

/** A network for recipes. It records their events and records. */
class SeenServices
{
public:
    SeenServices()
    {
        m_network.routeAll(m_network.collector().url());
        m_addresses.page = QUrl(QStringLiteral("http://127.0.0.1:1/page"));
    }

    /** Makes recipes send their records to this address. */
    void setStatistics(const QUrl &url) { m_addresses.statistics = url; }

    /** Makes the recipe, which is not started yet, use this network. */
    void leadThere(RecipeProcess *recipe) const
    {
        recipe->setEnvironment(QStringLiteral("LOCAL_SERVICES"),
                               m_network.writeDescription(m_directory.path(), m_addresses));
    }

    const LocalServices::GaCollector &collector() const { return m_network.collector(); }
    const LocalServices::StatisticsBackend &backend() const { return m_network.statistics(); }

    /** The number of requests so far, also invalid ones. Records are not sent through the proxy. */
    int requests() const { return m_network.requestLines().size() + backend().records().size(); }

private:
    const QTemporaryDir m_directory;
    LocalServices::FakeNetwork m_network;
    LocalServices::FakeNetwork::Addresses m_addresses;
};
