#include "zpdf/FileWriter.h"

#include "zpdf/PdfException.h"

namespace zpdf {

FileWriter::FileWriter(const ZString& path) : file_(openFile(path, "wb"))
{
    if (!file_)
        throw PdfException("FileWriter: cannot create \"" + path.toUtf8() + "\"");
    // The Writer stages the bytes already.
    std::setvbuf(file_.get(), nullptr, _IONBF, 0);
}

FileWriter::~FileWriter()
{
    if (!file_)
        return;
    try {
        flush();
    } catch (const PdfException&) {
        // Reported by close() only.
    }
}

void FileWriter::close()
{
    if (!file_)
        return;
    flush();
    if (std::fclose(file_.release()) != 0)
        throw PdfException("FileWriter: write error");
}

void FileWriter::sink(const char* data, std::size_t size)
{
    if (!file_)
        throw PdfException("FileWriter: file is closed");
    if (size != 0 && std::fwrite(data, 1, size, file_.get()) != size)
        throw PdfException("FileWriter: write error");
}

} // namespace zpdf
