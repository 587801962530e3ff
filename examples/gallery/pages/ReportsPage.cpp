// SPDX-License-Identifier: LGPL-2.1-or-later

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

QString pageOfServices()
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
           tr("Named events and signed records, sent in the background. Nobody learns "
              "how a request ended."),
           "ZyBase/analytics/CGaReportManager.h", parent)
    , m_event(new Choice(eventKeys(), "reportEvent"))
    , m_label(field(QString(), tr("The catalogue's label"), "reportLabel"))
    , m_action(new Choice(words("install uninstall uninstall_opt update feedback mf_show payment_completed "
                                "crash server_run"),
                          "reportAction"))
    , m_status(new Choice(words("start end cancel fail none"), "reportStatus"))
    , m_sent(table({tr("What"), tr("With"), tr("Time")}, "reportSent"))
{
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    manager->InitGaData(QLatin1String(catalogue), QLatin1String(device), QStringLiteral("G-GALLERY"),
                        QStringLiteral("gallery"));
    manager->InitXdData(statistics, QLatin1String(device), QStringLiteral("gallery"), QStringLiteral("1.0"),
                        QStringLiteral("home"));

    const bool hasServices = !statistics.isEmpty();
    addWay(hasServices);
    auto *const row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(createEventCard(hasServices), 1);
    row->addWidget(createRecordCard(hasServices), 1);
    column()->addLayout(row);

    Card *const sent = addCard(tr("Sent"), 1);
    sent->column()->addWidget(m_sent, 1);
}

void ReportsPage::addWay(bool hasServices)
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(12);
    auto *const state = new Pill(QString(), "reportWay");
    QLabel *const text = hint(QString(), "reportPage");
    if (hasServices) {
        state->tell(Pill::Good, tr("Led to the local services"));
        text->setText(tr("See them arrive at %1").arg(pageOfServices()));
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    } else {
        state->tell(Pill::Warning, tr("Nothing is sent"));
        text->setText(tr("Start scripts/local-services and name its file in LOCAL_SERVICES."));
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

// The manager passes over an event without a label; that is told here, since nothing else tells it.
void ReportsPage::sendEvent()
{
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    const QString key = m_event->currentText();
    const QJsonObject event = manager->GetGaData(key);
    const QString label = m_label->text().isEmpty() ? textOf(event, "event_label") : m_label->text();
    manager->SendGaReport(key, m_label->text(), false);
    if (label.isEmpty())
        return note(tr("event, passed over"), key, tr("It has no label in the catalogue and got none here."));
    note(tr("event"), textOf(event, "event_name"), tr("%1, %2").arg(textOf(event, "event_category"), label));
}

void ReportsPage::sendRecord()
{
    CGaReportManager::getInstance(nullptr)->SendXdReport(m_action->currentText(), m_status->currentText());
    note(tr("record"), m_action->currentText(), m_status->currentText());
}

void ReportsPage::note(const QString &kind, const QString &what, const QString &how)
{
    const QString time = QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
    m_sent->insertTopLevelItem(0, new QTreeWidgetItem({tr("%1: %2").arg(kind, what), how, time}));
}

void ReportsPage::stop()
{
    CGaReportManager::ReleaseReport();
}
