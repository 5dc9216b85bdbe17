#pragma once
// Writes a document the way the module does and checks the result with outside tools;
// small helpers the PDF tests share.

#include "zpdf/Document.h"
#include "zpdf/PdfException.h"

#include <string>

namespace zpdfTest {

// The document written by a BufferWriter. Also writes it through a FileWriter and expects
// the same bytes; natively, expects "qpdf --check" and "pdfinfo" to accept the file.
std::string writeChecked(zpdf::Document& document);

// Runs pdfinfo (UTF-8 output) on the bytes; the exit code must be 0. Natively only.
std::string pdfinfo(const std::string& pdf);

// A fresh path in the temporary folder.
std::string temporaryPath(const char* suffix);

std::string readFile(const std::string& path);

// Runs a shell command natively, appending its output (stderr too); returns its exit code.
int run(const std::string& command, std::string& output);

// The message of the PdfException that `action` throws, or "(no exception)".
template <class Action>
std::string errorOf(Action&& action)
{
    try {
        action();
    } catch (const zpdf::PdfException& error) {
        return error.what();
    }
    return "(no exception)";
}

} // namespace zpdfTest
