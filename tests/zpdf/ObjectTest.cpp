#include "zpdf/Array.h"
#include "zpdf/Bool.h"
#include "zpdf/BufferWriter.h"
#include "zpdf/Document.h"
#include "zpdf/Marker.h"
#include "zpdf/Names.h"
#include "zpdf/Null.h"
#include "zpdf/Number.h"
#include "zpdf/PdfException.h"
#include "zpdf/String.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

using namespace zpdf;

namespace {

std::string written(const Object& object)
{
    BufferWriter out;
    object.write(out);
    return out.take();
}

std::string messageOf(void (*action)())
{
    try {
        action();
    } catch (const PdfException& e) {
        return e.what();
    }
    return "(no exception)";
}

TEST(Number, Formatting)
{
    const struct {
        Ptr<Number> number;
        const char* text;
    } cases[] = {
        {make<Number>(1), "1"},
        {make<Number>(-17), "-17"},
        {make<Number>(0), "0"},
        {make<Number>(std::int64_t{3000000000}), "3000000000"},
        {make<Number>(1.5), "1.5"},
        {make<Number>(2.0), "2.0"},
        {make<Number>(-0.25), "-0.25"},
        {make<Number>(0.1), "0.1"},
        {make<Number>(100.0), "100.0"},
        {make<Number>(612.123456789), "612.123457"},
        {make<Number>(0.0000001), "0.0"},
        {make<Number>(0.000001), "0.000001"},
        {make<Number>(-0.0), "-0.0"},
        {make<Number>(-1234.5), "-1234.5"},
        {make<Number>(123456.789), "123456.789"},
        {make<Number>(1e15), "1000000000000000.0"},
        {make<Number>(2.5, "%.3f"), "2.500"},
        {make<Number>(7.0, "%g"), "7"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(written(*c.number), c.text) << c.text;
}

// The output must not depend on the process locale.
TEST(Number, FormattingIgnoresACommaLocale)
{
    const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
    const char* comma = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE", "German_Germany.1252", "German", "de-DE"})
        if ((comma = std::setlocale(LC_NUMERIC, name)) != nullptr)
            break;
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    const std::string real = written(*make<Number>(1.5));
    const std::string formatted = written(*make<Number>(0.75, "%.2f"));
    std::setlocale(LC_NUMERIC, previous.c_str());
    EXPECT_EQ(real, "1.5");
    EXPECT_EQ(formatted, "0.75");
}

TEST(Number, Parsing)
{
    const struct {
        const char* text;
        double value;
        bool integer;
    } good[] = {{"12", 12, true}, {"-3", -3, true}, {"+7", 7, true}, {"+.5", 0.5, false},
                {"4.", 4, false}, {"-0.125", -0.125, false}, {"007", 7, true}};
    for (const auto& c : good) {
        const Ptr<Number> number = Number::parse(c.text);
        EXPECT_EQ(number->value(), c.value) << c.text;
        EXPECT_EQ(number->isInteger(), c.integer) << c.text;
    }
    for (const char* bad : {"", "-", ".", "1.2.3", "--1", "1e5", "12a", " 1", "0x10"})
        EXPECT_THROW(Number::parse(bad), NumberFormatException) << '"' << bad << '"';
}

TEST(String, Serialisation)
{
    const struct {
        Ptr<String> string;
        const char* text;
    } cases[] = {
        {make<String>(ZString()), "()"},
        {make<String>(ZString(u"A")), "<FEFF0041>"},
        {make<String>(ZString(u"\u00e9\u20ac")), "<FEFF00e920ac>"},
        // Outside the Basic Multilingual Plane: a surrogate pair, two units.
        {make<String>(ZString(u"x\U0001F600")), "<FEFF0078d83dde00>"},
        {make<String>(ZString(u"\U0010FFFF")), "<FEFFdbffdfff>"},
        {make<String>("a(b\\", StringMode::literal), "(a(b\\)"},
        {make<String>("", StringMode::literal), "()"},
        {make<String>("4142", StringMode::hex), "<4142>"},
        {make<String>("(kept)", StringMode::raw), "(kept)"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(written(*c.string), c.text);
}

TEST(Dict, KeyOrderAndReplacement)
{
    Ptr<Dict> dict = make<Dict>();
    // Bytes compare as signed chars: 0xC3 is negative and sorts first.
    for (const char* key : {"a", "Type", "\xC3x", "B", "Ab", "A", "TypeX"})
        dict->set(make<Name>(key), make<Number>(1));
    dict->set(make<Name>("A"), make<Bool>(true));
    dict->set(make<Name>("Ab"), nullptr);
    EXPECT_EQ(dict->size(), 6);
    EXPECT_EQ(written(*dict), "<<\r\n/\xC3x 1\r\n/A true\r\n/B 1\r\n/Type 1\r\n/TypeX 1\r\n/a 1\r\n>>");
    ASSERT_NE(dict->get("A"), nullptr);
    EXPECT_NE(dict->get("A")->asBool(), nullptr);
    EXPECT_EQ(dict->get("Ab"), nullptr);
    EXPECT_TRUE(dict->remove("B"));
    EXPECT_FALSE(dict->remove("B"));
    EXPECT_EQ(written(*make<Dict>()), "<<\r\n>>");
}

TEST(Array, SerialisationAndIndexChecks)
{
    Ptr<Array> inner = make<Array>();
    inner->append(make<Bool>(true));
    inner->append(make<Bool>(false));
    Ptr<Array> array = make<Array>();
    array->append(make<Number>(1));
    array->append(names::Type());
    array->append(make<String>("s", StringMode::literal));
    array->append(nullptr);
    array->append(make<Null>());
    array->append(inner);
    array->append(make<Reference>(12, 0));
    EXPECT_EQ(written(*array), "[1 /Type (s) null null [true false] 12 0 R]");
    EXPECT_EQ(written(*make<Array>()), "[]");

    EXPECT_EQ(messageOf([] { make<Array>()->at(0); }), "Index not in array range");
    EXPECT_EQ(messageOf([] {
                  Ptr<Array> one = make<Array>();
                  one->append(make<Null>());
                  one->at(-1);
              }),
              "Index not in array range");
    EXPECT_EQ(messageOf([] { make<Array>()->set(0, make<Null>()); }), "Index not in array range");
    array->remove(0);
    EXPECT_EQ(array->size(), 6);
    EXPECT_EQ(array->at(0), names::Type().get());
}

TEST(Object, IndirectAndReferenceSerialisation)
{
    EXPECT_EQ(written(*make<Indirect>(7, 0, nullptr)), "7 0 obj\r\nnull\r\nendobj");
    EXPECT_EQ(written(*make<Indirect>(3, 2, make<Number>(5))), "3 2 obj\r\n5\r\nendobj");
    EXPECT_EQ(written(*make<Reference>(40000, 65535)), "40000 65535 R");
    EXPECT_THROW(written(*Marker::get(Marker::dictStart)), UnsupportedException);
}

TEST(Object, EqualityRules)
{
    EXPECT_TRUE(make<Number>(3)->equals(make<Number>(3.0).get()));
    EXPECT_FALSE(make<Number>(3)->equals(make<Number>(3.5).get()));
    EXPECT_FALSE(make<Number>(3)->equals(make<String>("3", StringMode::literal).get()));
    EXPECT_FALSE(make<String>("3", StringMode::literal)->equals(make<Number>(3).get()));
    EXPECT_FALSE(make<Number>(3)->equals(nullptr));
    EXPECT_TRUE(make<Null>()->equals(make<Null>().get()));
    EXPECT_FALSE(make<Bool>(true)->equals(make<Bool>(false).get()));
    EXPECT_TRUE(make<Reference>(4, 0)->equals(make<Reference>(4, 0).get()));
    EXPECT_FALSE(make<Reference>(4, 0)->equals(make<Reference>(4, 1).get()));

    // Names compare by identity: only the shared objects are equal.
    EXPECT_TRUE(names::Type()->equals(names::Type().get()));
    EXPECT_FALSE(make<Name>("Type")->equals(names::Type().get()));

    // Deep compares contents; shallow compares the element objects.
    Ptr<Array> a = make<Array>();
    Ptr<Array> b = make<Array>();
    a->append(make<Number>(1));
    b->append(make<Number>(1.0));
    EXPECT_TRUE(a->equals(b.get(), true));
    EXPECT_FALSE(a->equals(b.get(), false));
    b->set(0, Ptr<Object>(a->at(0)));
    EXPECT_TRUE(a->equals(b.get(), false));
    b->append(make<Null>());
    EXPECT_FALSE(a->equals(b.get(), true));

    Ptr<Dict> x = make<Dict>();
    Ptr<Dict> y = make<Dict>();
    x->set(names::Width(), make<Number>(2));
    y->set(names::Width(), make<Number>(2));
    EXPECT_TRUE(x->equals(y.get()));
    y->set(names::Height(), make<Number>(2));
    EXPECT_FALSE(x->equals(y.get()));
    EXPECT_FALSE(x->equals(a.get()));
}

TEST(Object, CloneIsDeep)
{
    Ptr<Array> list = make<Array>();
    list->append(make<Number>(1));
    Ptr<Stream> stream = make<Stream>("data");
    stream->dict()->set(names::Filter(), names::DCTDecode());
    Ptr<Dict> original = make<Dict>();
    original->set(names::Kids(), list);
    original->set(names::Contents(), stream);
    original->set(names::Title(), make<String>(ZString(u"t")));

    const Ptr<Object> copy = original->clone();
    ASSERT_TRUE(copy->equals(original.get(), true));
    Dict* copied = copy->asDict();
    ASSERT_NE(copied, nullptr);
    EXPECT_NE(copied->get(names::Kids()), list.get());
    copied->get(names::Kids())->asArray()->append(make<Number>(2));
    copied->get(names::Contents())->asStream()->append("more");
    EXPECT_EQ(list->size(), 1);
    EXPECT_EQ(stream->data()->bytes(), "data");
    // The shared name stays shared.
    EXPECT_EQ(copied->get(names::Contents())->asDict()->get(names::Filter()), names::DCTDecode().get());
    EXPECT_FALSE(copy->equals(original.get(), true));
}

TEST(Object, AccessThroughReferences)
{
    Document document;
    Ptr<Stream> stream = make<Stream>("xyz");
    stream->dict()->set(names::Subtype(), names::Image());
    const Ptr<Reference> toStream = document.add(stream);
    const Ptr<Reference> toNumber = document.add(make<Number>(8));

    EXPECT_EQ(toStream->asDict(), stream->dict());
    EXPECT_EQ(toStream->asStream(), stream.get());
    EXPECT_EQ(toStream->asNumber(), nullptr);
    ASSERT_NE(toNumber->asNumber(), nullptr);
    EXPECT_EQ(toNumber->asNumber()->value(), 8);
    EXPECT_EQ(document.object(1)->self(), stream.get());
    EXPECT_EQ(make<Reference>(1, 0)->resolve(), nullptr) << "belongs to no document";

    // A different generation, a missing number and a loop resolve to nothing.
    const Ptr<Reference> toSecond = document.referenceTo(2);
    document.put(5, 1, make<Number>(1));
    EXPECT_NE(document.referenceTo(5)->resolve(), nullptr);
    document.object(2)->setValue(document.put(3, 0, toSecond));
    EXPECT_EQ(toSecond->resolve(), nullptr);
    EXPECT_EQ(document.put(9, 0, nullptr)->resolve(), nullptr);
    EXPECT_THROW(document.referenceTo(4), PdfException);
}

TEST(Object, ReferenceOutlivingItsDocumentResolvesToNothing)
{
    Ptr<Reference> reference;
    Ptr<Number> number = make<Number>(4);
    {
        Document document;
        reference = document.add(number);
        EXPECT_EQ(reference->resolve(), number.get());
    }
    EXPECT_EQ(reference->resolve(), nullptr);
    EXPECT_EQ(number->refCount(), 1) << "the document released its object";
}

TEST(Names, PredefinedNamesAreSharedAndComplete)
{
    const char* listed[] = {"Pages", "Count", "Root", "Kids", "Size", "Type", "Prev", "Info", "Title", "ID",
                            "Page", "Resources", "PDF", "Text", "ImageB", "ImageC", "ImageI", "SubFilter",
                            "ByteRange", "Reference", "Name", "Annot", "Rect", "Index", "First", "Predictor",
                            "BitsPerComponent", "Width", "Height", "Image", "DCTDecode", "ColorSpace",
                            "DeviceRGB", "DeviceGray", "Font", "ExtGState", "Form", "BBox", "Mask", "SMask",
                            "Indexed", "Filter", "Subtype", "FlateDecode", "DecodeParms", "Encrypt",
                            "Length", "Parent", "MediaBox", "Contents", "XObject", "Creator", "Producer",
                            "Catalog"};
    for (const char* bytes : listed) {
        const Name* name = names::find(bytes);
        ASSERT_NE(name, nullptr) << bytes;
        EXPECT_EQ(name->bytes(), bytes);
        EXPECT_EQ(names::find(bytes), name) << "made once";
    }
    EXPECT_EQ(names::find("Type"), names::Type().get());
    EXPECT_EQ(names::find("NotPredefined"), nullptr);
    EXPECT_EQ(names::Type()->clone().get(), names::Type().get());
}

} // namespace
