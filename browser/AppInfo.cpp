#include "browser/AppInfo.h"

#include "base/win/OsVersion.h"
#include "browser/InAppAddress.h"
#include "companions/language/Language.h"
#include "companions/settings/Settings.h"
#include "pryxa/Version.h"

#include <windows.h>

namespace browser {

namespace {

ZString moduleArchitecture()
{
#if defined(_M_ARM64) || defined(__aarch64__)
    return L"arm64";
#elif defined(_WIN64)
    return L"x64";
#else
    return L"x86";
#endif
}

ZString systemArchitecture()
{
    SYSTEM_INFO system = {};
    GetNativeSystemInfo(&system);
    switch (system.wProcessorArchitecture) {
    case PROCESSOR_ARCHITECTURE_AMD64:
        return L"x64";
    case PROCESSOR_ARCHITECTURE_ARM64:
        return L"arm64";
    case PROCESSOR_ARCHITECTURE_INTEL:
        return L"x86";
    default:
        return ZString::fromUInt(system.wProcessorArchitecture);
    }
}

ZString systemVersion()
{
    OSVERSIONINFOEXW version;
    if (!osVersion(version))
        return ZString();
    return ZString::format(L"%lu.%lu.%lu", version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber);
}

ZString localeText(LCTYPE type)
{
    wchar_t text[16] = {};
    return GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, 16) > 0 ? ZString(text) : ZString();
}

} // namespace

AppInfo gatherAppInfo()
{
    AppInfo info;
    info.name = ZString::fromUtf8(PRYXA_PRODUCT_NAME);
    info.version = PRYXA_VERSION_WTEXT;
    info.language = lang_getCurrent().code;
    info.installer = progConfig_getStr(L"Installer", ZString());
    info.architecture = moduleArchitecture();
    info.updateMode = progConfig_getStr(L"UpdateMode", ZString());
    info.installationId = progConfig_getStr(L"InstallationId", ZString());
    info.userId = progConfig_getStr(L"UserId", ZString());
    info.campaignId = progConfig_getStr(L"CampaignId", ZString());
    info.customBanner = progConfig_getBool(L"CustomBanner", false);
    info.osVersion = systemVersion();
    info.osArchitecture = systemArchitecture();
    info.lcid = GetUserDefaultLCID();
    info.userLanguageCode = localeText(LOCALE_SISO639LANGNAME);
    info.userCountryCode = localeText(LOCALE_SISO3166CTRYNAME);
    return info;
}

ZString inAppQuery(const ZString& extra)
{
    return inAppQuery(gatherAppInfo(), newRandomValue(), extra);
}

} // namespace browser
