// The main window's figures as files, and the example data set.
#include <QMenu>

#include "state/Failure.h"
#include "ui/ExampleData.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
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
