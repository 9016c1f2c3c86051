#pragma once
// The figures of the EOF-climate correlation window: the table of
// coefficients as text cells with its row and column heads, and the scatter
// of one EOF against one climate parameter with the selected fossil sample
// as a vertical line. The table surfaces are scaled in twips.
#include <QString>
#include <vector>

#include "presentation/Colours.h"
#include "presentation/Surface.h"
#include "state/Array.h"
#include "state/Session.h"

namespace varnoth {

// A cell of the table is 1050 twips wide and 225 high; the rows start 45
// twips down. A column's cell reaches 200 twips left of its place, so that
// the pointer finds the number it stands on.
inline constexpr double kEccCellWidth = 1050, kEccCellHeight = 225, kEccTopGap = 45,
                        kEccColumnReach = 200;

// What fits on a table surface of the given size in twips: the integer part
// of (height - 45) / 225 rows and of width / 1050 columns.
struct EccFit {
  long Rows = 0, Columns = 0;
};
EccFit EccCellsThatFit(double widthTwips, double heightTwips);

struct EccTableView {
  long Eofs = 0, Params = 0;
  long RowScroll = 1, ColumnScroll = 1;       // first row and column in view
  long HoverRow = 0, HoverColumn = 0;         // printed bold
  long SelectedEof = 1, SelectedClimate = 1;  // printed red
};

// The cell under a point of the table, in twips: scroll + Int((x + 200) /
// 1050) and scroll + Int((y - 45) / 225). It may lie outside the data.
struct EccCell {
  long Row = 0, Column = 0;
};
EccCell EccCellAt(const EccTableView& view, double x, double y);

// Where the text of the cell in view position (k, r), both from 0, is
// centred horizontally and where its top stands.
double EccColumnCentre(long k);
double EccRowTop(long r);

// The visible part of the table: each coefficient rounded to 2 decimals,
// bold under the pointer, red for the selected pair and black otherwise, on
// white. `matrix` is (EOF, parameter).
void DrawEccTable(const Array2<float>& matrix, const EccTableView& view, Surface& table);
// "EOF-" and the number beside each row in view.
void DrawEccRowHeads(const EccTableView& view, Surface& heads);
// The parameter names over the columns in view, each in a small box filled
// white behind it; long names stagger over the two head strips, the first
// column in view on the upper one.
void DrawEccColumnHeads(const std::vector<QString>& names, const EccTableView& view, Surface& upper,
                        Surface& lower);

// The scatter on a surface whose vertical scale is set: the horizontal
// scale becomes the EOF axis -zoom..zoom; the selected sample's line in the
// cursor colour unless that sample is empty, then each reference site as a
// filled circle in the EOF colour, radius |ScaleWidth| / 67.
void DrawEccScatter(const Session& s, const ColourSettings& colours, long eof, long climate,
                    double zoom, Surface& picture);

}  // namespace varnoth
