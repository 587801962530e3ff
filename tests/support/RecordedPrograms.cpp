// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RecordedPrograms.h"

#include "Files.h"

#include <QDir>
#include <QFile>

namespace {

constexpr const char *pathVariable = "PATH";
const QLatin1String suffix(".call");

} // namespace

RecordedPrograms::RecordedPrograms(const QStringList &names)
    : m_previousPath(qgetenv(pathVariable))
{
    qputenv(pathVariable, QFile::encodeName(m_programs.path()));
    for (const QString &name : names)
        add(name, QByteArray());
}

RecordedPrograms::~RecordedPrograms()
{
    qputenv(pathVariable, m_previousPath);
}

void RecordedPrograms::addEndless(const QString &name)
{
    add(name, "exec /bin/sleep 300\n");
}

void RecordedPrograms::addFailing(const QString &name)
{
    add(name, "exit 1\n");
}

// The record is renamed when it is complete.
void RecordedPrograms::add(const QString &name, const QByteArray &afterwards)
{
    const QByteArray record = QFile::encodeName(m_records.path()) + "/$$";
    const QString path = m_programs.filePath(name);
    writeFile(path, "#!/bin/sh\n"
                    "printf '%s\\0' \"${0##*/}\" \"$@\" >\""
                        + record
                        + "\"\n"
                          "/bin/mv \""
                        + record + "\" \"" + record + ".call\"\n" + afterwards);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QList<RecordedPrograms::Call> RecordedPrograms::calls() const
{
    QList<Call> found;
    const QFileInfoList records =
        QDir(m_records.path()).entryInfoList({QLatin1Char('*') + suffix}, QDir::Files, QDir::Time);
    for (const QFileInfo &record : records) {
        QStringList command;
        for (const QByteArray &word : readFile(record.filePath()).split('\0'))
            command << QFile::decodeName(word);
        command.removeLast();
        found << Call {record.completeBaseName().toLongLong(), command};
    }
    return found;
}
