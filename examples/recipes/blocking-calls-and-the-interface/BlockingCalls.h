// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QPointer>
#include <QThread>
#include <QWidget>

#include <memory>

/**
 * Runs @p call, which blocks in an event loop of its own, with @p trigger disabled, so that the user can't
 * start it a second time meanwhile.
 *
 * @return false when the trigger, and so its window, is gone afterwards: return then and touch nothing of it
 */
template <typename Call> bool runDisabled(QWidget *trigger, const Call &call)
{
    const QPointer<QWidget> living(trigger);
    trigger->setEnabled(false);
    call();
    if (!living)
        return false;
    trigger->setEnabled(true);
    return true;
}

/**
 * Runs @p call, which blocks, in a thread of its own, and hands what it returns to @p deliver in the thread
 * of @p receiver; to nobody when the receiver is gone by then.
 */
template <typename Call, typename Deliver>
void runInThread(const Call &call, QObject *receiver, const Deliver &deliver)
{
    const auto result = std::make_shared<decltype(call())>();
    QThread *const thread = QThread::create([result, call] { *result = call(); });
    QObject::connect(thread, &QThread::finished, receiver, [result, deliver] { deliver(*result); });
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    thread->start();
}
