// SPDX-License-Identifier: 0BSD

// Compiles all recipes into one application. It does nothing else.

#include "ArchiveCheck.h"
#include "AtomicJson.h"
#include "BlockingCalls.h"
#include "DevelopmentServices.h"
#include "FollowedRequest.h"
#include "LogDirectory.h"
#include "MessagesInLog.h"
#include "OwnedRequest.h"
#include "QrCard.h"
#include "QuitInTime.h"
#include "RunningRequests.h"
#include "SafeDownload.h"
#include "SystemProxy.h"
#include "ThemeWatcher.h"
#include "TlsSupport.h"
#include "TrustedAuthority.h"
#include "UsageReports.h"
#include "WarningsAppender.h"

int main()
{
}
