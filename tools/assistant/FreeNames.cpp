#include "tools/assistant/FreeNames.h"

#include "base/win/TempFolder.h"

#include <windows.h>
#include <shlwapi.h>

namespace {

ZString numbered(const ZString& folder, const ZString& name, int number)
{
    return joinPath(folder, number == 1 ? name + L".pdf" : ZString::format(L"%s (%d).pdf", name.c_str(), number));
}

} // namespace

ZString FreeNames::next(const ZString& folder, const ZString& name)
{
    int& number = nextNumber_.try_emplace(joinPath(folder, name).toLower(), 1).first->second;
    for (; number <= highestNumber_; ++number) {
        const ZString path = numbered(folder, name, number);
        if (!PathFileExistsW(path.c_str())) {
            ++number;
            return path;
        }
    }
    return ZString();
}
