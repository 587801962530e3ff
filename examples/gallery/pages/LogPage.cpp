// SPDX-License-Identifier: 0BSD

#include "LogPage.h"

#include "../Appearance.h"
#include "../widgets/Card.h"
#include "../widgets/controls.h"

#include <ZyBase/base/LoggerObject.h>

#include <QEvent>
#include <QFile>
#include <QScrollBar>
#include <QSyntaxHighlighter>

using ZyBase::LoggerObject;

namespace {

constexpr const char *fileName = "gallery.log";
constexpr qint64 shownBytes = 65536;

class LevelHighlighter : public QSyntaxHighlighter
{
public:
    using QSyntaxHighlighter::QSyntaxHighlighter;

protected:
    void highlightBlock(const QString &line) override
    {
        colour(line, QStringLiteral(" ERROR "), currentColours().bad);
        colour(line, QStringLiteral(" WARN "), currentColours().warning);
        colour(line, QStringLiteral(" INFO "), currentColours().good);
    }

private:
    // The level is the word after the time.
    void colour(const QString &line, const QString &level, const QColor &colour)
    {
        static const int timeLength = int(qstrlen("2026-11-20 07:37:57.106"));
        if (line.mid(timeLength).startsWith(level))
            setFormat(timeLength, level.size(), colour);
    }
};

} // namespace

LogPage::LogPage(const QString &directory, QWidget *parent)
    : Page(tr("File log"), tr("Each line is in the file when the call returns, so a crash loses no line."),
           "ZyBase/base/LoggerObject.h", parent)
    , m_path(directory + QStringLiteral("/log/") + QLatin1String(fileName))
    , m_message(field(QString(), tr("Message"), "logMessage"))
    , m_file(textView("logFile"))
    , m_levels(new LevelHighlighter(m_file->document()))
{
    LoggerObject::InitLogger(fileName, directory.toUtf8().constData());
    LoggerObject::info("the gallery was started");

    Card *const writing = addCard(tr("Write a line"));
    writing->column()->addWidget(m_message);
    writing->column()->addWidget(createButtons());

    Card *const reading = addCard(tr("Log file"), 1);
    reading->column()->addWidget(m_file, 1);
    reading->column()->addWidget(hint(m_path, "logPath"));

    m_watcher.addPath(m_path);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &LogPage::showFile);
    showFile();
}

LogPage::~LogPage()
{
    LoggerObject::ReleaseLogger();
}

QWidget *LogPage::createButtons()
{
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(10);
    const auto add = [&](QPushButton *button, void (*level)(const char *)) {
        connect(button, &QPushButton::clicked, this, [this, level] { write(level); });
        layout->addWidget(button);
    };
    add(primaryButton(tr("Info"), "logInfo"), &LoggerObject::info);
    add(button(tr("Warning"), "logWarning"), &LoggerObject::warn);
    add(button(tr("Error"), "logError"), &LoggerObject::error);
    add(button(tr("Debug"), "logDebug"), &LoggerObject::debug);
    layout->addWidget(hint(tr("Debug messages are not written to the file.")), 1);
    return row;
}

void LogPage::write(void (*level)(const char *))
{
    level(m_message->text().toUtf8().constData());
}

void LogPage::showFile()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    file.seek(qMax<qint64>(0, file.size() - shownBytes));
    m_file->setPlainText(QString::fromUtf8(file.readAll()));
    m_file->verticalScrollBar()->setValue(m_file->verticalScrollBar()->maximum());
    m_watcher.addPath(m_path); // the log starts a new file every month
}

void LogPage::changeEvent(QEvent *event)
{
    Page::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        m_levels->rehighlight();
}
