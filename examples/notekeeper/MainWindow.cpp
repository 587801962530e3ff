// SPDX-License-Identifier: 0BSD

#include "MainWindow.h"

#include "Log.h"
#include "QrDialog.h"
#include "Reports.h"
#include "SystemDialog.h"
#include "Theme.h"
#include "UpdateDialog.h"

#include <ThemeWatcher.h>

#include <QCloseEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

namespace {

constexpr std::chrono::milliseconds saveDelay(1000);
constexpr int textRole = Qt::UserRole; // the whole note; the item shows its first line

QString textOf(const QListWidgetItem *note)
{
    return note ? note->data(textRole).toString() : QString();
}

void setText(QListWidgetItem *note, const QString &text)
{
    const QString firstLine = text.section(QLatin1Char('\n'), 0, 0, QString::SectionSkipEmpty).trimmed();
    note->setData(textRole, text);
    note->setText(firstLine.isEmpty() ? MainWindow::tr("New note") : firstLine);
}

// Screen readers ignore the buddy of a list, so the control has the name, too.
QWidget *labelled(const QString &text, QWidget *control)
{
    auto *const label = new QLabel(text);
    label->setBuddy(control);
    control->setAccessibleName(QString(text).remove(QLatin1Char('&')));
    auto *const area = new QWidget;
    auto *const layout = new QVBoxLayout(area);
    layout->addWidget(label);
    layout->addWidget(control);
    return area;
}

} // namespace

MainWindow::MainWindow(const QString &directory, const QUrl &updates, UsageReports *reports, QWidget *parent)
    : QMainWindow(parent)
    , m_storage(directory)
    , m_reports(reports)
    , m_updates(new UpdateDialog(updates, directory, reports, this))
    , m_notes(new QListWidget)
    , m_editor(new QPlainTextEdit)
{
    setWindowTitle(tr("Note Keeper"));
    resize(80 * fontMetrics().averageCharWidth(), 24 * fontMetrics().lineSpacing());
    createMenus();
    createEditor();
    restore();
    connect(new ThemeWatcher(this), &ThemeWatcher::darkChanged, this, &setDark);
}

void MainWindow::createMenus()
{
    QMenu *const notes = menuBar()->addMenu(tr("&Notes"));
    notes->addAction(tr("&New"), this, &MainWindow::addNote, QKeySequence::New);
    notes->addAction(tr("Show &QR Code …"), this, &MainWindow::showQrCode);
    notes->addAction(tr("&Delete"), this, &MainWindow::deleteNote);
    notes->addSeparator();
    notes->addAction(tr("&Quit"), this, &QWidget::close, QKeySequence::Quit);

    QMenu *const help = menuBar()->addMenu(tr("&Help"));
    help->addAction(tr("Check for &Updates …"), m_updates, &UpdateDialog::open);
    m_reportsAction = help->addAction(tr("Send Usage &Reports"), this, &MainWindow::allowReports);
    m_reportsAction->setCheckable(true);
    m_reportsAction->setChecked(m_reports->isAllowed());
    help->addAction(tr("&System …"), this, &MainWindow::showSystem);
}

void MainWindow::createEditor()
{
    m_editor->setTabChangesFocus(true);
    auto *const splitter = new QSplitter;
    splitter->addWidget(labelled(tr("N&otes"), m_notes));
    splitter->addWidget(labelled(tr("&Text"), m_editor));
    splitter->setStretchFactor(1, 1);
    setCentralWidget(splitter);
    statusBar();

    m_saveTimer.setSingleShot(true);
    m_saveTimer.setInterval(saveDelay);
    connect(&m_saveTimer, &QTimer::timeout, this, &MainWindow::save);
    connect(m_editor, &QPlainTextEdit::textChanged, this, &MainWindow::editNote);
    connect(m_notes, &QListWidget::currentItemChanged, this, &MainWindow::showNote);
}

void MainWindow::restore()
{
    const QStringList notes = m_storage.notes();
    for (const QString &text : notes)
        appendNote(text);
    if (notes.isEmpty())
        appendNote(QString());
    const Settings settings = m_storage.settings();
    restoreGeometry(settings.geometry);
    m_notes->setCurrentRow(qBound(0, settings.note, m_notes->count() - 1));
}

QListWidgetItem *MainWindow::appendNote(const QString &text)
{
    auto *const note = new QListWidgetItem(m_notes);
    setText(note, text);
    return note;
}

void MainWindow::addNote()
{
    m_notes->setCurrentItem(appendNote(QString()));
    m_editor->setFocus();
    reportNewNote(m_reports);
}

void MainWindow::deleteNote()
{
    const QString question = tr("Delete the note \"%1\"?").arg(m_notes->currentItem()->text());
    if (QMessageBox::question(this, tr("Delete Note"), question) != QMessageBox::Yes)
        return;
    delete m_notes->currentItem();
    if (m_notes->count() == 0)
        m_notes->setCurrentItem(appendNote(QString()));
    m_saveTimer.start();
}

void MainWindow::showNote(QListWidgetItem *note)
{
    const QSignalBlocker blocker(m_editor); // the note is not changed
    m_editor->setPlainText(textOf(note));
}

void MainWindow::editNote()
{
    setText(m_notes->currentItem(), m_editor->toPlainText());
    m_saveTimer.start();
}

bool MainWindow::save()
{
    m_saveTimer.stop();
    QStringList notes;
    for (int row = 0; row < m_notes->count(); ++row)
        notes << textOf(m_notes->item(row));
    const QString problem = m_storage.saveNotes(notes);
    if (problem.isNull())
        statusBar()->clearMessage();
    else
        statusBar()->showMessage(tr("The notes are not saved: %1").arg(problem));
    return problem.isNull();
}

bool MainWindow::mayQuit()
{
    return save()
           || QMessageBox::warning(this, tr("Not Saved"), statusBar()->currentMessage(),
                                   QMessageBox::Discard | QMessageBox::Cancel)
                  == QMessageBox::Discard;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!mayQuit())
        return event->ignore();
    m_storage.saveSettings({saveGeometry(), m_notes->currentRow()}); // not worth a question
    event->accept();
}

void MainWindow::askForConsent()
{
    auto *const question =
        new QMessageBox(QMessageBox::Question, tr("Usage Reports"), tr("May Note Keeper send usage reports?"),
                        QMessageBox::Yes | QMessageBox::No, this);
    question->setInformativeText(tr("A report contains what happened, such as \"note created\", and an "
                                    "identifier of this computer. It never contains a note. You can "
                                    "change your choice in the Help menu."));
    question->setDefaultButton(QMessageBox::No);
    question->setAttribute(Qt::WA_DeleteOnClose);
    connect(question, &QMessageBox::finished, this,
            [this](int answer) { allowReports(answer == QMessageBox::Yes); });
    question->open();
}

void MainWindow::allowReports(bool allowed)
{
    m_reportsAction->setChecked(allowed);
    qCInfo(notekeeper, "Usage reports: %s", allowed ? "allowed" : "forbidden");
    if (!m_reports->setAllowed(allowed))
        showProblem(tr("Your choice about usage reports cannot be stored. You will be asked again."));
    reportStart(m_reports);
}

void MainWindow::showProblem(const QString &problem)
{
    if (problem.isNull())
        return;
    qCWarning(notekeeper, "%s", qUtf8Printable(problem));
    auto *const label = new QLabel(problem);
    label->setWordWrap(true);
    statusBar()->addPermanentWidget(label, 1);
}

void MainWindow::showQrCode()
{
    (new QrDialog(textOf(m_notes->currentItem()), this))->open();
}

void MainWindow::showSystem()
{
    (new SystemDialog(m_storage.directory(), this))->open();
}
