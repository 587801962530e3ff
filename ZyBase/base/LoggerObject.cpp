// SPDX-License-Identifier: LGPL-2.1-or-later

#include "LoggerObject.h"

#include "LoggerObjectPrivate.h"

namespace ZyBase {

void LoggerObject::InitLogger(const char *pszFileName, const char *pszBaseDir)
{
    LoggerObjectPrivate::getInstance()->InitLogger(pszFileName, pszBaseDir);
}

void LoggerObject::ReleaseLogger()
{
    LoggerObjectPrivate::getInstance()->ReleaseLogger();
}

void LoggerObject::error(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->error(pszMessage);
}

void LoggerObject::warn(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->warn(pszMessage);
}

void LoggerObject::info(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->info(pszMessage);
}

void LoggerObject::debug(const char *pszMessage)
{
    LoggerObjectPrivate::getInstance()->debug(pszMessage);
}

} // namespace ZyBase
