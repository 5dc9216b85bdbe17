#pragma once
// Dict: a map from Name to object pointer, kept in key order (AbstractName::compare), so
// it is written and iterated in that order.

#include "zpdf/Name.h"
#include "zpdf/Object.h"

#include <string_view>
#include <vector>

namespace zpdf {

class Dict : public Object {
    ZPDF_MAKEABLE
public:
    struct Entry {
        Ptr<Name> key;
        Ptr<Object> value;
    };
    using Entries = std::vector<Entry>;

    int size() const { return static_cast<int>(entries_.size()); }
    bool isEmpty() const { return entries_.empty(); }

    // Replaces an existing entry with the same key bytes; a null value removes the entry.
    // set() and remove() invalidate iterators and borrowed entry references.
    void set(const Ptr<Name>& key, Ptr<Object> value);
    bool remove(std::string_view key);
    bool remove(const Name& key) { return remove(key.bytes()); }

    // The value, or null when absent. Borrowed.
    Object* get(std::string_view key) const;
    Object* get(const Name& key) const { return get(key.bytes()); }
    Object* get(const Ptr<Name>& key) const { return get(key->bytes()); }
    bool contains(const Ptr<Name>& key) const { return get(key) != nullptr; }

    const Entries& entries() const { return entries_; }
    Entries::const_iterator begin() const { return entries_.begin(); }
    Entries::const_iterator end() const { return entries_.end(); }

    void write(Writer& out) const override;
    Ptr<Object> clone() const override;

protected:
    Dict() : Object(Type::Dict) {}
    explicit Dict(Type type) : Object(type) {}
    bool equalsImpl(const Object& other, bool deep) const override;
    // Copies the entries into `target`, cloning the values.
    void cloneInto(Dict& target) const;

private:
    Entries::const_iterator lowerBound(std::string_view key) const;

    Entries entries_;
};

} // namespace zpdf
