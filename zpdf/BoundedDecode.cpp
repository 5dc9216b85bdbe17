#include "zpdf/BoundedDecode.h"

#include "zpdf/Array.h"
#include "zpdf/Flate.h"
#include "zpdf/Names.h"
#include "zpdf/PdfException.h"
#include "zpdf/PngPredictor.h"
#include "zpdf/Stream.h"

#include <algorithm>

namespace zpdf {

namespace {

// Deflate cannot expand data by more than about this factor.
constexpr std::size_t maxDeflateRatio = 1032;
constexpr std::size_t maxStructureBytes = std::size_t{256} << 20;

std::string undoPredictor(std::string data, const Dict* parms)
{
    const PredictorParams params = parms ? predictorParams(*parms) : PredictorParams();
    if (params.predictor == 1)
        return data;
    return undoPngPredictor(data, params);
}

bool isFlate(Object* filter)
{
    Name* name = filter ? filter->asName() : nullptr;
    return name && (name->bytes() == "FlateDecode" || name->bytes() == "Fl");
}

Dict* parmsAt(Object* parms, int index)
{
    if (!parms)
        return nullptr;
    if (Array* list = parms->asArray()) {
        Object* element = index < list->size() ? list->at(index) : nullptr;
        return element ? element->asDict() : nullptr;
    }
    return index == 0 ? parms->asDict() : nullptr;
}

} // namespace

std::size_t structureLimit(std::size_t fileSize)
{
    return std::min(maxStructureBytes, (fileSize + 1) * maxDeflateRatio);
}

std::string decodeBounded(const Stream& stream, std::size_t limit)
{
    Dict& dict = *stream.dict();
    Object* filter = dict.get(names::Filter());
    Object* parms = dict.get(names::DecodeParms());
    std::string data = stream.data()->bytes();
    if (isAbsent(filter))
        return data;
    Array* filters = filter->asArray();
    const int count = filters ? filters->size() : 1;
    for (int i = 0; i < count; ++i) {
        Object* step = filters ? filters->at(i) : filter;
        if (!isFlate(step))
            throw PdfException("Unsupported filter in a cross-reference or object stream");
        data = undoPredictor(flate::decompressBounded(data, limit), parmsAt(parms, i));
        if (data.size() > limit)
            throw PdfException("Decoded stream too long");
    }
    return data;
}

} // namespace zpdf
