#include "FuzzTargets.h"

#include "browser/ContentDecoding.h"

#include <string>

namespace browserFuzz {

namespace {

constexpr const char* encodings[] = {"gzip", "deflate", "x-gzip", "gzip, deflate", "identity", "br"};
constexpr std::size_t codings = sizeof encodings / sizeof *encodings;
constexpr std::size_t compressed = 4; // the first four undo a compression
constexpr std::size_t limits[] = {1 << 20, 4096, 64, 0};

} // namespace

bool decodeHolds(const uint8_t* data, size_t size)
{
    if (size == 0)
        return true;
    const std::size_t coding = data[0] % codings;
    const char* encoding = encodings[coding];
    const std::size_t limit = limits[(data[0] >> 4) & 3];
    const std::string body(reinterpret_cast<const char*>(data) + 1, size - 1);

    const browser::DecodedContent result = browser::decodeContent(encoding, body, limit);
    if (!result.ok)
        return result.bytes.empty() && !result.error.empty();
    if (!result.error.empty() || result.bytes.size() > limit)
        return false;
    if (!result.bytes.empty()) {
        const browser::DecodedContent tighter = browser::decodeContent(encoding, body, result.bytes.size() - 1);
        if (tighter.ok || tighter.error.find("larger than the limit") == std::string::npos)
            return false;
    }
    if (coding < compressed && body.size() > 1)
        return !browser::decodeContent(encoding, body.substr(0, body.size() - 1), limit).ok;
    return true;
}

} // namespace browserFuzz
