#pragma once
// Settings.dll: the suite's configuration values.
//
// User values live under HKEY_CURRENT_USER\Software\Pryxa\Creator, program values (written
// by the installer) under HKEY_LOCAL_MACHINE\Software\Pryxa\Creator. A key such as
// "screenCapture.lastMode" is the registry value's name as written.
//
// Every read takes a default and yields it for a missing value, a value of another type
// (a DWORD for Dword and Bool, a string for Str) or any read failure. config_* reads the
// user value, then the program value, then the default; progConfig_* only the program value.
// Writes go to the user values and report failure by returning false; a failed write leaves
// the previous value as it was. No function throws.

#include "base/ZString.h"

#include <cstdint>

#ifdef PRYXA_SETTINGS_BUILD
#define SETTINGS_API __declspec(dllexport)
#else
#define SETTINGS_API __declspec(dllimport)
#endif

extern "C" {

SETTINGS_API uint32_t config_getDword(const ZString& key, uint32_t defaultValue);
SETTINGS_API bool config_getBool(const ZString& key, bool defaultValue);
SETTINGS_API ZString config_getStr(const ZString& key, const ZString& defaultValue);

SETTINGS_API uint32_t progConfig_getDword(const ZString& key, uint32_t defaultValue);
SETTINGS_API bool progConfig_getBool(const ZString& key, bool defaultValue);
SETTINGS_API ZString progConfig_getStr(const ZString& key, const ZString& defaultValue);

SETTINGS_API uint32_t userConfig_getDword(const ZString& key, uint32_t defaultValue);
SETTINGS_API bool userConfig_getBool(const ZString& key, bool defaultValue);
SETTINGS_API ZString userConfig_getStr(const ZString& key, const ZString& defaultValue);

SETTINGS_API bool userConfig_setDword(const ZString& key, uint32_t value);
SETTINGS_API bool userConfig_setBool(const ZString& key, bool value);
SETTINGS_API bool userConfig_setStr(const ZString& key, const ZString& value);

// Moves all storage below HKEY_CURRENT_USER\<scratchKey>, user values in its "User"
// subkey and program values in its "Program" subkey, so that tests and tools work on
// scratch values. An empty key returns to the real storage.
SETTINGS_API void settings_redirect(const ZString& scratchKey);

} // extern "C"
