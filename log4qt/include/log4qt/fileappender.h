// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "writerappender.h"

#include <QFile>

namespace Log4Qt {
inline namespace zy {

/** Writes to a file. */
class LOG4QT_EXPORT FileAppender : public WriterAppender
{
    Q_OBJECT

public:
    explicit FileAppender(QObject *parent = nullptr);
    ~FileAppender() override;

    bool appendFile() const;
    bool bufferedIo() const;
    QString file() const;

    /** True: an existing file is continued; false (the default): it is emptied. */
    void setAppendFile(bool append);

    /** False: no write is held back in memory, whatever immediateFlush() says. Default true. */
    void setBufferedIo(bool buffered);
    void setFile(const QString &fileName);

    /**
     * Opens the file. Its directory is made where it is missing, but no level above it. A file that
     * can't be opened is told on the standard error stream, and later events are dropped.
     */
    void activateOptions() override;
    void close() override;

protected:
    bool flushDevice() override;
    void openFile(bool append);
    void closeFile();

private:
    bool m_appendFile = false;
    bool m_bufferedIo = true;
    QString m_fileName;
    QFile m_file;
};

} // namespace zy
} // namespace Log4Qt
