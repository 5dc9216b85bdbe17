// libFuzzer target: decoding a response body by its Content-Encoding.
#include "FuzzTargets.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!browserFuzz::decodeHolds(data, size))
        std::abort();
    return 0;
}
