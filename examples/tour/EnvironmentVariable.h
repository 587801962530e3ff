// SPDX-License-Identifier: 0BSD

#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/** Sets an environment variable and restores its previous value when it is destroyed. */
class EnvironmentVariable
{
public:
    EnvironmentVariable(const char *name, const QString &value)
        : m_name(name)
        , m_previous(qgetenv(name))
        , m_wasSet(qEnvironmentVariableIsSet(name))
    {
        qputenv(name, QFile::encodeName(value));
    }

    ~EnvironmentVariable()
    {
        if (m_wasSet)
            qputenv(m_name, m_previous);
        else
            qunsetenv(m_name);
    }

private:
    Q_DISABLE_COPY(EnvironmentVariable)

    const char *const m_name;
    const QByteArray m_previous;
    const bool m_wasSet;
};
