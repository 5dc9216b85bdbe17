// Files made by other producers on this machine read the way qpdf reads them: the same
// objects with the same values, the same number of pages, the same catalog.
#include "WrittenDocument.h"

#include "zpdf/Array.h"
#include "zpdf/Bool.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Names.h"
#include "zpdf/Number.h"
#include "zpdf/PdfFile.h"
#include "zpdf/Stream.h"
#include "zpdf/String.h"
#include "zpdf/Tokenizer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#ifndef _WIN32
using namespace zpdf;
using zpdfTest::run;

namespace {

namespace fs = std::filesystem;

// The summary both sides give of a file: one line per object (structure streams left out)
// with its whole value, strings as their text when it is plain ASCII; then the page count
// and the catalog.
const char* const summaryScript = R"(
import json, sys
j = json.load(open(sys.argv[1]))
objs = j['qpdf'][1]
def show(v):
    if v is None: return 'null'
    if isinstance(v, bool): return str(v).lower()
    if isinstance(v, (int, float)): return '%g' % v
    if isinstance(v, list): return '[' + ' '.join(map(show, v)) + ']'
    if isinstance(v, dict): return '<<' + ' '.join(k + ' ' + show(v[k]) for k in sorted(v)) + '>>'
    if v[:2] in ('u:', 'b:'):
        t = v[2:] if v[:2] == 'u:' else ''
        return '(' + (t if t and all(32 <= ord(c) < 127 for c in t) else '?') + ')'
    return v
lines = []
for key, o in objs.items():
    if key == 'trailer': continue
    n = int(key.split()[0][4:])
    if 'stream' in o:
        d = o['stream']['dict']
        if d.get('/Type') not in ('/ObjStm', '/XRef'): lines.append((n, '%d stream %s' % (n, show(d))))
    else:
        lines.append((n, '%d %s' % (n, show(o['value']))))
for _, line in sorted(lines): print(line)
print('pages %d' % len(j['pages']))
print('root ' + objs['trailer']['value']['/Root'])
)";

std::string show(const Object* value)
{
    if (!value)
        return "null";
    char text[32];
    switch (value->type()) {
    case Type::Null: return "null";
    case Type::Bool: return static_cast<const Bool*>(value)->value() ? "true" : "false";
    case Type::Number: std::snprintf(text, sizeof text, "%g", static_cast<const Number*>(value)->value()); return text;
    case Type::Name: return "/" + static_cast<const Name*>(value)->bytes();
    case Type::Reference: {
        auto* reference = static_cast<const Reference*>(value);
        return std::to_string(reference->number()) + " " + std::to_string(reference->generation()) + " R";
    }
    case Type::Array: {
        std::string items;
        for (const Ptr<Object>& item : *static_cast<const Array*>(value))
            items += (items.empty() ? "" : " ") + show(item.get());
        return "[" + items + "]";
    }
    case Type::Dict: {
        std::string entries;
        for (const Dict::Entry& entry : *static_cast<const Dict*>(value))
            entries += (entries.empty() ? "/" : " /") + entry.key->bytes() + " " + show(entry.value.get());
        return "<<" + entries + ">>";
    }
    case Type::Stream: return "stream " + show(static_cast<const Stream*>(value)->dict());
    case Type::String: {
        // Its text when it is plain printable ASCII, as qpdf shows it.
        const std::string& raw = static_cast<const String*>(value)->serialized();
        const std::string bytes = raw[0] == '(' ? Tokenizer::decodeLiteral(raw) : Tokenizer::decodeHex(raw);
        for (const char c : bytes)
            if (c < 32 || c > 126)
                return "(?)";
        return bytes.empty() ? "(?)" : "(" + bytes + ")";
    }
    default: return "other";
    }
}

std::string ourSummary(PdfFile& file)
{
    file.loadAllObjects();
    std::string lines;
    for (const Ptr<Indirect>& object : file.objects().slots())
        if (object)
            lines += std::to_string(object->number()) + " " + show(object->value()) + "\n";
    return lines + "pages " + show(file.pages()->get(names::Count())) + "\nroot "
           + show(file.trailer().get(names::Root())) + "\n";
}

// Makes files with the tools in a fresh folder and compares each with qpdf's view; then
// writes what was read and expects the written file to be written again byte for byte.
TEST(ForeignFiles, ReadAsQpdfReadsThem)
{
    const fs::path folder = fs::path(zpdfTest::temporaryPath("_foreign"));
    fs::create_directories(folder);
    std::ofstream(folder / "summary.py") << summaryScript;
    std::ofstream(folder / "source.ps")
        << "%!PS\n/Helvetica findfont 24 scalefont setfont\n"
           "72 720 moveto (First page) show 72 700 moveto 500 100 lineto stroke showpage\n"
           "72 720 moveto (Second page \\(with brackets\\)) show showpage\n"
           "<< /PageSize [400 300] >> setpagedevice 20 20 moveto (Third, smaller) show showpage\n";
    const char* const commands[] = {
        "ps2pdf source.ps ghostscript.pdf",
        "qpdf --object-streams=disable ghostscript.pdf qpdf-plain.pdf",
        "qpdf --object-streams=generate ghostscript.pdf qpdf-objstm.pdf",
        "qpdf --linearize ghostscript.pdf qpdf-linear.pdf",
        "qpdf --linearize --object-streams=generate ghostscript.pdf qpdf-linear-objstm.pdf",
        "pdftocairo -pdf ghostscript.pdf cairo.pdf",
        "convert -size 64x48 gradient:red-blue picture.png && convert picture.png imagemagick.pdf",
        "img2pdf picture.png -o img2pdf.pdf",
        "convert -size 30x20 xc:green -alpha set -channel A -evaluate set 50% mask.png && img2pdf mask.png -o img2pdf-alpha.pdf",
    };
    for (const char* command : commands) {
        std::string output;
        ASSERT_EQ(run("cd '" + folder.string() + "' && " + command, output), 0) << command << "\n" << output;
        const std::string name = std::string(command).substr(std::string(command).rfind(' ') + 1);
        SCOPED_TRACE(name);
        const std::string path = (folder / name).string();
        std::string expected;
        ASSERT_EQ(run("qpdf --json --json-stream-data=none '" + path + "' > '" + path + ".json' && python3 '"
                          + (folder / "summary.py").string() + "' '" + path + ".json'",
                      expected),
                  0)
            << expected;
        PdfFile file(zpdfTest::readFile(path));
        EXPECT_FALSE(file.wasRepaired());
        EXPECT_EQ(ourSummary(file), expected);

        const std::string written = zpdfTest::writeChecked(file);
        PdfFile again(written);
        BufferWriter out;
        out.writeDocument(again);
        EXPECT_EQ(out.data(), written);
    }
    fs::remove_all(folder);
}

} // namespace
#endif
