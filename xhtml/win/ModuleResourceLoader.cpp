#include "xhtml/win/ModuleResourceLoader.h"

#include <cwctype>

namespace xhtml {

bool ModuleResourceLoader::load(const ZString& address, std::vector<uint8_t>& bytes)
{
    const ZString prefix(scheme);
    if (!address.startsWith(prefix) || address.length() == prefix.length())
        return false;
    std::wstring name = address.substring(prefix.length()).c_str();
    for (wchar_t& unit : name)
        unit = static_cast<wchar_t>(std::towupper(unit));
    HRSRC found = FindResourceW(module_, name.c_str(), RT_RCDATA);
    if (!found)
        return false;
    HGLOBAL loaded = LoadResource(module_, found);
    const void* data = loaded ? LockResource(loaded) : nullptr;
    const DWORD size = SizeofResource(module_, found);
    if (!data)
        return false;
    const auto* first = static_cast<const uint8_t*>(data);
    bytes.assign(first, first + size);
    return true;
}

} // namespace xhtml
