// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "appenderskeleton.h"

#include <QTextCodec>

class QIODevice;

namespace Log4Qt {
inline namespace zy {

/**
 * Writes the string of each event to a device, with one write for each event.
 *
 * **Threads.** All functions are thread-safe.
 *
 * **Failures.** If a write fails, the event is lost, and an error line is written to the standard error
 * stream. The next event starts on a new line.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT WriterAppender : public AppenderSkeleton
{
    Q_OBJECT

public:
    explicit WriterAppender(QObject *parent = nullptr);
    ~WriterAppender() override;

    /** Returns the codec that was set; null if Qt's codec for the locale is used. */
    QTextCodec *encoding() const;

    /** Returns true if each event is flushed. */
    bool immediateFlush() const;

    bool requiresLayout() const override;

    /** Sets the codec; null, the default, for Qt's codec for the locale. Takes effect at activateOptions().
     */
    void setEncoding(QTextCodec *encoding);

    /** Sets whether each event is flushed to the file before doAppend() returns. The default is true. */
    void setImmediateFlush(bool immediateFlush);

    void close() override;

protected:
    void append(const LoggingEvent &event) override;

    /** Sets the device, which is not owned. Null ends the output: later events are dropped. */
    void setDevice(QIODevice *device);

    /** Flushes the device. Returns false if that fails. */
    virtual bool flushDevice() = 0;

private:
    friend class FileAppender;

    void write(const QString &text);
    void writeLine(const QString &text);

    QIODevice *m_device = nullptr;
    QTextCodec *m_encoding = nullptr;
    QTextCodec *m_codec = nullptr;
    bool m_immediateFlush = true;
    bool m_lineIsCut : 1;
    bool m_isUnbufferedFile : 1; // in the same byte: classes of applications keep their layout
};

} // namespace zy
} // namespace Log4Qt
