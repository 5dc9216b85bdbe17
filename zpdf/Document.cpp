#include "zpdf/Document.h"

#include "zpdf/Array.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"

#include <cmath>

namespace zpdf {

namespace {

// Whole values are written as integers ("842"), others as reals.
Ptr<Number> numberOf(double value)
{
    if (std::trunc(value) == value && std::fabs(value) < 2147483648.0)
        return make<Number>(static_cast<int>(value));
    return make<Number>(value);
}

Ptr<Dict> newInfo() { return make<Dict>(); }

Ptr<Dict> newCatalog()
{
    Ptr<Dict> catalog = make<Dict>();
    catalog->set(names::Type(), names::Catalog());
    return catalog;
}

Ptr<Dict> newPages()
{
    Ptr<Dict> pages = make<Dict>();
    pages->set(names::Type(), names::Pages());
    pages->set(names::Kids(), make<Array>());
    pages->set(names::Count(), make<Number>(0));
    return pages;
}

} // namespace

Document::Document() : table_(std::make_shared<IndirectTable>()), trailer_(make<Dict>()) {}

Document::~Document() = default;

Ptr<Reference> Document::makeReference(const Indirect& object) const
{
    return make<Reference>(object.number(), object.generation(), std::weak_ptr<const IndirectTable>(table_));
}

Ptr<Reference> Document::add(Ptr<Object> value)
{
    const std::uint32_t number = highestNumber() + 1;
    if (number == 0 || number >= maxListElements)
        throw PdfException("list too long");
    return put(number, 0, std::move(value));
}

Ptr<Reference> Document::put(std::uint32_t number, std::uint16_t generation, Ptr<Object> value)
{
    if (number == 0)
        throw PdfException("Document: object number 0 is reserved");
    Ptr<Indirect>& slot = table_->slot(number);
    slot = make<Indirect>(number, generation, std::move(value));
    return makeReference(*slot);
}

bool Document::remove(std::uint32_t number) { return table_->erase(number); }

Ptr<Reference> Document::referenceTo(std::uint32_t number) const
{
    const Indirect* target = object(number);
    if (!target)
        throw PdfException("Document: no object " + std::to_string(number));
    return makeReference(*target);
}

Dict* Document::ensureDict(Dict& owner, const Ptr<Name>& key, Ptr<Dict> (*create)())
{
    if (Object* entry = owner.get(key))
        if (Dict* existing = entry->asDict())
            return existing;
    Ptr<Dict> made = create();
    owner.set(key, add(made));
    return made.get();
}

Dict* Document::info() { return ensureDict(*trailer_, names::Info(), newInfo); }

Dict* Document::catalog() { return ensureDict(*trailer_, names::Root(), newCatalog); }

Dict* Document::pages() { return ensureDict(*catalog(), names::Pages(), newPages); }

Ptr<Reference> Document::addPage(double width, double height, Ptr<Dict> resources, Ptr<Stream> contents)
{
    Dict* tree = pages();
    Ptr<Dict> page = make<Dict>();
    page->set(names::Type(), names::Page());
    Object* parent = catalog()->get(names::Pages());
    if (parent->type() != Type::Reference)
        throw PdfException("Document: the Pages tree is not an indirect object");
    page->set(names::Parent(), parent->clone());
    Ptr<Array> mediaBox = make<Array>();
    mediaBox->append(make<Number>(0));
    mediaBox->append(make<Number>(0));
    mediaBox->append(numberOf(width));
    mediaBox->append(numberOf(height));
    page->set(names::MediaBox(), mediaBox);
    page->set(names::Resources(), resources ? Ptr<Object>(resources) : Ptr<Object>(make<Dict>()));
    if (contents)
        page->set(names::Contents(), add(contents));
    Ptr<Reference> pageRef = add(page);

    Object* kidsEntry = tree->get(names::Kids());
    Array* kids = kidsEntry ? kidsEntry->asArray() : nullptr;
    if (!kids) {
        Ptr<Array> made = make<Array>();
        tree->set(names::Kids(), made);
        kids = made.get();
    }
    kids->append(pageRef);
    Object* countEntry = tree->get(names::Count());
    const int count = countEntry && countEntry->asNumber() ? countEntry->asNumber()->intValue() : 0;
    tree->set(names::Count(), make<Number>(count + 1));
    return pageRef;
}

} // namespace zpdf
