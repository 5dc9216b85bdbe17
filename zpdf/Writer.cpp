#include "zpdf/Writer.h"

#include "zpdf/Document.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/StartXRef.h"
#include "zpdf/Trailer.h"
#include "zpdf/XRef.h"

#include <charconv>

namespace zpdf {

namespace {

// "%" and the UTF-8 encoding of "âãÏÓ": marks the file as binary for transfer programs.
constexpr char binaryComment[] = "%\xC3\xA2\xC3\xA3\xC3\x8F\xC3\x93\r\n";

} // namespace

Writer::Writer() : buffer_(new char[capacity]) {}

Writer::~Writer() = default;

void Writer::write(const Object& object) { object.write(*this); }

void Writer::writeInt(std::int64_t value)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    write(std::string_view(digits, end - digits));
}

void Writer::flush()
{
    if (used_ == 0)
        return;
    const std::size_t size = used_;
    used_ = 0;
    flushed_ += static_cast<std::int64_t>(size);
    sink(buffer_.get(), size);
}

void Writer::writeLarge(std::string_view bytes)
{
    flush();
    if (bytes.size() >= capacity) {
        // Handed over directly instead of being copied through the staging buffer.
        flushed_ += static_cast<std::int64_t>(bytes.size());
        sink(bytes.data(), bytes.size());
        return;
    }
    write(bytes);
}

void Writer::writeDocument(Document& document)
{
    document.loadAllObjects();

    write("%PDF-");
    write(document.version());
    write("\r\n");
    write(std::string_view(binaryComment, sizeof binaryComment - 1));

    Ptr<XRef> xref = make<XRef>();
    for (const Ptr<Indirect>& object : document.objects().slots()) {
        if (!object)
            continue;
        xref->add(XRef::Entry{object->number(), object->generation(), position(), true});
        object->write(*this);
        write("\r\n");
    }
    xref->addFreeEntries();

    const std::int64_t xrefOffset = position();
    xref->write(*this);

    Ptr<Trailer> trailer = make<Trailer>();
    trailer->set(names::Size(), make<Number>(xref->size()));
    const Dict& source = document.trailer();
    for (const Ptr<Name>* key : {&names::ID(), &names::Info(), &names::Root(), &names::Encrypt()})
        if (Object* value = source.get(*key))
            trailer->set(*key, Ptr<Object>(value));
    trailer->write(*this);

    make<StartXRef>(xrefOffset)->write(*this);
    flush();
}

} // namespace zpdf
