// SPDX-License-Identifier: LGPL-2.1-or-later

#include "commands.h"

#include <QFile>
#include <QLibrary>
#include <QTextCodec>

#include <csignal>

namespace {

QJsonValue setVariable(const QJsonArray &arguments)
{
    const QByteArray name = arguments.at(0).toString().toUtf8();
    if (arguments.at(1).isNull())
        return qunsetenv(name.constData());
    return qputenv(name.constData(), arguments.at(1).toString().toUtf8());
}

// Sets the encoding of QString::toLocal8Bit().
QJsonValue setLocal8BitEncoding(const QJsonArray &arguments)
{
    QTextCodec *const codec = QTextCodec::codecForName(arguments.at(0).toString().toLatin1());
    QTextCodec::setCodecForLocale(codec);
    return codec != nullptr;
}

// Ends the process with SIGKILL.
QJsonValue die(const QJsonArray &)
{
    return raise(SIGKILL);
}

QJsonValue readFile(const QJsonArray &arguments)
{
    QFile file(arguments.at(0).toString());
    return file.open(QIODevice::ReadOnly) ? QJsonValue(QString::fromUtf8(file.readAll())) : QJsonValue();
}

QJsonValue fileSize(const QJsonArray &arguments)
{
    return QFile(arguments.at(0).toString()).size();
}

QJsonValue resizeFile(const QJsonArray &arguments)
{
    return QFile::resize(arguments.at(0).toString(), arguments.at(1).toInt());
}

QJsonValue loadLibrary(const QJsonArray &arguments)
{
    QLibrary library(arguments.at(0).toString());
    library.setLoadHints(QLibrary::ExportExternalSymbolsHint);
    return library.load() ? QJsonValue(true) : QJsonValue(library.errorString());
}

} // namespace

Commands processCommands()
{
    return {{QStringLiteral("process.setVariable"), setVariable},
            {QStringLiteral("process.setLocal8BitEncoding"), setLocal8BitEncoding},
            {QStringLiteral("process.die"), die},
            {QStringLiteral("process.readFile"), readFile},
            {QStringLiteral("process.fileSize"), fileSize},
            {QStringLiteral("process.resizeFile"), resizeFile},
            {QStringLiteral("process.loadLibrary"), loadLibrary}};
}
