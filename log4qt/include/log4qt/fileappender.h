// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "writerappender.h"

#include <QFile>

namespace Log4Qt {
inline namespace zy {

/**
 * Writes events to a file.
 *
 * @code
 * auto *const appender = new Log4Qt::FileAppender;
 * const Log4Qt::AppenderSharedPtr shared(appender);
 * appender->setLayout(Log4Qt::LayoutSharedPtr(new Log4Qt::TTCCLayout));
 * appender->setFile(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/log/app.log");
 * appender->setAppendFile(true);
 * appender->activateOptions();
 * Log4Qt::Logger::rootLogger()->addAppender(shared);
 * @endcode
 *
 * **Threads.** All functions are thread-safe.
 *
 * **Blocking.** doAppend() blocks for one write to the file.
 *
 * **Failures.** If activateOptions() cannot open the file, it writes an error line to the standard error
 * stream. The appender remains inactive. If an open file was closed and cannot be opened again, each event is
 * dropped with an error line. Each event tries to open the file first, so the output continues as soon as
 * possible.
 *
 * @since 0.1.0
 */
class LOG4QT_EXPORT FileAppender : public WriterAppender
{
    Q_OBJECT

public:
    explicit FileAppender(QObject *parent = nullptr);
    ~FileAppender() override;

    /** Returns true if an existing file is continued. */
    bool appendFile() const;

    /** Returns true if writes may be buffered. */
    bool bufferedIo() const;

    /** Returns the path of the file. */
    QString file() const;

    /** Sets whether activateOptions() continues an existing file or, which is the default, empties it. */
    void setAppendFile(bool append);

    /** Sets whether writes may be buffered if immediateFlush() is false. The default is true. */
    void setBufferedIo(bool buffered);

    /** Sets the path of the file. Takes effect at activateOptions(). */
    void setFile(const QString &fileName);

    /** Opens the file. Creates its directory if it is missing, but no directory above it. */
    void activateOptions() override;

    void close() override;

protected:
    void append(const LoggingEvent &event) override;
    bool flushDevice() override;

    /**
     * Closes the file and opens it again.
     *
     * @param append true to continue an existing file, false to empty it
     * @return true on success; otherwise an error line was written to the standard error stream
     */
    bool openFile(bool append);

    /** Closes the file. The next event opens it again. */
    void closeFile();

private:
    bool m_appendFile = false;
    bool m_bufferedIo = true;
    QString m_fileName;
    QFile m_file;
};

} // namespace zy
} // namespace Log4Qt
