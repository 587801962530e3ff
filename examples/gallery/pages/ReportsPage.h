// SPDX-License-Identifier: 0BSD

#pragma once

#include "Page.h"

class Card;
class Choice;
class QLineEdit;
class QTreeWidget;

/** Sends events and records, but only to local services. */
class ReportsPage : public Page
{
    Q_OBJECT

public:
    /** @param statistics address for records; empty if there are no local services */
    explicit ReportsPage(const QString &statistics, QWidget *parent = nullptr);

    void stop() override;

private:
    QWidget *createEventCard(bool canSend);
    QWidget *createRecordCard(bool canSend);
    void addDestination(bool hasServices);
    void sendEvent();
    void sendRecord();
    void addRow(const QString &kind, const QString &what, const QString &how);

    Choice *m_event;
    QLineEdit *m_label;
    Choice *m_action;
    Choice *m_status;
    QTreeWidget *m_sent;
};
