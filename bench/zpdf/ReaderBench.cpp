// Opens a large generated PDF file and loads every object, with the zpdf reader and with
// QPDF, and prints time and peak memory of each.
//
// Without arguments it generates the input files (a document of many pages written by
// zpdf, then rewritten by qpdf once with a classic cross-reference table and once with
// object streams), runs every case in a child process of its own (so that each peak memory
// figure belongs to one case) several times, and prints the fastest run of each. With a
// case name and a file it runs that case once and prints one line.

#include "zpdf/Array.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/FileWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfFile.h"
#include "zpdf/String.h"

#ifdef ZPDF_BENCH_QPDF
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#endif

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int pageCount = 12000;
constexpr int annotationsPerPage = 6;
constexpr int runs = 3;

using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

long peakKilobytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

fs::path benchPath(const char* name) { return fs::temp_directory_path() / (std::string("zpdf_reader_bench_") + name); }

// The source document: pages with a contents stream of text and drawing operators, shared
// font resources and link annotations, each annotation an object of its own.
void writeSource(const fs::path& path)
{
    using namespace zpdf;
    Document document;
    Ptr<Dict> font = make<Dict>();
    font->set(names::Type(), names::Font());
    font->set(names::Subtype(), names::Type0());
    Ptr<Dict> fonts = make<Dict>();
    fonts->set(names::F(), document.add(font));
    Ptr<Dict> resources = make<Dict>();
    resources->set(names::Font(), fonts);
    Ptr<Reference> sharedResources = document.add(resources);
    char line[160];
    for (int p = 0; p < pageCount; ++p) {
        std::string text;
        for (int row = 0; row < 14; ++row) {
            const int length = std::snprintf(line, sizeof line, "BT /F 11 Tf %d %d Td (Page %d, line %d of the benchmark) Tj ET\n"
                                                                "%d.5 %d.25 m %d %d l S\n",
                                             72, 760 - row * 40, p, row, 70 + row, 750 - row * 40, 540, 750 - row * 40);
            text.append(line, static_cast<std::size_t>(length));
        }
        Ptr<Reference> page = document.addPage(595.28, 841.89, nullptr, make<Stream>(std::move(text)));
        Dict* pageDict = page->asDict();
        pageDict->set(names::Resources(), sharedResources);
        Ptr<Array> annotations = make<Array>();
        for (int a = 0; a < annotationsPerPage; ++a) {
            Ptr<Dict> annotation = make<Dict>();
            annotation->set(names::Type(), names::Annot());
            annotation->set(names::Subtype(), names::Text());
            Ptr<Array> rect = make<Array>();
            for (const double value : {72.0 + a * 20, 100.5, 90.0 + a * 20, 118.25})
                rect->append(make<Number>(value));
            annotation->set(names::Rect(), rect);
            annotation->set(names::P(), page);
            const int length = std::snprintf(line, sizeof line, "Note %d on page %d", a, p);
            annotation->set(names::Contents(), make<String>(std::string_view(line, static_cast<std::size_t>(length)), StringMode::literal));
            Ptr<Array> border = make<Array>();
            for (const int value : {0, 0, 1})
                border->append(make<Number>(value));
            annotation->set(names::Border(), border);
            annotations->append(document.add(annotation));
        }
        pageDict->set(names::Annots(), annotations);
    }
    FileWriter out(ZString::fromUtf8(path.string()));
    out.writeDocument(document);
    out.close();
}

bool run(const std::string& command)
{
    if (std::system(command.c_str()) == 0)
        return true;
    std::fprintf(stderr, "failed: %s\n", command.c_str());
    return false;
}

struct Result {
    double seconds = 0;
    std::size_t objects = 0;
};

Result readWithZpdf(const char* file)
{
    const auto start = Clock::now();
    std::unique_ptr<zpdf::PdfFile> pdf = zpdf::PdfFile::open(ZString::fromUtf8(file));
    pdf->loadAllObjects();
    return {std::chrono::duration<double>(Clock::now() - start).count(), pdf->objects().count()};
}

#ifdef ZPDF_BENCH_QPDF
// Every object resolved; with `streamData`, every stream's bytes read into memory too, as
// the zpdf reader holds them.
Result readWithQpdf(const char* file, bool streamData)
{
    const auto start = Clock::now();
    QPDF pdf;
    pdf.processFile(file);
    std::vector<QPDFObjectHandle> objects = pdf.getAllObjects();
    std::vector<std::shared_ptr<Buffer>> data;
    if (streamData)
        for (QPDFObjectHandle& object : objects)
            if (object.isStream())
                data.push_back(object.getRawStreamData());
    return {std::chrono::duration<double>(Clock::now() - start).count(), objects.size()};
}
#endif

int runCase(const char* name, const char* file)
{
    Result result;
    if (std::strcmp(name, "zpdf") == 0)
        result = readWithZpdf(file);
#ifdef ZPDF_BENCH_QPDF
    else if (std::strcmp(name, "qpdf") == 0)
        result = readWithQpdf(file, true);
    else if (std::strcmp(name, "qpdf-objects-only") == 0)
        result = readWithQpdf(file, false);
#endif
    else
        return 2;
    std::printf("%f %ld %zu\n", result.seconds, peakKilobytes(), result.objects);
    return 0;
}

struct Figures {
    double seconds = 1e9;
    long peakKb = 0;
    std::size_t objects = 0;
};

bool runChild(const char* self, const char* name, const fs::path& file, Figures& best)
{
    const std::string command = std::string("'") + self + "' " + name + " '" + file.string() + "'";
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return false;
    Figures run;
    const bool read = std::fscanf(pipe, "%lf %ld %zu", &run.seconds, &run.peakKb, &run.objects) == 3;
    if (pclose(pipe) != 0 || !read)
        return false;
    if (run.seconds < best.seconds)
        best = run;
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3)
        return runCase(argv[1], argv[2]);

    const fs::path source = benchPath("source.pdf");
    const fs::path classic = benchPath("classic.pdf");
    const fs::path objstm = benchPath("objstm.pdf");
    writeSource(source);
    if (!run("qpdf --object-streams=disable --compress-streams=n '" + source.string() + "' '" + classic.string() + "'")
        || !run("qpdf --object-streams=generate --compress-streams=n '" + source.string() + "' '" + objstm.string() + "'"))
        return 1;

    std::vector<const char*> cases{"zpdf"};
#ifdef ZPDF_BENCH_QPDF
    cases.push_back("qpdf");
    cases.push_back("qpdf-objects-only");
#endif
    std::printf("Open and load every object; fastest of %d runs, peak memory of that run's process.\n", runs);
    for (const fs::path& file : {classic, objstm}) {
        std::printf("\n%s: %.1f MB\n", file.filename().string().c_str(), fs::file_size(file) / 1048576.0);
        std::printf("  %-20s %10s %12s %10s\n", "reader", "seconds", "peak MB", "objects");
        for (const char* name : cases) {
            Figures best;
            for (int i = 0; i < runs; ++i)
                if (!runChild(argv[0], name, file, best)) {
                    std::fprintf(stderr, "%s failed on %s\n", name, file.string().c_str());
                    return 1;
                }
            std::printf("  %-20s %10.3f %12.1f %10zu\n", name, best.seconds, best.peakKb / 1024.0, best.objects);
        }
    }
    std::printf("\nzpdf holds every stream's bytes; \"qpdf\" reads them too, \"qpdf-objects-only\" leaves them in the file.\n");
    for (const fs::path& file : {source, classic, objstm})
        fs::remove(file);
    return 0;
}
