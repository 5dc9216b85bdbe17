#include "base/win/RegistryKey.h"

#include <vector>

namespace {
// 32- and 64-bit builds see the same values: the installer writes to the 64-bit view.
constexpr REGSAM kView = KEY_WOW64_64KEY;
}

RegistryKey::~RegistryKey()
{
    if (key_)
        RegCloseKey(key_);
}

RegistryKey::RegistryKey(RegistryKey&& other) noexcept : key_(other.key_)
{
    other.key_ = nullptr;
}

RegistryKey& RegistryKey::operator=(RegistryKey&& other) noexcept
{
    if (this != &other) {
        if (key_)
            RegCloseKey(key_);
        key_ = other.key_;
        other.key_ = nullptr;
    }
    return *this;
}

RegistryKey RegistryKey::openForReading(HKEY hive, const ZString& path)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(hive, path.c_str(), 0, KEY_QUERY_VALUE | kView, &key) != ERROR_SUCCESS)
        return RegistryKey();
    return RegistryKey(key);
}

RegistryKey RegistryKey::openForWriting(HKEY hive, const ZString& path)
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(hive, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE | KEY_QUERY_VALUE | kView, nullptr, &key,
                        nullptr) != ERROR_SUCCESS)
        return RegistryKey();
    return RegistryKey(key);
}

std::optional<DWORD> RegistryKey::readDword(const ZString& name) const
{
    if (!key_)
        return std::nullopt;
    DWORD type = 0;
    DWORD value = 0;
    DWORD size = sizeof value;
    if (RegQueryValueExW(key_, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&value), &size) != ERROR_SUCCESS
        || type != REG_DWORD || size != sizeof value)
        return std::nullopt;
    return value;
}

std::optional<ZString> RegistryKey::readString(const ZString& name) const
{
    if (!key_)
        return std::nullopt;
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExW(key_, name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS
        || (type != REG_SZ && type != REG_EXPAND_SZ))
        return std::nullopt;
    // The value can change between the two calls; one retry with the new size is enough.
    for (int attempt = 0; attempt < 2; ++attempt) {
        std::vector<wchar_t> buffer(size / sizeof(wchar_t) + 1, L'\0');
        DWORD bytes = static_cast<DWORD>((buffer.size() - 1) * sizeof(wchar_t));
        const LONG status =
            RegQueryValueExW(key_, name.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(buffer.data()), &bytes);
        if (status == ERROR_MORE_DATA) {
            size = bytes;
            continue;
        }
        if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
            return std::nullopt;
        // Stored strings need not be terminated; stop at the first terminator if there is one.
        ZString text(buffer.data(), static_cast<int>(bytes / sizeof(wchar_t)));
        const int end = text.find(ZChar(0));
        return end == ZString::npos ? text : text.substring(0, end);
    }
    return std::nullopt;
}

bool RegistryKey::writeDword(const ZString& name, DWORD value) const
{
    return key_
        && RegSetValueExW(key_, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value)
               == ERROR_SUCCESS;
}

bool RegistryKey::writeString(const ZString& name, const ZString& value) const
{
    const DWORD bytes = static_cast<DWORD>((value.length() + 1) * sizeof(wchar_t));
    return key_
        && RegSetValueExW(key_, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()), bytes)
               == ERROR_SUCCESS;
}

// Given a subkey, RegDeleteTreeW removes that key itself too, not only what lies below it.
bool RegistryKey::deleteTree(HKEY hive, const ZString& path)
{
    const LONG status = RegDeleteTreeW(hive, path.c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}
