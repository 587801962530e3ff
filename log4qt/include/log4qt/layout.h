// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "log4qtexport.h"

#include <QObject>
#include <QSharedPointer>
#include <QString>

namespace Log4Qt {
inline namespace zy {

class LoggingEvent;

/** Turns an event into the text that an appender writes. */
class LOG4QT_EXPORT Layout : public QObject
{
    Q_OBJECT

public:
    explicit Layout(QObject *parent = nullptr);
    ~Layout() override;

    /** The text of one event, its line end included. Appenders of several threads may call at once. */
    virtual QString format(const LoggingEvent &event) = 0;

    /** What a file begins with; empty for none. */
    virtual QString header() const;

    /** What a file ends with; empty for none. */
    virtual QString footer() const;

    /** To be called when all settings are made. */
    virtual void activateOptions();
};

/** Shares a layout; the last holder lets the event loop of the layout's thread delete it. */
class LayoutSharedPtr : public QSharedPointer<Layout>
{
public:
    LayoutSharedPtr() = default;
    LayoutSharedPtr(Layout *layout) // NOLINT: implicit, so that setLayout takes a plain pointer
        : QSharedPointer<Layout>(layout, &QObject::deleteLater)
    {
    }
    LayoutSharedPtr(const QSharedPointer<Layout> &other) // NOLINT: implicit, as above
        : QSharedPointer<Layout>(other)
    {
    }
};

} // namespace zy
} // namespace Log4Qt
