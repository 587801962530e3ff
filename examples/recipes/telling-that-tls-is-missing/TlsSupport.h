// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>
#include <QUrl>

/** Returns a message for the user if this process cannot use https; otherwise null. */
QString tlsProblem();

/** Returns a message for the user about a request that ended without an answer (status 0). */
QString explainNoAnswer(const QUrl &url);
