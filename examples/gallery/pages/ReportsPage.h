// SPDX-License-Identifier: 0BSD

#pragma once

#include "Page.h"

#include <QUrl>

#include <functional>

class Card;
class Choice;
class Pill;
class QLabel;
class QLineEdit;
class Table;

/** Sends events and records, but only to local services. */
class ReportsPage : public Page
{
    Q_OBJECT

public:
    explicit ReportsPage(QWidget *parent = nullptr);

    void useServices(const DevelopmentServices &services) override;
    void stop() override;

protected:
    void showEvent(QShowEvent *event) override;

private:
    void addDestination();
    void fillEventCard(Card *card);
    void fillRecordCard(Card *card);
    void initialize(const QString &statistics);
    void showDestination(bool isRunning);
    void sendIfServicesRun(const QString &what, const std::function<void()> &send);
    void sendEvent(const QString &key, const QString &labelOverride);
    void sendRecord(const QString &action, const QString &status);
    void addRow(const QString &report, const QString &details);

    QUrl m_statistics; ///< empty without local services
    QUrl m_arrivals; ///< the page that shows what arrived
    Pill *m_destination;
    QLabel *m_destinationText;
    QPushButton *m_openArrivals;
    Choice *m_event;
    QLineEdit *m_label;
    QPushButton *m_sendEvent;
    Choice *m_action;
    Choice *m_status;
    QPushButton *m_sendRecord;
    Table *m_sent;
};
