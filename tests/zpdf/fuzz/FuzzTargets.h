#pragma once
// The body of the reader's fuzz target. The fuzzer calls it on generated inputs; the unit
// tests replay the seed corpus and every input that ever made it fail. It returns false
// when an invariant does not hold (a crash shows itself).

#include <cstddef>
#include <cstdint>

namespace zpdffuzz {

// Opens the bytes as a PDF file and loads every object. Bad input may only end in a
// PdfException; a file that loads must write, and what is written must read back with
// as many objects.
bool openAndLoad(const uint8_t* data, size_t size);

} // namespace zpdffuzz
