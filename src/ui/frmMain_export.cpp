// The main window's figures as files, and the example data set.
#include <QMenu>

#include "presentation/publication/Figures.h"
#include "state/Failure.h"
#include "ui/ExampleData.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/PublicationExport.h"
#include "ui/frmMain.h"

namespace varnoth {

void frmMain::AddPictureFiles() {
  auto of = [this](bool sites, int i) -> SurfaceOf {
    return [this, sites, i]() -> const Surface& {
      return (sites ? Picture2(i) : Picture1(i))->surface();
    };
  };
  AddSavePictureEntry(mnuFig1L, "mnuSavePicture1L", dialogs_, boundary_, of(false, 0), mnuCopy1L);
  AddSavePictureEntry(mnuFig1R, "mnuSavePicture1R", dialogs_, boundary_, of(false, 1), mnuCopy1R);
  AddSavePictureEntry(mnuFig2L, "mnuSavePicture2L", dialogs_, boundary_, of(true, 0), mnuCopy2L);
  AddSavePictureEntry(mnuFig2R, "mnuSavePicture2R", dialogs_, boundary_, of(true, 1), mnuCopy2R);
  if (auto* edit = findChild<QMenu*>("mnuEdit"))
    AddSavePictureMenu(edit, dialogs_, boundary_,
                       {{"mnuEditPicture1L", "Fig1(0)", of(false, 0), mnuCopy1L},
                        {"mnuEditPicture1R", "Fig1(1)", of(false, 1), mnuCopy1R},
                        {"mnuEditPicture2L", "Fig2(0)", of(true, 0), mnuCopy2L},
                        {"mnuEditPicture2R", "Fig2(1)", of(true, 1), mnuCopy2R}});
  // Both figures drawn again as one for a paper, in the plane of the two
  // first display axes.
  const DrawPublication plane = [this](const PublicationChoice& c) {
    return pub::EofScatterFigure(s_, s_.DisplayAxes(1), s_.DisplayAxes(2), c.WidthMm);
  };
  const auto no = [] { return false; };
  const std::pair<QMenu*, QAction*> menus[] = {
      {mnuFig1L, mnuCopy1L}, {mnuFig1R, mnuCopy1R}, {mnuFig2L, mnuCopy2L}, {mnuFig2R, mnuCopy2R}};
  for (const auto& [menu, copy] : menus)
    AddPublicationEntry(menu, "mnuPublication" + copy->objectName().mid(7), dialogs_, boundary_,
                        this, PublicationKind::WidthOnly, no, plane, copy);
  if (auto* edit = findChild<QMenu*>("mnuEdit"))
    AddPublicationEntry(edit, "mnuEditPublication", dialogs_, boundary_, this,
                        PublicationKind::WidthOnly, no, plane, mnuCopy1L);
}

void frmMain::OpenExampleData() {
  const std::string dir = ExampleDataDir();
  if (dir.empty()) {
    boundary_.Run([] { throw RuntimeFailure(FailureKind::FileNotFound, "reference.csv"); });
    return;
  }
  s_.ExampleFolder = dir;
  // The fossil table follows once the pre-treatment of the base is confirmed.
  exampleFossilPending_ = true;
  RunImport(true, dir + "/reference.csv");
  if (!s_.EofDone && s_.ReferenceImportOpen) exampleFossilPending_ = false;
}

}  // namespace varnoth
