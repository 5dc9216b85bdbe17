// libFuzzer target: style declarations, colours, lengths and style sheets.
#include "FuzzTargets.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!xhtmlfuzz::parseStyleText(data, size))
        std::abort();
    return 0;
}
