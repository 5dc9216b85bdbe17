#include "zpdf/Dict.h"

#include "zpdf/Array.h"
#include "zpdf/PdfException.h"
#include "zpdf/Writer.h"

#include <algorithm>

namespace zpdf {

namespace {

constexpr std::size_t initialCapacity = 8;

} // namespace

Dict::Entries::const_iterator Dict::lowerBound(std::string_view key) const
{
    return std::lower_bound(entries_.begin(), entries_.end(), key, [](const Entry& entry, std::string_view k) {
        return AbstractName::less(entry.key->bytes(), k);
    });
}

void Dict::set(const Ptr<Name>& key, Ptr<Object> value)
{
    if (!key)
        throw PdfException("Dict::set: null key");
    if (!value) {
        remove(key->bytes());
        return;
    }
    const auto at = lowerBound(key->bytes());
    if (at != entries_.end() && at->key->bytes() == key->bytes()) {
        entries_[at - entries_.begin()] = Entry{key, std::move(value)};
        return;
    }
    if (entries_.size() >= maxListElements)
        throw PdfException("list too long");
    if (entries_.empty()) {
        // Most dictionaries hold a handful of entries: one allocation instead of four.
        entries_.reserve(initialCapacity);
        entries_.push_back(Entry{key, std::move(value)});
        return;
    }
    entries_.insert(at, Entry{key, std::move(value)});
}

bool Dict::remove(std::string_view key)
{
    const auto at = lowerBound(key);
    if (at == entries_.end() || at->key->bytes() != key)
        return false;
    entries_.erase(at);
    return true;
}

Object* Dict::get(std::string_view key) const
{
    const auto at = lowerBound(key);
    return at != entries_.end() && at->key->bytes() == key ? at->value.get() : nullptr;
}

void Dict::write(Writer& out) const
{
    out.write("<<\r\n");
    for (const Entry& entry : entries_) {
        entry.key->write(out);
        out.put(' ');
        entry.value->write(out);
        out.write("\r\n");
    }
    out.write(">>");
}

void Dict::cloneInto(Dict& target) const
{
    target.entries_.reserve(entries_.size());
    for (const Entry& entry : entries_)
        target.entries_.push_back(Entry{entry.key, entry.value->clone()});
}

Ptr<Object> Dict::clone() const
{
    Ptr<Dict> copy = make<Dict>();
    cloneInto(*copy);
    return copy;
}

bool Dict::equalsImpl(const Object& other, bool deep) const
{
    if (other.type() != type())
        return false;
    const Entries& theirs = static_cast<const Dict&>(other).entries_;
    if (theirs.size() != entries_.size())
        return false;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].key->bytes() != theirs[i].key->bytes())
            return false;
        if (!sameValue(entries_[i].value.get(), theirs[i].value.get(), deep))
            return false;
    }
    return true;
}

} // namespace zpdf
