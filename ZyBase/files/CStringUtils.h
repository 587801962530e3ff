// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include "../base/ZyBaseExport.h"

#include <QString>

namespace ZyBase {

/** Texts. **Threads.** Any. **Blocking.** Never. */
class ZYBASE_EXPORT CStringUtils
{
public:
    /**
     * Wraps a long text: a line feed between every 100 characters and the next, none at the end.
     *
     * Characters are QChars. Words, line feeds that stand in the text already, and the two halves of
     * a character beyond U+FFFF are not respected; the name notwithstanding, there is no list.
     *
     * @param strText the text
     * @return the wrapped text; null for an empty one
     */
    static QString SplitString(const QString &strText);
};

} // namespace ZyBase
