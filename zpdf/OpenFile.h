#pragma once
// A C file opened by a ZString path, owned so that every path out of its user closes it.

#include "base/ZString.h"

#include <cstdio>
#include <memory>

namespace zpdf {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, FileCloser>;

// `mode` is a binary fopen mode ("rb", "wb"); null when the file cannot be opened.
FilePtr openFile(const ZString& path, const char* mode);

} // namespace zpdf
