// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/writerappender.h>

#include "errorstream.h"

#include <log4qt/loggingevent.h>

#include <QFile>

#include <unistd.h>

namespace Log4Qt {
inline namespace zy {

namespace {

// Writes to an unbuffered file without the calls of QFile, which take longer than the encoding of a line.
// Returns the number of written bytes.
qint64 writeUnbuffered(QFile *file, const QByteArray &bytes)
{
    const qint64 written = qMax<qint64>(0, ::write(file->handle(), bytes.constData(), size_t(bytes.size())));
    if (written == bytes.size())
        return written;
    // QFile writes the rest, or describes the error.
    return written + qMax<qint64>(0, file->write(bytes.constData() + written, bytes.size() - written));
}

} // namespace

WriterAppender::WriterAppender(QObject *parent)
    : AppenderSkeleton(parent)
    , m_lineIsCut(false)
    , m_isUnbufferedFile(false)
{
}

WriterAppender::~WriterAppender() = default;

QTextCodec *WriterAppender::encoding() const
{
    const Lock lock(m_mutex);
    return m_encoding;
}

bool WriterAppender::immediateFlush() const
{
    const Lock lock(m_mutex);
    return m_immediateFlush;
}

bool WriterAppender::requiresLayout() const
{
    return true;
}

void WriterAppender::setEncoding(QTextCodec *encoding)
{
    const Lock lock(m_mutex);
    m_encoding = encoding;
}

void WriterAppender::setImmediateFlush(bool immediateFlush)
{
    const Lock lock(m_mutex);
    m_immediateFlush = immediateFlush;
}

void WriterAppender::close()
{
    const Lock lock(m_mutex);
    setDevice(nullptr);
    AppenderSkeleton::close();
}

void WriterAppender::append(const LoggingEvent &event)
{
    if (m_device)
        write(m_layout->format(event));
    else
        reportError(QStringLiteral("appender '%1' has no open file: the event is dropped").arg(name()));
}

void WriterAppender::setDevice(QIODevice *device)
{
    const Lock lock(m_mutex);
    if (m_device && layout())
        writeLine(layout()->footer());
    m_device = device;
    m_isUnbufferedFile = false;
    m_lineIsCut = false;
    m_codec = m_encoding ? m_encoding : QTextCodec::codecForLocale();
    if (m_device && layout())
        writeLine(layout()->header());
}

void WriterAppender::writeLine(const QString &text)
{
    if (!text.isEmpty())
        write(text + QLatin1Char('\n'));
}

void WriterAppender::write(const QString &text)
{
    QTextCodec::ConverterState noByteOrderMark(QTextCodec::IgnoreHeader);
    QByteArray bytes = m_codec->fromUnicode(text.constData(), text.size(), &noByteOrderMark);
    // If a full disk cut the last line, the next one still starts on a new line.
    if (m_lineIsCut)
        bytes.prepend('\n');
    const qint64 written =
        m_isUnbufferedFile ? writeUnbuffered(static_cast<QFile *>(m_device), bytes) : m_device->write(bytes);
    const bool isWhole = written == bytes.size() && (!m_immediateFlush || flushDevice());
    if (isWhole) {
        m_lineIsCut = false;
        return;
    }
    m_lineIsCut = m_lineIsCut || written > 0;
    reportError(QStringLiteral("appender '%1' can't write: %2").arg(name(), m_device->errorString()));
}

} // namespace zy
} // namespace Log4Qt
