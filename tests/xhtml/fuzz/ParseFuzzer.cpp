// libFuzzer target: the markup parser.
#include "FuzzTargets.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!xhtmlfuzz::parseMarkup(data, size))
        std::abort();
    return 0;
}
