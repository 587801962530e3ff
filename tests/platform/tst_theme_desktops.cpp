// SPDX-License-Identifier: LGPL-2.1-or-later

#include <ZyBase/platform/COperateSystem.h>
#include <ZyBase/platform/CSystemUtils.h>

#include "Files.h"
#include "MessageCapture.h"
#include "TemporaryHome.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <memory>
#include <optional>

using ZyBase::CSystemUtils;

namespace {

const QString gnomeSchema = QStringLiteral("org.gnome.desktop.interface");
const QString ukuiSchema = QStringLiteral("org.ukui.style");
const QString ukuiPanelSchema = QStringLiteral("org.ukui.control-center.personalise");
const QString mateSchema = QStringLiteral("org.mate.interface");
const QString gtkTheme = QStringLiteral("gtk-theme");
const QString colorScheme = QStringLiteral("color-scheme");

// UKUI's settings, with the keys of its later releases.
const char *const laterUkui = "<schemalist>\n"
                              " <schema id='org.ukui.style' path='/org/ukui/style/'>\n"
                              "  <key type='s' name='style-name'><default>'ukui'</default></key>\n"
                              "  <key type='s' name='theme-mode'><default>''</default></key>\n"
                              " </schema>\n"
                              " <schema id='org.ukui.control-center.personalise'"
                              " path='/org/ukui/control-center/personalise/'>\n"
                              "  <key type='s' name='theme'><default>'default'</default></key>\n"
                              " </schema>\n"
                              "</schemalist>\n";

QByteArray run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0
               ? process.readAllStandardOutput()
               : QByteArray();
}

bool hasSchema(const QString &schema)
{
    return run(QStringLiteral("gsettings"), {QStringLiteral("list-schemas")})
        .split('\n')
        .contains(schema.toLatin1());
}

void set(const QString &schema, const QString &key, const QString &value)
{
    QCOMPARE(QProcess::execute(QStringLiteral("gsettings"), {QStringLiteral("set"), schema, key, value}), 0);
}

} // namespace

// The real settings of the desktops, changed with gsettings and read by the library.
class TestThemeDesktops : public QObject
{
    Q_OBJECT

private:
    QStringList lines() const
    {
        QStringList texts;
        const auto all = m_messages->messages();
        for (const MessageCapture::Message &message : all)
            texts << message.text;
        return texts;
    }
    // The current result, with the source that decided.
    QString verdict()
    {
        m_messages.reset();
        m_messages = std::make_unique<MessageCapture>();
        const bool isDark = CSystemUtils::IsDarkTheme();
        const QString last = lines().isEmpty() ? QString() : lines().last();
        const QString decider =
            last.startsWith(QLatin1String("Detected via ")) ? last.mid(13) : QStringLiteral("nothing");
        return (isDark ? QStringLiteral("dark by ") : QStringLiteral("light by ")) + decider;
    }

    std::optional<TemporaryHome> m_home;
    std::unique_ptr<MessageCapture> m_messages;

private Q_SLOTS:
    void initTestCase()
    {
        if (QStandardPaths::findExecutable(QStringLiteral("gsettings")).isEmpty())
            QSKIP("gsettings is not installed");
    }
    void init()
    {
        for (const char *variable :
             {"GTK_THEME", "QT_STYLE_OVERRIDE", "DESKTOP_SESSION", "GSETTINGS_SCHEMA_DIR"})
            qunsetenv(variable);
        m_home.emplace();
        qputenv("GSETTINGS_BACKEND", "keyfile");
    }
    void cleanup()
    {
        m_messages.reset();
        m_home.reset();
    }

    void returnsLightForNewHome() { QCOMPARE(verdict(), QStringLiteral("light by nothing")); }

    void readsGnomeTheme()
    {
        if (!hasSchema(gnomeSchema))
            QSKIP("the schemas of GNOME are not installed");
        set(gnomeSchema, gtkTheme, QStringLiteral("Adwaita-dark"));
        QCOMPARE(verdict(), QStringLiteral("dark by GNOME GSettings"));
        set(gnomeSchema, gtkTheme, QStringLiteral("Yaru-light"));
        QCOMPARE(verdict(), QStringLiteral("light by GNOME GSettings"));
        set(gnomeSchema, gtkTheme, QStringLiteral("Adwaita"));
        QCOMPARE(verdict(), QStringLiteral("light by nothing"));
        QCOMPARE(ZyBase::getGnomeTheme(), 2);
    }

    void readsGnomeColorScheme()
    {
        if (run(QStringLiteral("gsettings"), {QStringLiteral("get"), gnomeSchema, colorScheme}).isEmpty())
            QSKIP("the schemas of GNOME 42 or later are not installed");
        set(gnomeSchema, colorScheme, QStringLiteral("prefer-dark"));
        QCOMPARE(verdict(), QStringLiteral("dark by GNOME GSettings"));
        QCOMPARE(ZyBase::getGnomeTheme(), 1);
        set(gnomeSchema, colorScheme, QStringLiteral("prefer-light"));
        QCOMPARE(verdict(), QStringLiteral("light by GNOME GSettings"));
        QCOMPARE(ZyBase::getGnomeTheme(), 0);
        set(gnomeSchema, colorScheme, QStringLiteral("default"));
        QCOMPARE(ZyBase::getGnomeTheme(), 2);
    }

    void readsMateTheme()
    {
        if (!hasSchema(mateSchema))
            QSKIP("the schemas of MATE are not installed");
        set(mateSchema, gtkTheme, QStringLiteral("BlackMATE-dark"));
        QCOMPARE(verdict(), QStringLiteral("dark by MATE settings"));
        QVERIFY(lines().contains(QStringLiteral("MATE gtk-theme: \"BlackMATE-dark\"")));
        set(mateSchema, gtkTheme, QStringLiteral("Menta-Light"));
        QCOMPARE(verdict(), QStringLiteral("light by MATE settings"));
    }

    void readsUkuiStyle()
    {
        if (!hasSchema(ukuiSchema))
            QSKIP("the schemas of UKUI are not installed");
        set(ukuiSchema, QStringLiteral("style-name"), QStringLiteral("ukui-dark"));
        QCOMPARE(verdict(), QStringLiteral("dark by UKUI GSettings"));
        QVERIFY(lines().contains(QStringLiteral("UKUI style-name: \"ukui-dark\"")));
        set(ukuiSchema, QStringLiteral("style-name"), QStringLiteral("ukui-light"));
        QCOMPARE(verdict(), QStringLiteral("light by UKUI GSettings"));
    }

    void readsLaterUkuiSettings()
    {
        const QString compiler = QStringLiteral(ZYBASE_SCHEMA_COMPILER);
        if (!QFile::exists(compiler))
            QSKIP("glib-compile-schemas is not installed");
        const QString directory = m_home->filePath(QStringLiteral("schemas"));
        QVERIFY(QDir().mkpath(directory));
        QVERIFY(writeFile(directory + QStringLiteral("/ukui.gschema.xml"), laterUkui));
        QCOMPARE(QProcess::execute(compiler, {directory}), 0);
        qputenv("GSETTINGS_SCHEMA_DIR", QFile::encodeName(directory));

        QCOMPARE(verdict(), QStringLiteral("light by nothing"));
        set(ukuiPanelSchema, QStringLiteral("theme"), QStringLiteral("custom-Dark"));
        QCOMPARE(verdict(), QStringLiteral("dark by UKUI GSettings"));
        set(ukuiSchema, QStringLiteral("theme-mode"), QStringLiteral("auto"));
        QCOMPARE(verdict(), QStringLiteral("light by nothing"));
        set(ukuiSchema, QStringLiteral("theme-mode"), QStringLiteral("light"));
        QCOMPARE(verdict(), QStringLiteral("light by UKUI GSettings"));
        set(ukuiSchema, QStringLiteral("theme-mode"), QStringLiteral("dark"));
        QCOMPARE(verdict(), QStringLiteral("dark by UKUI GSettings"));
    }

    void readsKdeAndGtkFilesWithRealTool()
    {
        const QString config = m_home->filePath(QStringLiteral(".config"));
        QVERIFY(writeFile(config + QStringLiteral("/plasmarc"), "[Theme]\nname=breeze-dark\n"));
        QCOMPARE(verdict(), QStringLiteral("dark by KDE settings"));
        QVERIFY(writeFile(config + QStringLiteral("/plasmarc"), "[Theme]\nname=default\n"));
        QVERIFY(QDir().mkpath(config + QStringLiteral("/gtk-3.0")));
        QVERIFY(writeFile(config + QStringLiteral("/gtk-3.0/settings.ini"),
                          "[Settings]\ngtk-theme-name=Arc-Lighter\n"));
        QCOMPARE(verdict(), QStringLiteral("light by GTK settings"));
    }
};

QTEST_GUILESS_MAIN(TestThemeDesktops)

#include "tst_theme_desktops.moc"
