#pragma once
// The bodies of the fuzz targets. The fuzzers call them on generated inputs; the unit tests
// replay the seed corpus and every input that ever made a target fail. Each returns false
// when an invariant does not hold (a crash shows itself).

#include <cstddef>
#include <cstdint>

namespace xhtmlfuzz {

bool parseMarkup(const uint8_t* data, size_t size);
bool decodeEntityText(const uint8_t* data, size_t size);
bool parseStyleText(const uint8_t* data, size_t size);

} // namespace xhtmlfuzz
