#pragma once
// Bodies as servers send them, compressed here with zlib for the tests and the benchmark.

#include <string>
#include <string_view>

namespace browserTest {

std::string gzip(std::string_view data);
std::string zlibWrapped(std::string_view data); // "deflate" as the standard says
std::string rawDeflate(std::string_view data);  // "deflate" as some servers send it

// `size` bytes of text that compresses about as well as a web page or JSON.
std::string sampleText(std::size_t size);

} // namespace browserTest
