// SPDX-License-Identifier: LGPL-2.1-or-later

#include "TemporaryHome.h"

#include <QDir>

TemporaryHome::TemporaryHome()
{
    set("HOME", path());
    set("XDG_CONFIG_HOME", filePath(QStringLiteral(".config")));
    set("XDG_DATA_HOME", filePath(QStringLiteral(".local/share")));
    set("XDG_CACHE_HOME", filePath(QStringLiteral(".cache")));
    set("XDG_RUNTIME_DIR", filePath(QStringLiteral(".runtime")));
    QFile::setPermissions(filePath(QStringLiteral(".runtime")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TemporaryHome::~TemporaryHome()
{
    for (auto entry = m_previous.cbegin(); entry != m_previous.cend(); ++entry) {
        if (entry.value().isNull())
            qunsetenv(entry.key().constData());
        else
            qputenv(entry.key().constData(), entry.value());
    }
}

void TemporaryHome::set(const char *variable, const QString &value)
{
    m_previous.insert(variable, qgetenv(variable));
    QDir().mkpath(value);
    qputenv(variable, QFile::encodeName(value));
}
