#include "companions/settings/Settings.h"

#include "base/win/RegistryKey.h"
#include "base/win/SlimLock.h"

#include <mutex>
#include <optional>

namespace {

const ZChar* const kProductKey = L"Software\\Pryxa\\Creator";

struct Root {
    HKEY hive;
    ZString path;
};

SlimLock rootMutex;
ZString scratchKey;

Root userRoot()
{
    std::lock_guard<SlimLock> lock(rootMutex);
    if (scratchKey.isEmpty())
        return {HKEY_CURRENT_USER, kProductKey};
    return {HKEY_CURRENT_USER, scratchKey + L"\\User"};
}

Root programRoot()
{
    std::lock_guard<SlimLock> lock(rootMutex);
    if (scratchKey.isEmpty())
        return {HKEY_LOCAL_MACHINE, kProductKey};
    return {HKEY_CURRENT_USER, scratchKey + L"\\Program"};
}

std::optional<DWORD> readDword(const Root& root, const ZString& key)
{
    return RegistryKey::openForReading(root.hive, root.path).readDword(key);
}

std::optional<ZString> readString(const Root& root, const ZString& key)
{
    return RegistryKey::openForReading(root.hive, root.path).readString(key);
}

// The public functions never throw: an allocation failure yields the default.
template <typename T, typename Read>
T readOr(T defaultValue, Read read)
{
    try {
        if (auto value = read())
            return static_cast<T>(*value);
    } catch (...) {
    }
    return defaultValue;
}

template <typename Read>
auto userThenProgram(Read read, const ZString& key)
{
    if (auto value = read(userRoot(), key))
        return value;
    return read(programRoot(), key);
}

template <typename Write>
bool writeUser(Write write)
{
    try {
        const Root root = userRoot();
        return write(RegistryKey::openForWriting(root.hive, root.path));
    } catch (...) {
        return false;
    }
}

} // namespace

uint32_t config_getDword(const ZString& key, uint32_t defaultValue)
{
    return readOr(defaultValue, [&] { return userThenProgram(readDword, key); });
}

bool config_getBool(const ZString& key, bool defaultValue)
{
    return readOr(defaultValue, [&] { return userThenProgram(readDword, key); });
}

ZString config_getStr(const ZString& key, const ZString& defaultValue)
{
    return readOr(defaultValue, [&] { return userThenProgram(readString, key); });
}

uint32_t progConfig_getDword(const ZString& key, uint32_t defaultValue)
{
    return readOr(defaultValue, [&] { return readDword(programRoot(), key); });
}

bool progConfig_getBool(const ZString& key, bool defaultValue)
{
    return readOr(defaultValue, [&] { return readDword(programRoot(), key); });
}

ZString progConfig_getStr(const ZString& key, const ZString& defaultValue)
{
    return readOr(defaultValue, [&] { return readString(programRoot(), key); });
}

uint32_t userConfig_getDword(const ZString& key, uint32_t defaultValue)
{
    return readOr(defaultValue, [&] { return readDword(userRoot(), key); });
}

bool userConfig_getBool(const ZString& key, bool defaultValue)
{
    return readOr(defaultValue, [&] { return readDword(userRoot(), key); });
}

ZString userConfig_getStr(const ZString& key, const ZString& defaultValue)
{
    return readOr(defaultValue, [&] { return readString(userRoot(), key); });
}

bool userConfig_setDword(const ZString& key, uint32_t value)
{
    return writeUser([&](const RegistryKey& root) { return root.writeDword(key, value); });
}

bool userConfig_setBool(const ZString& key, bool value)
{
    return userConfig_setDword(key, value ? 1 : 0);
}

bool userConfig_setStr(const ZString& key, const ZString& value)
{
    return writeUser([&](const RegistryKey& root) { return root.writeString(key, value); });
}

void settings_redirect(const ZString& key)
{
    try {
        std::lock_guard<SlimLock> lock(rootMutex);
        scratchKey = key;
    } catch (...) {
    }
}
