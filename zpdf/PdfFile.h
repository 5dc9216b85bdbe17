#pragma once
// PdfFile: a document read from PDF bytes.
//
// Opening reads the header, the cross-reference sections and the trailer; the objects stay
// in the file until first use: a reference resolves by loading its object (and, for an
// object inside an object stream, every object of that stream) into the document's table,
// where it stays. loadAllObjects() loads the rest, which the writer does first. A file
// whose cross-reference data is missing or wrong is repaired by scanning it for objects.
// Object streams and cross-reference streams are the file's structure and are not
// objects of the document. Encrypted files are refused.

#include "zpdf/CrossReference.h"
#include "zpdf/Document.h"
#include "zpdf/NameTable.h"

#include "base/ZString.h"

#include <memory>
#include <string>
#include <vector>

namespace zpdf {

class PdfFile : public Document, private IndirectSource {
public:
    // Reads the file at `path`. Throws as the constructor does, and PdfException when the
    // file cannot be read.
    static std::unique_ptr<PdfFile> open(const ZString& path);

    // Takes the bytes of a whole file. Throws UnsupportedException for an encrypted file,
    // PdfException (naming the offset where it can) for a file that even repair cannot read.
    explicit PdfFile(std::string bytes);
    ~PdfFile() override;

    // Loads every object in use. Throws PdfException for an object that cannot be read
    // at its place nor found elsewhere in the file.
    void loadAllObjects() override;

    // True when the cross-reference data was rebuilt by scanning the file.
    bool wasRepaired() const { return repaired_; }
    // The trailer dictionary as read (for a cross-reference stream, its dictionary).
    const Dict& fileTrailer() const { return *fileTrailer_; }

private:
    // structure: an object stream or cross-reference stream, read but never entered.
    enum class State : std::uint8_t { unloaded, loading, settled, structure };

    Indirect* load(std::uint32_t number) override;
    void discard(std::uint32_t number) override;

    void readHeader();
    // Reads the cross-reference chain; false when it is unusable.
    bool readCrossReference();
    void repair();
    void adopt(CrossReference entries, Ptr<Dict> trailer, const std::vector<std::uint32_t>& structure);
    bool hasUsableRoot();
    void refuseEncryption() const;

    Indirect* loadCompressed(std::uint32_t number, const CrossReference::Entry& entry);
    // Object `number`, read where its entry says, else where the repair scan found it.
    Ptr<Indirect> readDirect(std::uint32_t number, const CrossReference::Entry& entry);
    // The indirect object at `offset`, which must be `number`. It is read up to the next
    // offset in `starts` only (objects do not overlap), so damaged objects cannot make
    // loading all of them quadratic in the file size.
    Ptr<Indirect> parseAt(std::uint64_t offset, std::uint32_t number, const std::vector<std::uint64_t>& starts);
    // The offset at which the repair scan found `number`, made on first need; 0 for none.
    std::uint64_t scannedOffset(std::uint32_t number);
    Indirect* enter(Ptr<Indirect> object);

    std::string bytes_;
    NameTable names_;
    CrossReference entries_;
    std::vector<State> states_;
    Ptr<Dict> fileTrailer_;
    std::vector<std::uint64_t> starts_; // entries_.directOffsets()
    std::unique_ptr<CrossReference> scanned_;
    std::vector<std::uint64_t> scannedStarts_;
    bool repaired_ = false;
    int depth_ = 0;
};

} // namespace zpdf
