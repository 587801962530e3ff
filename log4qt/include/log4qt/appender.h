// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "layout.h"

#include <QObject>
#include <QString>

namespace Log4Qt {
inline namespace zy {

class LoggingEvent;

/** A place that events are written to. */
class LOG4QT_EXPORT Appender : public QObject
{
    Q_OBJECT

public:
    explicit Appender(QObject *parent = nullptr);
    ~Appender() override;

    virtual LayoutSharedPtr layout() const = 0;
    virtual QString name() const = 0;
    virtual bool requiresLayout() const = 0;
    virtual void setLayout(const LayoutSharedPtr &layout) = 0;
    virtual void setName(const QString &name) = 0;

    /** Ends the output; later events are dropped. */
    virtual void close() = 0;

    /** Writes @p event. Any thread. */
    virtual void doAppend(const LoggingEvent &event) = 0;
};

using AppenderSharedPtr = Log4QtSharedPtr<Appender>;

} // namespace zy
} // namespace Log4Qt
