#pragma once
// The body of the content decoder's fuzz target. The fuzzer calls it on generated inputs;
// the unit tests replay the seed corpus and every input that ever made it fail. It returns
// false when an invariant does not hold (a crash shows itself).

#include <cstddef>
#include <cstdint>

namespace browserFuzz {

// The first byte picks the Content-Encoding (low bits) and the limit (bits 4 and 5); the
// rest is the body. A result is either a success within the limit or an error without
// bytes; a success fails with the limit error under a limit one byte smaller, and a
// compressed body cut by one byte never decodes.
bool decodeHolds(const uint8_t* data, size_t size);

} // namespace browserFuzz
