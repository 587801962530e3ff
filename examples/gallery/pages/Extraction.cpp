// SPDX-License-Identifier: 0BSD

#include "Extraction.h"

#include "../Checks.h"

#include <ZyBase/files/ZipManager.h>

#include <QDir>
#include <QFileInfo>

#include <quazip.h>
#include <quazipfileinfo.h>

#include <algorithm>

namespace {

// The first words of messages of ZipManager.
const QString extracted = QStringLiteral("解压成功：");
const QString skipped = QStringLiteral("文件已存在，跳过：");
const QString unreadable = QStringLiteral("打开 ZIP 内文件失败：");
const QString directoryFailed = QStringLiteral("创建目录失败：");

thread_local QStringList *messagesOfThread = nullptr;
QtMessageHandler previousHandler = nullptr;

//! [code]
void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (messagesOfThread)
        messagesOfThread->append(message);
    else
        previousHandler(type, context, message);
}
//! [code]

// The handler stays installed. The previous one is stored before any message can be passed to it.
bool install()
{
    previousHandler = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(handleMessage);
    return true;
}

// Collects the messages of this thread until it is destroyed.
class MessageCollector
{
public:
    explicit MessageCollector(QStringList *messages)
    {
        static const bool isInstalled = install();
        Q_UNUSED(isInstalled)
        messagesOfThread = messages;
    }
    ~MessageCollector() { messagesOfThread = nullptr; }

private:
    Q_DISABLE_COPY(MessageCollector)
};

QList<QuaZipFileInfo64> entriesOf(const QString &archive)
{
    QuaZip zip(archive);
    return zip.open(QuaZip::mdUnzip) ? zip.getFileInfoList64() : QList<QuaZipFileInfo64>();
}

QString problemOf(const QString &archive, const QString &directory)
{
    QString archiveProblem = Checks::archiveProblem(archive);
    if (!archiveProblem.isEmpty())
        return archiveProblem;
    const QString writeProblem = Checks::writeProblem(directory + QStringLiteral("/new"));
    return writeProblem.isEmpty() ? Checks::tr("The archive is damaged.") : writeProblem;
}

// The library reports an incomplete file as extracted, so the sizes are compared.
Extraction::Entry resultOf(const QuaZipFileInfo64 &entry, const QString &path, const QString &message)
{
    if (message.startsWith(skipped))
        return {entry.name, Extraction::Skipped, QString(), message};
    const qint64 missing = qint64(entry.uncompressedSize) - QFileInfo(path).size();
    if (message.startsWith(extracted) && missing == 0)
        return {entry.name, Extraction::Extracted, QString(), message};
    QString cause = Checks::writeProblem(path, qMax<qint64>(1, missing));
    if (message.isEmpty())
        cause = Checks::tr("It was not reached.");
    else if (message.startsWith(unreadable))
        cause = Checks::tr("It is damaged, encrypted or compressed in an unknown way.");
    else if (message.startsWith(extracted) && cause.isEmpty())
        cause = Checks::tr("The file is incomplete.");
    return {entry.name, Extraction::Failed, cause, message};
}

} // namespace

int Extraction::count(Result result) const
{
    return int(std::count_if(entries.begin(), entries.end(),
                             [result](const Entry &entry) { return entry.result == result; }));
}

//! [code]
// There is one message for each file, in the order of the archive, and one for each directory that fails.
Extraction extract(const QString &archive, const QString &directory, bool overwrite)
{
    Extraction extraction;
    QStringList messages;
    {
        const MessageCollector collector(&messages);
        extraction.isDone = ZyBase::ZipManager::QuaUnzipFile(archive, directory, overwrite);
    }
    if (!extraction.isDone) {
        extraction.cause = problemOf(archive, directory);
        extraction.message = messages.join(QLatin1Char('\n'));
    }
    const auto entries = extraction.isDone ? entriesOf(archive) : QList<QuaZipFileInfo64>();
    for (const QuaZipFileInfo64 &entry : entries) {
        const QString message = messages.value(0);
        const bool isFailedDirectory = message.startsWith(directoryFailed) && message.contains(entry.name);
        if (entry.name.endsWith(QLatin1Char('/')) && !isFailedDirectory)
            continue;
        extraction.entries << resultOf(entry, QDir(directory).filePath(entry.name), message);
        messages = messages.mid(1);
    }
    return extraction;
}
//! [code]
