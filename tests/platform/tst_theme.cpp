// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/COperateSystem.h>
#include <ZyBase/platform/CSystemUtils.h>

#include "FakeTools.h"
#include "Files.h"
#include "MessageCapture.h"
#include "TemporaryHome.h"

#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <memory>
#include <optional>
#include <thread>

using ZyBase::COperateSystem;
using ZyBase::CSystemUtils;

namespace {

using Settings = QMap<QString, QByteArray>; // "schema key" to what gsettings prints
using ConfigFiles = QMap<QString, QByteArray>;
using Variables = QMap<QByteArray, QByteArray>;

enum { Light = 0, Dark = 1, Undetermined = 2 };

const QString gnomeTheme = QStringLiteral("org.gnome.desktop.interface gtk-theme");
const QString gnomeScheme = QStringLiteral("org.gnome.desktop.interface color-scheme");
const QString ukuiStyle = QStringLiteral("org.ukui.style style-name");
const QString ukuiMode = QStringLiteral("org.ukui.style theme-mode");
const QString ukuiTheme = QStringLiteral("org.ukui.control-center.personalise theme");
const QString mateTheme = QStringLiteral("org.mate.interface gtk-theme");

const QString byGnome = QStringLiteral("Detected via GNOME GSettings");
const QString byKde = QStringLiteral("Detected via KDE settings");
const QString byGtk = QStringLiteral("Detected via GTK settings");
const QString byEnvironment = QStringLiteral("Detected via environment");
const QString byUkui = QStringLiteral("Detected via UKUI GSettings");
const QString byKylin = QStringLiteral("Detected via Kylin config files");
const QString byMate = QStringLiteral("Detected via MATE settings");
const QString byQt = QStringLiteral("Detected via Qt-Kylin settings");
const QString byNone;

const QByteArray noSuchKey = QByteArray(); // gsettings prints nothing and exits with 1

QString whichCall()
{
    return QStringLiteral("which [gsettings]");
}

QString getCall(const QString &setting)
{
    return QStringLiteral("gsettings [get] [%1] [%2]")
        .arg(setting.section(QLatin1Char(' '), 0, 0), setting.section(QLatin1Char(' '), 1));
}

// The eight tools that run if no setting decides.
QStringList allCalls()
{
    return {whichCall(),        getCall(gnomeTheme), getCall(gnomeScheme), whichCall(),
            getCall(ukuiStyle), getCall(ukuiMode),   getCall(ukuiTheme),   getCall(mateTheme)};
}

} // namespace

Q_DECLARE_METATYPE(Settings)
Q_DECLARE_METATYPE(Variables)

// The detectors, with programs, files and environment variables of the test.
class TestTheme : public QObject
{
    Q_OBJECT

private:
    void provideWhich(bool hasGSettings)
    {
        m_tools->add(QStringLiteral("which"), hasGSettings ? "exit 0" : "exit 1");
    }

    void provideGSettings(const Settings &settings)
    {
        QByteArray script = "case \"$*\" in\n";
        for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting) {
            if (!setting.value().isNull())
                script += "'get " + setting.key().toUtf8() + "') " + FakeTools::print(setting.value())
                          + "exit 0;;\n";
        }
        m_tools->add(QStringLiteral("gsettings"), script + "esac\necho \"'dark'\" >&2\nexit 1");
    }

    void provideFiles(const ConfigFiles &files)
    {
        for (auto file = files.cbegin(); file != files.cend(); ++file) {
            const QString path = configPath(file.key());
            QVERIFY(QDir().mkpath(QFileInfo(path).path()));
            QVERIFY(writeFile(path, file.value()));
        }
    }

    QString configPath(const QString &name) const
    {
        return m_home->filePath(QStringLiteral(".config/") + name);
    }

    // The log line for a key of a file of detector 6.
    QString configLine(const QString &file, const QString &key, const QString &value) const
    {
        return QStringLiteral("Config \"%1\" \"%2\" : \"%3\"").arg(configPath(file), key, value);
    }

    QStringList messages() const
    {
        QStringList texts;
        const auto all = m_messages->messages();
        for (const MessageCapture::Message &message : all)
            texts << message.text;
        return texts;
    }

    // The line with the detector that decided; a null string if none did.
    QString decision() const
    {
        const QStringList lines = messages().filter(QStringLiteral("Detected via"));
        return lines.size() > 1 ? lines.join(QLatin1Char('|')) : lines.value(0);
    }

    std::optional<TemporaryHome> m_home;
    std::unique_ptr<FakeTools> m_tools;
    std::unique_ptr<MessageCapture> m_messages;

private Q_SLOTS:
    void init()
    {
        for (const char *variable :
             {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION", "XDG_CURRENT_DESKTOP"})
            qunsetenv(variable);
        m_home.emplace();
        m_tools = std::make_unique<FakeTools>();
        qputenv("PATH", QFile::encodeName(m_tools->path()));
        provideWhich(true);
        provideGSettings({});
        m_messages = std::make_unique<MessageCapture>();
    }
    void cleanup()
    {
        m_messages.reset();
        m_tools.reset();
        m_home.reset();
    }

    // --- GNOME ---

    void readsGnomeSettings_data()
    {
        QTest::addColumn<QByteArray>("theme");
        QTest::addColumn<QByteArray>("scheme");
        QTest::addColumn<int>("verdict");
        QTest::addColumn<bool>("schemeIsRead");
        const QByteArray plain("'Adwaita'\n");

        QTest::newRow("dark theme") << QByteArray("'Adwaita-dark'\n") << noSuchKey << int(Dark) << false;
        QTest::newRow("light theme") << QByteArray("'Yaru-light'\n") << noSuchKey << int(Light) << false;
        QTest::newRow("dark in upper case") << QByteArray("'DARK'\n") << noSuchKey << int(Dark) << false;
        QTest::newRow("light in mixed case") << QByteArray("LiGhT") << noSuchKey << int(Light) << false;
        QTest::newRow("dark inside a word") << QByteArray("'Darkness2'\n") << noSuchKey << int(Dark) << false;
        QTest::newRow("light inside a word")
            << QByteArray("'Highlights'\n") << noSuchKey << int(Light) << false;
        QTest::newRow("both words, light first")
            << QByteArray("'light-and-dark'\n") << noSuchKey << int(Dark) << false;
        QTest::newRow("light theme and dark scheme")
            << QByteArray("'Yaru-light'\n") << QByteArray("'prefer-dark'\n") << int(Light) << false;
        QTest::newRow("dark theme and light scheme")
            << QByteArray("'Yaru-dark'\n") << QByteArray("'prefer-light'\n") << int(Dark) << false;
        QTest::newRow("quotes inside the word")
            << QByteArray("'Yaru-d\"a''rk\"'\n") << noSuchKey << int(Dark) << false;
        QTest::newRow("after a NUL byte")
            << QByteArray("'Yaru\0-dark'\n", 13) << noSuchKey << int(Undetermined) << true;
        QTest::newRow("before a NUL byte")
            << QByteArray("'dark\0light'\n", 13) << noSuchKey << int(Dark) << false;
        QTest::newRow("after spaces and lines")
            << QByteArray("\n \t\n 'a'\n'dark'\n\n") << noSuchKey << int(Dark) << false;

        QTest::newRow("dark scheme") << plain << QByteArray("'prefer-dark'\n") << int(Dark) << true;
        QTest::newRow("light scheme") << plain << QByteArray("'prefer-light'\n") << int(Light) << true;
        QTest::newRow("default scheme") << plain << QByteArray("'default'\n") << int(Undetermined) << true;
        QTest::newRow("dark scheme in mixed case")
            << plain << QByteArray("'Prefer-Dark'\n") << int(Undetermined) << true;
        QTest::newRow("light scheme in upper case")
            << plain << QByteArray("'PREFER-LIGHT'\n") << int(Undetermined) << true;
        QTest::newRow("scheme with only the word dark")
            << plain << QByteArray("'dark'\n") << int(Undetermined) << true;
        QTest::newRow("scheme inside a word")
            << plain << QByteArray("'xprefer-darker'\n") << int(Dark) << true;
        QTest::newRow("scheme with both words")
            << plain << QByteArray("'prefer-light prefer-dark'\n") << int(Dark) << true;
        QTest::newRow("scheme with quotes inside")
            << plain << QByteArray("'prefer'-\"dark\n") << int(Dark) << true;
        QTest::newRow("no theme and dark scheme")
            << noSuchKey << QByteArray("'prefer-dark'\n") << int(Dark) << true;
        QTest::newRow("empty theme and light scheme")
            << QByteArray("") << QByteArray("'prefer-light'\n") << int(Light) << true;
        QTest::newRow("no scheme") << plain << noSuchKey << int(Undetermined) << true;
        QTest::newRow("neither") << noSuchKey << noSuchKey << int(Undetermined) << true;
    }
    void readsGnomeSettings()
    {
        QFETCH(QByteArray, theme);
        QFETCH(QByteArray, scheme);
        QFETCH(int, verdict);
        QFETCH(bool, schemeIsRead);
        provideGSettings({{gnomeTheme, theme}, {gnomeScheme, scheme}});
        QCOMPARE(ZyBase::getGnomeTheme(), verdict);
        QStringList expected {whichCall(), getCall(gnomeTheme)};
        if (schemeIsRead)
            expected << getCall(gnomeScheme);
        QCOMPARE(m_tools->calls(), expected);
        QCOMPARE(messages(), QStringList());

        const bool isDark = COperateSystem::IsDarkTheme();
        QCOMPARE(isDark, verdict == Dark);
        QCOMPARE(decision(), verdict == Undetermined ? byNone : byGnome);
    }

    void skipsGnomeWithoutTool()
    {
        provideWhich(false);
        provideGSettings({{gnomeTheme, "'Adwaita-dark'"}, {gnomeScheme, "'prefer-dark'"}});
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
        QCOMPARE(m_tools->calls(), QStringList {whichCall()});
    }

    void treatsNonZeroExitCodeAsFailedRead_data()
    {
        QTest::addColumn<QByteArray>("exitCode");
        for (const char *code : {"1", "2", "127", "255"})
            QTest::newRow(code) << QByteArray(code);
    }
    void treatsNonZeroExitCodeAsFailedRead()
    {
        QFETCH(QByteArray, exitCode);
        m_tools->add(QStringLiteral("gsettings"), "echo \"'prefer-dark'\"\nexit " + exitCode);
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
        QCOMPARE(m_tools->calls().size(), 3);
        m_tools->add(QStringLiteral("which"), "exit " + exitCode);
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
        QCOMPARE(m_tools->calls().size(), 4);
    }

    void returnsUndeterminedIfToolDisappears()
    {
        m_tools->add(QStringLiteral("gsettings"),
                     "/bin/rm '" + QFile::encodeName(m_tools->path()) + "/gsettings'\necho dark\nexit 1");
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
        QCOMPARE(m_tools->calls(), QStringList({whichCall(), getCall(gnomeTheme)}));
    }

    void ignoresOutputOfWhich()
    {
        m_tools->add(QStringLiteral("which"), "echo /opt/dark/prefer-dark/gsettings");
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
        m_tools->add(QStringLiteral("gsettings"), "exit 0");
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
    }

    void ignoresStandardError()
    {
        m_tools->add(QStringLiteral("gsettings"), "echo \"'prefer-dark'\" >&2");
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
    }

    void treatsCrashAsFailedRead()
    {
        // Qt returns the number of the signal as the exit code.
        m_tools->add(QStringLiteral("gsettings"), "echo \"'prefer-dark'\"\nkill -9 $$");
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
        QCOMPARE(m_tools->calls().size(), 3);
    }

    void readsMoreBytesThanPipeCanHold()
    {
        m_tools->add(QStringLiteral("gsettings"),
                     "i=0; while [ $i -lt 3000 ]; do\n"
                     "echo 0123456789012345678901234567890123456789012345678901234567890123456789\n"
                     "i=$((i+1)); done; echo dark");
        QCOMPARE(ZyBase::getGnomeTheme(), int(Dark));
    }

    // --- The files of KDE, GTK and Qt ---

    void readsKeysOfFiles_data()
    {
        QTest::addColumn<Settings>("files");
        QTest::addColumn<bool>("isDark");
        QTest::addColumn<QString>("decider");
        const QString globals = QStringLiteral("kdeglobals");
        const QString plasma = QStringLiteral("plasmarc");
        const QString gtk3 = QStringLiteral("gtk-3.0/settings.ini");
        const QString gtk4 = QStringLiteral("gtk-4.0/settings.ini");
        const QString project = QStringLiteral("QtProject.conf");
        const QString qt5ct = QStringLiteral("kylin-qt5/qt5ct.conf");

        QTest::newRow("KDE dark") << ConfigFiles {{globals, "[%General]\nColorScheme=BreezeDark\n"}} << true
                                  << byKde;
        QTest::newRow("KDE light") << ConfigFiles {{globals, "[%General]\nColorScheme=BreezeLight\n"}}
                                   << false << byKde;
        QTest::newRow("KDE in any case")
            << ConfigFiles {{globals, "[%General]\nColorScheme=DARK light\n"}} << true << byKde;
        QTest::newRow("KDE light before plasma")
            << ConfigFiles {{globals, "[%General]\nColorScheme=aLIGHTb\n"}, {plasma, "[Theme]\nname=dark\n"}}
            << false << byKde;
        QTest::newRow("KDE dark before plasma")
            << ConfigFiles {{globals, "[%General]\nColorScheme=dark\n"}, {plasma, "[Theme]\nname=light\n"}}
            << true << byKde;
        QTest::newRow("KDE neither, plasma dark")
            << ConfigFiles {{globals, "[%General]\nColorScheme=Breeze\n"},
                            {plasma, "[Theme]\nname=breeze-Dark\n"}}
            << true << byKde;
        QTest::newRow("plasma light")
            << ConfigFiles {{plasma, "[Theme]\nname=breeze-light\n"}} << false << byKde;
        QTest::newRow("plasma with both words")
            << ConfigFiles {{plasma, "[Theme]\nname=lightdark\n"}} << true << byKde;
        QTest::newRow("plain General section reads empty")
            << ConfigFiles {{globals, "[General]\nColorScheme=BreezeDark\n"}} << false << byNone;
        QTest::newRow("plain General section, plasma light")
            << ConfigFiles {{globals, "[General]\nColorScheme=BreezeDark\n"},
                            {plasma, "[Theme]\nname=breeze-light\n"}}
            << false << byKde;
        QTest::newRow("KDE no section")
            << ConfigFiles {{globals, "ColorScheme=BreezeDark\n"}, {plasma, "name=dark\n"}} << false
            << byNone;
        QTest::newRow("KDE other keys")
            << ConfigFiles {{globals, "[%General]\nColorSchemes=BreezeDark\n[KDE]\nColorScheme=dark\n"},
                            {plasma, "[Theme]\nnames=dark\n[General]\nname=dark\n"}}
            << false << byNone;
        QTest::newRow("KDE empty") << ConfigFiles {{globals, "[%General]\nColorScheme=\n"}, {plasma, ""}}
                                   << false << byNone;
        QTest::newRow("list instead of a string")
            << ConfigFiles {{globals, "[%General]\nColorScheme=dark, dark\n"}} << false << byNone;

        QTest::newRow("GTK 3 dark") << ConfigFiles {{gtk3, "[Settings]\ngtk-theme-name=Arc-Dark\n"}} << true
                                    << byGtk;
        QTest::newRow("GTK 3 light") << ConfigFiles {{gtk3, "[Settings]\ngtk-theme-name=Arc-Light\n"}}
                                     << false << byGtk;
        QTest::newRow("GTK 3 light before GTK 4")
            << ConfigFiles {{gtk3, "[Settings]\ngtk-theme-name=light\n"},
                            {gtk4, "[Settings]\ngtk-theme-name=dark\n"}}
            << false << byGtk;
        QTest::newRow("GTK 3 neither, GTK 4 dark")
            << ConfigFiles {{gtk3, "[Settings]\ngtk-theme-name=Arc\n"},
                            {gtk4, "[Settings]\ngtk-theme-name=Arc-DARK\n"}}
            << true << byGtk;
        QTest::newRow("GTK 4 light") << ConfigFiles {{gtk4, "[Settings]\ngtk-theme-name=Arc-light\n"}}
                                     << false << byGtk;
        QTest::newRow("GTK both words")
            << ConfigFiles {{gtk4, "[Settings]\ngtk-theme-name=light dark\n"}} << true << byGtk;
        QTest::newRow("GTK other keys")
            << ConfigFiles {{gtk3, "[Settings]\ngtk-application-prefer-dark-theme=dark\n"},
                            {gtk4, "gtk-theme-name=dark\n"}}
            << false << byNone;

        QTest::newRow("Qt dark") << ConfigFiles {{project, "style=kvantum-dark\n"}} << true << byQt;
        QTest::newRow("Qt light") << ConfigFiles {{project, "style=UKUI-Light\n"}} << false << byQt;
        QTest::newRow("Qt in its General section")
            << ConfigFiles {{project, "[General]\nstyle=dark\n"}} << true << byQt;
        QTest::newRow("Qt in another section")
            << ConfigFiles {{project, "[Qt]\nstyle=dark\n"}} << false << byNone;
        QTest::newRow("Qt light before qt5ct")
            << ConfigFiles {{project, "style=light\n"}, {qt5ct, "[Appearance]\nstyle=dark\n"}} << false
            << byQt;
        QTest::newRow("Qt neither, qt5ct dark")
            << ConfigFiles {{project, "style=fusion\n"}, {qt5ct, "[Appearance]\nstyle=ukui-DARK\n"}} << true
            << byQt;
        QTest::newRow("qt5ct light") << ConfigFiles {{qt5ct, "[Appearance]\nstyle=ukui-light\n"}} << false
                                     << byQt;
        QTest::newRow("qt5ct both words")
            << ConfigFiles {{qt5ct, "[Appearance]\nstyle=light-dark\n"}} << true << byQt;
        QTest::newRow("qt5ct other keys")
            << ConfigFiles {{qt5ct, "style=dark\n[Fonts]\nstyle=dark\n"}} << false << byNone;

        QTest::newRow("not an ini file")
            << ConfigFiles {{globals, "\0\1\2dark"}, {gtk3, "dark"}, {qt5ct, "<dark/>"}} << false << byNone;
        QTest::newRow("in another directory")
            << ConfigFiles {{QStringLiteral("kde/kdeglobals"), "[%General]\nColorScheme=dark\n"},
                            {QStringLiteral("settings.ini"), "[Settings]\ngtk-theme-name=dark\n"}}
            << false << byNone;
    }
    void readsKeysOfFiles()
    {
        QFETCH(Settings, files);
        QFETCH(bool, isDark);
        QFETCH(QString, decider);
        provideFiles(files);
        QCOMPARE(COperateSystem::IsDarkTheme(), isDark);
        QCOMPARE(messages(), decider.isNull() ? QStringList() : QStringList {decider});
    }

    void treatsDirectoryAsEmptyFile()
    {
        for (const char *name : {"kdeglobals", "gtk-3.0/settings.ini", "QtProject.conf", "kylin/theme.conf"})
            QVERIFY(QDir().mkpath(configPath(QString::fromLatin1(name))));
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        QCOMPARE(decision(), byNone);
    }

    void readsFilesOfHomeWithoutConfigurationVariable()
    {
        qunsetenv("XDG_CONFIG_HOME");
        provideFiles({{QStringLiteral("plasmarc"), "[Theme]\nname=dark\n"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), true);
        QCOMPARE(decision(), byKde);
    }

    void readsFilesAtEachCall()
    {
        for (const char *word : {"dark", "bright light", "night and dark"}) {
            provideFiles({{QStringLiteral("plasmarc"), QByteArray("[Theme]\nname=") + word + '\n'}});
            QCOMPARE(COperateSystem::IsDarkTheme(), QByteArray(word).contains("dark"));
        }
    }

    void createsNoFiles()
    {
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        QCOMPARE(
            QDir(configPath(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList());
    }

    // --- The environment ---

    void readsEnvironmentVariables_data()
    {
        QTest::addColumn<Variables>("variables");
        QTest::addColumn<bool>("isDark");
        QTest::addColumn<QString>("decider");
        QTest::newRow("GTK_THEME dark") << Variables {{"GTK_THEME", "Adwaita:dark"}} << true << byEnvironment;
        QTest::newRow("GTK_THEME light")
            << Variables {{"GTK_THEME", "Adwaita:LIGHT"}} << false << byEnvironment;
        QTest::newRow("QT_STYLE_OVERRIDE dark")
            << Variables {{"QT_STYLE_OVERRIDE", "kvantum-Dark"}} << true << byEnvironment;
        QTest::newRow("QT_STYLE_OVERRIDE light")
            << Variables {{"QT_STYLE_OVERRIDE", "light"}} << false << byEnvironment;
        QTest::newRow("DESKTOP_SESSION dark")
            << Variables {{"DESKTOP_SESSION", "plasmadark"}} << true << byEnvironment;
        QTest::newRow("DESKTOP_SESSION light")
            << Variables {{"DESKTOP_SESSION", "enlightenment"}} << false << byEnvironment;
        QTest::newRow("GTK_THEME before QT_STYLE_OVERRIDE")
            << Variables {{"GTK_THEME", "light"}, {"QT_STYLE_OVERRIDE", "dark"}} << false << byEnvironment;
        QTest::newRow("QT_STYLE_OVERRIDE before DESKTOP_SESSION")
            << Variables {{"QT_STYLE_OVERRIDE", "light"}, {"DESKTOP_SESSION", "dark"}} << false
            << byEnvironment;
        QTest::newRow("the first two do not decide")
            << Variables {{"GTK_THEME", "Adwaita"}, {"QT_STYLE_OVERRIDE", ""}, {"DESKTOP_SESSION", "dark"}}
            << true << byEnvironment;
        QTest::newRow("both words") << Variables {{"GTK_THEME", "light:dark"}} << true << byEnvironment;
        QTest::newRow("no variable decides") << Variables {{"GTK_THEME", "Adwaita"},
                                                           {"QT_STYLE_OVERRIDE", "fusion"},
                                                           {"DESKTOP_SESSION", "ubuntu"}}
                                             << false << byNone;
        QTest::newRow("other variables")
            << Variables {{"XDG_CURRENT_DESKTOP", "dark"}, {"XDG_SESSION_DESKTOP", "dark"}} << false
            << byNone;
    }
    void readsEnvironmentVariables()
    {
        QFETCH(Variables, variables);
        QFETCH(bool, isDark);
        QFETCH(QString, decider);
        for (auto variable = variables.cbegin(); variable != variables.cend(); ++variable)
            qputenv(variable.key().constData(), variable.value());
        QCOMPARE(COperateSystem::IsDarkTheme(), isDark);
        QCOMPARE(messages(), decider.isNull() ? QStringList() : QStringList {decider});
        qunsetenv("XDG_SESSION_DESKTOP");
    }

    // --- UKUI ---

    void readsUkuiSettings_data()
    {
        QTest::addColumn<Settings>("settings");
        QTest::addColumn<int>("verdict");
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<int>("reads");
        const auto style = [](const char *value) {
            return QStringLiteral("UKUI style-name: \"%1\"").arg(QString::fromUtf8(value));
        };
        const auto mode = [](const char *value) {
            return QStringLiteral("UKUI theme-mode: \"%1\"").arg(QString::fromUtf8(value));
        };
        const auto theme = [](const char *value) {
            return QStringLiteral("UKUI control-center theme: \"%1\"").arg(QString::fromUtf8(value));
        };

        QTest::newRow("dark style") << Settings {{ukuiStyle, "'ukui-dark'\n"}, {ukuiMode, "'light'\n"}}
                                    << int(Dark) << QStringList {style("ukui-dark")} << 1;
        QTest::newRow("light style") << Settings {{ukuiStyle, "'ukui-LIGHT'\n"}, {ukuiMode, "'dark'\n"}}
                                     << int(Light) << QStringList {style("ukui-LIGHT")} << 1;
        QTest::newRow("style with both words") << Settings {{ukuiStyle, "'light Dark'\n"}} << int(Dark)
                                               << QStringList {style("light Dark")} << 1;
        QTest::newRow("quotes in the style")
            << Settings {{ukuiStyle, "  \"d'ark\"''  \n"}} << int(Dark) << QStringList {style("dark")} << 1;
        QTest::newRow("style of other words, dark mode")
            << Settings {{ukuiStyle, "'ukui'\n"}, {ukuiMode, "'dark'\n"}, {ukuiTheme, "'light'\n"}}
            << int(Dark) << QStringList {style("ukui"), mode("dark")} << 2;
        QTest::newRow("no style, light mode") << Settings {{ukuiMode, "'light'\n"}, {ukuiTheme, "'dark'\n"}}
                                              << int(Light) << QStringList {mode("light")} << 2;
        QTest::newRow("mode auto ends the detector")
            << Settings {{ukuiStyle, "''\n"}, {ukuiMode, "'auto'\n"}, {ukuiTheme, "'dark'\n"}}
            << int(Undetermined) << QStringList {style(""), mode("auto")} << 2;
        QTest::newRow("mode Dark is not equal")
            << Settings {{ukuiMode, "'Dark'\n"}, {ukuiTheme, "'light'\n"}} << int(Light)
            << QStringList {mode("Dark"), theme("light")} << 3;
        QTest::newRow("mode Light is not equal")
            << Settings {{ukuiMode, "'LIGHT'\n"}, {ukuiTheme, "'dark'\n"}} << int(Dark)
            << QStringList {mode("LIGHT"), theme("dark")} << 3;
        QTest::newRow("mode Auto is not equal")
            << Settings {{ukuiMode, "'Auto'\n"}, {ukuiTheme, "'dark'\n"}} << int(Dark)
            << QStringList {mode("Auto"), theme("dark")} << 3;
        QTest::newRow("mode that only contains dark")
            << Settings {{ukuiMode, "'darker'\n"}, {ukuiTheme, "'custom Light'\n"}} << int(Light)
            << QStringList {mode("darker"), theme("custom Light")} << 3;
        QTest::newRow("mode that only contains light")
            << Settings {{ukuiMode, "'lighter'\n"}, {ukuiTheme, "'DARK'\n"}} << int(Dark)
            << QStringList {mode("lighter"), theme("DARK")} << 3;
        QTest::newRow("mode that only contains auto")
            << Settings {{ukuiMode, "'autos'\n"}, {ukuiTheme, "'dark'\n"}} << int(Dark)
            << QStringList {mode("autos"), theme("dark")} << 3;
        QTest::newRow("mode in spaces and quotes is equal")
            << Settings {{ukuiMode, "\n \"'dark'\" \n"}} << int(Dark) << QStringList {mode("dark")} << 2;
        QTest::newRow("spaces inside quotes are kept")
            << Settings {{ukuiMode, "' dark '\n"}} << int(Undetermined) << QStringList {mode(" dark ")} << 3;
        QTest::newRow("style auto does not decide")
            << Settings {{ukuiStyle, "'auto'\n"}, {ukuiMode, "'dark'\n"}} << int(Dark)
            << QStringList {style("auto"), mode("dark")} << 2;
        QTest::newRow("theme with both words") << Settings {{ukuiTheme, "'light dark'\n"}} << int(Dark)
                                               << QStringList {theme("light dark")} << 3;
        QTest::newRow("theme of other words")
            << Settings {{ukuiStyle, "'a'\n"}, {ukuiMode, "'b'\n"}, {ukuiTheme, "'auto'\n"}}
            << int(Undetermined) << QStringList {style("a"), mode("b"), theme("auto")} << 3;
        QTest::newRow("escaped characters in the log")
            << Settings {{ukuiStyle, "'a\\b\t文'\n"}} << int(Undetermined)
            << QStringList {QStringLiteral("UKUI style-name: \"a\\\\b\\t文\"")} << 3;
        QTest::newRow("no setting") << Settings {} << int(Undetermined) << QStringList() << 3;
    }
    void readsUkuiSettings()
    {
        QFETCH(Settings, settings);
        QFETCH(int, verdict);
        QFETCH(QStringList, lines);
        QFETCH(int, reads);
        provideGSettings(settings);
        QCOMPARE(COperateSystem::IsDarkTheme(), verdict == Dark);
        if (verdict != Undetermined)
            lines << byUkui;
        QCOMPARE(messages(), lines);
        QStringList calls = allCalls().mid(0, 4 + reads);
        if (verdict == Undetermined)
            calls << getCall(mateTheme);
        QCOMPARE(m_tools->calls(), calls);
    }

    void checksForToolAgainForUkui()
    {
        // The check succeeds for GNOME and fails for UKUI.
        m_tools->add(QStringLiteral("which"), "[ -e '" + QFile::encodeName(m_tools->path())
                                                  + "/checked' ] && exit 1\n: >'"
                                                  + QFile::encodeName(m_tools->path()) + "/checked'");
        provideGSettings({{ukuiStyle, "'dark'"}, {ukuiMode, "'dark'"}, {ukuiTheme, "'dark'"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        QCOMPARE(m_tools->calls(), allCalls().mid(0, 4) << getCall(mateTheme));
        QCOMPARE(messages(), QStringList());
    }

    // --- Kylin's files ---

    void readsKylinFiles_data()
    {
        QTest::addColumn<Settings>("files");
        QTest::addColumn<bool>("isDark");
        QTest::addColumn<bool>("decides");
        QTest::addColumn<QStringList>("read"); // "file|key|value"
        const QString ukui = QStringLiteral("ukui/ukui-style.conf");
        const QString kylin = QStringLiteral("kylin/theme.conf");
        const QString settings = QStringLiteral("ukui-style-settings/style.conf");
        const auto line = [](const QString &file, const char *key, const char *value) {
            return QStringList {file, QString::fromUtf8(key), QString::fromUtf8(value)}.join(
                QLatin1Char('|'));
        };
        const auto allEmpty = [line](const QString &file) {
            return QStringList {line(file, "theme", ""), line(file, "style", ""), line(file, "mode", ""),
                                line(file, "appearance", ""), line(file, "theme-mode", "")};
        };

        QTest::newRow("first key of the first file")
            << ConfigFiles {{ukui, "theme=ukui-Dark\nstyle=light\n"}, {kylin, "theme=light\n"}} << true
            << true << QStringList {line(ukui, "theme", "ukui-Dark")};
        QTest::newRow("second key, light")
            << ConfigFiles {{ukui, "style=LIGHT\nmode=dark\n"}, {kylin, "theme=dark\n"}} << false << true
            << QStringList {line(ukui, "theme", ""), line(ukui, "style", "LIGHT")};
        QTest::newRow("third key") << ConfigFiles {{ukui, "mode=dark\nappearance=light\n"}} << true << true
                                   << QStringList {line(ukui, "theme", ""), line(ukui, "style", ""),
                                                   line(ukui, "mode", "dark")};
        QTest::newRow("fourth key") << ConfigFiles {{ukui, "appearance=dark\ntheme-mode=light\n"}} << true
                                    << true
                                    << QStringList {line(ukui, "theme", ""), line(ukui, "style", ""),
                                                    line(ukui, "mode", ""), line(ukui, "appearance", "dark")};
        QTest::newRow("fifth key") << ConfigFiles {{ukui, "theme-mode=dark\n"}, {kylin, "theme=light\n"}}
                                   << true << true
                                   << QStringList {line(ukui, "theme", ""), line(ukui, "style", ""),
                                                   line(ukui, "mode", ""), line(ukui, "appearance", ""),
                                                   line(ukui, "theme-mode", "dark")};
        QTest::newRow("second file") << ConfigFiles {{ukui, ""},
                                                     {kylin, "theme=light\n"},
                                                     {settings, "theme=dark\n"}}
                                     << false << true << (allEmpty(ukui) << line(kylin, "theme", "light"));
        QTest::newRow("second file alone") << ConfigFiles {{kylin, "theme=dark\n"}} << true << true
                                           << QStringList {line(kylin, "theme", "dark")};
        QTest::newRow("third file alone") << ConfigFiles {{settings, "theme=dark\n"}} << true << true
                                          << QStringList {line(settings, "theme", "dark")};
        QTest::newRow("third file after two others")
            << ConfigFiles {{ukui, ""}, {kylin, "[a]\ntheme=dark\n"}, {settings, "theme=light\n"}} << false
            << true << (allEmpty(ukui) << allEmpty(kylin) << line(settings, "theme", "light"));
        QTest::newRow("both words") << ConfigFiles {{ukui, "theme=light dark\n"}} << true << true
                                    << QStringList {line(ukui, "theme", "light dark")};
        QTest::newRow("auto ends the detector")
            << ConfigFiles {{ukui, "theme=AutoSwitch\nstyle=dark\n"}, {kylin, "theme=dark\n"}} << false
            << false << QStringList {line(ukui, "theme", "AutoSwitch")};
        QTest::newRow("auto in a later key ends the detector")
            << ConfigFiles {{ukui, "theme=ukui\nmode=auto\nappearance=dark\n"}, {kylin, "theme=dark\n"}}
            << false << false
            << QStringList {line(ukui, "theme", "ukui"), line(ukui, "style", ""), line(ukui, "mode", "auto")};
        QTest::newRow("auto and dark") << ConfigFiles {{ukui, "theme=auto-dark\n"}} << true << true
                                       << QStringList {line(ukui, "theme", "auto-dark")};
        QTest::newRow("auto and light") << ConfigFiles {{ukui, "theme=auto-light\nstyle=dark\n"}} << false
                                        << true << QStringList {line(ukui, "theme", "auto-light")};
        QTest::newRow("keys without a group only")
            << ConfigFiles {{ukui, "[Theme]\ntheme=dark\n"}} << false << false << allEmpty(ukui);
        QTest::newRow("keys in the General section are without a group")
            << ConfigFiles {{ukui, "[General]\ntheme=dark\n"}} << true << true
            << QStringList {line(ukui, "theme", "dark")};
        QTest::newRow("no file") << ConfigFiles {} << false << false << QStringList();
    }
    void readsKylinFiles()
    {
        QFETCH(Settings, files);
        QFETCH(bool, isDark);
        QFETCH(bool, decides);
        QFETCH(QStringList, read);
        provideFiles(files);
        QCOMPARE(COperateSystem::IsDarkTheme(), isDark);
        QStringList expected;
        for (const QString &line : read)
            expected << configLine(line.section(QLatin1Char('|'), 0, 0), line.section(QLatin1Char('|'), 1, 1),
                                   line.section(QLatin1Char('|'), 2));
        if (decides)
            expected << byKylin;
        QCOMPARE(messages(), expected);
    }

    // --- MATE ---

    void readsMateSetting_data()
    {
        QTest::addColumn<QByteArray>("theme");
        QTest::addColumn<int>("verdict");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("dark") << QByteArray("'BlackMATE-Dark'\n") << int(Dark)
                              << QStringList {QStringLiteral("MATE gtk-theme: \"BlackMATE-Dark\""), byMate};
        QTest::newRow("light") << QByteArray("\"LIGHT'\"\n") << int(Light)
                               << QStringList {QStringLiteral("MATE gtk-theme: \"LIGHT\""), byMate};
        QTest::newRow("both") << QByteArray("'light-dark'\n") << int(Dark)
                              << QStringList {QStringLiteral("MATE gtk-theme: \"light-dark\""), byMate};
        QTest::newRow("neither") << QByteArray("'Menta'\n") << int(Undetermined)
                                 << QStringList {QStringLiteral("MATE gtk-theme: \"Menta\"")};
        QTest::newRow("empty") << QByteArray("") << int(Undetermined)
                               << QStringList {QStringLiteral("MATE gtk-theme: \"\"")};
        QTest::newRow("no such key") << noSuchKey << int(Undetermined) << QStringList();
    }
    void readsMateSetting()
    {
        QFETCH(QByteArray, theme);
        QFETCH(int, verdict);
        QFETCH(QStringList, lines);
        provideGSettings({{mateTheme, theme}});
        QCOMPARE(COperateSystem::IsDarkTheme(), verdict == Dark);
        QCOMPARE(messages(), lines);
        QCOMPARE(m_tools->calls(), allCalls());
    }

    // --- The chain ---

    void returnsFirstVerdict_data()
    {
        QTest::addColumn<int>("first");
        QTest::addColumn<bool>("isDark");
        for (int first = 0; first < 8; ++first) {
            QTest::addRow("detector %d, dark", first + 1) << first << true;
            QTest::addRow("detector %d, light", first + 1) << first << false;
        }
    }
    void returnsFirstVerdict()
    {
        // Later detectors have the opposite setting.
        QFETCH(int, first);
        QFETCH(bool, isDark);
        const auto word = [first, isDark](int detector) {
            return QByteArray((detector == first) == isDark ? "dark" : "light");
        };
        Settings settings;
        const QStringList gsettings {gnomeTheme, QString(), QString(), QString(),
                                     ukuiStyle,  QString(), mateTheme, QString()};
        const QStringList files {QString(),
                                 QStringLiteral("plasmarc"),
                                 QStringLiteral("gtk-4.0/settings.ini"),
                                 QString(),
                                 QString(),
                                 QStringLiteral("kylin/theme.conf"),
                                 QString(),
                                 QStringLiteral("QtProject.conf")};
        const QByteArrayList keys {
            "", "[Theme]\nname=", "[Settings]\ngtk-theme-name=", "", "", "theme=", "", "style="};
        for (int detector = first; detector < 8; ++detector) {
            if (!gsettings.at(detector).isEmpty())
                settings.insert(gsettings.at(detector), word(detector));
            if (!files.at(detector).isEmpty())
                provideFiles({{files.at(detector), keys.at(detector) + word(detector) + '\n'}});
            if (detector == 3)
                qputenv("DESKTOP_SESSION", word(detector));
        }
        provideGSettings(settings);
        const QStringList deciders {byGnome, byKde, byGtk, byEnvironment, byUkui, byKylin, byMate, byQt};
        QCOMPARE(COperateSystem::IsDarkTheme(), isDark);
        QCOMPARE(decision(), deciders.at(first));
        QCOMPARE(messages().last(), deciders.at(first));
        QCOMPARE(CSystemUtils::IsDarkTheme(), isDark);
    }

    void runsNoDetectorAfterVerdict()
    {
        provideFiles({{QStringLiteral("plasmarc"), "[Theme]\nname=dark\n"}});
        provideGSettings({{ukuiStyle, "dark"}, {mateTheme, "dark"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), true);
        QCOMPARE(m_tools->calls(), allCalls().mid(0, 3));
        QCOMPARE(messages(), QStringList {byKde});
    }

    void runsDetectorsOnEveryDesktop()
    {
        qputenv("XDG_CURRENT_DESKTOP", "KDE");
        provideFiles({{QStringLiteral("plasmarc"), "[Theme]\nname=light\n"}});
        provideGSettings({{gnomeTheme, "'Adwaita-dark'"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), true);
        QCOMPARE(decision(), byGnome);
    }

    void returnsLightAfterEightToolsIfNothingIsSet()
    {
        QCOMPARE(CSystemUtils::IsDarkTheme(), false);
        QCOMPARE(m_tools->calls(), allCalls());
        QCOMPARE(messages(), QStringList());
    }

    void keepsNoResultBetweenCalls()
    {
        provideGSettings({{gnomeTheme, "'dark'"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), true);
        provideGSettings({{gnomeTheme, "'light'"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        provideWhich(false);
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        QCOMPARE(decision(), byGnome + QLatin1Char('|') + byGnome);
    }

    // Qt's exit code of a program that cannot be started is 255, which counts as a failed read.
    void stopsAtWhichWithoutGSettings()
    {
        provideWhich(false);
        QVERIFY(QFile::remove(m_tools->path() + QStringLiteral("/gsettings")));
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        QCOMPARE(m_tools->calls(), QStringList({whichCall(), whichCall()}));
        QCOMPARE(messages(), QStringList());
    }

    void readsOnlyMateSettingWithoutWhich()
    {
        QVERIFY(QFile::remove(m_tools->path() + QStringLiteral("/which")));
        provideGSettings({{gnomeTheme, "'dark'"}, {ukuiMode, "'dark'"}, {mateTheme, "'light'"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        QCOMPARE(m_tools->calls(), QStringList {getCall(mateTheme)});
        QCOMPARE(decision(), byMate);
    }

    void readsFilesAndVariablesWithoutTools()
    {
        QVERIFY(QFile::remove(m_tools->path() + QStringLiteral("/which")));
        QVERIFY(QFile::remove(m_tools->path() + QStringLiteral("/gsettings")));
        QCOMPARE(ZyBase::getGnomeTheme(), int(Undetermined));
        QCOMPARE(COperateSystem::IsDarkTheme(), false);
        QCOMPARE(messages(), QStringList());
        provideFiles({{QStringLiteral("QtProject.conf"), "style=dark\n"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), true);
        QCOMPARE(messages(), QStringList {byQt});
    }

    void logsDebugMessagesWithoutContext()
    {
        provideFiles({{QStringLiteral("kylin/theme.conf"), "\n"}});
        provideGSettings({{ukuiStyle, "a"}, {ukuiMode, "b"}, {ukuiTheme, "c"}, {mateTheme, "dark"}});
        QCOMPARE(COperateSystem::IsDarkTheme(), true);
        const auto all = m_messages->messages();
        QCOMPARE(all.size(), 3 + 5 + 2);
        for (const MessageCapture::Message &message : all) {
            QCOMPARE(message.type, QtDebugMsg);
            QCOMPARE(message.category, QStringLiteral("default"));
            QVERIFY(message.file.isNull());
            QVERIFY(message.function.isNull());
            QCOMPARE(message.line, 0);
        }
    }

    void worksInOtherThreads()
    {
        provideGSettings({{gnomeTheme, "'dark'"}});
        bool isDark = false;
        std::thread([&isDark] { isDark = CSystemUtils::IsDarkTheme(); }).join();
        QVERIFY(isDark);
    }
};

QTEST_GUILESS_MAIN(TestTheme)

#include "tst_theme.moc"
