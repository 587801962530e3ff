// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

/** Turns SIGINT and SIGTERM into calls from the event loop while it lives. One for the process. */
class Termination
{
public:
    /** @p isFromTerminal: a key sent it to all that runs in the terminal, so that children have it too. */
    using Handler = std::function<void(int signal, bool isFromTerminal)>;

    Termination();
    ~Termination();

    /** Who is told from now on; what came before is told at once. */
    void setHandler(Handler handler) { m_handler = std::move(handler); }

private:
    Q_DISABLE_COPY(Termination)

    void read();

    Handler m_handler;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
