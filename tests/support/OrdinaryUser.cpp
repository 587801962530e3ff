// SPDX-License-Identifier: LGPL-2.1-or-later

#include "OrdinaryUser.h"

#include <unistd.h>

namespace {

constexpr uid_t root = 0;
constexpr uid_t nobodyUser = 65534;

} // namespace

// The saved user identifier remains root, which allows the return to root.
OrdinaryUser::OrdinaryUser()
    : m_wasRoot(geteuid() == root)
{
    if (m_wasRoot && setresuid(nobodyUser, nobodyUser, root) != 0)
        m_wasRoot = false;
}

OrdinaryUser::~OrdinaryUser()
{
    if (m_wasRoot && setresuid(root, root, root) != 0)
        qFatal("The process cannot become root again");
}

bool OrdinaryUser::isOrdinary() const
{
    return geteuid() != root;
}
