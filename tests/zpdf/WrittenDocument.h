#pragma once
// Writes a document the way the module does and checks the result with outside tools.

#include "zpdf/Document.h"

#include <string>

namespace zpdfTest {

// The document written by a BufferWriter. Also writes it through a FileWriter and expects
// the same bytes; natively, expects "qpdf --check" and "pdfinfo" to accept the file.
std::string writeChecked(zpdf::Document& document);

// Runs pdfinfo (UTF-8 output) on the bytes; the exit code must be 0. Natively only.
std::string pdfinfo(const std::string& pdf);

// A fresh path in the temporary folder.
std::string temporaryPath(const char* suffix);

} // namespace zpdfTest
