// SPDX-License-Identifier: 0BSD

#pragma once

#include <QString>

/** Translates the gallery and Qt's dialogs, for example to "zh_CN". Other languages than Chinese are English.
 */
void setLanguage(const QString &language);
