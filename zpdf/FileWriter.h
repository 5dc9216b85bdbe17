#pragma once
// FileWriter: a Writer into a file, created or truncated on construction.

#include "zpdf/OpenFile.h"
#include "zpdf/Writer.h"

#include "base/ZString.h"

namespace zpdf {

class FileWriter : public Writer {
public:
    // Throws PdfException when the file cannot be created.
    explicit FileWriter(const ZString& path);
    // Closes the file; errors are lost here, call close() to see them.
    ~FileWriter() override;

    // Writes what is staged and closes the file; throws PdfException on failure.
    void close();

protected:
    void sink(const char* data, std::size_t size) override;

private:
    FilePtr file_;
};

} // namespace zpdf
