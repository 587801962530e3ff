// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "appenderskeleton.h"

#include <QTextCodec>

class QIODevice;

namespace Log4Qt {
inline namespace zy {

/** Writes each event's text to a device, one write for each event. */
class LOG4QT_EXPORT WriterAppender : public AppenderSkeleton
{
    Q_OBJECT

public:
    explicit WriterAppender(QObject *parent = nullptr);
    ~WriterAppender() override;

    /** The codec that was set; null for Qt's codec of the locale. */
    QTextCodec *encoding() const;

    /** True (the default): each event is in the file when doAppend() returns. */
    bool immediateFlush() const;
    bool requiresLayout() const override;

    /** Takes effect when the device is set; null for Qt's codec of the locale. */
    void setEncoding(QTextCodec *encoding);
    void setImmediateFlush(bool immediateFlush);

    void close() override;

protected:
    void append(const LoggingEvent &event) override;
    bool checkEntryConditions() const override;

    /** Writes to @p device from here on, which is not owned; null ends the output. */
    void setDevice(QIODevice *device);

    /** Sends to the device what it holds back. */
    virtual bool flushDevice() = 0;

private:
    void write(const QString &text);

    QIODevice *m_device = nullptr;
    QTextCodec *m_encoding = nullptr;
    QTextCodec *m_codec = nullptr;
    bool m_immediateFlush = true;
    bool m_lineIsCut = false;
};

} // namespace zy
} // namespace Log4Qt
