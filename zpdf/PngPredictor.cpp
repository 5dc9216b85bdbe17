#include "zpdf/PngPredictor.h"

#include "zpdf/Dict.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace zpdf {

namespace {

// Limits that keep the row arithmetic far from overflow on every pointer size.
constexpr int maxColors = 64;
constexpr int maxColumns = 1 << 24;

std::uint8_t paeth(int left, int up, int upLeft)
{
    const int estimate = left + up - upLeft;
    const int toLeft = std::abs(estimate - left);
    const int toUp = std::abs(estimate - up);
    const int toUpLeft = std::abs(estimate - upLeft);
    if (toLeft <= toUp && toLeft <= toUpLeft)
        return static_cast<std::uint8_t>(left);
    return static_cast<std::uint8_t>(toUp <= toUpLeft ? up : upLeft);
}

// Undoes one row in place; `previous` is the decoded row above (zeros for the first).
void undoRow(int rowType, std::uint8_t* row, const std::uint8_t* previous, std::size_t length, std::size_t pixelBytes)
{
    for (std::size_t i = 0; i < length; ++i) {
        const int left = i >= pixelBytes ? row[i - pixelBytes] : 0;
        const int up = previous[i];
        const int upLeft = i >= pixelBytes ? previous[i - pixelBytes] : 0;
        int add = 0;
        switch (rowType) {
        case 0: add = 0; break;
        case 1: add = left; break;
        case 2: add = up; break;
        case 3: add = (left + up) / 2; break;
        case 4: add = paeth(left, up, upLeft); break;
        default: throw PdfException("Invalid PNG predictor row type");
        }
        row[i] = static_cast<std::uint8_t>(row[i] + add);
    }
}

int intEntry(const Dict& parms, const Ptr<Name>& key, int fallback)
{
    Object* value = parms.get(key);
    Number* number = value ? value->asNumber() : nullptr;
    return number ? number->intValue() : fallback;
}

} // namespace

PredictorParams predictorParams(const Dict& parms)
{
    const PredictorParams defaults;
    PredictorParams params;
    params.predictor = intEntry(parms, names::Predictor(), defaults.predictor);
    params.colors = intEntry(parms, names::Colors(), defaults.colors);
    params.bitsPerComponent = intEntry(parms, names::BitsPerComponent(), defaults.bitsPerComponent);
    params.columns = intEntry(parms, names::Columns(), defaults.columns);
    return params;
}

std::string undoPngPredictor(std::string_view data, const PredictorParams& params)
{
    if (params.predictor < 10)
        throw PdfException("Predictor less than 10 not supported");
    if (params.predictor > 15)
        throw PdfException("Predictor greater than 15 not supported");
    const int bits = params.bitsPerComponent;
    if (params.colors < 1 || params.colors > maxColors || params.columns < 1 || params.columns > maxColumns
        || (bits != 1 && bits != 2 && bits != 4 && bits != 8 && bits != 16))
        throw PdfException("Invalid predictor parameters");
    const std::size_t pixelBits = static_cast<std::size_t>(params.colors) * static_cast<std::size_t>(bits);
    const std::size_t pixelBytes = pixelBits < 8 ? 1 : pixelBits / 8;
    const std::size_t rowLength = (pixelBits * static_cast<std::size_t>(params.columns) + 7) / 8;

    std::string result;
    result.reserve(data.size() / (rowLength + 1) * rowLength + rowLength);
    std::string zeros(rowLength, '\0');
    std::size_t previousAt = std::string::npos;
    for (std::size_t at = 0; at < data.size(); at += rowLength + 1) {
        const int rowType = static_cast<std::uint8_t>(data[at]);
        const std::size_t length = std::min(rowLength, data.size() - at - 1);
        const std::size_t rowAt = result.size();
        result.append(data.substr(at + 1, length));
        auto* row = reinterpret_cast<std::uint8_t*>(&result[rowAt]);
        const auto* previous = reinterpret_cast<const std::uint8_t*>(
            previousAt == std::string::npos ? zeros.data() : result.data() + previousAt);
        undoRow(rowType, row, previous, length, pixelBytes);
        previousAt = rowAt;
    }
    return result;
}

} // namespace zpdf
