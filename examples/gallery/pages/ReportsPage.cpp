// SPDX-License-Identifier: 0BSD

#include "ReportsPage.h"

#include "../widgets/Card.h"
#include "../widgets/Choice.h"
#include "../widgets/Pill.h"
#include "../widgets/controls.h"

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/files/CJsonReader.h>

#include <QJsonArray>
#include <QTime>
#include <QTreeWidget>

using ZyBase::CGaReportManager;
using ZyBase::CJsonReader;

namespace {

constexpr const char *catalogue = ":/events.json";
constexpr const char *device = "gallery";

QStringList eventKeys()
{
    QStringList keys;
    const QJsonArray events = CJsonReader::ParseJsonFileToArray(QLatin1String(catalogue));
    for (const QJsonValue &event : events)
        keys << event.toObject().value(QLatin1String("event_key")).toString();
    return keys;
}

QString textOf(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString();
}

QString localServicesPage()
{
    return textOf(CJsonReader::ParseJsonFileToObject(qEnvironmentVariable("LOCAL_SERVICES")), "page");
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

ReportsPage::ReportsPage(const QString &statistics, QWidget *parent)
    : Page(tr("Usage reports"),
           tr("Sends named events and signed records in the background. The outcome is not reported."),
           "ZyBase/analytics/CGaReportManager.h", parent)
    , m_event(new Choice(eventKeys(), "reportEvent"))
    , m_label(field(QString(), tr("Label in the catalogue"), "reportLabel"))
    , m_action(new Choice(words("install uninstall uninstall_opt update feedback mf_show payment_completed "
                                "crash server_run"),
                          "reportAction"))
    , m_status(new Choice(words("start end cancel fail none"), "reportStatus"))
    , m_sent(table({tr("Report"), tr("Details"), tr("Time")}, "reportSent"))
{
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    manager->InitGaData(QLatin1String(catalogue), QLatin1String(device), QStringLiteral("G-GALLERY"),
                        QStringLiteral("gallery"));
    manager->InitXdData(statistics, QLatin1String(device), QStringLiteral("gallery"), QStringLiteral("1.0"),
                        QStringLiteral("home"));

    const bool hasServices = !statistics.isEmpty();
    addDestination(hasServices);
    auto *const row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(createEventCard(hasServices), 1);
    row->addWidget(createRecordCard(hasServices), 1);
    column()->addLayout(row);

    Card *const sent = addCard(tr("Sent"), 1);
    sent->column()->addWidget(m_sent, 1);
}

void ReportsPage::addDestination(bool hasServices)
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(12);
    auto *const state = new Pill(QString(), "reportDestination");
    QLabel *const text = hint(QString(), "reportPage");
    if (hasServices) {
        state->setState(Pill::Good, tr("Sent to the local services"));
        text->setText(tr("Arrivals are shown at %1").arg(localServicesPage()));
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    } else {
        state->setState(Pill::Warning, tr("Nothing is sent"));
        text->setText(tr("Start the gallery with scripts/local-services."));
    }
    row->addWidget(state);
    row->addWidget(text, 1);
    column()->addLayout(row);
}

QWidget *ReportsPage::createEventCard(bool canSend)
{
    auto *const card = new Card(tr("Event"));
    QPushButton *const send = primaryButton(tr("Send event"), "reportSendEvent");
    send->setEnabled(canSend);
    card->column()->addWidget(m_event);
    card->column()->addWidget(m_label);
    card->column()->addWidget(send, 0, Qt::AlignLeft);
    connect(send, &QPushButton::clicked, this, &ReportsPage::sendEvent);
    return card;
}

QWidget *ReportsPage::createRecordCard(bool canSend)
{
    auto *const card = new Card(tr("Record"));
    QPushButton *const send = primaryButton(tr("Send record"), "reportSendRecord");
    send->setEnabled(canSend);
    card->column()->addWidget(m_action);
    card->column()->addWidget(m_status);
    card->column()->addWidget(send, 0, Qt::AlignLeft);
    connect(send, &QPushButton::clicked, this, &ReportsPage::sendRecord);
    return card;
}

// The manager does not send an event without a label and does not report it, so the page does.
void ReportsPage::sendEvent()
{
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    const QString key = m_event->currentText();
    const QJsonObject event = manager->GetGaData(key);
    const QString label = m_label->text().isEmpty() ? textOf(event, "event_label") : m_label->text();
    manager->SendGaReport(key, m_label->text(), false);
    if (label.isEmpty())
        return addRow(tr("event, not sent"), key,
                      tr("It has no label in the catalogue, and none was entered."));
    addRow(tr("event"), textOf(event, "event_name"),
           tr("%1, %2").arg(textOf(event, "event_category"), label));
}

void ReportsPage::sendRecord()
{
    CGaReportManager::getInstance(nullptr)->SendXdReport(m_action->currentText(), m_status->currentText());
    addRow(tr("record"), m_action->currentText(), m_status->currentText());
}

void ReportsPage::addRow(const QString &kind, const QString &what, const QString &how)
{
    const QString time = QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
    m_sent->insertTopLevelItem(0, new QTreeWidgetItem({tr("%1: %2").arg(kind, what), how, time}));
}

void ReportsPage::stop()
{
    CGaReportManager::ReleaseReport();
}
