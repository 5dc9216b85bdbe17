// libFuzzer target: opening a PDF file and loading all its objects.
#include "FuzzTargets.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!zpdffuzz::openAndLoad(data, size))
        std::abort();
    return 0;
}
