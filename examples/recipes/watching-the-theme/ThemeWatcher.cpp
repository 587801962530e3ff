// SPDX-License-Identifier: 0BSD

#include "ThemeWatcher.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QStandardPaths>

#include <mutex>
#include <thread>

namespace {

// A desktop writes several settings for one change, so the query waits for the last one.
constexpr std::chrono::milliseconds settleTime(300);
constexpr std::chrono::minutes defaultInterval(5);

// The settings that CSystemUtils::IsDarkTheme() reads, below the user's configuration directory. Each folder
// is watched together with its files: writing to a file changes the file, replacing it changes the folder.
const char *const settingsFolders[] = {"dconf", "glib-2.0", "glib-2.0/settings",   "gtk-3.0",  "gtk-4.0",
                                       "ukui",  "kylin",    "ukui-style-settings", "kylin-qt5"};
const char *const settingsFiles[] = {"kdeglobals", "plasmarc", "QtProject.conf"};

} // namespace

struct ThemeWatcher::Link
{
    std::mutex mutex;
    ThemeWatcher *watcher;
};

ThemeWatcher::ThemeWatcher(QObject *parent)
    : QObject(parent)
    , m_link(std::make_shared<Link>())
{
    m_link->watcher = this;
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleTime);
    connect(&m_settle, &QTimer::timeout, this, &ThemeWatcher::query);
    connect(&m_interval, &QTimer::timeout, this, &ThemeWatcher::handleSign);
    connect(&m_settings, &QFileSystemWatcher::directoryChanged, this, &ThemeWatcher::handleSign);
    connect(&m_settings, &QFileSystemWatcher::fileChanged, this, &ThemeWatcher::handleSign);
    QCoreApplication::instance()->installEventFilter(this);
    m_interval.start(defaultInterval);
    query();
}

ThemeWatcher::~ThemeWatcher()
{
    const std::lock_guard<std::mutex> lock(m_link->mutex);
    m_link->watcher = nullptr;
}

bool ThemeWatcher::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        handleSign();
    return QObject::eventFilter(watched, event);
}

void ThemeWatcher::handleSign()
{
    if (!m_settle.isActive())
        m_settle.start();
}

// Called before each query, because a replaced file is no longer watched and new folders can appear.
void ThemeWatcher::watchSettings()
{
    const QDir config(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    config.mkpath(QStringLiteral(".")); // only an existing directory can be watched
    QStringList paths {config.path()};
    for (const char *file : settingsFiles)
        paths << config.filePath(QLatin1String(file));
    for (const char *name : settingsFolders) {
        const QDir folder(config.filePath(QLatin1String(name)));
        paths << folder.path();
        const auto files = folder.entryInfoList(QDir::Files);
        for (const QFileInfo &file : files)
            paths << file.filePath();
    }
    for (const QString &path : qAsConst(paths)) {
        if (QFileInfo::exists(path))
            m_settings.addPath(path);
    }
}

void ThemeWatcher::query()
{
    m_isOutdated = m_isQuerying;
    if (m_isQuerying)
        return;
    m_isQuerying = true;
    watchSettings();
    std::thread([link = m_link] {
        const bool isDark = ZyBase::CSystemUtils::IsDarkTheme();
        const std::lock_guard<std::mutex> lock(link->mutex);
        if (ThemeWatcher *const watcher = link->watcher)
            QMetaObject::invokeMethod(
                watcher, [=] { watcher->handleResult(isDark); }, Qt::QueuedConnection);
    }).detach();
}

void ThemeWatcher::handleResult(bool isDark)
{
    m_isQuerying = false;
    if (m_isOutdated)
        query();
    if (m_last == int(isDark))
        return;
    m_last = int(isDark);
    Q_EMIT darkChanged(isDark);
}
