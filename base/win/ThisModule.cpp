#include "base/win/ThisModule.h"

#include <vector>

ZString moduleFolder(HMODULE module)
{
    // Long paths can exceed MAX_PATH; grow until the name fits.
    for (DWORD size = MAX_PATH; size <= 32768; size *= 2) {
        std::vector<wchar_t> buffer(size);
        const DWORD length = GetModuleFileNameW(module, buffer.data(), size);
        if (length == 0)
            return ZString();
        if (length < size) {
            const ZString path(buffer.data(), static_cast<int>(length));
            const int slash = path.findLast(L'\\');
            return slash == ZString::npos ? ZString() : path.substring(0, slash);
        }
    }
    return ZString();
}
