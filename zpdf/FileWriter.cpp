#include "zpdf/FileWriter.h"

#include "zpdf/PdfException.h"

namespace zpdf {

namespace {

std::FILE* openForWriting(const ZString& path)
{
#ifdef _WIN32
    return _wfopen(path.c_str(), L"wb");
#else
    return std::fopen(path.toUtf8().c_str(), "wb");
#endif
}

} // namespace

FileWriter::FileWriter(const ZString& path) : file_(openForWriting(path))
{
    if (!file_)
        throw PdfException("FileWriter: cannot create \"" + path.toUtf8() + "\"");
    // The Writer stages the bytes already.
    std::setvbuf(file_, nullptr, _IONBF, 0);
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
    std::fclose(file_);
}

void FileWriter::close()
{
    if (!file_)
        return;
    flush();
    std::FILE* file = file_;
    file_ = nullptr;
    if (std::fclose(file) != 0)
        throw PdfException("FileWriter: write error");
}

void FileWriter::sink(const char* data, std::size_t size)
{
    if (!file_)
        throw PdfException("FileWriter: file is closed");
    if (size != 0 && std::fwrite(data, 1, size, file_) != size)
        throw PdfException("FileWriter: write error");
}

} // namespace zpdf
