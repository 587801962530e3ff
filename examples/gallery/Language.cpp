// SPDX-License-Identifier: 0BSD

#include "Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace {

void install(const QString &catalogue, const QString &directory)
{
    auto *const translator = new QTranslator(QCoreApplication::instance());
    if (translator->load(catalogue, directory))
        QCoreApplication::installTranslator(translator);
}

} // namespace

void setLanguage(const QString &language)
{
#ifdef GALLERY_TRANSLATED
    Q_INIT_RESOURCE(translations);
#endif
    install(QStringLiteral("qtbase_") + language, QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    install(QStringLiteral("gallery_") + language, QStringLiteral(":/translations"));
}
