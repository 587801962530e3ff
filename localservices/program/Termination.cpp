// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Termination.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fcntl.h>

namespace {

struct Note
{
    int signal;
    bool isFromTerminal;
};

// A pipe from the signal handler, which may run in any thread, to the event loop.
int notes[2] = {-1, -1};

void note(int signal, siginfo_t *info, void *)
{
    const int error = errno;
    const Note written {signal, info->si_code == SI_KERNEL};
    if (::write(notes[1], &written, sizeof(written)) < 0) {
        // The pipe is full, so the event loop is woken anyway.
    }
    errno = error;
}

void setHandlers(void (*handler)(int, siginfo_t *, void *))
{
    struct sigaction action
    {
    };
    action.sa_flags = SA_RESTART;
    if (handler) {
        action.sa_sigaction = handler;
        action.sa_flags |= SA_SIGINFO;
    }
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGTERM, &action, nullptr);
}

} // namespace

Termination::Termination()
{
    if (::pipe2(notes, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("local-services: cannot create a pipe for signals");
    m_notifier = std::make_unique<QSocketNotifier>(notes[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { read(); });
    setHandlers(note);
}

Termination::~Termination()
{
    setHandlers(nullptr);
    ::close(notes[0]);
    ::close(notes[1]);
}

void Termination::read()
{
    Note note {};
    while (m_handler && ::read(notes[0], &note, sizeof(note)) == sizeof(note))
        m_handler(note.signal, note.isFromTerminal);
}
