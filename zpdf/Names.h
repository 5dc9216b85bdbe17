#pragma once
// The predefined names: one shared Name object per name the program uses, created once
// (all together, before the first use) and kept for the life of the process. Code
// compares and inserts these objects instead of making names anew, for example
// dict->set(names::Type(), names::Page()).

#include "zpdf/Name.h"

namespace zpdf {

#define ZPDF_PREDEFINED_NAMES(X)                                                                         \
    X(AA) X(AcroForm) X(Annot) X(Annots) X(Ascent) X(Author) X(BBox) X(BaseFont) X(BitsPerComponent)  \
    X(BitsPerCoordinate) X(BitsPerFlag) X(Border) X(ByteRange) X(CapHeight) X(Catalog) X(CIDSystemInfo) \
    X(Colors) X(ColorSpace) X(Columns) X(Contents) X(Count) X(CreationDate) X(Creator) X(CropBox)      \
    X(DCTDecode) X(Decode) X(DecodeParms) X(Descendants) X(DescendantFonts) X(Descent) X(Dest)          \
    X(DeviceCMYK) X(DeviceGray) X(DeviceRGB) X(Encoding) X(Encrypt) X(Extends) X(ExtGState) X(F)        \
    X(Fields) X(Filter) X(First) X(Flags) X(FlateDecode) X(Font) X(FontBBox) X(FontDescriptor)          \
    X(FontFile2) X(FontName) X(Form) X(Group) X(Height) X(ID) X(Image) X(ImageB) X(ImageC) X(ImageI)    \
    X(Index) X(Indexed) X(Info) X(ItalicAngle) X(K) X(Keywords) X(Kids) X(Length) X(Length1) X(Limits)  \
    X(Mask) X(Matrix) X(MediaBox) X(ModDate) X(N) X(Name) X(Names) X(Next) X(ObjStm) X(Outlines)        \
    X(P) X(Page) X(Pages) X(Parent) X(PDF) X(Predictor) X(Prev) X(ProcSet) X(Producer) X(Rect)          \
    X(Reference) X(Registry) X(Resources) X(Root) X(Rotate) X(S) X(Size) X(SMask) X(StemV) X(SubFilter) \
    X(Subject) X(Subtype) X(Supplement) X(Text) X(Title) X(ToUnicode) X(TrimBox) X(Type) X(Type0)       \
    X(Version) X(W) X(Width) X(Widths) X(XObject) X(XRef) X(XRefStm)

namespace names {

// Each returns the shared name; borrowed for the life of the process.
#define ZPDF_DECLARE_NAME(n) const Ptr<zpdf::Name>& n();
ZPDF_PREDEFINED_NAMES(ZPDF_DECLARE_NAME)
#undef ZPDF_DECLARE_NAME

// The shared name with these bytes, or null when it is not predefined. Borrowed.
zpdf::Name* find(std::string_view bytes);

} // namespace names

} // namespace zpdf
