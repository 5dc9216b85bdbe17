// libFuzzer entry for the target the build names in XHTML_FUZZ_TARGET.
#include "FuzzTargets.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!xhtmlfuzz::XHTML_FUZZ_TARGET(data, size))
        std::abort();
    return 0;
}
