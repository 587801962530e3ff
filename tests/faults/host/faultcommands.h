// SPDX-License-Identifier: LGPL-2.1-or-later

#pragma once

#include <host/commands.h>

/** Returns commands that run one of @p commands while a system call fails, and that report what is left. */
Commands faultCommands(const Commands &commands);
