#pragma once
// "Save Picture As..." for every figure: a PNG at 1, 2 or 4 times the
// screen size, an SVG drawing or a PDF page, drawn again from the figure's
// own operations so that lines and text stay sharp.
#include <QAction>
#include <QMenu>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "presentation/PictureFile.h"
#include "presentation/Surface.h"
#include "state/Dialogs.h"
#include "ui/ErrorBoundary.h"

namespace varnoth {

// The save dialog's filters, in the order the chosen index counts them.
inline constexpr const char* kPictureFilter =
    "PNG image(*.png)|*.png|PNG image, twice the size(*.png)|*.png|"
    "PNG image, four times the size(*.png)|*.png|SVG drawing(*.svg)|*.svg|"
    "PDF document(*.pdf)|*.pdf";

// Asks for a file and writes the surface to it; false when the user
// cancels, which writes nothing. A write failure is thrown.
bool SavePictureAs(Dialogs& dialogs, const Surface& surface);
// The same for a figure of several surfaces.
bool SavePictureAs(Dialogs& dialogs, const std::vector<PlacedSurface>& parts);

using SurfaceOf = std::function<const Surface&()>;

// Adds the entry to a menu and runs it at the window's boundary. The
// surface is looked up when the entry is chosen. With `sameAs` given the
// entry is enabled when that one (the figure's "Copy") is.
QAction* AddSavePictureEntry(QMenu* menu, const QString& objectName, Dialogs& dialogs,
                             ErrorBoundary& boundary, SurfaceOf surface, QAction* sameAs = nullptr,
                             const QString& caption = QStringLiteral("Save Picture As..."));

// An entry for a figure of several surfaces, placed as on the screen.
QAction* AddSavePictureEntry(QMenu* menu, const QString& objectName, Dialogs& dialogs,
                             ErrorBoundary& boundary,
                             std::function<std::vector<PlacedSurface>()> parts,
                             const QString& caption);

// The Edit menu's way to the same: one entry for a window of one figure, a
// submenu naming each figure for a window of several.
struct PictureChoice {
  QString ObjectName, Caption;
  SurfaceOf Of;
  QAction* SameAs = nullptr;
};
void AddSavePictureMenu(QMenu* edit, Dialogs& dialogs, ErrorBoundary& boundary,
                        const std::vector<PictureChoice>& figures);

}  // namespace varnoth
