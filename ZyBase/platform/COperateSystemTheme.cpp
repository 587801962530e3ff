// SPDX-License-Identifier: LGPL-2.1-or-later

#include "COperateSystem.h"

#include "ChildProcess.h"

#include <QDebug>
#include <QFileInfo>
#include <QSettings>
#include <QStandardPaths>

#include <initializer_list>
#include <optional>

namespace ZyBase {

namespace {

// The result of a detector. The numbers are the return values of getGnomeTheme().
enum Verdict { Light = 0, Dark = 1, Undetermined = 2 };

constexpr const char *pszGnomeSchema = "org.gnome.desktop.interface";
constexpr const char *pszUkuiSchema = "org.ukui.style";
constexpr const char *pszUkuiPanelSchema = "org.ukui.control-center.personalise";
constexpr const char *pszMateSchema = "org.mate.interface";

// A key of an ini file in the user's configuration directory.
struct IniKey
{
    const char *pszFile;
    const char *pszKey;
};

// --- Testing words --------------------------------------------------------------------------

// The word for dark is tested first: a string with both words is dark.
int verdictOfWords(const QString &strValue, const char *pszDark, const char *pszLight,
                   Qt::CaseSensitivity sensitivity)
{
    if (strValue.contains(QLatin1String(pszDark), sensitivity))
        return Dark;
    if (strValue.contains(QLatin1String(pszLight), sensitivity))
        return Light;
    return Undetermined;
}

int verdictOfName(const QString &strName)
{
    return verdictOfWords(strName, "dark", "light", Qt::CaseInsensitive);
}

// --- Reading settings -----------------------------------------------------------------------

bool hasGSettings(QProcess &process)
{
    runTool(process, "which", {QStringLiteral("gsettings")});
    return process.exitCode() == 0;
}

// Returns no value if gsettings fails, for example if the schema or the key does not exist.
std::optional<QString> readGSettings(QProcess &process, const char *pszSchema, const char *pszKey)
{
    runTool(process, "gsettings", {QStringLiteral("get"), QLatin1String(pszSchema), QLatin1String(pszKey)});
    if (process.exitCode() != 0)
        return std::nullopt;
    return takeOutput(process).remove(QLatin1Char('\'')).remove(QLatin1Char('"'));
}

std::optional<QString> readAndLogGSettings(QProcess &process, const char *pszLabel, const char *pszSchema,
                                           const char *pszKey)
{
    std::optional<QString> value = readGSettings(process, pszSchema, pszKey);
    if (value)
        qDebug() << pszLabel << *value;
    return value;
}

QString configPath(const char *pszFile)
{
    return QStandardPaths::writableLocation(QStandardPaths::ConfigLocation) + QLatin1String(pszFile);
}

// Returns an empty string if the file or the key does not exist.
QString readKey(const QSettings &settings, const char *pszKey)
{
    return settings.value(QLatin1String(pszKey), QStringLiteral("")).toString();
}

int verdictOfKeys(std::initializer_list<IniKey> keys)
{
    for (const IniKey &key : keys) {
        const QSettings settings(configPath(key.pszFile), QSettings::IniFormat);
        const int nVerdict = verdictOfName(readKey(settings, key.pszKey));
        if (nVerdict != Undetermined)
            return nVerdict;
    }
    return Undetermined;
}

// --- The detectors after GNOME's -----------------------------------------------------------

int getKdeTheme()
{
    return verdictOfKeys({{"/kdeglobals", "General/ColorScheme"}, {"/plasmarc", "Theme/name"}});
}

int getGtkTheme()
{
    return verdictOfKeys({{"/gtk-3.0/settings.ini", "Settings/gtk-theme-name"},
                          {"/gtk-4.0/settings.ini", "Settings/gtk-theme-name"}});
}

int getEnvironmentTheme()
{
    for (const char *pszVariable : {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION"}) {
        const int nVerdict = verdictOfName(QString::fromUtf8(qgetenv(pszVariable)));
        if (nVerdict != Undetermined)
            return nVerdict;
    }
    return Undetermined;
}

int getUkuiTheme()
{
    QProcess process;
    if (!hasGSettings(process))
        return Undetermined;

    const auto style = readAndLogGSettings(process, "UKUI style-name:", pszUkuiSchema, "style-name");
    const int nStyleVerdict = verdictOfName(style.value_or(QString()));
    if (nStyleVerdict != Undetermined)
        return nStyleVerdict;

    const auto mode = readAndLogGSettings(process, "UKUI theme-mode:", pszUkuiSchema, "theme-mode");
    if (mode == QLatin1String("dark"))
        return Dark;
    if (mode == QLatin1String("light"))
        return Light;
    if (mode == QLatin1String("auto"))
        return Undetermined;

    const auto theme =
        readAndLogGSettings(process, "UKUI control-center theme:", pszUkuiPanelSchema, "theme");
    return verdictOfName(theme.value_or(QString()));
}

int getKylinConfigTheme()
{
    const QString paths[] = {configPath("/ukui/ukui-style.conf"), configPath("/kylin/theme.conf"),
                             configPath("/ukui-style-settings/style.conf")};
    for (const QString &strPath : paths) {
        if (!QFileInfo::exists(strPath))
            continue;
        const QSettings settings(strPath, QSettings::IniFormat);
        for (const char *pszKey : {"theme", "style", "mode", "appearance", "theme-mode"}) {
            const QString strValue = readKey(settings, pszKey);
            qDebug() << "Config" << strPath << QString::fromLatin1(pszKey) << ":" << strValue;
            const int nVerdict = verdictOfName(strValue);
            if (nVerdict != Undetermined)
                return nVerdict;
            if (strValue.contains(QLatin1String("auto"), Qt::CaseInsensitive))
                return Undetermined;
        }
    }
    return Undetermined;
}

int getMateTheme()
{
    QProcess process;
    const auto theme = readAndLogGSettings(process, "MATE gtk-theme:", pszMateSchema, "gtk-theme");
    return verdictOfName(theme.value_or(QString()));
}

int getQtKylinTheme()
{
    return verdictOfKeys({{"/QtProject.conf", "style"}, {"/kylin-qt5/qt5ct.conf", "Appearance/style"}});
}

// -------------------------------------------------------------------------------------------

struct Detector
{
    int (*pDetect)();
    const char *pszLine;
};

constexpr Detector detectors[] = {
    {getGnomeTheme, "Detected via GNOME GSettings"}, {getKdeTheme, "Detected via KDE settings"},
    {getGtkTheme, "Detected via GTK settings"},      {getEnvironmentTheme, "Detected via environment"},
    {getUkuiTheme, "Detected via UKUI GSettings"},   {getKylinConfigTheme, "Detected via Kylin config files"},
    {getMateTheme, "Detected via MATE settings"},    {getQtKylinTheme, "Detected via Qt-Kylin settings"},
};

} // namespace

int getGnomeTheme()
{
    QProcess process;
    if (!hasGSettings(process))
        return Undetermined;

    const auto theme = readGSettings(process, pszGnomeSchema, "gtk-theme");
    const int nThemeVerdict = verdictOfName(theme.value_or(QString()));
    if (nThemeVerdict != Undetermined)
        return nThemeVerdict;

    const auto scheme = readGSettings(process, pszGnomeSchema, "color-scheme");
    return verdictOfWords(scheme.value_or(QString()), "prefer-dark", "prefer-light", Qt::CaseSensitive);
}

bool COperateSystem::IsDarkTheme()
{
    for (const Detector &detector : detectors) {
        const int nVerdict = detector.pDetect();
        if (nVerdict == Undetermined)
            continue;
        qDebug() << detector.pszLine;
        return nVerdict == Dark;
    }
    return false;
}

} // namespace ZyBase
