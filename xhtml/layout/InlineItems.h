#pragma once
// The items a run of inline-level views breaks into: words, collapsible spaces, atoms
// (images, controls, inline blocks) and forced line breaks. Shared by line layout and the
// intrinsic widths, so both see the same pieces.

#include "xhtml/layout/LayoutEngine.h"

#include <vector>

namespace xhtml {

struct InlineItem {
    enum class Type { word, space, atom, lineBreak };

    Type type = Type::word;
    View* view = nullptr; // the text view, the atom or the br
    ZString text;         // words and spaces
    int width = 0;        // with an atom's margins
    int height = 0;       // the line height it needs
    int ascent = 0;       // above the baseline, for baseline alignment
    StyleKeyword align = StyleKeyword::baseline;
    bool noWrap = false;
    int shift = 0; // sup and sub
};

// `available` is the line width, for inline blocks and percentages of atoms. With
// `layoutAtoms` false, inline blocks are measured by their intrinsic width only.
void gatherInlineItems(const std::vector<View*>& run, LayoutEnv& env, int available, bool layoutAtoms,
                       std::vector<InlineItem>& items);

// True when a line may break before `items[index]`.
bool canBreakBefore(const std::vector<InlineItem>& items, size_t index);

} // namespace xhtml
