// The reconstruction window's figures drawn again for papers: the curve,
// the estimated-observed scatter, the matrix down the core and the
// calibration matrix, from each figure's menu and from Edit.
#include <QLineEdit>
#include <QMenu>
#include <QSlider>
#include <tuple>

#include "calibration/FineGrid.h"
#include "presentation/publication/Figures.h"
#include "state/Format.h"
#include "ui/PublicationExport.h"
#include "ui/frmMAT.h"

namespace varnoth {

void frmMAT::AddPublicationEntries() {
  // The curve drawn again for a paper.
  const DrawPublication curve = [this](const PublicationChoice& c) {
    pub::CurveOptions o = pub::DefaultCurveOptions(s_, c.WidthMm);
    o.Smoothing = Slider6->value();
    o.AnalogueCount = c.AnalogueCount;
    return pub::ReconstructionFigure(s_, s_.CurrentParameter, o);
  };
  const DrawPublication scatter = [this](const PublicationChoice& c) {
    return pub::EstObsFigure(s_, s_.CurrentParameter, c.WidthMm);
  };
  const auto no = [] { return false; };
  for (QMenu* menu : {mnuRB1, mnuEdit})
    AddPublicationEntry(menu, menu == mnuEdit ? "mnuEditPublication1" : "mnuPublication1", dialogs_,
                        boundary_, this, PublicationKind::Reconstruction, no, curve, mnuCopy1);
  for (QMenu* menu : {mnuRB2, mnuEdit})
    AddPublicationEntry(menu, menu == mnuEdit ? "mnuEditPublication2" : "mnuPublication2", dialogs_,
                        boundary_, this, PublicationKind::WidthOnly, no, scatter, mnuCopy2);
  // The matrices: down the core, and the calibration itself.
  const DrawPublication down = [this](const PublicationChoice& c) {
    return pub::ResponseMatrixFigure(s_, hist_, s_.CurrentParameter,
                                     LenientParse(Text1->text().toStdString()),
                                     LenientParse(Text2->text().toStdString()), c.WidthMm);
  };
  const DrawPublication matrix = [this](const PublicationChoice& c) {
    if (!calib_) return pub::Page(c.WidthMm, 0);
    const CalibSettings st = CalibSettingsShown();
    FineGrid fine;
    PrepareChart(*calib_, st, fine);
    return pub::CalibrationFigure(
        {fine, LenientParse(calib_->Text1), LenientParse(calib_->Text2), st.Slider1, st.Slider2,
         pub::DefaultSectionColumn(fine), pub::CalibrationParameter(*calib_)},
        c.WidthMm);
  };
  for (auto [menu, n, draw, copy] :
       {std::tuple{mnuRB3, "3", down, mnuCopy3}, std::tuple{mnuRB4, "4", matrix, mnuCopy4}}) {
    AddPublicationEntry(menu, QString("mnuPublication") + n, dialogs_, boundary_, this,
                        PublicationKind::WidthOnly, no, draw, copy);
    AddPublicationEntry(mnuEdit, QString("mnuEditPublication") + n, dialogs_, boundary_, this,
                        PublicationKind::WidthOnly, no, draw, copy);
  }
}

}  // namespace varnoth
