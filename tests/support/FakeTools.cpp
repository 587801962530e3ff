// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeTools.h"

#include "Files.h"

#include <QFile>

void FakeTools::add(const QString &program, const QByteArray &script)
{
    const QString file = m_directory.filePath(program);
    // Each call is written at once, so that concurrent calls do not share a line.
    const QByteArray recording = "#!/bin/sh\ncall=" + program.toUtf8()
                                 + "\nfor argument in \"$@\"; do call=\"$call [$argument]\"; done\n"
                                   "printf '%s\\n' \"$call\" >>'"
                                 + record().toUtf8() + "'\n";
    writeFile(file, recording + script + '\n');
    QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QStringList FakeTools::calls() const
{
    return readLines(record());
}

QByteArray FakeTools::print(const QByteArray &bytes)
{
    QByteArray command = "printf '";
    for (const char byte : bytes)
        command += '\\' + QByteArray::number(static_cast<unsigned char>(byte), 8).rightJustified(3, '0');
    return command + "'\n";
}
