#include "zpdf/Stream.h"

#include "zpdf/Array.h"
#include "zpdf/Flate.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"
#include "zpdf/PngPredictor.h"
#include "zpdf/Writer.h"

#include <vector>

namespace zpdf {

namespace {

struct FilterStep {
    Name* filter;
    Dict* parms; // null when absent
};

// The filters of a stream dictionary in the order they are undone, with their parameters.
std::vector<FilterStep> filterChain(const Dict& dict)
{
    Object* filter = dict.get(names::Filter());
    Object* parms = dict.get(names::DecodeParms());
    std::vector<FilterStep> steps;
    if (isAbsent(filter))
        return steps;
    if (Name* single = filter->asName()) {
        if (!isAbsent(parms) && !parms->asDict())
            throw PdfException("DecodeParms must be a dictionary");
        steps.push_back({single, isAbsent(parms) ? nullptr : parms->asDict()});
        return steps;
    }
    Array* filters = filter->asArray();
    if (!filters)
        throw PdfException("removeFilter() - Filter value not valid");
    Array* parmsList = isAbsent(parms) ? nullptr : parms->asArray();
    if (!isAbsent(parms) && !parmsList)
        throw PdfException("DecodeParms must be an array");
    for (int i = 0; i < filters->size(); ++i) {
        Object* element = filters->at(i);
        Name* name = element ? element->asName() : nullptr;
        if (!name)
            throw PdfException("removeFilter() - Filter value not valid");
        Object* p = parmsList && i < parmsList->size() ? parmsList->at(i) : nullptr;
        steps.push_back({name, isAbsent(p) ? nullptr : p->asDict()});
    }
    return steps;
}

std::string undoStep(const FilterStep& step, std::string_view data)
{
    const std::string& name = step.filter->bytes();
    if (name != "FlateDecode" && name != "Fl")
        throw PdfException("Stream::decode: No suitable decoder available");
    std::string inflated = flate::decompress(data);
    if (!step.parms || !step.parms->get(names::Predictor()))
        return inflated;
    return undoPngPredictor(inflated, predictorParams(*step.parms));
}

// The array without its first element, or null when nothing would be left.
Ptr<Object> withoutFirst(Array* array)
{
    if (!array || array->size() <= 1)
        return nullptr;
    Ptr<Array> rest = make<Array>();
    for (int i = 1; i < array->size(); ++i)
        rest->append(Ptr<Object>(array->at(i)));
    return rest;
}

} // namespace

Stream::Stream(Ptr<Dict> dict, Ptr<StreamData> data)
    : Object(Type::Stream), dict_(dict ? std::move(dict) : make<Dict>()),
      data_(data ? std::move(data) : make<StreamData>())
{
}

void Stream::updateLength() const
{
    dict_->set(names::Length(), make<Number>(static_cast<std::int64_t>(data_->size())));
}

void Stream::compress()
{
    if (dict_->get(names::Filter()))
        return;
    data_->setBytes(flate::compress(data_->bytes()));
    dict_->set(names::Filter(), names::FlateDecode());
    dict_->remove(*names::DecodeParms());
}

std::string Stream::decode() const
{
    const std::vector<FilterStep> steps = filterChain(*dict_);
    if (steps.empty())
        return data_->bytes();
    std::string bytes = undoStep(steps.front(), data_->bytes());
    for (std::size_t i = 1; i < steps.size(); ++i)
        bytes = undoStep(steps[i], bytes);
    return bytes;
}

void Stream::removeFilter()
{
    const std::vector<FilterStep> steps = filterChain(*dict_);
    if (steps.empty())
        return;
    data_->setBytes(undoStep(steps.front(), data_->bytes()));
    Object* filter = dict_->get(names::Filter());
    if (filter->asName()) {
        dict_->remove(*names::Filter());
        dict_->remove(*names::DecodeParms());
        return;
    }
    Object* parms = dict_->get(names::DecodeParms());
    Ptr<Object> restFilters = withoutFirst(filter->asArray());
    Ptr<Object> restParms = withoutFirst(isAbsent(parms) ? nullptr : parms->asArray());
    dict_->set(names::Filter(), restFilters);
    dict_->set(names::DecodeParms(), restFilters ? restParms : nullptr);
}

void Stream::write(Writer& out) const
{
    updateLength();
    dict_->write(out);
    out.write("\r\nstream\r\n");
    data_->write(out);
    out.write("\r\nendstream");
}

Ptr<Object> Stream::clone() const
{
    return make<Stream>(staticPtrCast<Dict>(dict_->clone()), staticPtrCast<StreamData>(data_->clone()));
}

bool Stream::equalsImpl(const Object& other, bool deep) const
{
    if (other.type() != Type::Stream)
        return false;
    const auto& that = static_cast<const Stream&>(other);
    return sameValue(dict_.get(), that.dict_.get(), deep) && sameValue(data_.get(), that.data_.get(), deep);
}

} // namespace zpdf
