// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "OutputCapture.h"

#include <localservices/FakeNetwork.h>

#include <QObject>
#include <QTest>

#include <memory>

/**
 * Base of the tests of netinfo: each function has its own network, in which no certificate is trusted,
 * and fails if the process writes a message.
 */
class NetInfoTest : public QObject
{
    Q_OBJECT

protected:
    using Connection = LocalServices::Connection;
    using RawServer = LocalServices::RawServer;

    LocalServices::FakeNetwork &network() { return *m_network; }

    /** Makes @p host answer with status 200 and @p body. */
    void answer(const char *host, const QByteArray &body)
    {
        m_network->route(host, RawServer::answerWith(body));
    }

    /** Adds the column "body" and answers that no function accepts; @p usable is one that it accepts. */
    static void addUnusableAnswers(const QByteArray &usable);

protected Q_SLOTS:
    void init();
    void cleanup();

private:
    std::unique_ptr<OutputCapture> m_output;
    std::unique_ptr<LocalServices::FakeNetwork> m_network;
};
