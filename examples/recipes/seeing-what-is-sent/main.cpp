// SPDX-License-Identifier: LGPL-2.1-or-later

#include "DevelopmentServices.h"

int main()
{
    useDevelopmentServices();
}
