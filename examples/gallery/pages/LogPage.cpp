// SPDX-License-Identifier: 0BSD

#include "LogPage.h"

#include "../Appearance.h"
#include "../Checks.h"
#include "../widgets/Card.h"
#include "../widgets/ElidedLabel.h"
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
           "ZyBase/base/LoggerObject.h", "LogPage.cpp", parent)
    , m_path(directory + QStringLiteral("/log/") + QLatin1String(fileName))
    , m_message(field(QString(), tr("Text of a line"), "logMessage"))
    , m_file(textView(tr("Log file"), "logFile"))
    , m_levels(new LevelHighlighter(m_file->document()))
{
    startLog(directory);

    Card *const writing = addCard(tr("Write a line"));
    QHBoxLayout *const row = writing->addRow();
    row->addLayout(labelled(tr("&Message"), m_message), 1);
    addButtons(row);
    writing->column()->addWidget(hint(tr("Debug messages are not written to the file.")));
    connect(m_message, &QLineEdit::returnPressed, findChild<QPushButton *>(QStringLiteral("logInfo")),
            &QPushButton::click);

    Card *const reading = addCard(tr("Log file"), 1);
    const QString problem = Checks::writeProblem(m_path);
    if (!problem.isEmpty())
        reading->column()->addWidget(hint(tr("The log is not written. %1").arg(problem), "logProblem"));
    reading->column()->addWidget(m_file, 1);
    reading->column()->addWidget(new ElidedLabel(m_path, "hint", "logPath"));

    m_watcher.addPath(m_path);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &LogPage::showFile);
    showFile();
}

//! [code]
void LogPage::startLog(const QString &directory)
{
    LoggerObject::InitLogger(fileName, directory.toUtf8().constData());
    LoggerObject::info("the gallery was started");
}

LogPage::~LogPage()
{
    LoggerObject::ReleaseLogger();
}

void LogPage::addButtons(QHBoxLayout *row)
{
    const auto add = [&](QPushButton *button, void (*level)(const char *)) {
        connect(button, &QPushButton::clicked, this,
                [this, level] { level(m_message->text().toUtf8().constData()); });
        row->addWidget(button, 0, Qt::AlignBottom);
    };
    add(primaryButton(tr("&Info"), "logInfo"), &LoggerObject::info);
    add(button(tr("&Warning"), "logWarning"), &LoggerObject::warn);
    add(button(tr("&Error"), "logError"), &LoggerObject::error);
    add(button(tr("&Debug"), "logDebug"), &LoggerObject::debug);
}
//! [code]

// Shows the newest line, unless the user has scrolled to older ones.
void LogPage::showFile()
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    file.seek(qMax<qint64>(0, file.size() - shownBytes));
    QScrollBar *const bar = m_file->verticalScrollBar();
    const bool isAtEnd = bar->value() == bar->maximum();
    const int position = bar->value();
    m_file->setPlainText(QString::fromUtf8(file.readAll()));
    if (isAtEnd)
        m_file->moveCursor(QTextCursor::End);
    bar->setValue(isAtEnd ? bar->maximum() : position);
    m_watcher.addPath(m_path); // the log starts a new file every month
}

void LogPage::changeEvent(QEvent *event)
{
    Page::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        m_levels->rehighlight();
}
