// SPDX-License-Identifier: LGPL-2.1-or-later

#include "FakeTools.h"

#include "Files.h"

#include <QFile>

void FakeTools::add(const QString &program, const QByteArray &script)
{
    const QString file = m_directory.filePath(program);
    // One write a call: the record of two at the same time is two lines.
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
