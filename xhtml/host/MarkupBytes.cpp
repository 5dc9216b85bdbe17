#include "xhtml/host/ViewContext.h"

namespace xhtml {

namespace {

bool isValidUtf8(const std::vector<uint8_t>& bytes)
{
    size_t i = 0;
    while (i < bytes.size()) {
        const uint8_t lead = bytes[i];
        const int extra = lead < 0x80 ? 0 : (lead >> 5) == 6 ? 1 : (lead >> 4) == 14 ? 2 : (lead >> 3) == 30 ? 3 : -1;
        if (extra < 0)
            return false;
        for (int k = 1; k <= extra; ++k) {
            if (i + k >= bytes.size() || (bytes[i + k] & 0xC0) != 0x80)
                return false;
        }
        i += extra + 1;
    }
    return true;
}

// The 0x80..0x9F row of Windows-1252; the rest of the code page is Latin-1.
const char16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

} // namespace

ZString decodeMarkupBytes(const std::vector<uint8_t>& bytes)
{
    if (isValidUtf8(bytes))
        return ZString::fromUtf8(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    ZString::Storage units;
    units.reserve(bytes.size());
    for (uint8_t byte : bytes)
        units.push_back(static_cast<ZChar>(byte >= 0x80 && byte < 0xA0 ? kWindows1252High[byte - 0x80] : byte));
    return ZString(std::move(units));
}

} // namespace xhtml
