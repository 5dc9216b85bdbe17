// Builds and writes the benchmark documents and prints time and peak memory.
//
// Without arguments it runs every case in a child process of its own (so that each peak
// memory figure belongs to one case), several times, and prints the fastest run of each.
// With a case name it runs that case once and prints one line.

#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Document.h"
#include "zpdf/FileWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/String.h"

#ifdef ZPDF_BENCH_PODOFO
#include <podofo/podofo.h>
#endif
#ifdef ZPDF_BENCH_QPDF
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <qpdf/QPDFWriter.hh>
#endif

#include <sys/resource.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int objectCount = 100000;
constexpr std::size_t streamSize = 50u * 1024 * 1024;
constexpr int runs = 3;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

long peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

long currentKilobytes()
{
    long pages = 0, resident = 0;
    if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(statm);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

std::string outputPath(const std::string& name)
{
    return (std::filesystem::temp_directory_path() / ("zpdf_bench_" + name + ".pdf")).string();
}

struct Result {
    double buildSeconds = 0;
    double writeSeconds = 0;
    std::size_t bytes = 0;
};

// --- zpdf -------------------------------------------------------------------------------

struct BenchNames {
    zpdf::Ptr<zpdf::Name> benchItem = zpdf::make<zpdf::Name>("BenchItem");
    zpdf::Ptr<zpdf::Name> items = zpdf::make<zpdf::Name>("BenchItems");
    zpdf::Ptr<zpdf::Name> label = zpdf::make<zpdf::Name>("Label");
    zpdf::Ptr<zpdf::Name> scale = zpdf::make<zpdf::Name>("Scale");
    zpdf::Ptr<zpdf::Name> flags = zpdf::make<zpdf::Name>("Flags");
    zpdf::Ptr<zpdf::Name> box = zpdf::make<zpdf::Name>("Box");
    zpdf::Ptr<zpdf::Name> alpha = zpdf::make<zpdf::Name>("Alpha");
    zpdf::Ptr<zpdf::Name> beta = zpdf::make<zpdf::Name>("Beta");
};

// Item i: << /Box [0 0 612.5 792] /Flags [1 2 3 /Alpha /Beta] /Index i /Label (Item i)
//            /Scale i*0.25 /Type /BenchItem >>, all listed in an array under the catalog.
void buildObjects(zpdf::Document& document)
{
    using namespace zpdf;
    const BenchNames n;
    Ptr<Array> list = make<Array>();
    document.catalog()->set(n.items, document.add(list));
    document.pages();
    char label[32];
    for (int i = 0; i < objectCount; ++i) {
        Ptr<Dict> item = make<Dict>();
        item->set(names::Type(), n.benchItem);
        item->set(names::Index(), make<Number>(i));
        item->set(n.scale, make<Number>(i * 0.25));
        const int length = std::snprintf(label, sizeof label, "Item %d", i);
        item->set(n.label, make<String>(std::string_view(label, length), StringMode::literal));
        Ptr<Array> flags = make<Array>();
        flags->append(make<Number>(1));
        flags->append(make<Number>(2));
        flags->append(make<Number>(3));
        flags->append(n.alpha);
        flags->append(n.beta);
        item->set(n.flags, flags);
        Ptr<Array> box = make<Array>();
        box->append(make<Number>(0));
        box->append(make<Number>(0));
        box->append(make<Number>(612.5));
        box->append(make<Number>(792));
        item->set(n.box, box);
        list->append(document.add(item));
    }
}

template <class Build>
Result runZpdf(Build build, bool toFile, const std::string& name)
{
    Result result;
    auto start = Clock::now();
    zpdf::Document document;
    build(document);
    result.buildSeconds = secondsSince(start);
    start = Clock::now();
    if (toFile) {
        zpdf::FileWriter out(ZString::fromUtf8(outputPath(name)));
        out.writeDocument(document);
        result.bytes = static_cast<std::size_t>(out.position());
        out.close();
    } else {
        zpdf::BufferWriter out;
        out.writeDocument(document);
        result.bytes = out.data().size();
    }
    result.writeSeconds = secondsSince(start);
    return result;
}

// An RGB image of 50 MB: smooth gradients with some noise, or pure noise.
std::string imageBytes(bool random)
{
    std::string bytes(streamSize, '\0');
    std::uint64_t state = 88172645463325252ull;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        const auto noise = static_cast<unsigned>(state >> 56);
        bytes[i] = static_cast<char>(random ? noise : ((i / 3) % 4096) / 16 + (noise & 0x03));
    }
    return bytes;
}

void buildStream(zpdf::Document& document, bool random)
{
    using namespace zpdf;
    const int width = 4096;
    const int height = static_cast<int>(streamSize / 3 / width);
    Ptr<Stream> image = make<Stream>(imageBytes(random));
    Dict* dict = image->dict();
    dict->set(names::Type(), names::XObject());
    dict->set(names::Subtype(), names::Image());
    dict->set(names::Width(), make<Number>(width));
    dict->set(names::Height(), make<Number>(height));
    dict->set(names::ColorSpace(), names::DeviceRGB());
    dict->set(names::BitsPerComponent(), make<Number>(8));
    image->compress();
    Ptr<Dict> xobjects = make<Dict>();
    xobjects->set(names::Image(), document.add(image));
    Ptr<Dict> resources = make<Dict>();
    resources->set(names::XObject(), xobjects);
    document.addPage(width * 0.75, height * 0.75, resources,
                     make<Stream>("q " + std::to_string(width * 0.75) + " 0 0 " + std::to_string(height * 0.75)
                                  + " 0 0 cm /Image Do Q"));
}

// --- PoDoFo -----------------------------------------------------------------------------

#ifdef ZPDF_BENCH_PODOFO
Result runPodofo(bool toFile, const std::string& name)
{
    using namespace PoDoFo;
    Result result;
    auto start = Clock::now();
    PdfMemDocument document;
    PdfVecObjects& objects = document.GetObjects();
    PdfObject* list = objects.CreateObject(PdfArray());
    document.GetCatalog()->GetDictionary().AddKey(PdfName("BenchItems"), list->Reference());
    char label[32];
    for (int i = 0; i < objectCount; ++i) {
        PdfObject* item = objects.CreateObject(PdfDictionary());
        PdfDictionary& dict = item->GetDictionary();
        dict.AddKey(PdfName("Type"), PdfName("BenchItem"));
        dict.AddKey(PdfName("Index"), PdfObject(static_cast<pdf_int64>(i)));
        dict.AddKey(PdfName("Scale"), PdfObject(i * 0.25));
        std::snprintf(label, sizeof label, "Item %d", i);
        dict.AddKey(PdfName("Label"), PdfString(label));
        PdfArray flags;
        flags.push_back(PdfObject(static_cast<pdf_int64>(1)));
        flags.push_back(PdfObject(static_cast<pdf_int64>(2)));
        flags.push_back(PdfObject(static_cast<pdf_int64>(3)));
        flags.push_back(PdfName("Alpha"));
        flags.push_back(PdfName("Beta"));
        dict.AddKey(PdfName("Flags"), flags);
        PdfArray box;
        box.push_back(PdfObject(static_cast<pdf_int64>(0)));
        box.push_back(PdfObject(static_cast<pdf_int64>(0)));
        box.push_back(PdfObject(612.5));
        box.push_back(PdfObject(static_cast<pdf_int64>(792)));
        dict.AddKey(PdfName("Box"), box);
        list->GetArray().push_back(item->Reference());
    }
    result.buildSeconds = secondsSince(start);
    start = Clock::now();
    if (toFile) {
        const std::string path = outputPath(name);
        document.Write(path.c_str());
        result.bytes = std::filesystem::file_size(path);
    } else {
        PdfRefCountedBuffer buffer;
        PdfOutputDevice device(&buffer);
        document.Write(&device);
        result.bytes = device.GetLength();
    }
    result.writeSeconds = secondsSince(start);
    return result;
}
#endif

// --- QPDF -------------------------------------------------------------------------------

#ifdef ZPDF_BENCH_QPDF
Result runQpdf(bool toFile, const std::string& name)
{
    Result result;
    auto start = Clock::now();
    QPDF pdf;
    pdf.emptyPDF();
    QPDFObjectHandle list = QPDFObjectHandle::newArray();
    for (int i = 0; i < objectCount; ++i) {
        QPDFObjectHandle item = QPDFObjectHandle::newDictionary();
        item.replaceKey("/Type", QPDFObjectHandle::newName("/BenchItem"));
        item.replaceKey("/Index", QPDFObjectHandle::newInteger(i));
        item.replaceKey("/Scale", QPDFObjectHandle::newReal(i * 0.25, 2, true));
        item.replaceKey("/Label", QPDFObjectHandle::newString("Item " + std::to_string(i)));
        QPDFObjectHandle flags = QPDFObjectHandle::newArray();
        flags.appendItem(QPDFObjectHandle::newInteger(1));
        flags.appendItem(QPDFObjectHandle::newInteger(2));
        flags.appendItem(QPDFObjectHandle::newInteger(3));
        flags.appendItem(QPDFObjectHandle::newName("/Alpha"));
        flags.appendItem(QPDFObjectHandle::newName("/Beta"));
        item.replaceKey("/Flags", flags);
        QPDFObjectHandle box = QPDFObjectHandle::newArray();
        box.appendItem(QPDFObjectHandle::newInteger(0));
        box.appendItem(QPDFObjectHandle::newInteger(0));
        box.appendItem(QPDFObjectHandle::newReal(612.5, 1));
        box.appendItem(QPDFObjectHandle::newInteger(792));
        item.replaceKey("/Box", box);
        list.appendItem(pdf.makeIndirectObject(item));
    }
    pdf.getRoot().replaceKey("/BenchItems", pdf.makeIndirectObject(list));
    result.buildSeconds = secondsSince(start);
    start = Clock::now();
    if (toFile) {
        const std::string path = outputPath(name);
        QPDFWriter writer(pdf, path.c_str());
        writer.write();
        result.bytes = std::filesystem::file_size(path);
    } else {
        QPDFWriter writer(pdf);
        writer.setOutputMemory();
        writer.write();
        result.bytes = writer.getBufferSharedPointer()->getSize();
    }
    result.writeSeconds = secondsSince(start);
    return result;
}
#endif

std::map<std::string, std::function<Result(const std::string&)>> cases()
{
    std::map<std::string, std::function<Result(const std::string&)>> all;
    all["zpdf-objects-memory"] = [](const std::string& n) { return runZpdf(buildObjects, false, n); };
    all["zpdf-objects-file"] = [](const std::string& n) { return runZpdf(buildObjects, true, n); };
    auto gradient = [](zpdf::Document& d) { buildStream(d, false); };
    auto noise = [](zpdf::Document& d) { buildStream(d, true); };
    all["zpdf-stream-memory"] = [gradient](const std::string& n) { return runZpdf(gradient, false, n); };
    all["zpdf-stream-file"] = [gradient](const std::string& n) { return runZpdf(gradient, true, n); };
    all["zpdf-noise-stream-memory"] = [noise](const std::string& n) { return runZpdf(noise, false, n); };
    all["zpdf-noise-stream-file"] = [noise](const std::string& n) { return runZpdf(noise, true, n); };
#ifdef ZPDF_BENCH_PODOFO
    all["podofo-objects-memory"] = [](const std::string& n) { return runPodofo(false, n); };
    all["podofo-objects-file"] = [](const std::string& n) { return runPodofo(true, n); };
#endif
#ifdef ZPDF_BENCH_QPDF
    all["qpdf-objects-memory"] = [](const std::string& n) { return runQpdf(false, n); };
    all["qpdf-objects-file"] = [](const std::string& n) { return runQpdf(true, n); };
#endif
    return all;
}

// Child: one run of one case; prints "seconds build write peakKB baseKB bytes".
int runCase(const std::string& name)
{
    const auto all = cases();
    const auto found = all.find(name);
    if (found == all.end()) {
        std::fprintf(stderr, "unknown case %s\n", name.c_str());
        return 2;
    }
    const long baseKb = currentKilobytes();
    const Result result = found->second(name);
    std::printf("%.4f %.4f %ld %ld %zu\n", result.buildSeconds, result.writeSeconds, peakKilobytes(), baseKb,
                result.bytes);
    std::filesystem::remove(outputPath(name));
    return 0;
}

struct Figures {
    double build = 0, write = 0;
    long peakKb = 0, baseKb = 0;
    std::size_t bytes = 0;
    double total() const { return build + write; }
};

bool runChild(const char* self, const std::string& name, Figures& figures)
{
    const std::string command = std::string("'") + self + "' " + name;
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return false;
    const int read = std::fscanf(pipe, "%lf %lf %ld %ld %zu", &figures.build, &figures.write, &figures.peakKb,
                                 &figures.baseKb, &figures.bytes);
    return pclose(pipe) == 0 && read == 5;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1)
        return runCase(argv[1]);

    std::printf("%d objects; stream %zu bytes; fastest of %d runs, each in its own process\n\n", objectCount,
                streamSize, runs);
    std::printf("%-26s %9s %9s %9s %11s %11s %12s\n", "case", "build s", "write s", "total s", "peak MB",
                "start MB", "output MB");
    std::map<std::string, Figures> best;
    for (const auto& entry : cases()) {
        const std::string& name = entry.first;
        for (int run = 0; run < runs; ++run) {
            Figures figures;
            if (!runChild(argv[0], name, figures)) {
                std::printf("%-26s failed\n", name.c_str());
                break;
            }
            if (run == 0 || figures.total() < best[name].total())
                best[name] = figures;
        }
        const Figures& f = best[name];
        std::printf("%-26s %9.3f %9.3f %9.3f %11.1f %11.1f %12.2f\n", name.c_str(), f.build, f.write, f.total(),
                    f.peakKb / 1024.0, f.baseKb / 1024.0, f.bytes / 1048576.0);
    }

    std::printf("\n");
    for (const char* target : {"memory", "file"}) {
        const std::string ours = std::string("zpdf-objects-") + target;
        for (const char* other : {"podofo", "qpdf"}) {
            const std::string theirs = std::string(other) + "-objects-" + target;
            if (best.count(ours) && best.count(theirs) && best[ours].total() > 0)
                std::printf("%s to %s: zpdf is %.1f times as fast as %s\n", "build and write", target,
                            best[theirs].total() / best[ours].total(), other);
        }
    }
    for (const char* name : {"zpdf-stream-memory", "zpdf-stream-file", "zpdf-noise-stream-memory",
                             "zpdf-noise-stream-file"})
        if (best.count(name))
            std::printf("%s: peak memory %.2f times the raw stream size (compressed to %.1f%%)\n", name,
                        best[name].peakKb * 1024.0 / streamSize, 100.0 * best[name].bytes / streamSize);
    return 0;
}
