// SPDX-License-Identifier: LGPL-2.1-or-later

/**
 * @file
 * Includes all public headers of the library.
 *
 * The header of LoggerObjectPrivate is included only if the headers of log4qt are found. It is not needed to
 * write log messages: ZyBase::LoggerObject is enough.
 */

/**
 * @namespace ZyBase
 * The public classes and functions of the library.
 *
 * For compatibility, some classes and functions are in the global namespace instead, for example
 * CGoogleAnalytics and GetAppDirPath().
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
