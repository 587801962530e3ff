// SPDX-License-Identifier: LGPL-2.1-or-later

#include <log4qt/fileappender.h>

#include "errorstream.h"

#include <QDir>
#include <QFileInfo>

namespace Log4Qt {
inline namespace zy {

FileAppender::FileAppender(QObject *parent)
    : WriterAppender(parent)
{
}

FileAppender::~FileAppender()
{
    closeFile();
}

bool FileAppender::appendFile() const
{
    const Lock lock(m_mutex);
    return m_appendFile;
}

bool FileAppender::bufferedIo() const
{
    const Lock lock(m_mutex);
    return m_bufferedIo;
}

QString FileAppender::file() const
{
    const Lock lock(m_mutex);
    return m_fileName;
}

void FileAppender::setAppendFile(bool append)
{
    const Lock lock(m_mutex);
    m_appendFile = append;
}

void FileAppender::setBufferedIo(bool buffered)
{
    const Lock lock(m_mutex);
    m_bufferedIo = buffered;
}

void FileAppender::setFile(const QString &fileName)
{
    const Lock lock(m_mutex);
    m_fileName = fileName;
}

void FileAppender::activateOptions()
{
    const Lock lock(m_mutex);
    if (openFile(m_appendFile))
        WriterAppender::activateOptions();
}

void FileAppender::close()
{
    const Lock lock(m_mutex);
    WriterAppender::close();
    closeFile();
}

bool FileAppender::flushDevice()
{
    return m_isUnbufferedFile || m_file.flush();
}

void FileAppender::append(const LoggingEvent &event)
{
    if (m_file.isOpen() || openFile(true))
        WriterAppender::append(event);
}

bool FileAppender::openFile(bool append)
{
    closeFile();
    const QDir directory = QFileInfo(m_fileName).dir();
    if (!directory.exists())
        QDir().mkdir(directory.path());

    QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Text;
    mode |= append ? QIODevice::Append : QIODevice::Truncate;
    // If each line is flushed, a buffer would only keep the bytes that a full disk rejected.
    if (immediateFlush() || !m_bufferedIo)
        mode |= QIODevice::Unbuffered;
    m_file.setFileName(m_fileName);
    if (!m_file.open(mode)) {
        reportError(QStringLiteral("appender '%1' can't open file '%2': %3")
                        .arg(name(), m_fileName, m_file.errorString()));
        return false;
    }
    setDevice(&m_file);
    m_isUnbufferedFile = mode.testFlag(QIODevice::Unbuffered);
    return true;
}

void FileAppender::closeFile()
{
    setDevice(nullptr);
    m_file.close();
}

} // namespace zy
} // namespace Log4Qt
