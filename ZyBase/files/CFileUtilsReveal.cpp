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
    QStringList listArguments;
};

QString currentDesktop()
{
    return QString::fromUtf8(qgetenv(pszDesktopVariable).toLower().constData());
}

Command fileManagerCommand(const QString &strDesktop, const QFileInfo &fileInfo)
{
    const auto is = [&strDesktop](const char *pszWord) {
        return strDesktop.indexOf(QLatin1String(pszWord)) >= 0;
    };
    const QString strSelect = QStringLiteral("--select");
    const QString strFilePath = fileInfo.absoluteFilePath();
    if (is("gnome") || is("ubuntu"))
        return {QStringLiteral("nautilus"), {strSelect, strFilePath}};
    if (is("kde"))
        return {QStringLiteral("dolphin"), {strSelect, strFilePath}};
    if (is("xfce"))
        return {QStringLiteral("thunar"), {strFilePath}};
    return {QStringLiteral("xdg-open"), {fileInfo.absolutePath()}};
}

} // namespace

// The path comes by value as hosts were compiled against it.
void CFileUtils::OpenFolderAndSelectFile(QString strFilePath) // NOLINT(performance-unnecessary-value-param)
{
    const QFileInfo fileInfo(strFilePath);
    if (!fileInfo.exists()) {
        qWarning() << "File does not exist:" << strFilePath;
        return;
    }
    const Command command = fileManagerCommand(currentDesktop(), fileInfo);
    if (QProcess::startDetached(command.strProgram, command.listArguments))
        return;
    qWarning() << "Failed to execute:" << command.strProgram << command.listArguments;
    QDesktopServices::openUrl(QUrl::fromLocalFile(fileInfo.absolutePath()));
}

} // namespace ZyBase
