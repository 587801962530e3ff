// SPDX-License-Identifier: LGPL-2.1-or-later

#include "RecipeProcess.h"

RecipeProcess::RecipeProcess(const QString &recipe)
    : ChildProcess({QStringLiteral(ZYBASE_RECIPES "/recipe-") + recipe})
{
    for (const char *variable : {"http_proxy", "https_proxy", "all_proxy", "no_proxy", "LOCAL_SERVICES"}) {
        setEnvironment(QLatin1String(variable), QString());
        setEnvironment(QString::fromLatin1(variable).toUpper(), QString());
    }
    setEnvironment(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    // Overwrites freed memory, so that a recipe that uses it crashes.
    setEnvironment(QStringLiteral("MALLOC_PERTURB_"), QStringLiteral("165"));
}
