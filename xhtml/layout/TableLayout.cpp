#include "xhtml/layout/LayoutEngine.h"

#include "xhtml/MarkupText.h"

#include <algorithm>
#include <numeric>

namespace xhtml {

namespace {

constexpr int kDefaultSpacing = 2;
constexpr int kDefaultPadding = 1;

struct GridCell {
    View* view;
    int row;
    int column;
    int rows;
    int columns;
};

struct Grid {
    std::vector<View*> rows;
    std::vector<GridCell> cells;
    int columns = 0;
};

// Rows of cells into slots: a cell takes the first free slot of its row, and its column
// and row spans keep the slots they cover from later cells.
Grid buildGrid(View& table)
{
    Grid grid;
    std::vector<std::vector<bool>> taken;
    for (auto& rowView : table.children) {
        if (rowView->kind != ViewKind::row || !rowView->isDisplayed())
            continue;
        const int row = static_cast<int>(grid.rows.size());
        grid.rows.push_back(rowView.get());
        if (static_cast<int>(taken.size()) <= row)
            taken.resize(row + 1);
        int column = 0;
        for (auto& cellView : rowView->children) {
            if (cellView->kind != ViewKind::cell || !cellView->isDisplayed())
                continue;
            while (column < static_cast<int>(taken[row].size()) && taken[row][column])
                ++column;
            GridCell cell{cellView.get(), row, column, cellView->rowSpan, cellView->columnSpan};
            for (int r = row; r < row + cell.rows; ++r) {
                if (static_cast<int>(taken.size()) <= r)
                    taken.resize(r + 1);
                if (static_cast<int>(taken[r].size()) < column + cell.columns)
                    taken[r].resize(column + cell.columns, false);
                for (int c = column; c < column + cell.columns; ++c)
                    taken[r][c] = true;
            }
            grid.cells.push_back(cell);
            column += cell.columns;
            grid.columns = std::max(grid.columns, column);
        }
    }
    // A row span never reaches past the last row.
    for (GridCell& cell : grid.cells)
        cell.rows = std::max(1, std::min(cell.rows, static_cast<int>(grid.rows.size()) - cell.row));
    return grid;
}

int spacingOf(const View& table, LayoutEnv& env)
{
    return table.style.cellSpacing >= 0 ? table.style.cellSpacing : env.scaled(kDefaultSpacing);
}

bool hasBorderAttribute(const View& table)
{
    const ZString* border = table.attribute(u"border");
    return border && border->toIntOr(0) > 0;
}

// What a cell takes from its table: the cell padding where it sets none, and a thin border
// where the table has one.
void applyTableDefaults(const View& table, View& cell, LayoutEnv& env)
{
    const int padding = table.style.cellPadding >= 0 ? table.style.cellPadding : env.scaled(kDefaultPadding);
    const bool bordered = hasBorderAttribute(table);
    for (int side = 0; side < 4; ++side) {
        if (!cell.style.padding[side].set)
            cell.style.padding[side] = Length::pixels(padding);
        if (bordered && cell.style.border[side].room() == 0) {
            cell.style.border[side].width = std::max(1, env.scaled(1));
            cell.style.border[side].style = StyleKeyword::solid;
        }
    }
}

struct Columns {
    std::vector<int> minimum, maximum, fixed;
    std::vector<double> percent;
};

void spread(std::vector<int>& widths, int first, int count, int needed, int spacing)
{
    int have = spacing * (count - 1);
    for (int c = first; c < first + count; ++c)
        have += widths[c];
    for (int c = first; needed > have && c < first + count; ++c)
        widths[c] += (needed - have) / (first + count - c);
}

Columns measureColumns(View& table, Grid& grid, LayoutEnv& env, int spacing)
{
    Columns columns;
    const int n = grid.columns;
    columns.minimum.assign(n, 0);
    columns.maximum.assign(n, 0);
    columns.fixed.assign(n, -1);
    columns.percent.assign(n, -1);
    for (const GridCell& cell : grid.cells) {
        applyTableDefaults(table, *cell.view, env);
        if (cell.columns != 1)
            continue;
        View& view = *cell.view;
        const int c = cell.column;
        const int frame = horizontalFrame(view, 0);
        int minWidth = 0;
        int maxWidth = 0;
        intrinsicWidths(view, env, minWidth, maxWidth);
        columns.minimum[c] = std::max(columns.minimum[c], minWidth);
        columns.maximum[c] = std::max(columns.maximum[c], maxWidth);
        if (view.style.width.set && view.style.width.percent)
            columns.percent[c] = std::max(columns.percent[c], view.style.width.value);
        else if (view.style.width.set)
            columns.fixed[c] = std::max(columns.fixed[c], view.style.width.resolve(0) + frame);
    }
    for (int c = 0; c < n; ++c) {
        if (columns.fixed[c] >= 0)
            columns.minimum[c] = columns.maximum[c] = std::max(columns.fixed[c], columns.minimum[c]);
        columns.maximum[c] = std::max(columns.maximum[c], columns.minimum[c]);
    }
    for (const GridCell& cell : grid.cells) {
        if (cell.columns == 1)
            continue;
        int minWidth = 0;
        int maxWidth = 0;
        intrinsicWidths(*cell.view, env, minWidth, maxWidth);
        spread(columns.minimum, cell.column, cell.columns, minWidth, spacing);
        spread(columns.maximum, cell.column, cell.columns, maxWidth, spacing);
    }
    return columns;
}

// Gives `extra` to the columns chosen, in proportion to `weights` (evenly when all are 0).
void distribute(std::vector<int>& widths, const std::vector<int>& weights, const std::vector<bool>& chosen, int extra)
{
    long long total = 0;
    int count = 0;
    for (size_t c = 0; c < widths.size(); ++c) {
        if (chosen[c]) {
            total += weights[c];
            ++count;
        }
    }
    if (count == 0 || extra <= 0)
        return;
    int given = 0;
    int last = -1;
    for (size_t c = 0; c < widths.size(); ++c) {
        if (!chosen[c])
            continue;
        const int share = total > 0 ? static_cast<int>(extra * static_cast<long long>(weights[c]) / total) : extra / count;
        widths[c] += share;
        given += share;
        last = static_cast<int>(c);
    }
    widths[last] += extra - given;
}

// Fixed columns get their width, percentage columns their share of the table, and the
// auto columns what is left: first up to their widest content, then in proportion to it.
std::vector<int> columnWidths(const Columns& columns, int inner)
{
    const size_t n = columns.minimum.size();
    std::vector<int> widths = columns.minimum;
    std::vector<bool> automatic(n), percentage(n), all(n, true);
    for (size_t c = 0; c < n; ++c) {
        percentage[c] = columns.fixed[c] < 0 && columns.percent[c] >= 0;
        automatic[c] = columns.fixed[c] < 0 && !percentage[c];
        if (percentage[c])
            widths[c] = std::max(widths[c], static_cast<int>(inner * columns.percent[c] / 100));
    }
    int left = inner - std::accumulate(widths.begin(), widths.end(), 0);
    std::vector<int> growth(n, 0);
    int wanted = 0;
    for (size_t c = 0; c < n; ++c) {
        growth[c] = automatic[c] ? columns.maximum[c] - widths[c] : 0;
        wanted += growth[c];
    }
    if (left > 0 && wanted > 0) {
        distribute(widths, growth, automatic, std::min(left, wanted));
        left -= std::min(left, wanted);
    }
    if (left > 0) {
        const bool anyAutomatic = std::find(automatic.begin(), automatic.end(), true) != automatic.end();
        const bool anyPercentage = std::find(percentage.begin(), percentage.end(), true) != percentage.end();
        distribute(widths, columns.maximum, anyAutomatic ? automatic : anyPercentage ? percentage : all, left);
    }
    return widths;
}

// Row heights from the cells, stretched to the table's own height.
std::vector<int> rowHeights(const Grid& grid, int spacing, int innerHeight)
{
    std::vector<int> heights(grid.rows.size(), 0);
    for (size_t r = 0; r < grid.rows.size(); ++r)
        heights[r] = std::max(0, grid.rows[r]->style.height.resolve(-1, 0));
    for (const GridCell& cell : grid.cells) {
        if (cell.rows == 1)
            heights[cell.row] = std::max(heights[cell.row], cell.view->box.height);
    }
    for (const GridCell& cell : grid.cells) {
        if (cell.rows == 1)
            continue;
        int have = spacing * (cell.rows - 1);
        for (int r = cell.row; r < cell.row + cell.rows; ++r)
            have += heights[r];
        heights[cell.row + cell.rows - 1] += std::max(0, cell.view->box.height - have);
    }
    const int total = std::accumulate(heights.begin(), heights.end(), 0) + spacing * (static_cast<int>(heights.size()) + 1);
    if (innerHeight > total && !heights.empty()) {
        const int extra = innerHeight - total;
        for (size_t r = 0; r < heights.size(); ++r)
            heights[r] += extra / static_cast<int>(heights.size()) + (r < extra % heights.size() ? 1 : 0);
    }
    return heights;
}

} // namespace

void tableWidths(View& table, LayoutEnv& env, int& minWidth, int& maxWidth)
{
    Grid grid = buildGrid(table);
    const int spacing = spacingOf(table, env);
    const Columns columns = measureColumns(table, grid, env, spacing);
    const int frame = horizontalFrame(table, 0) + spacing * (grid.columns + 1);
    minWidth = std::accumulate(columns.minimum.begin(), columns.minimum.end(), 0) + frame;
    maxWidth = std::accumulate(columns.maximum.begin(), columns.maximum.end(), 0) + frame;
    if (table.style.width.set && !table.style.width.percent)
        minWidth = maxWidth = std::max(minWidth, table.style.width.resolve(0));
    else if (table.style.width.percent)
        maxWidth = minWidth;
}

void layoutTable(View& table, LayoutEnv& env, int x, int y, int available, int containingHeight)
{
    Grid grid = buildGrid(table);
    const int spacing = spacingOf(table, env);
    const int marginLeft = marginOf(table, 0, available);
    const int marginRight = marginOf(table, 2, available);
    const Columns columns = measureColumns(table, grid, env, spacing);
    const int frame = horizontalFrame(table, available) + spacing * (grid.columns + 1);
    const int minimum = std::accumulate(columns.minimum.begin(), columns.minimum.end(), 0);
    const int maximum = std::accumulate(columns.maximum.begin(), columns.maximum.end(), 0);
    // The table's width attribute and style width count its whole border box.
    int inner = table.style.width.set ? table.style.width.resolve(available) - frame
                                      : std::min(available - marginLeft - marginRight - frame, maximum);
    inner = std::max(inner, minimum);
    const std::vector<int> widths = columnWidths(columns, inner);

    table.box = Rect{x + marginLeft, y + marginOf(table, 1, available), inner + frame, 0};
    const Rect content{table.box.x + table.borderRoom(0) + table.paddingOf(0),
                       table.box.y + table.borderRoom(1) + table.paddingOf(1), 0, 0};
    std::vector<int> columnX(grid.columns + 1, content.x + spacing);
    for (int c = 0; c < grid.columns; ++c)
        columnX[c + 1] = columnX[c] + widths[c] + spacing;

    for (const GridCell& cell : grid.cells) {
        const int width = columnX[cell.column + cell.columns] - spacing - columnX[cell.column];
        layoutBlockOfWidth(*cell.view, env, columnX[cell.column], 0, width, -1);
    }
    const int givenHeight = table.style.height.resolve(containingHeight, -1);
    const std::vector<int> heights = rowHeights(grid, spacing, givenHeight - frameHeight(table));

    std::vector<int> rowY(grid.rows.size() + 1, content.y + spacing);
    for (size_t r = 0; r < grid.rows.size(); ++r) {
        rowY[r + 1] = rowY[r] + heights[r] + spacing;
        grid.rows[r]->box = Rect{content.x, rowY[r], inner + spacing * (grid.columns + 1), heights[r]};
    }
    for (const GridCell& cell : grid.cells) {
        View& view = *cell.view;
        const int contentHeight = view.box.height;
        view.translate(0, rowY[cell.row] - view.box.y);
        view.box.height = rowY[cell.row + cell.rows] - spacing - rowY[cell.row];
        const int frameY = frameHeight(view);
        alignContent(view, contentHeight - frameY, view.box.height - frameY);
    }
    table.box.height = rowY.back() - table.box.y + table.borderRoom(3) + table.paddingOf(3);
}

} // namespace xhtml
