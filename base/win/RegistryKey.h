#pragma once
// An open registry key, closed when the object goes. Values are read with their type, so
// that a caller can tell a missing value from one of another type.

#include "base/ZString.h"

#include <windows.h>

#include <optional>

class RegistryKey {
public:
    RegistryKey() = default;
    ~RegistryKey();
    RegistryKey(RegistryKey&& other) noexcept;
    RegistryKey& operator=(RegistryKey&& other) noexcept;
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    // Opens an existing key for reading; an empty object if it is not there.
    static RegistryKey openForReading(HKEY hive, const ZString& path);
    // Opens or creates the key (with missing parents) for writing.
    static RegistryKey openForWriting(HKEY hive, const ZString& path);

    bool isOpen() const { return key_ != nullptr; }
    HKEY handle() const { return key_; }

    // The value if it exists with exactly this type (REG_DWORD; REG_SZ or REG_EXPAND_SZ).
    std::optional<DWORD> readDword(const ZString& name) const;
    std::optional<ZString> readString(const ZString& name) const;

    bool writeDword(const ZString& name, DWORD value) const;
    bool writeString(const ZString& name, const ZString& value) const;

    // Deletes a key and everything below it.
    static bool deleteTree(HKEY hive, const ZString& path);

private:
    explicit RegistryKey(HKEY key) : key_(key) {}
    HKEY key_ = nullptr;
};
