#pragma once
// The layout stages and what they share: block flow (BlockLayout.cpp), lines of inline
// items (LineLayout.cpp), tables (TableLayout.cpp), intrinsic widths (IntrinsicWidth.cpp)
// and the sizes of images and controls (AtomSize.cpp). Everything is measured through the
// Canvas, so layout runs the same with GDI and with fixed test metrics.

#include "xhtml/paint/Canvas.h"
#include "xhtml/view/View.h"

#include <unordered_map>
#include <vector>

namespace xhtml {

// What one layout pass measures with, and a cache of word widths so that a word is
// measured once per pass and font.
class LayoutEnv {
public:
    LayoutEnv(Canvas& canvas, double scale) : canvas_(canvas), scale_(scale) {}

    Canvas& canvas() { return canvas_; }
    double scale() const { return scale_; }
    int scaled(int pixels) const;
    int textWidth(const FontDescription& font, const ZString& text);
    FontMetrics metrics(const FontDescription& font);

private:
    struct FontEntry {
        FontDescription font;
        FontMetrics metrics;
        std::unordered_map<ZString, int> widths;
    };
    FontEntry& entry(const FontDescription& font);

    Canvas& canvas_;
    double scale_;
    std::vector<FontEntry> fonts_;
};

// Lays out a block-level view whose margin box starts at x, y in a container whose content
// is `available` wide and `containingHeight` high (-1: not known). Sets the view's box.
void layoutBlock(View& view, LayoutEnv& env, int x, int y, int available, int containingHeight);
// Lays out a block of exactly this border-box width (table cells, inline blocks).
void layoutBlockOfWidth(View& view, LayoutEnv& env, int x, int y, int borderWidth, int containingHeight);
// Lays out the children of `container` in its content area; returns the height they take.
int layoutFlow(View& container, LayoutEnv& env, int x, int y, int width, int containingHeight);
// Lays out a run of inline-level views in lines; returns the height of the lines.
int layoutLines(const std::vector<View*>& run, const ComputedStyle& container, LayoutEnv& env, int x, int y,
                int width);
void layoutTable(View& table, LayoutEnv& env, int x, int y, int available, int containingHeight);

int marginOf(const View& view, int side, int available);
// The border box of an image or control.
Size atomSize(View& view, LayoutEnv& env, int available);

// The widths of a view's margin box without wrapping (max) and with every possible wrap
// (min).
int maxContentWidth(View& view, LayoutEnv& env);
int minContentWidth(View& view, LayoutEnv& env);
// Both at once, for the price of one.
void intrinsicWidths(View& view, LayoutEnv& env, int& minWidth, int& maxWidth);
// The same for a run of inline-level views.
void inlineRunWidths(const std::vector<View*>& run, LayoutEnv& env, int& minWidth, int& maxWidth);
// The intrinsic widths of a table's border box.
void tableWidths(View& table, LayoutEnv& env, int& minWidth, int& maxWidth);

// Padding and borders across a view (left + right), with percentages of `available`.
int horizontalFrame(View& view, int available);
void resolvePadding(View& view, int available);
// Padding and borders across (left + right) and down (top + bottom), with the padding as
// last resolved.
int frameWidth(const View& view);
int frameHeight(const View& view);

// Where a piece `room` narrower than its line or container starts, for a text alignment
// (left and justify: at the start).
int alignOffset(StyleKeyword align, int room);
// Vertical alignment of a container's content inside a taller box.
void alignContent(View& view, int contentHeight, int innerHeight);

} // namespace xhtml
