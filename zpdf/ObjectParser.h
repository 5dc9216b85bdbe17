#pragma once
// ObjectParser: reads PDF objects from a Tokenizer.
//
// Containers are read with an explicit stack, not by recursion, so the nesting depth is a
// counted limit (maxDepth) and deep input cannot exhaust the call stack. References are
// bound to the document's object table, so they resolve through it.

#include "zpdf/Indirect.h"
#include "zpdf/NameTable.h"
#include "zpdf/Reference.h"
#include "zpdf/Tokenizer.h"

#include <memory>
#include <vector>

namespace zpdf {

class Dict;

class ObjectParser {
public:
    // Arrays and dictionaries nested deeper than this are refused.
    static constexpr std::size_t maxDepth = 256;

    // `tokens`, `names` and the table must outlive the parser.
    ObjectParser(Tokenizer& tokens, NameTable& names, std::weak_ptr<const IndirectTable> table);

    // object := 'null' | 'true' | 'false' | number | name | string | array | dict
    //         | integer integer 'R'
    // Throws PdfException (NumberFormatException for a malformed number) naming the offset.
    Ptr<Object> parseObject();
    // The same, with its first token already read.
    Ptr<Object> parseObject(const Token& first);

    // indirect := integer integer 'obj' object ('stream' EOL bytes EOL? 'endstream')? 'endobj'?
    // The stream's bytes are Length long when the data there ends with "endstream"; else
    // they end at the next "endstream", as readers do with a wrong Length.
    Ptr<Indirect> parseIndirect();

private:
    struct Frame {
        TokenKind kind;
        std::size_t base; // where the container's elements start in values_
        std::size_t offset;
    };

    // A value that completes with `token`, or null for the opening of a container.
    Ptr<Object> scalar(const Token& token);
    Ptr<Object> closeArray(const Token& token);
    Ptr<Object> closeDict(const Token& token);
    // "N G R" after the integer `first`, or the number itself.
    Ptr<Object> integerOrReference(const Token& first);
    Ptr<Object> streamAfter(Ptr<Object> dict, std::size_t offset);
    // Where the data that starts at `start` ends by its Length entry, or npos.
    std::size_t endByLength(Dict& dict, std::size_t start);

    Tokenizer& tokens_;
    NameTable& names_;
    std::weak_ptr<const IndirectTable> table_;
    std::vector<Ptr<Object>> values_;
    std::vector<Frame> frames_;
};

} // namespace zpdf
