// SPDX-License-Identifier: LGPL-2.1-or-later

#include "Extraction.h"

#include <ZyBase/files/ZipManager.h>

#include <QDir>

#include <algorithm>

namespace {

// The beginnings of the two messages that name an entry's file; all others tell of a failure.
const QString extracted = QStringLiteral("解压成功：");
const QString kept = QStringLiteral("文件已存在，跳过：");

thread_local QList<Extraction::Entry> *s_entries = nullptr;
QtMessageHandler s_previous = nullptr;

// What stands behind the text, without the quotes that QDebug puts around it.
QString valueBehind(const QString &text, const QString &message)
{
    QString value = message.mid(text.size()).trimmed();
    if (value.startsWith(QLatin1Char('"')) && value.endsWith(QLatin1Char('"')))
        value = value.mid(1, value.size() - 2);
    return value;
}

void take(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (!s_entries)
        return s_previous(type, context, message);
    if (message.startsWith(extracted))
        s_entries->append({valueBehind(extracted, message), Extraction::Extracted});
    else if (message.startsWith(kept))
        s_entries->append({valueBehind(kept, message), Extraction::Kept});
    else
        s_entries->append({message, Extraction::Failed});
}

// The handler is the process's and stays. That of before is known before any message can need it.
bool install()
{
    s_previous = qInstallMessageHandler(nullptr);
    qInstallMessageHandler(take);
    return true;
}

// Takes the messages of this thread while it lives.
class Listening
{
public:
    explicit Listening(QList<Extraction::Entry> *entries)
    {
        static const bool isInstalled = install();
        Q_UNUSED(isInstalled)
        s_entries = entries;
    }
    ~Listening() { s_entries = nullptr; }

private:
    Q_DISABLE_COPY(Listening)
};

} // namespace

int Extraction::count(Fate fate) const
{
    return int(std::count_if(entries.begin(), entries.end(),
                             [fate](const Entry &entry) { return entry.fate == fate; }));
}

Extraction extract(const QString &archive, const QString &directory, bool overwrite)
{
    Extraction result;
    {
        const Listening listening(&result.entries);
        result.isDone = ZyBase::ZipManager::QuaUnzipFile(archive, directory, overwrite);
    }
    for (Extraction::Entry &entry : result.entries) {
        if (entry.fate != Extraction::Failed)
            entry.name = QDir(directory).relativeFilePath(entry.name);
    }
    return result;
}
