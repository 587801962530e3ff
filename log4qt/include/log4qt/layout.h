// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "log4qtexport.h"
#include "log4qtsharedptr.h"

#include <QObject>
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

using LayoutSharedPtr = Log4QtSharedPtr<Layout>;

} // namespace zy
} // namespace Log4Qt
