#pragma once
// The bodies of the fuzz targets, which the fuzzers run on generated inputs and the unit tests
// on the seed corpus and past failures. Each returns false when an invariant does not hold.

#include <cstddef>
#include <cstdint>

namespace xhtmlfuzz {

bool parseMarkup(const uint8_t* data, size_t size);
bool decodeEntityText(const uint8_t* data, size_t size);
bool parseStyleText(const uint8_t* data, size_t size);

} // namespace xhtmlfuzz
