// SPDX-License-Identifier: 0BSD

#include "ReportsPage.h"

#include "../Checks.h"
#include "../widgets/Card.h"
#include "../widgets/Choice.h"
#include "../widgets/Pill.h"
#include "../widgets/Table.h"
#include "../widgets/controls.h"

#include <DevelopmentServices.h>

#include <ZyBase/analytics/CGaReportManager.h>
#include <ZyBase/files/CJsonReader.h>

#include <QDesktopServices>
#include <QJsonArray>
#include <QTime>

using ZyBase::CGaReportManager;
using ZyBase::CJsonReader;

namespace {

const QString catalogue = QStringLiteral(":/events.json");
const QString device = QStringLiteral("gallery");

QStringList eventKeys()
{
    QStringList keys;
    const QJsonArray events = CJsonReader::ParseJsonFileToArray(catalogue);
    for (const QJsonValue &event : events)
        keys << event.toObject().value(QLatin1String("event_key")).toString();
    return keys;
}

QString textOf(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toString();
}

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '));
}

} // namespace

ReportsPage::ReportsPage(QWidget *parent)
    : Page(tr("Usage reports"),
           tr("Sends named events and signed records in the background. The outcome is not reported."),
           "ZyBase/analytics/CGaReportManager.h", "ReportsPage.cpp", parent)
    , m_destination(new Pill(tr("Nothing is sent"), "reportDestination"))
    , m_destinationText(hint(tr("Reports are sent only to local services."), "reportPage"))
    , m_openArrivals(button(tr("&Open the page"), "reportOpenPage"))
    , m_event(new Choice(eventKeys(), "reportEvent"))
    , m_label(field(QString(), tr("Label in the catalogue"), "reportLabel"))
    , m_sendEvent(primaryButton(tr("&Send event"), "reportSendEvent"))
    , m_action(new Choice(words("install uninstall uninstall_opt update feedback mf_show payment_completed "
                                "crash server_run"),
                          "reportAction"))
    , m_status(new Choice(words("start end cancel fail none"), "reportStatus"))
    , m_sendRecord(primaryButton(tr("Send &record"), "reportSendRecord"))
    , m_sent(new Table({tr("Report"), tr("Details"), tr("Time")},
                       tr("Each report that you send will be listed here."), "reportSent"))
{
    addDestination();
    fillEventCard(addCard(tr("Event")));
    fillRecordCard(addCard(tr("Record")));
    Card *const sent = addCard(tr("Sent"), 1);
    sent->column()->addWidget(m_sent, 1);
    m_sent->setAccessibleName(tr("Sent"));
    for (QPushButton *const button : {m_openArrivals, m_sendEvent, m_sendRecord})
        button->setEnabled(false);
    connect(m_openArrivals, &QPushButton::clicked, this, [this] { QDesktopServices::openUrl(m_arrivals); });
    connect(m_label, &QLineEdit::returnPressed, m_sendEvent, &QPushButton::click);
    connect(m_sendEvent, &QPushButton::clicked, this, [this] {
        const QString event = m_event->currentText();
        const QString label = m_label->text();
        sendIfServicesRun(event, [this, event, label] { sendEvent(event, label); });
    });
    connect(m_sendRecord, &QPushButton::clicked, this, [this] {
        const QString action = m_action->currentText();
        const QString status = m_status->currentText();
        sendIfServicesRun(action, [this, action, status] { sendRecord(action, status); });
    });
    initialize(QString());
}

void ReportsPage::useServices(const DevelopmentServices &services)
{
    m_statistics = QUrl(services.statistics);
    m_arrivals = QUrl(services.page);
    for (QPushButton *const button : {m_openArrivals, m_sendEvent, m_sendRecord})
        button->setEnabled(true);
    initialize(services.statistics);
    showDestination(true);
}

void ReportsPage::addDestination()
{
    auto *const row = new QHBoxLayout;
    row->setSpacing(12);
    row->addWidget(m_destination);
    row->addWidget(m_destinationText, 1);
    row->addWidget(m_openArrivals);
    column()->addLayout(row);
    m_destination->setState(Pill::Warning, m_destination->text());
}

void ReportsPage::fillEventCard(Card *card)
{
    QHBoxLayout *const row = card->addRow();
    row->addLayout(labelled(tr("&Event"), m_event), 1);
    row->addLayout(labelled(tr("&Label"), m_label), 1);
    row->addWidget(m_sendEvent, 0, Qt::AlignBottom);
}

void ReportsPage::fillRecordCard(Card *card)
{
    QHBoxLayout *const row = card->addRow();
    row->addLayout(labelled(tr("&Action"), m_action), 1);
    row->addLayout(labelled(tr("S&tatus"), m_status), 1);
    row->addWidget(m_sendRecord, 0, Qt::AlignBottom);
}

void ReportsPage::showEvent(QShowEvent *event)
{
    Page::showEvent(event);
    if (!m_statistics.isEmpty())
        Checks::findListener(m_statistics, this, [this](bool isRunning) { showDestination(isRunning); });
}

void ReportsPage::showDestination(bool isRunning)
{
    if (isRunning) {
        m_destination->setState(Pill::Good, tr("Sent to the local services"));
        m_destinationText->setText(tr("Arrivals are shown at %1").arg(m_arrivals.toString()));
    } else {
        m_destination->setState(Pill::Bad, tr("Nothing is sent"));
        m_destinationText->setText(tr("The local services have ended."));
    }
}

// The library does not report whether a report arrives, so the page looks for the services before.
void ReportsPage::sendIfServicesRun(const QString &what, const std::function<void()> &send)
{
    Checks::findListener(m_statistics, this, [this, what, send](bool isRunning) {
        showDestination(isRunning);
        if (isRunning)
            send();
        else
            addRow(tr("not sent: %1").arg(what), tr("The local services have ended."));
    });
}

//! [code]
void ReportsPage::initialize(const QString &statistics)
{
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    manager->InitGaData(catalogue, device, QStringLiteral("G-GALLERY"), QStringLiteral("gallery"));
    manager->InitXdData(statistics, device, QStringLiteral("gallery"), QStringLiteral("1.0"),
                        QStringLiteral("home"));
}

// The manager does not send an event without a label and does not report it, so the page does.
void ReportsPage::sendEvent(const QString &key, const QString &labelOverride)
{
    CGaReportManager *const manager = CGaReportManager::getInstance(nullptr);
    manager->SendGaReport(key, labelOverride, false);
    const QJsonObject event = manager->GetGaData(key);
    const QString label = labelOverride.isEmpty() ? textOf(event, "event_label") : labelOverride;
    if (label.isEmpty())
        return addRow(tr("not sent: %1").arg(key),
                      tr("It has no label in the catalogue, and none was entered."));
    addRow(tr("event: %1").arg(textOf(event, "event_name")),
           tr("%1, %2").arg(textOf(event, "event_category"), label));
}

void ReportsPage::sendRecord(const QString &action, const QString &status)
{
    CGaReportManager::getInstance(nullptr)->SendXdReport(action, status);
    addRow(tr("record: %1").arg(action), status);
}
//! [code]

void ReportsPage::addRow(const QString &report, const QString &details)
{
    m_sent->insert(0, {report, details, QTime::currentTime().toString(QStringLiteral("HH:mm:ss"))});
}

void ReportsPage::stop()
{
    CGaReportManager::ReleaseReport();
}
