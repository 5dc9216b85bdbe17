#pragma once
// NameTable: the names of one file being read, each made once.
//
// A name read from a file becomes the predefined name with its bytes when there is one,
// else the table's own shared name, so a file's thousands of "/Type" keys cost nothing and
// repeated names one object each. The table holds its names for its own lifetime; the
// objects that use them hold them too.

#include "zpdf/Name.h"

#include <string>
#include <string_view>
#include <unordered_map>

namespace zpdf {

class NameTable {
public:
    // The name for a name token's text (the bytes after "/", escapes not yet undone).
    // Escapes are undone; a name whose bytes then need escaping to be written again keeps
    // them escaped as "#xx", so writing it gives a valid name. Throws PdfException for
    // "#00"; `offset` is the token's, for the message.
    const Ptr<Name>& fromToken(std::string_view raw, std::size_t offset);

private:
    const Ptr<Name>& intern(std::string_view bytes);

    // Keyed by views of the names' own bytes.
    std::unordered_map<std::string_view, Ptr<Name>> names_;
};

} // namespace zpdf
