// libFuzzer entry: any bytes, taken as the UTF-16 units of a script string, either read as
// JSON or refused; what was read writes back to a text that reads to the same value. The
// same text as fetchUrl's options is taken or refused with a reason.
#include "browser/FetchOptions.h"
#include "browser/Json.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    ZString text;
    for (size_t i = 0; i + 1 < size; i += 2)
        text += static_cast<ZChar>(data[i] | data[i + 1] << 8);
    browser::HttpRequest request;
    ZString problem;
    if (!browser::applyFetchOptions(text, request, problem) && problem.isEmpty())
        std::abort();
    const browser::JsonResult first = browser::parseJson(text);
    if (!first.ok)
        return first.error.isEmpty() ? (std::abort(), 0) : 0;
    const browser::JsonResult again = browser::parseJson(browser::writeJson(first.value));
    // NaN never comes out of the reader; infinities write as null, so compare texts.
    if (!again.ok || browser::writeJson(again.value) != browser::writeJson(first.value))
        std::abort();
    return 0;
}
