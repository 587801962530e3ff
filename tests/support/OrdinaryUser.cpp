// SPDX-License-Identifier: LGPL-2.1-or-later

#include "OrdinaryUser.h"

#include <unistd.h>

namespace {

constexpr uid_t root = 0;
constexpr uid_t nobody = 65534;

} // namespace

// The saved user stays root, so that the way back is open.
OrdinaryUser::OrdinaryUser()
    : m_wasRoot(geteuid() == root)
{
    if (m_wasRoot && setresuid(nobody, nobody, root) != 0)
        m_wasRoot = false;
}

OrdinaryUser::~OrdinaryUser()
{
    if (m_wasRoot && setresuid(root, root, root) != 0)
        qFatal("The way back to root is closed");
}

bool OrdinaryUser::isOrdinary() const
{
    return geteuid() != root;
}
