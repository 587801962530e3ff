// SPDX-License-Identifier: LGPL-2.1-or-later

#include "services.h"

#include "Report.h"

#include <ZyBase/platform/CSystemUtils.h>

#include <QElapsedTimer>

using ZyBase::CSystemUtils;

namespace {

// The source that decided is told in the debug log, which a host may listen to.
QString lastMessage;

void keepMessage(QtMsgType, const QMessageLogContext &, const QString &text)
{
    lastMessage = text;
}

struct Theme
{
    bool isDark;
    QString decider;
};

Theme askForTheme()
{
    lastMessage.clear();
    const QtMessageHandler previous = qInstallMessageHandler(&keepMessage);
    const bool isDark = CSystemUtils::IsDarkTheme();
    qInstallMessageHandler(previous);
    const QString prefix = QStringLiteral("Detected via ");
    return {isDark, lastMessage.startsWith(prefix) ? lastMessage.mid(prefix.size())
                                                   : QStringLiteral("nothing: no source tells")};
}

QString describe(const Theme &theme)
{
    return (theme.isDark ? QStringLiteral("dark, by ") : QStringLiteral("light, by ")) + theme.decider;
}

// An environment variable's value for as long as this lives.
class Variable
{
public:
    Variable(const char *name, const QString &value)
        : m_name(name)
        , m_previous(qgetenv(name))
    {
        qputenv(name, QFile::encodeName(value));
    }
    ~Variable()
    {
        if (m_previous.isNull())
            qunsetenv(m_name);
        else
            qputenv(m_name, m_previous);
    }

private:
    Q_DISABLE_COPY(Variable)
    const char *m_name;
    QByteArray m_previous;
};

bool writePlasmaTheme(const QDir &directory, const QByteArray &name)
{
    QFile file(directory.filePath(QStringLiteral("plasmarc")));
    return file.open(QIODevice::WriteOnly) && file.write("[Theme]\nname=" + name + '\n') > 0;
}

} // namespace

void showTheme(Report &report, const QDir &directory)
{
    report.heading(QStringLiteral("Theme"), QStringLiteral("ZyBase/platform/CSystemUtils.h"));

    QElapsedTimer timer;
    timer.start();
    const Theme own = askForTheme();
    report.line(QStringLiteral("this desktop"),
                describe(own) + QStringLiteral(" (%1 ms)").arg(timer.elapsed()));

    // KDE with a dark theme and without GNOME's tools: all of its settings lie in a folder of this tour.
    const QDir settings(directory.filePath(QStringLiteral("dark-desktop")));
    const bool written = settings.mkpath(QStringLiteral(".")) && writePlasmaTheme(settings, "breeze-dark");
    const Variable configuration("XDG_CONFIG_HOME", settings.path());
    const Variable programs("PATH", settings.path());
    const Theme dark = askForTheme();
    report.line(QStringLiteral("KDE, set to dark"), describe(dark));
    report.promise(QStringLiteral("a dark desktop is told from its settings"), written && dark.isDark);
}
