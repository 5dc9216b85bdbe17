#include "FuzzTargets.h"

#include "zpdf/BufferWriter.h"
#include "zpdf/PdfException.h"
#include "zpdf/PdfFile.h"

#include <string>

namespace zpdffuzz {

bool openAndLoad(const uint8_t* data, size_t size)
{
    std::string written;
    std::size_t count = 0;
    try {
        zpdf::PdfFile file(std::string(reinterpret_cast<const char*>(data), size));
        file.loadAllObjects();
        count = file.objects().count();
        zpdf::BufferWriter out;
        out.writeDocument(file);
        written = out.data();
    } catch (const zpdf::PdfException&) {
        return true; // refused, as bad input may be
    }
    try {
        zpdf::PdfFile again(written);
        again.loadAllObjects();
        return !again.wasRepaired() && again.objects().count() == count;
    } catch (const zpdf::PdfException&) {
        return false; // the reader cannot read what the writer made of a file it read
    }
}

} // namespace zpdffuzz
