// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Archives.h"

#include <QProcess>

namespace {

const QLatin1String python("python3");
constexpr int timeoutMs = 240000;

// The arguments are names and contents, in hexadecimal.
constexpr const char *makeScript = R"(
import sys, zipfile
class Raw(zipfile.ZipInfo):
    def _encodeFilenameFlags(self):
        try:
            return self.raw, 0 if self.raw.isascii() or not self.raw.decode() else 0x800
        except UnicodeDecodeError:
            return self.raw, 0
texts = [bytes.fromhex(text) for text in sys.argv[2:]]
with zipfile.ZipFile(sys.argv[1], 'w') as archive:
    for name, content in zip(texts[::2], texts[1::2]):
        info = Raw(name.decode('latin1'))
        info.raw = name
        archive.writestr(info, content)
)";

} // namespace

bool canMakeArchives()
{
    static const bool can = runPython("import zipfile", {});
    return can;
}

bool runTool(const QString &program, const QStringList &arguments, const QString &directory)
{
    QProcess process;
    process.setWorkingDirectory(directory);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    return process.waitForFinished(timeoutMs) && process.exitStatus() == QProcess::NormalExit
           && process.exitCode() == 0;
}

bool runPython(const char *script, const QStringList &arguments)
{
    return runTool(python, QStringList {QStringLiteral("-c"), QString::fromUtf8(script)} + arguments,
                   QString());
}

bool makeArchive(const QString &path, const QList<ArchiveEntry> &entries)
{
    QStringList arguments {path};
    for (const ArchiveEntry &entry : entries)
        arguments << QString::fromLatin1(entry.name.toHex()) << QString::fromLatin1(entry.content.toHex());
    return runPython(makeScript, arguments);
}
