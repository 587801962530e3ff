// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <ZyBase/http/DownloadManager.h>

#include <QEventLoop>
#include <QStringList>
#include <QTest>
#include <QTimer>

/** A DownloadManager and the signals that it emitted. */
class WatchedDownload : public QObject
{
public:
    struct Progress
    {
        qint64 received;
        qint64 total;
        QString speed;
    };
    struct Outcome
    {
        bool success;
        QString path;
    };

    WatchedDownload()
    {
        using ZyBase::DownloadManager;
        connect(&m_manager, &DownloadManager::signalDownloadProgress, this,
                [this](qint64 received, qint64 total, const QString &speed) {
                    m_progress.append({received, total, speed});
                });
        connect(&m_manager, &DownloadManager::signalDownloadFinished, this,
                [this](bool success, const QString &path) {
                    m_outcomes.append({success, path});
                    m_loop.quit();
                });
        connect(&m_manager, &DownloadManager::finished, this, [this] { ++m_finishedCount; });
    }

    ZyBase::DownloadManager *manager() { return &m_manager; }
    const QList<Progress> &progress() const { return m_progress; }
    const QList<Outcome> &outcomes() const { return m_outcomes; }
    int finishedCount() const { return m_finishedCount; }

    bool waitForOutcomes(int count = 1)
    {
        constexpr int timeoutMs = 120000;
        QTimer timeout;
        connect(&timeout, &QTimer::timeout, this, [this] { m_loop.quit(); });
        timeout.setSingleShot(true);
        timeout.start(timeoutMs);
        while (m_outcomes.size() < count && timeout.isActive())
            m_loop.exec();
        return m_outcomes.size() >= count;
    }

    /** Downloads a file and returns its path, or a null string after a failure. */
    QString fetch(const QUrl &url, const QString &directory)
    {
        const int before = m_outcomes.size();
        if (!m_manager.StartDownload(url, directory) || !waitForOutcomes(before + 1))
            return QString();
        return m_outcomes.last().success ? m_outcomes.last().path : QString();
    }

private:
    ZyBase::DownloadManager m_manager;
    QList<Progress> m_progress;
    QList<Outcome> m_outcomes;
    int m_finishedCount = 0;
    QEventLoop m_loop;
};
