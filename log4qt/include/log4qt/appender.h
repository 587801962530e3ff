// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "layout.h"

#include <QObject>
#include <QString>

namespace Log4Qt {
inline namespace zy {

class LoggingEvent;

/**
 * Interface of a destination of events.
 *
 * Derive from AppenderSkeleton instead of implementing this interface: it has the lock, the threshold and
 * the protection against recursion.
 *
 * **Threads.** All functions are thread-safe in every appender of this library.
 *
 * **Blocking.** doAppend() blocks until the event is written.
 *
 * **Lifetime.** An appender belongs to one thread. AppenderSharedPtr deletes it in the event loop of that
 * thread.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT Appender : public QObject
{
    Q_OBJECT

public:
    explicit Appender(QObject *parent = nullptr);
    ~Appender() override;

    /** Returns the layout; null if none was set. */
    virtual LayoutSharedPtr layout() const = 0;

    /** Returns the name; empty if none was set. */
    virtual QString name() const = 0;

    /** Returns true if events cannot be written without a layout. */
    virtual bool requiresLayout() const = 0;

    virtual void setLayout(const LayoutSharedPtr &layout) = 0;
    virtual void setName(const QString &name) = 0;

    /** Ends the output. Later events are dropped. */
    virtual void close() = 0;

    /** Writes @p event. Blocks until it is written. */
    virtual void doAppend(const LoggingEvent &event) = 0;
};

/**
 * Shared pointer to an appender.
 *
 * @code
 * const Log4Qt::AppenderSharedPtr appender(new MyAppender);
 * @endcode
 *
 * @warning A QSharedPointer of a derived class is ambiguous here. Pass a plain pointer, as above, or a
 * QSharedPointer<Appender>.
 */
using AppenderSharedPtr = Log4QtSharedPtr<Appender>;

} // namespace zy
} // namespace Log4Qt
