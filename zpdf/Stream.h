#pragma once
// Stream: a dictionary and a data buffer, written as the dictionary, "stream", the bytes
// and "endstream". Writing first brings the Length entry up to date.

#include "zpdf/Dict.h"
#include "zpdf/Object.h"
#include "zpdf/StreamData.h"

#include <string>
#include <string_view>

namespace zpdf {

class Stream : public Object {
    ZPDF_MAKEABLE
public:
    // Borrowed; a stream always has both.
    Dict* dict() const { return dict_.get(); }
    StreamData* data() const { return data_.get(); }
    const Ptr<Dict>& dictPtr() const { return dict_; }
    const Ptr<StreamData>& dataPtr() const { return data_; }

    void append(std::string_view bytes) { data_->append(bytes); }
    void setData(std::string bytes) { data_->setBytes(std::move(bytes)); }
    // Length = the size of the data, as an integer.
    void updateLength() const;

    // Without a Filter entry: the data is deflated, Filter becomes FlateDecode and any
    // DecodeParms entry goes. A stream that has a Filter is left as it is. Throws
    // PdfException "ZLib compression error".
    void compress();
    // The data with every filter undone; the stream is unchanged. Throws PdfException
    // "Stream::decode: No suitable decoder available" for a filter other than Flate, the
    // Flate and predictor messages, and those of removeFilter() for malformed entries.
    std::string decode() const;
    // Undoes the first filter: the data is replaced by its decoded form and the filter and
    // its parameters leave Filter and DecodeParms. Nothing happens without a Filter.
    // Throws "DecodeParms must be a dictionary" (single filter), "DecodeParms must be an
    // array" (filter array), "removeFilter() - Filter value not valid".
    void removeFilter();

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    // Null arguments give an empty dictionary or empty data.
    explicit Stream(Ptr<Dict> dict = nullptr, Ptr<StreamData> data = nullptr);
    explicit Stream(std::string bytes) : Stream(nullptr, make<StreamData>(std::move(bytes))) {}
    bool equalsImpl(const Object& other, bool deep) const override;

private:
    Ptr<Dict> dict_;
    Ptr<StreamData> data_;
};

} // namespace zpdf
