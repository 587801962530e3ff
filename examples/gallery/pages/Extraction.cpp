// SPDX-License-Identifier: 0BSD

#include "Extraction.h"

#include <ZyBase/files/ZipManager.h>

#include <QDir>

#include <algorithm>

namespace {

// The first words of the messages for extracted and skipped entries. All other messages are failures.
const QString extracted = QStringLiteral("解压成功：");
const QString skipped = QStringLiteral("文件已存在，跳过：");

thread_local QList<Extraction::Entry> *entriesOfThread = nullptr;
QtMessageHandler previousHandler = nullptr;

// Returns the rest of the message without the quotes that QDebug adds.
QString valueAfter(const QString &text, const QString &message)
{
    QString value = message.mid(text.size()).trimmed();
    if (value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
        value = value.mid(1, value.size() - 2);
    return value;
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!entriesOfThread)
        return previousHandler(type, context, message);
    if (message.startsWith(extracted))
        entriesOfThread->append({valueAfter(extracted, message), Extraction::Extracted});
    else if (message.startsWith(skipped))
        entriesOfThread->append({valueAfter(skipped, message), Extraction::Skipped});
    else
        entriesOfThread->append({message, Extraction::Failed});
}

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
    explicit MessageCollector(QList<Extraction::Entry> *entries)
    {
        static const bool isInstalled = install();
        Q_UNUSED(isInstalled)
        entriesOfThread = entries;
    }
    ~MessageCollector() { entriesOfThread = nullptr; }

private:
    Q_DISABLE_COPY(MessageCollector)
};

} // namespace

int Extraction::count(Result result) const
{
    return int(std::count_if(entries.begin(), entries.end(),
                             [result](const Entry &entry) { return entry.result == result; }));
}

Extraction extract(const QString &archive, const QString &directory, bool overwrite)
{
    Extraction extraction;
    {
        const MessageCollector collector(&extraction.entries);
        extraction.isDone = ZyBase::ZipManager::QuaUnzipFile(archive, directory, overwrite);
    }
    for (Extraction::Entry &entry : extraction.entries) {
        if (entry.result != Extraction::Failed)
            entry.name = QDir(directory).relativeFilePath(entry.name);
    }
    return extraction;
}
