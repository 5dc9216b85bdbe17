#pragma once
// Reverses the PNG predictors (Predictor 10 to 15) of Flate-decoded data.

#include <string>
#include <string_view>

namespace zpdf {

class Dict;

struct PredictorParams {
    int predictor = 1;
    int colors = 1;
    int bitsPerComponent = 8;
    int columns = 1;
};

// Predictor, Colors, BitsPerComponent and Columns of a DecodeParms dictionary; an entry
// that is missing or no number keeps its default.
PredictorParams predictorParams(const Dict& parms);

// Each row is one filter-type byte (0 none, 1 sub, 2 up, 3 average, 4 Paeth) and its
// bytes; a short last row is decoded as far as it goes. Throws PdfException: "Predictor
// less than 10 not supported" below 10, and for predictors above 15, bad parameters or an
// unknown row type.
std::string undoPngPredictor(std::string_view data, const PredictorParams& params);

} // namespace zpdf
