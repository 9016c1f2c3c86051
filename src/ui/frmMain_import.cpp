// The main window's imports, stages and menus.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>

#include "eof/PreTreatment.h"
#include "ui/PictureBox.h"
#include "ui/frmCorrelVar.h"
#include "ui/frmMain.h"

namespace varnoth {

void frmMain::ImportButtonsFromSession() {
  Command5->setEnabled(s_.ReferenceImportOpen);
  Command6->setEnabled(s_.FossilImportOpen);
  // The example set is a whole session's data: only before any import.
  if (mnuOpenExample)
    mnuOpenExample->setEnabled(s_.ReferenceImportOpen && s_.FossilImportOpen && !s_.EofDone);
}

void frmMain::RestartTurning() {
  if (Option4[1]->isChecked() && !Check2->isChecked()) timer1_.start();
}

void frmMain::ImportReference() { RunImport(true); }

void frmMain::ImportFossil() { RunImport(false); }

void frmMain::RunImport(bool reference, std::optional<std::string> given) {
  timer1_.stop();
  // The reference read holds the main window until it ends; as the base it
  // stays held until the pre-treatment is confirmed.
  if (reference) setEnabled(false);
  ImportResult result;
  auto failed = [this] {
    BusyPointer::Restore();
    RestartTurning();
    ImportButtonsFromSession();
    setEnabled(true);
  };
  const bool ran = boundary_.Run(
      [&] {
        std::optional<std::string> path =
            given ? given
                  : dialogs_.OpenFileName(kDataFileFilter,
                                          reference ? "Open reference table" : "Open fossil table");
        BusyPointer::Set();
        result = reference ? varnoth::ImportReference(s_, path, dialogs_, progress_)
                           : varnoth::ImportFossil(s_, path, dialogs_, progress_);
        BusyPointer::Restore();
        if (!result.Ok) return;
        (reference ? referenceFile_ : fossilFile_) =
            QFileInfo(QString::fromStdString(path.value_or(std::string()))).fileName();
        ShowTitle();
        FillLists(reference, result.IsBase);
        if (result.IsBase) {
          BaseImportRead();
        } else {
          setEnabled(true);
          SecondImportRead(!reference);
          if (result.Projected) ProjectionEnded();
        }
        if (!reference) {
          mnuSaveF->setEnabled(true);
          mnuSaveF2->setEnabled(true);
        }
        ImportButtonsFromSession();
        if (s_.EofDone && s_.ProjectionDone) Command8->setEnabled(true);
        RestartTurning();
      },
      failed);
  ShowAnalysisState();
  if (!ran) return;
  if (!result.Ok) {
    failed();
    return;
  }
  if (result.IsBase) {
    CorrelVar()->Open();
  }
}

void frmMain::FillLists(bool reference, bool isBase) {
  auto fill = [](QComboBox* combo, const Array1<std::string>& names, long n) {
    combo->clear();
    for (long i = 1; i <= n; ++i) combo->addItem(QString::fromStdString(names(i)));
  };
  if (isBase) {
    fill(Combo3, reference ? s_.RefTaxaNames : s_.FossilTaxaNames, s_.TaxaCount);
    Combo3->setCurrentIndex(s_.TaxaCount > 0 ? 0 : -1);
  }
  if (reference) {
    fill(Combo4, s_.RefSiteNames, s_.RefSiteCount);
    Combo4->setCurrentIndex(s_.RefSiteCount > 0 ? 0 : -1);
  } else {
    Combo1->clear();
    for (long i = 1; i <= s_.FossilSampleCount; ++i)
      if (!s_.FossilEmptySample(i)) Combo1->addItem(QString::fromStdString(s_.FossilLabels(i)));
    Combo1->setCurrentIndex(Combo1->count() > 0 ? 0 : -1);
  }
}

void frmMain::BaseImportRead() {
  Command3->setEnabled(true);
  mnuControl->setEnabled(true);
  for (QAction* a :
       {mnuCopy1L, mnuCopy1R, mnuCopy2L, mnuCopy2R, mnuSaveL, mnuSaveL2, mnuSaveS, mnuSaveS2})
    a->setEnabled(true);
  Slider4->setEnabled(true);
  LabelRange->setEnabled(true);
}

void frmMain::SecondImportRead(bool fossil) {
  for (QWidget* w : std::initializer_list<QWidget*>{Slider1, Label1, Label2, Label4, Command14})
    w->setEnabled(true);
  if (fossil) {
    mnuSaveF->setEnabled(true);
    mnuSaveF2->setEnabled(true);
  }
}

void frmMain::ConfirmPreTreatment(const PreTreatmentSettings& settings) {
  setEnabled(true);
  if (correlVar_) correlVar_->hide();
  if (s_.FossilIsBase) Command5->setFocus();
  const bool done = boundary_.Run([&] {
    varnoth::ApplyPreTreatment(s_, settings, progress_);
    const Count a = s_.DisplayAxes(1), b = s_.DisplayAxes(2), c = s_.DisplayAxes(3);
    DrawTaxaFigure(a, b, c);
    DrawSitesFigure(a, b, c);
    if (!s_.ReferenceIsBase) DrawFossilFigure(a, b, c);
  });
  if (done) EofAnalysisEnded();
  ImportButtonsFromSession();
  ShowAnalysisState();
  if (done && exampleFossilPending_) {
    exampleFossilPending_ = false;
    RunImport(false, s_.ExampleFolder + "/fossil.csv");
  }
}

void frmMain::EofAnalysisEnded() {
  for (QRadioButton* o : Option2) o->setEnabled(true);
  for (QRadioButton* o : Option4) o->setEnabled(true);
  for (QWidget* w : std::initializer_list<QWidget*>{Slider2[1], Slider2[2], Slider3, Check1, Check2,
                                                    Check3, Check4, Label[0], Label[1], Label3})
    w->setEnabled(true);
  for (QRadioButton* o : s_.ReferenceIsBase ? Option3 : Option5) o->setEnabled(true);
  ImportButtonsFromSession();
}

void frmMain::ProjectionEnded() {
  boundary_.Run([this] {
    if (s_.ProjectionDone)
      DrawFossilFigure(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
  });
  Command11->setEnabled(true);
  Command8->setEnabled(true);
  for (QRadioButton* o : s_.ReferenceIsBase ? Option5 : Option3) o->setEnabled(true);
}

void frmMain::SaveWith(void (*writer)(const Session&, const std::string&, const FileStamp&,
                                      Progress&)) {
  const char* title = writer == &SaveLoading  ? "Save the loadings of the taxa"
                      : writer == &sSaveScore ? "Save the scores of the reference sites"
                                              : "Save the scores of the fossil samples";
  std::optional<std::string> path = dialogs_.SaveFileName(kDataFileFilter, title);
  if (!path) return;
  // A failure while writing ends the save as a cancel would, with no message.
  try {
    writer(s_, *path, CurrentStamp(), progress_);
  } catch (const std::exception&) {
  }
  progress_.Finish();
}

void frmMain::ShowPopup(QMenu* menu, const QPoint& at) { menu->popup(at); }

}  // namespace varnoth
