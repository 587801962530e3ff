// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "log4qtexport.h"
#include "log4qtsharedptr.h"

#include <QObject>
#include <QString>

namespace Log4Qt {
inline namespace zy {

class LoggingEvent;

/**
 * Formats events as strings for an appender.
 *
 * **Threads.** format() is thread-safe in every layout of this library. The setters are reentrant: make all
 * settings before the layout is used.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT Layout : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString footer READ footer WRITE setFooter)
    Q_PROPERTY(QString header READ header WRITE setHeader)

public:
    explicit Layout(QObject *parent = nullptr);
    ~Layout() override;

    /** Returns the last line of a file; empty, the default, for none. */
    QString footer() const;

    /** Returns the first line that is written after a file was opened; empty, the default, for none. */
    QString header() const;

    /** Sets the last line of a file, without its line feed. */
    void setFooter(const QString &footer);

    /** Sets the first line that is written after a file was opened, without its line feed. */
    void setHeader(const QString &header);

    /** Applies the settings. Call it after all of them. */
    virtual void activateOptions();

    /** Returns the string for @p event, with its line feed. */
    virtual QString format(const LoggingEvent &event) = 0;

private:
    QString m_footer;
    QString m_header;
};

/** Shared pointer to a layout. The rules are those of AppenderSharedPtr. */
using LayoutSharedPtr = Log4QtSharedPtr<Layout>;

} // namespace zy
} // namespace Log4Qt
