#pragma once
// The facts about the program and its user that in-app pages are told: the in-app query
// string carries them, and the script bridge's getAppInfo() hands the same record to a page.
//
// Where each comes from (gatherAppInfo):
// - name, version: the build (pryxa/Version.h), "Pryxa Creator" and "1.0.0".
// - language: the code of the suite's current language (Language.dll), "de".
// - installer, updateMode, installationId, userId, campaignId, customBanner: the program
//   values that the installer writes (Settings.dll), "Installer", "UpdateMode",
//   "InstallationId", "UserId", "CampaignId" (strings, empty when missing) and
//   "CustomBanner" (a DWORD, false when missing).
// - architecture: what this module was built for, "x64", "x86" or "arm64".
// - osVersion: major.minor.build from RtlGetVersion, "10.0.19045".
// - osArchitecture: the processor architecture of the system, "x64", "x86" or "arm64"
//   (a 32-bit module on 64-bit Windows says "x86" and "x64").
// - lcid, userLanguageCode, userCountryCode: the user's default locale, 1031, "de", "DE".

#include "base/ZString.h"

#include <cstdint>

namespace browser {

struct AppInfo {
    ZString name;
    ZString version;
    ZString language;
    ZString installer;
    ZString architecture;
    ZString updateMode;
    ZString installationId;
    ZString userId;
    ZString campaignId;
    bool customBanner = false;
    ZString osVersion;
    ZString osArchitecture;
    uint32_t lcid = 0;
    ZString userLanguageCode;
    ZString userCountryCode;
};

#ifdef _WIN32
// The facts now; each is read at the call, nothing is kept between calls.
AppInfo gatherAppInfo();
// The common in-app query (InAppAddress.h) for this program now: gatherAppInfo() and a
// new random value, then `extra`.
ZString inAppQuery(const ZString& extra);
#endif

} // namespace browser
