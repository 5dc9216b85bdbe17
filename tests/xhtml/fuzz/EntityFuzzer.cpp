// libFuzzer target: entity decoding.
#include "FuzzTargets.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!xhtmlfuzz::decodeEntityText(data, size))
        std::abort();
    return 0;
}
