// Files made by other producers on this machine read the way qpdf reads them: the same
// objects of the same kinds and keys, the same pages, the same values.
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
#include <set>
#include <sstream>

#ifndef _WIN32
#include <sys/wait.h>

using namespace zpdf;

namespace {

namespace fs = std::filesystem;

// The summary both sides give of a file: one line per object (structure streams left out),
// then the pages, the catalog, the page boxes and the plain-text information entries.
const char* const summaryScript = R"(
import json, re, sys
j = json.load(open(sys.argv[1]))
objs = j['qpdf'][1]
def text(v):
    return v[2:] if v.startswith('u:') and all(32 <= ord(c) < 127 for c in v[2:]) else None
def kind(v):
    if v is None: return 'null'
    if isinstance(v, bool): return 'bool ' + str(v).lower()
    if isinstance(v, (int, float)): return 'number %g' % v
    if isinstance(v, list): return 'array %d' % len(v)
    if isinstance(v, dict): return 'dict ' + ' '.join(sorted(v))
    if re.fullmatch(r'\d+ \d+ R', v): return 'reference ' + v
    if v.startswith('/'): return 'name ' + v
    t = text(v)
    return 'string' if t is None else 'string ' + t
def value(ref):
    o = objs.get('obj:' + ref) if isinstance(ref, str) else None
    return None if o is None or 'value' not in o else o['value']
lines = []
for key, o in objs.items():
    if key == 'trailer': continue
    n = int(key.split()[0][4:])
    if 'stream' in o:
        d = o['stream']['dict']
        if d.get('/Type') in ('/ObjStm', '/XRef'): continue
        lines.append((n, '%d stream %s' % (n, ' '.join(sorted(d)))))
    else:
        lines.append((n, '%d %s' % (n, kind(o['value']))))
for _, line in sorted(lines): print(line)
print('pages ' + ' '.join(p['object'].split()[0] for p in j['pages']))
trailer = objs['trailer']['value']
print('root ' + trailer['/Root'])
for p in j['pages']:
    box = (value(p['object']) or {}).get('/MediaBox')
    if isinstance(box, list): print('mediabox %s %s' % (p['object'].split()[0], ' '.join('%g' % x for x in box)))
info = value(trailer.get('/Info'))
for k, v in sorted((info or {}).items()):
    if isinstance(v, str) and text(v) is not None: print('info %s %s' % (k, text(v)))
)";

int run(const std::string& command, std::string& output)
{
    std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe)
        return -1;
    char piece[4096];
    for (std::size_t got; (got = std::fread(piece, 1, sizeof piece, pipe)) > 0;)
        output.append(piece, got);
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string readFile(const fs::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

std::string numberText(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    return text;
}

// The string's text when it is plain printable ASCII, as qpdf shows it.
std::string plainText(String& string)
{
    const std::string& raw = string.serialized();
    const std::string bytes = raw[0] == '(' ? Tokenizer::decodeLiteral(raw) : Tokenizer::decodeHex(raw);
    for (const char c : bytes)
        if (c < 32 || c > 126)
            return {};
    return bytes.empty() ? std::string() : bytes;
}

std::string keysOf(const Dict& dict)
{
    std::string keys;
    for (const Dict::Entry& entry : dict)
        keys += (keys.empty() ? "/" : " /") + entry.key->bytes();
    return keys;
}

std::string kindOf(Object* value)
{
    switch (value->type()) {
    case Type::Null: return "null";
    case Type::Bool: return std::string("bool ") + (static_cast<Bool*>(value)->value() ? "true" : "false");
    case Type::Number: return "number " + numberText(static_cast<Number*>(value)->value());
    case Type::Array: return "array " + std::to_string(static_cast<Array*>(value)->size());
    case Type::Dict: return "dict " + keysOf(*static_cast<Dict*>(value));
    case Type::Name: return "name /" + static_cast<Name*>(value)->bytes();
    case Type::Stream: return "stream " + keysOf(*static_cast<Stream*>(value)->dict());
    case Type::Reference: {
        auto* reference = static_cast<Reference*>(value);
        return "reference " + std::to_string(reference->number()) + " " + std::to_string(reference->generation()) + " R";
    }
    case Type::String: {
        const std::string text = plainText(*static_cast<String*>(value));
        return text.empty() ? "string" : "string " + text;
    }
    default: return "other";
    }
}

void collectPages(Object* node, std::vector<std::uint32_t>& pages, std::set<Object*>& seen)
{
    Dict* dict = node ? node->asDict() : nullptr;
    if (!dict || !seen.insert(dict).second)
        return;
    Object* kids = dict->get(names::Kids());
    if (!kids || !kids->asArray())
        return;
    for (const Ptr<Object>& kid : *kids->asArray()) {
        if (!kid || kid->type() != Type::Reference)
            continue;
        Dict* child = kid->asDict();
        Object* type = child ? child->get(names::Type()) : nullptr;
        if (type && type->asName() == names::Page().get())
            pages.push_back(static_cast<Reference*>(kid.get())->number());
        else
            collectPages(kid.get(), pages, seen);
    }
}

std::string ourSummary(PdfFile& file)
{
    file.loadAllObjects();
    std::string lines;
    for (const Ptr<Indirect>& object : file.objects().slots())
        if (object)
            lines += std::to_string(object->number()) + " " + kindOf(object->value()) + "\n";
    std::vector<std::uint32_t> pages;
    std::set<Object*> seen;
    collectPages(file.pages(), pages, seen);
    lines += "pages";
    for (const std::uint32_t page : pages)
        lines += " " + std::to_string(page);
    lines += "\nroot " + kindOf(file.trailer().get(names::Root())).substr(10) + "\n";
    for (const std::uint32_t page : pages) {
        Object* box = file.object(page)->value()->asDict()->get(names::MediaBox());
        if (!box || box->type() != Type::Array)
            continue;
        lines += "mediabox " + std::to_string(page);
        for (const Ptr<Object>& value : *box->asArray())
            lines += " " + numberText(value->asNumber()->value());
        lines += "\n";
    }
    Object* info = file.trailer().get(names::Info());
    if (info && info->type() == Type::Reference && info->asDict())
        for (const Dict::Entry& entry : *info->asDict())
            if (entry.value->type() == Type::String && !plainText(*static_cast<String*>(entry.value.get())).empty())
                lines += "info /" + entry.key->bytes() + " " + plainText(*static_cast<String*>(entry.value.get())) + "\n";
    return lines;
}

std::string serialized(const Object* object)
{
    if (!object)
        return "(absent)";
    BufferWriter out;
    object->write(out);
    return out.data();
}

class ForeignFiles : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        folder = fs::path(zpdfTest::temporaryPath("_foreign"));
        fs::create_directories(folder);
        std::ofstream(folder / "summary.py") << summaryScript;
        std::ofstream(folder / "source.ps")
            << "%!PS\n/Helvetica findfont 24 scalefont setfont\n"
               "72 720 moveto (First page) show 72 700 moveto 500 100 lineto stroke showpage\n"
               "72 720 moveto (Second page \\(with brackets\\)) show showpage\n"
               "<< /PageSize [400 300] >> setpagedevice 20 20 moveto (Third, smaller) show showpage\n";
    }
    static void TearDownTestSuite() { fs::remove_all(folder); }

    // Runs `command` in the folder; the test fails when it does.
    static void make(const std::string& command)
    {
        std::string output;
        ASSERT_EQ(run("cd '" + folder.string() + "' && " + command, output), 0) << command << "\n" << output;
    }

    // Reads `name` with the reader and compares with qpdf's view; then writes what was read
    // and expects the written file to be read back the same.
    static void expectSameAsQpdf(const std::string& name)
    {
        const fs::path path = folder / name;
        std::string json;
        ASSERT_EQ(run("qpdf --json --json-stream-data=none '" + path.string() + "' > '" + path.string() + ".json'", json), 0)
            << json;
        std::string expected;
        ASSERT_EQ(run("python3 '" + (folder / "summary.py").string() + "' '" + path.string() + ".json'", expected), 0)
            << expected;
        PdfFile file(readFile(path));
        EXPECT_FALSE(file.wasRepaired());
        EXPECT_EQ(ourSummary(file), expected);

        PdfFile again(zpdfTest::writeChecked(file));
        again.loadAllObjects();
        EXPECT_EQ(again.objects().count(), file.objects().count());
        // Compared written: names read from two files are different objects.
        for (const Ptr<Indirect>& object : file.objects().slots())
            if (object)
                EXPECT_EQ(serialized(again.object(object->number())), serialized(object.get())) << name;
    }

    static fs::path folder;
};

fs::path ForeignFiles::folder;

TEST_F(ForeignFiles, Ghostscript)
{
    make("ps2pdf source.ps ghostscript.pdf");
    expectSameAsQpdf("ghostscript.pdf");
}

TEST_F(ForeignFiles, Qpdf)
{
    make("ps2pdf source.ps ghostscript.pdf");
    make("qpdf --object-streams=disable ghostscript.pdf plain.pdf");
    make("qpdf --object-streams=generate ghostscript.pdf objstm.pdf");
    make("qpdf --linearize ghostscript.pdf linear.pdf");
    make("qpdf --linearize --object-streams=generate ghostscript.pdf linear-objstm.pdf");
    for (const char* name : {"plain.pdf", "objstm.pdf", "linear.pdf", "linear-objstm.pdf"}) {
        SCOPED_TRACE(name);
        expectSameAsQpdf(name);
    }
}

TEST_F(ForeignFiles, Cairo)
{
    make("ps2pdf source.ps ghostscript.pdf");
    make("pdftocairo -pdf ghostscript.pdf cairo.pdf");
    expectSameAsQpdf("cairo.pdf");
}

TEST_F(ForeignFiles, ImageMagickAndImg2pdf)
{
    make("convert -size 64x48 gradient:red-blue picture.png");
    make("convert -size 30x20 xc:green -alpha set -channel A -evaluate set 50% mask.png");
    make("convert picture.png imagemagick.pdf");
    make("img2pdf picture.png -o img2pdf.pdf");
    make("img2pdf mask.png -o img2pdf-alpha.pdf");
    for (const char* name : {"imagemagick.pdf", "img2pdf.pdf", "img2pdf-alpha.pdf"}) {
        SCOPED_TRACE(name);
        expectSameAsQpdf(name);
    }
}

} // namespace
#endif
