// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <QtGlobal>

/**
 * While it lives, this process is a user who does not pass every permission check: where the tests run
 * as root, the user "nobody". What is made meanwhile belongs to that user.
 */
class OrdinaryUser
{
public:
    OrdinaryUser();
    ~OrdinaryUser();

    /** False where root can't become another; tests that need it are skipped by name. */
    bool isOrdinary() const;

private:
    Q_DISABLE_COPY(OrdinaryUser)

    bool m_wasRoot;
};
