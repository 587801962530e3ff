// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

/** Calls a handler from the event loop after SIGINT or SIGTERM. Only one object may exist in a process. */
class Termination
{
public:
    /** @p isFromTerminal is true if a key such as Ctrl-C sent the signal; child processes received it too. */
    using Handler = std::function<void(int signal, bool isFromTerminal)>;

    Termination();
    ~Termination();

    /** Sets the handler. It is also called for signals that arrived while there was none. */
    void setHandler(Handler handler) { m_handler = std::move(handler); }

private:
    Q_DISABLE_COPY(Termination)

    void read();

    Handler m_handler;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
