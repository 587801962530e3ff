// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QString>
#include <QUrl>

/** What to tell the user when this process can't speak https; null when it can. */
QString tlsProblem();

/** What to tell the user of a request that ended with no answer, which is status 0. */
QString explainNoAnswer(const QUrl &url);
