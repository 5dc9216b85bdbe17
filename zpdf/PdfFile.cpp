#include "zpdf/PdfFile.h"

#include "zpdf/Names.h"
#include "zpdf/ObjectParser.h"
#include "zpdf/ObjectStream.h"
#include "zpdf/OpenFile.h"
#include "zpdf/PdfException.h"
#include "zpdf/Repair.h"
#include "zpdf/Stream.h"
#include "zpdf/XRefParser.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <exception>

namespace zpdf {

namespace {

// "%PDF-" is looked for in this many bytes at the start, after any leading garbage.
constexpr std::size_t headerWindow = 1024;
// The most objects a PDF file may have, and so the highest number read plus one.
constexpr std::uint64_t maxObjects = 8388608;
// A file cannot describe more objects than this many per byte of its own.
constexpr std::uint64_t maxObjectsPerByte = 64;
// Loading an object can load others (a stream's Length, an object stream); deeper chains
// than this are refused rather than exhausting the call stack.
constexpr int maxLoadDepth = 32;

std::uint32_t numberLimit(std::size_t fileSize)
{
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(maxObjects, maxObjectsPerByte * fileSize + 1024));
}

std::string readWholeFile(const ZString& path)
{
    const FilePtr owner = openFile(path, "rb");
    std::FILE* file = owner.get();
    if (!file)
        throw PdfException("PdfFile: cannot open \"" + path.toUtf8() + "\"");
    std::string bytes;
    char piece[65536];
    // Sized first, so the buffer is allocated once at its final size.
#ifdef _WIN32
    const bool sized = _fseeki64(file, 0, SEEK_END) == 0;
    const long long size = sized ? _ftelli64(file) : -1;
#else
    const bool sized = fseeko(file, 0, SEEK_END) == 0;
    const long long size = sized ? static_cast<long long>(ftello(file)) : -1;
#endif
    std::rewind(file);
    if (size > 0)
        bytes.reserve(static_cast<std::size_t>(size));
    for (std::size_t got; (got = std::fread(piece, 1, sizeof piece, file)) > 0;)
        bytes.append(piece, got);
    if (std::ferror(file) != 0)
        throw PdfException("PdfFile: cannot read \"" + path.toUtf8() + "\"");
    return bytes;
}

// Restores the load depth however a load ends.
struct DepthGuard {
    int& depth;
    explicit DepthGuard(int& d) : depth(++d) {}
    ~DepthGuard() { --depth; }
};

} // namespace

std::unique_ptr<PdfFile> PdfFile::open(const ZString& path) { return std::make_unique<PdfFile>(readWholeFile(path)); }

PdfFile::PdfFile(std::string bytes) : bytes_(std::move(bytes)), entries_(numberLimit(bytes_.size()))
{
    readHeader();
    if (!readCrossReference() || !hasUsableRoot())
        repair();
    refuseEncryption();
    for (const Ptr<Name>* key : {&names::Root(), &names::Info(), &names::ID()})
        if (Object* value = fileTrailer_->get(*key))
            trailer().set(*key, Ptr<Object>(value));
}

PdfFile::~PdfFile() { table()->setSource(nullptr, 0); }

void PdfFile::readHeader()
{
    // header := '%PDF-' version, within the first bytes of the file
    const std::size_t at = std::string_view(bytes_).substr(0, headerWindow).find("%PDF-");
    if (at == std::string_view::npos)
        throw PdfException("Not a PDF file: no \"%PDF-\" header");
    std::size_t end = at + 5;
    while (end < bytes_.size() && end - at < 16 && (std::isdigit(static_cast<unsigned char>(bytes_[end])) || bytes_[end] == '.'))
        ++end;
    if (end > at + 5)
        setVersion(bytes_.substr(at + 5, end - at - 5));
}

bool PdfFile::readCrossReference()
{
    try {
        XRefParser parser(bytes_, names_, table());
        CrossReference entries(entries_.limit());
        Ptr<Dict> trailer = parser.readChain(XRefParser::findStartXRef(bytes_), entries);
        adopt(std::move(entries), std::move(trailer), parser.streamNumbers());
        return true;
    } catch (const PdfException&) {
        return false; // repaired by scanning
    }
}

void PdfFile::adopt(CrossReference entries, Ptr<Dict> trailer, const std::vector<std::uint32_t>& structure)
{
    entries_ = std::move(entries);
    states_.assign(entries_.size(), State::unloaded);
    for (const std::uint32_t number : structure)
        if (number < states_.size())
            states_[number] = State::structure;
    // Known before any object is loaded, so an object stream is never taken for content.
    for (std::uint32_t number = 0; number < entries_.size(); ++number) {
        const CrossReference::Entry& entry = entries_.at(number);
        if (entry.kind == CrossReference::Kind::compressed && entry.offset < states_.size())
            states_[static_cast<std::size_t>(entry.offset)] = State::structure;
    }
    starts_ = entries_.directOffsets();
    fileTrailer_ = std::move(trailer);
    table()->setSource(this, entries_.isEmpty() ? 0 : entries_.size() - 1);
}

bool PdfFile::hasUsableRoot()
{
    try {
        Object* root = fileTrailer_->get(names::Root());
        return root && root->asDict();
    } catch (const PdfException&) {
        return false;
    }
}

void PdfFile::repair()
{
    // Objects loaded through the unusable cross-reference data may be wrong ones.
    table()->setSource(nullptr, 0);
    for (std::uint32_t number = table()->highestNumber(); number > 0; --number)
        table()->erase(number);
    Repair scan(bytes_, names_, table(), entries_.limit());
    if (!scan.trailer())
        throw PdfException("Damaged file: neither a trailer nor a document catalog found");
    adopt(std::move(scan.entries()), scan.trailer(), scan.structureNumbers());
    repaired_ = true;
    if (!hasUsableRoot())
        throw PdfException("Damaged file: the document catalog cannot be read");
}

void PdfFile::refuseEncryption() const
{
    if (fileTrailer_->get(names::Encrypt()))
        throw UnsupportedException("Encrypted PDF files are not supported");
}

void PdfFile::loadAllObjects()
{
    for (std::uint32_t number = 1; number < entries_.size(); ++number)
        if (states_[number] == State::unloaded && entries_.at(number).inUse())
            table()->find(number);
}

void PdfFile::discard(std::uint32_t number)
{
    if (number < states_.size())
        states_[number] = State::settled;
}

Indirect* PdfFile::load(std::uint32_t number)
{
    if (number == 0 || number >= states_.size() || states_[number] != State::unloaded)
        return nullptr;
    const CrossReference::Entry entry = entries_.at(number);
    if (!entry.inUse()) {
        states_[number] = State::settled;
        return nullptr;
    }
    if (depth_ >= maxLoadDepth)
        throw PdfException("Objects depend on each other too deeply to load object " + std::to_string(number));
    DepthGuard guard(depth_);
    states_[number] = State::loading;
    if (entry.kind == CrossReference::Kind::compressed)
        return loadCompressed(number, entry);
    Ptr<Indirect> object;
    try {
        object = readDirect(number, entry);
    } catch (const PdfException&) {
        states_[number] = State::settled;
        throw;
    }
    return enter(std::move(object));
}

Ptr<Indirect> PdfFile::readDirect(std::uint32_t number, const CrossReference::Entry& entry)
{
    std::exception_ptr failure;
    try {
        return parseAt(entry.offset, number, starts_);
    } catch (const PdfException&) {
        failure = std::current_exception();
    }
    const std::uint64_t found = scannedOffset(number);
    if (found == 0 || found == entry.offset)
        std::rethrow_exception(failure);
    return parseAt(found, number, scannedStarts_);
}

Ptr<Indirect> PdfFile::parseAt(std::uint64_t offset, std::uint32_t number, const std::vector<std::uint64_t>& starts)
{
    if (offset >= bytes_.size())
        throw PdfException("Object " + std::to_string(number) + " lies beyond the end of the file" + atOffset(offset));
    const auto next = std::upper_bound(starts.begin(), starts.end(), offset);
    const std::size_t end = next == starts.end() ? bytes_.size() : static_cast<std::size_t>(*next);
    Tokenizer tokens(std::string_view(bytes_).substr(0, end), static_cast<std::size_t>(offset));
    ObjectParser parser(tokens, names_, table());
    Ptr<Indirect> object = parser.parseIndirect();
    if (object->number() != number)
        throw PdfException("Object " + std::to_string(number) + " expected, object " + std::to_string(object->number())
                           + " found" + atOffset(offset));
    return object;
}

std::uint64_t PdfFile::scannedOffset(std::uint32_t number)
{
    if (repaired_)
        return 0; // the entries are the scan's already
    if (!scanned_) {
        // Lengths met during the scan are measured, not loaded through the faulty entries.
        table()->setSource(nullptr, 0);
        NameTable names;
        Repair scan(bytes_, names, {}, entries_.limit());
        scanned_ = std::make_unique<CrossReference>(std::move(scan.entries()));
        scannedStarts_ = scanned_->directOffsets();
        table()->setSource(this, entries_.isEmpty() ? 0 : entries_.size() - 1);
    }
    const CrossReference::Entry& entry = scanned_->at(number);
    return entry.kind == CrossReference::Kind::direct ? entry.offset : 0;
}

Indirect* PdfFile::loadCompressed(std::uint32_t number, const CrossReference::Entry& entry)
{
    // Every object of the stream is loaded at once, so the stream is decoded only once.
    const auto streamNumber = static_cast<std::uint32_t>(entry.offset);
    const bool readable = streamNumber < states_.size() && states_[streamNumber] == State::structure
                          && entries_.at(streamNumber).kind == CrossReference::Kind::direct;
    states_[number] = State::settled;
    if (!readable)
        throw PdfException("Object " + std::to_string(number) + " is in object stream " + std::to_string(streamNumber)
                           + ", which cannot be read");
    const CrossReference::Entry streamEntry = entries_.at(streamNumber);
    states_[number] = State::loading;
    states_[streamNumber] = State::loading;
    std::exception_ptr failure;
    try {
        Ptr<Indirect> holder = readDirect(streamNumber, streamEntry);
        Object* value = holder->value();
        if (value->type() != Type::Stream)
            throw PdfException("Object stream " + std::to_string(streamNumber) + " is no stream"
                               + atOffset(streamEntry.offset));
        const ObjectStream stream(*static_cast<Stream*>(value), bytes_.size(), streamEntry.offset);
        for (std::size_t i = 0; i < stream.count(); ++i) {
            const std::uint32_t member = stream.number(i);
            const CrossReference::Entry& memberEntry = entries_.at(member);
            if (member >= states_.size() || (states_[member] != State::unloaded && member != number)
                || memberEntry.kind != CrossReference::Kind::compressed || memberEntry.offset != streamNumber)
                continue; // another place has the newer object of this number
            try {
                enter(make<Indirect>(member, 0, stream.parse(i, names_, table())));
            } catch (const PdfException&) {
                states_[member] = State::settled;
                if (member == number)
                    failure = std::current_exception();
            }
        }
    } catch (const PdfException&) {
        failure = std::current_exception();
    }
    states_[streamNumber] = State::structure;
    if (states_[number] == State::loading)
        states_[number] = State::settled;
    if (failure)
        std::rethrow_exception(failure);
    Indirect* found = table()->find(number);
    if (!found)
        throw PdfException("Object " + std::to_string(number) + " is not in object stream " + std::to_string(streamNumber)
                           + atOffset(streamEntry.offset));
    return found;
}

Indirect* PdfFile::enter(Ptr<Indirect> object)
{
    Ptr<Indirect>& slot = table()->slot(object->number());
    slot = std::move(object);
    return slot.get();
}

} // namespace zpdf
