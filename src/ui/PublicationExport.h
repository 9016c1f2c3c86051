#pragma once
// "Save Figure for Publication..." beside "Save Picture As...": the figure
// drawn again for a paper (axes, names, scales, no selection lines) at one
// or two columns' width, as SVG, PDF or a 600 dpi PNG.
#include <QAction>
#include <QMenu>
#include <QWidget>
#include <functional>
#include <optional>

#include "presentation/publication/Page.h"
#include "state/Dialogs.h"
#include "ui/ErrorBoundary.h"

namespace varnoth {

inline constexpr const char* kPublicationCaption = "Save Figure for Publication...";
// The save dialog's filters, in the order the chosen index counts them.
inline constexpr const char* kPublicationFilter =
    "SVG drawing(*.svg)|*.svg|PDF document(*.pdf)|*.pdf|PNG image, 600 dpi(*.png)|*.png";

// Which of the figure's own choices the dialog offers besides the width.
enum class PublicationKind { PollenDiagram, Reconstruction, WidthOnly };

struct PublicationChoice {
  double WidthMm = pub::kDoubleColumnMm;
  int Zones = 0;               // the pollen diagram's zone lines
  double MinMaxPercent = 0;    // the pollen diagram's taxa
  bool Exaggerate = false;     // the pollen diagram's ten times outline
  bool AnalogueCount = false;  // the reconstruction's side panel
};

// The dialog of the choices; nothing when the user cancels. `zonesPossible`
// tells whether a tree exists to cut into zones.
std::optional<PublicationChoice> AskPublicationChoice(QWidget* parent, PublicationKind kind,
                                                      bool zonesPossible);
// Tests answer the dialog through this; an empty function brings it back.
using PublicationAnswer = std::function<std::optional<PublicationChoice>(PublicationKind)>;
void SetPublicationAnswer(PublicationAnswer answer);

using DrawPublication = std::function<pub::Page(const PublicationChoice&)>;
// Asks the choices, then the file, and writes the page; false on a cancel.
bool SaveFigureForPublication(Dialogs& dialogs, QWidget* parent, PublicationKind kind,
                              bool zonesPossible, const DrawPublication& draw);
// Adds the entry to a menu, run at the window's boundary; enabled with
// `sameAs` when one is given.
QAction* AddPublicationEntry(QMenu* menu, const QString& objectName, Dialogs& dialogs,
                             ErrorBoundary& boundary, QWidget* parent, PublicationKind kind,
                             std::function<bool()> zonesPossible, DrawPublication draw,
                             QAction* sameAs = nullptr);

}  // namespace varnoth
