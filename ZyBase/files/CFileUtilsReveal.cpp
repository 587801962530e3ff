// SPDX-License-Identifier: LGPL-2.1-or-later

#include "CFileUtils.h"

#include <QDebug>
#include <QDesktopServices>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace ZyBase {

namespace {

constexpr const char *pszDesktopVariable = "XDG_CURRENT_DESKTOP";

struct Command
{
    QString strProgram;
    QStringList arguments;
};

QString currentDesktop()
{
    return QString::fromUtf8(qgetenv(pszDesktopVariable).toLower().constData());
}

Command fileManagerCommand(const QString &strDesktop, const QFileInfo &fileInfo)
{
    const auto contains = [&strDesktop](const char *pszWord) {
        return strDesktop.contains(QLatin1String(pszWord));
    };
    const QString strSelect = QStringLiteral("--select");
    const QString strFilePath = fileInfo.absoluteFilePath();
    if (contains("gnome") || contains("ubuntu"))
        return {QStringLiteral("nautilus"), {strSelect, strFilePath}};
    if (contains("kde"))
        return {QStringLiteral("dolphin"), {strSelect, strFilePath}};
    if (contains("xfce"))
        return {QStringLiteral("thunar"), {strFilePath}};
    return {QStringLiteral("xdg-open"), {fileInfo.absolutePath()}};
}

} // namespace

// The path is passed by value for binary compatibility.
void CFileUtils::OpenFolderAndSelectFile(QString strFilePath) // NOLINT(performance-unnecessary-value-param)
{
    const QFileInfo fileInfo(strFilePath);
    if (!fileInfo.exists()) {
        qWarning() << "File does not exist:" << strFilePath;
        return;
    }
    const Command command = fileManagerCommand(currentDesktop(), fileInfo);
    if (QProcess::startDetached(command.strProgram, command.arguments))
        return;
    qWarning() << "Failed to execute:" << command.strProgram << command.arguments;
    QDesktopServices::openUrl(QUrl::fromLocalFile(fileInfo.absolutePath()));
}

} // namespace ZyBase
