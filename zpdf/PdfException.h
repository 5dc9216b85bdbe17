#pragma once
// The exceptions of the PDF layer. Every failure inside zpdf is one of these; callers
// that must not see exceptions catch PdfException at their boundary.

#include <stdexcept>
#include <string>

namespace zpdf {

// A failure with a message, for example "ZLib compression error".
class PdfException : public std::runtime_error {
public:
    explicit PdfException(const std::string& message) : std::runtime_error(message) {}
};

// A number could not be read from text.
class NumberFormatException : public PdfException {
public:
    explicit NumberFormatException(const std::string& message) : PdfException(message) {}
};

// The operation is not supported by the object's kind.
class UnsupportedException : public PdfException {
public:
    explicit UnsupportedException(const std::string& message) : PdfException(message) {}
};

} // namespace zpdf
