// SPDX-License-Identifier: LGPL-2.1-or-later

#include "ThemeWatcher.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QStandardPaths>

#include <mutex>
#include <thread>

namespace {

// A desktop writes several settings for one change.
constexpr std::chrono::milliseconds quietTime(300);
constexpr std::chrono::minutes defaultInterval(5);

// Where desktops keep what CSystemUtils::IsDarkTheme() reads, below the user's configuration directory. A
// folder is watched with its files: what is written in place shows on the file, what is replaced on the
// folder.
const char *const settingsFolders[] = {"dconf", "glib-2.0", "glib-2.0/settings",   "gtk-3.0",  "gtk-4.0",
                                       "ukui",  "kylin",    "ukui-style-settings", "kylin-qt5"};
const char *const settingsFiles[] = {"kdeglobals", "plasmarc", "QtProject.conf"};

} // namespace

struct ThemeWatcher::Answer
{
    std::mutex mutex;
    ThemeWatcher *watcher;
};

ThemeWatcher::ThemeWatcher(QObject *parent)
    : QObject(parent)
    , m_answer(std::make_shared<Answer>())
{
    m_answer->watcher = this;
    m_quiet.setSingleShot(true);
    m_quiet.setInterval(quietTime);
    connect(&m_quiet, &QTimer::timeout, this, &ThemeWatcher::ask);
    connect(&m_interval, &QTimer::timeout, this, &ThemeWatcher::notice);
    connect(&m_settings, &QFileSystemWatcher::directoryChanged, this, &ThemeWatcher::notice);
    connect(&m_settings, &QFileSystemWatcher::fileChanged, this, &ThemeWatcher::notice);
    QCoreApplication::instance()->installEventFilter(this);
    m_interval.start(defaultInterval);
    ask();
}

ThemeWatcher::~ThemeWatcher()
{
    const std::lock_guard<std::mutex> lock(m_answer->mutex);
    m_answer->watcher = nullptr;
}

bool ThemeWatcher::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        notice();
    return QObject::eventFilter(watched, event);
}

void ThemeWatcher::notice()
{
    if (!m_quiet.isActive())
        m_quiet.start();
}

// Anew before each question: a file that was replaced is no longer watched, and folders come into being.
void ThemeWatcher::watchSettings()
{
    const QDir config(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation));
    config.mkpath(QStringLiteral(".")); // what doesn't exist can't be watched
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

void ThemeWatcher::ask()
{
    m_isOutdated = m_isAsking;
    if (m_isAsking)
        return;
    m_isAsking = true;
    watchSettings();
    std::thread([answer = m_answer] {
        const bool isDark = ZyBase::CSystemUtils::IsDarkTheme();
        const std::lock_guard<std::mutex> lock(answer->mutex);
        if (ThemeWatcher *const watcher = answer->watcher)
            QMetaObject::invokeMethod(
                watcher, [=] { watcher->takeAnswer(isDark); }, Qt::QueuedConnection);
    }).detach();
}

void ThemeWatcher::takeAnswer(bool isDark)
{
    m_isAsking = false;
    if (m_isOutdated)
        ask();
    if (m_last == int(isDark))
        return;
    m_last = int(isDark);
    Q_EMIT darkChanged(isDark);
}
