#pragma once
// Document: the numbered indirect objects of one PDF file, its version and the trailer
// source from which the writer takes ID, Info, Root and Encrypt.
//
// The document owns its objects. References it hands out resolve through it while it
// lives and to null afterwards. Built and written by one thread.

#include "zpdf/Dict.h"
#include "zpdf/IndirectTable.h"
#include "zpdf/Reference.h"
#include "zpdf/Stream.h"

#include <memory>
#include <string>

namespace zpdf {

class Document {
public:
    // A new, empty document of version "1.4".
    Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    virtual ~Document();

    const std::string& version() const { return version_; }
    void setVersion(std::string version) { version_ = std::move(version); }

    // Adds `value` as a new object numbered one above the highest, generation 0. The
    // caller owns the returned reference; the document owns the object.
    Ptr<Reference> add(Ptr<Object> value);
    // Adds or replaces the object with this number.
    Ptr<Reference> put(std::uint32_t number, std::uint16_t generation, Ptr<Object> value);
    bool remove(std::uint32_t number);
    // Borrowed; null when absent.
    Indirect* object(std::uint32_t number) const { return table_->find(number); }
    // A reference to an existing object; throws PdfException when there is none.
    Ptr<Reference> referenceTo(std::uint32_t number) const;
    // The objects by number.
    const IndirectTable& objects() const { return *table_; }
    std::uint32_t highestNumber() const { return table_->highestNumber(); }

    // The trailer source; the writer copies its ID, Info, Root and Encrypt entries.
    Dict& trailer() { return *trailer_; }

    // The document information dictionary, made (as an object entered as Info) on first
    // use. Borrowed.
    Dict* info();
    void setInfo(const Ptr<Name>& key, Ptr<Object> value) { info()->set(key, std::move(value)); }

    // The catalog entered as Root and its Pages tree, made on first use. Borrowed.
    Dict* catalog();
    Dict* pages();
    // Adds a page of width x height points at the end of the Pages tree: a page dictionary
    // with Type, Parent, MediaBox [0 0 width height], Resources (an empty dictionary when
    // null) and Contents (omitted when null), the contents stream being an object of its
    // own. Returns the page's reference; the document owns the page.
    Ptr<Reference> addPage(double width, double height, Ptr<Dict> resources, Ptr<Stream> contents);

    // Brings every object into memory before writing. A document made here has all of
    // them already; a document read from a file overrides this.
    virtual void loadAllObjects() {}

protected:
    // The object table, for a document that loads its objects from a file.
    const std::shared_ptr<IndirectTable>& table() const { return table_; }

private:
    Ptr<Reference> makeReference(const Indirect& object) const;
    // The dictionary that `key` of `owner` refers to, made by `create` and entered when absent.
    Dict* ensureDict(Dict& owner, const Ptr<Name>& key, Ptr<Dict> (*create)());

    std::shared_ptr<IndirectTable> table_;
    std::string version_ = "1.4";
    Ptr<Dict> trailer_;
};

} // namespace zpdf
