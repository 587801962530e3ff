// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

/**
 * Runs this process as an ordinary user, to whom permission checks apply, until the object is destroyed. If
 * the tests run as root, that is the user "nobody", who then owns the files that the process creates.
 */
class OrdinaryUser
{
public:
    OrdinaryUser();
    ~OrdinaryUser();

    /** Returns false if root cannot become another user. */
    bool isOrdinary() const;

private:
    Q_DISABLE_COPY(OrdinaryUser)

    bool m_wasRoot;
};
