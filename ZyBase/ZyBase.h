// SPDX-License-Identifier: LGPL-2.1-or-later

/**
 * @file
 * Everything that a host uses. The header of the logger's working object comes with it where log4qt's
 * headers are in reach; a host that only logs needs none of them.
 */

/**
 * @namespace ZyBase
 * What hosts call. A few working classes and functions stand outside of it, in the global scope: their names
 * are as old as the hosts that are compiled against them.
 */

#pragma once

#include "analytics/CGaReport.h"
#include "analytics/CGaReportManager.h"
#include "analytics/CGoogleAnalytics.h"
#include "analytics/CXdReport.h"
#include "base/LoggerObject.h"
#include "files/CFileUtils.h"
#include "files/CJsonReader.h"
#include "files/CStringUtils.h"
#include "files/ZipManager.h"
#include "http/CHttpPostRequest.h"
#include "http/DownloadManager.h"
#include "netinfo/CNetworkUtils.h"
#include "platform/CAssocUtils.h"
#include "platform/COperateSystem.h"
#include "platform/CSystemUtils.h"

#include <ZyBase/base/ZyBaseVersion.h>

#if __has_include(<log4qt/logger.h>)
#include "base/LoggerObjectPrivate.h"
#endif
