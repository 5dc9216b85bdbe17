#include "zpdf/OpenFile.h"

#include <string>

namespace zpdf {

FilePtr openFile(const ZString& path, const char* mode)
{
#ifdef _WIN32
    const std::string narrow(mode);
    return FilePtr(_wfopen(path.c_str(), std::wstring(narrow.begin(), narrow.end()).c_str()));
#else
    return FilePtr(std::fopen(path.toUtf8().c_str(), mode));
#endif
}

} // namespace zpdf
