// The reconstruction window's events: the settings that run the search
// again, the climate file, the curve and the scatter, and the selected
// sample shared with the diagram and the main window.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <algorithm>

#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/Curves.h"
#include "state/Format.h"
#include "ui/Controls.h"
#include "ui/PictureBox.h"
#include "ui/frmCalib.h"
#include "ui/frmDiagram.h"
#include "ui/frmLuvane.h"
#include "ui/frmMAT.h"

namespace varnoth {

namespace {

void SetTextColour(QWidget* w, const QColor& colour) {
  // The disabled look stays the style's own.
  QPalette p = w->palette();
  for (QPalette::ColorGroup g : {QPalette::Active, QPalette::Inactive})
    for (QPalette::ColorRole r : {QPalette::WindowText, QPalette::ButtonText, QPalette::Text})
      p.setColor(g, r, colour);
  w->setPalette(p);
}

// A picture that is "emptied" shows the window's own background.
void Empty(QWidget* window, PictureBox* p) {
  p->surface().SetBackColour(window->palette().color(QPalette::Window));
  p->update();
}

}  // namespace

void frmMAT::ConnectEvents() {
  for (QRadioButton* o : Option1) connect(o, &QRadioButton::clicked, this, &frmMAT::Option1Clicked);
  connect(Command7, &QPushButton::clicked, this, &frmMAT::AxisSettingsRequested);
  connect(Check1, &QCheckBox::clicked, this, [this](bool on) {
    for (QRadioButton* o : Option3) o->setEnabled(on);
    boundary_.Run([this] { Reset(); });
  });
  for (QRadioButton* o : Option3)
    connect(o, &QRadioButton::clicked, this, [this] { boundary_.Run([this] { Reset(); }); });
  connect(Check2, &QCheckBox::clicked, this, [this](bool on) {
    for (QRadioButton* o : Option2) o->setEnabled(on);
    boundary_.Run([this] { Reset(); });
  });
  for (QRadioButton* o : Option2)
    connect(o, &QRadioButton::clicked, this, [this] { boundary_.Run([this] { Reset(); }); });
  connect(Slider1, &QSlider::valueChanged, this, &frmMAT::Slider1Changed);
  connect(Slider3, &QSlider::valueChanged, this, &frmMAT::Slider3Changed);
  connect(Slider2, &QSlider::valueChanged, this, &frmMAT::Slider2Changed);
  connect(Slider6, &QSlider::valueChanged, this, &frmMAT::Slider6Changed);
  connect(Slider7, &QSlider::valueChanged, this, &frmMAT::Slider7Changed);
  connect(Slider5, &QSlider::valueChanged, this, &frmMAT::Slider5Changed);
  connect(Command1, &QPushButton::clicked, this, &frmMAT::Inport_climate_data);
  connect(Combo1, &QComboBox::activated, this, [this] { boundary_.Run([this] { ChangePara(); }); });
  connect(Text1, &QLineEdit::textEdited, this, [this] { TextChanged(true, true); });
  connect(Text2, &QLineEdit::textEdited, this, [this] { TextChanged(true, false); });
  connect(Text1, &QLineEdit::editingFinished, this, [this] { TextChanged(false, true); });
  connect(Text2, &QLineEdit::editingFinished, this, [this] { TextChanged(false, false); });
  connect(Check5, &QCheckBox::clicked, this, &frmMAT::Check5Clicked);
  connect(Check3, &QCheckBox::toggled, this, [this](bool on) {
    emit SelectionLineToggled(on);
    boundary_.Run([this] {
      DrawMarker();
      ShowSamplePosition();
    });
  });
  connect(Combo3, &QComboBox::activated, this, &frmMAT::SelectLabel);
  connect(UpDown1, &QSpinBox::valueChanged, this, &frmMAT::StepSample);
  connect(Command3, &QPushButton::clicked, this, &frmMAT::GenerateErrorModel);
  // The two state buttons only tell whether the matrices stand.
  connect(Command2, &QPushButton::clicked, this,
          [this] { Command2->setText(calibReady_ ? "Calib: Yes" : "Calib: No"); });
  connect(Command5, &QPushButton::clicked, this,
          [this] { Command5->setText(histReady_ ? "Hist: Yes" : "Hist: No"); });
  for (QRadioButton* o : Option4)
    connect(o, &QRadioButton::clicked, this, [this] {
      boundary_.Run([this] {
        DrawResponseMatrices();
        DrawReconstructionCurve();
      });
    });
  for (QCheckBox* c : Check4)
    connect(c, &QCheckBox::clicked, this, [this] {
      boundary_.Run([this] {
        DrawResponseMatrices();
        DrawReconstructionCurve();
      });
    });
  connect(Command6, &QPushButton::clicked, this, &frmMAT::OpenCalibration);
  connect(Command4, &QPushButton::clicked, this, &frmMAT::BuildHistMatrix);
  for (QAction* a : {mnuSaveOstrel, mnuSaveOstrel2})
    connect(a, &QAction::triggered, this, &frmMAT::SaveOstrel);
  for (QAction* a : {mnuSaveTamsek, mnuSaveTamsek2})
    connect(a, &QAction::triggered, this, &frmMAT::SaveTamsek);

  const std::pair<QAction*, void (frmMAT::*)()> saves[] = {
      {mnuSaveCurveVOnly, &frmMAT::SaveCurve},
      {mnuSaveCurve2VOnly, &frmMAT::SaveCurve},
      {mnuSaveCurveVandE, &frmMAT::SaveCurveWithE},
      {mnuSaveCurve2VandE, &frmMAT::SaveCurveWithE},
      {mnuSaveCurveAllVOnly, &frmMAT::SaveCurveAll},
      {mnuSaveCurveAll2VOnly, &frmMAT::SaveCurveAll},
      {mnuSaveCurveAllVandE, &frmMAT::SaveCurveAllwithE},
      {mnuSaveCurveAll2VandE, &frmMAT::SaveCurveAllwithE},
      {mnuSaveDistAna, &frmMAT::SaveDistAna},
      {mnuSaveDistAna2, &frmMAT::SaveDistAna},
      {mnuSaveScatter, &frmMAT::SaveScatter},
      {mnuSaveScatter2, &frmMAT::SaveScatter}};
  for (const auto& [action, save] : saves) connect(action, &QAction::triggered, this, save);
  connect(mnuColor, &QAction::triggered, this, &frmMAT::ColourSettingsRequested);
  const std::pair<QAction*, PictureBox*> copies[] = {
      {mnuCopy1, Picture1}, {mnuCopy2, Picture2}, {mnuCopy3, Picture3}, {mnuCopy4, Picture4}};
  for (const auto& [action, picture] : copies)
    connect(action, &QAction::triggered, this, [picture] { picture->surface().CopyToClipboard(); });
  const std::pair<PictureBox*, QMenu*> popups[] = {
      {Picture1, mnuRB1}, {Picture2, mnuRB2}, {Picture3, mnuRB3}, {Picture4, mnuRB4}};
  for (const auto& [picture, menu] : popups)
    connect(picture, &PictureBox::RightPressed, this,
            [menu](const QPoint& at) { menu->popup(at); });
  for (PictureBox* p : {Picture1, Picture3}) {
    connect(p, &PictureBox::LeftPressed, this, &frmMAT::PressCurve);
    connect(p, &PictureBox::LeftMoved, this, [this, p](const QPointF& at) {
      if (dragging_) MoveOnCurve(p->surface().ToUser(at));
    });
    connect(p, &PictureBox::LeftReleased, this, [this] { ReleaseCurve(); });
  }
}

AnalogueSettings frmMAT::Settings() const {
  AnalogueSettings st;
  st.Basis = taxaBased_ ? AnalogueBasis::TaxaProportions : AnalogueBasis::EofValues;
  st.Enhance = !Check2->isChecked()      ? AnalogueEnhance::None
               : Option2[0]->isChecked() ? AnalogueEnhance::SquareRoot
                                         : AnalogueEnhance::Log;
  st.InverseWeighting = Check1->isChecked();
  st.WeightBy =
      Option3[0]->isChecked() ? AnalogueWeightBy::SquaredDistance : AnalogueWeightBy::Distance;
  st.MaxAnalogues = static_cast<Count>(Slider1->value());
  st.MinAnalogues = static_cast<Count>(Slider3->value());
  st.AnalogueThreshold = threshold_;
  return st;
}

CurveSettings frmMAT::CurveSet() const {
  CurveSettings set;
  set.Low = LenientParse(Text1->text().toStdString());
  set.High = LenientParse(Text2->text().toStdString());
  set.SelectionShown = Check3->isChecked() || sizing_;
  set.ErrorBars = Check5->isChecked();
  set.Smoothing = Slider6->value();
  set.Colours = colours_;
  return set;
}

void frmMAT::DefineThreshold() {
  AnalogueSettings st = Settings();
  const double t = varnoth::DefineThreshold(st, Slider2->value());
  threshold_ = st.AnalogueThreshold;
  Label2->setText(QString::fromStdString("Threshold: " + FormatGeneral(t)));
}

void frmMAT::Reset() {
  // 1, 2. The error panels go back to the window's background.
  PlacePanels();
  Empty(this, Picture2);
  Empty(this, Picture3);
  histReady_ = false;
  s_.ErrorModelReady = false;
  // 3.
  for (QAction* a : {mnuSaveScatter, mnuSaveScatter2, mnuCopy2}) a->setEnabled(false);
  Command3->setEnabled(false);
  Command6->setEnabled(false);
  // 4. The window narrows again.
  if (panelsOpen_) {
    for (QWidget* w :
         std::initializer_list<QWidget*>{Frame6, Picture2, Picture4, Picture3, Command6, Command4})
      w->setVisible(false);
    Command4->setEnabled(false);
    SetPanelsOpen(false);
  }
  // 5.
  calibReady_ = false;
  if (calibWindow_) calibWindow_->ReconstructionReset();
  Slider7->setVisible(false);
  Label7->setVisible(false);
  for (QAction* a :
       {mnuSaveOstrel, mnuSaveOstrel2, mnuCopy4, mnuSaveTamsek, mnuSaveTamsek2, mnuCopy3})
    a->setEnabled(false);
  // 6. A curve that said "no analogues" is run again too: the user moved a
  // setting to find some.
  emit RefreshRequested();
  DefineThreshold();
  if (s_.ReconstructionOpen || (noAnalogues_ && s_.ClimateLoaded)) RunReconstruction();
}

void frmMAT::Slider1Changed() {
  if (Slider1->value() == 0) {
    Slider1->setValue(1);  // its own change runs the rest
    return;
  }
  if (Slider1->value() < Slider3->value()) SetQuietly(Slider3, Slider1->value());
  Label1->setText(QString("No.of analogues: %1-%2").arg(Slider3->value()).arg(Slider1->value()));
  boundary_.Run([this] { Reset(); });
}

void frmMAT::Slider3Changed() {
  if (Slider3->value() > Slider1->value()) SetQuietly(Slider1, Slider3->value());
  boundary_.Run([this] { Reset(); });
  Label1->setText(QString("No.of analogues: %1-%2").arg(Slider3->value()).arg(Slider1->value()));
}

void frmMAT::Slider2Changed() {
  boundary_.Run([this] {
    DefineThreshold();
    Label2->setText(QString::fromStdString("Threshold: " + FormatGeneral(threshold_)));
    Reset();
  });
}

void frmMAT::Option1Clicked() {
  taxaBased_ = Option1[0]->isChecked();
  const PreTreatmentSettings& pre = s_.PreTreatment;
  Check2->setChecked(pre.Enhance);
  Option2[pre.SquareRoot ? 0 : 1]->setChecked(true);
  if (!taxaBased_) {
    Combo2->setEnabled(true);
    Check2->setEnabled(false);
    for (QRadioButton* o : Option2) o->setEnabled(false);
    Command7->setEnabled(true);
  } else {
    // The search reads the proportions, which pre-treatment leaves as they
    // are: the dialog's enhancement is offered for them, and can be undone.
    Combo2->setEnabled(false);
    Check2->setEnabled(true);
    for (QRadioButton* o : Option2) o->setEnabled(Check2->isChecked());
    Command7->setEnabled(false);
  }
  // The threshold stays as last defined, as Label2 tells it.
  boundary_.Run([this] {
    if (s_.ReconstructionOpen || (noAnalogues_ && s_.ClimateLoaded)) RunReconstruction();
  });
}

void frmMAT::Inport_climate_data() {
  boundary_.Run([this] {
    std::optional<std::string> path;
    if (!s_.ClimateLoaded) {
      const char* title = "Open climate at the reference sites";
      path = s_.ExampleFolder.empty()
                 ? dialogs_.OpenFileName(kDataFileFilter, title)
                 : dialogs_.OpenFileNameIn(kDataFileFilter, title, s_.ExampleFolder);
      if (!path) return;  // a cancel leaves everything as it was
    }
    const ClimateImportResult r = varnoth::Inport_climate_data(s_, path, dialogs_);
    BusyPointer::Restore();
    if (!r.Ok) {
      if (r.Failure && !IsFileFailure(*r.Failure)) throw RuntimeFailure(*r.Failure);
      return;
    }
    // 10. The parameters and the settings that need climate data.
    {
      const QSignalBlocker quiet(Combo1);
      Combo1->clear();
      for (long q = 1; q <= s_.ClimateParamCount; ++q)
        Combo1->addItem(QString::fromStdString(s_.ClimateParamNames(q)));
      Combo1->setCurrentIndex(0);
    }
    EnableSettings();
    // 11.
    Command1->setEnabled(false);
    Command8->setEnabled(false);
    RunReconstruction();
  });
}

void frmMAT::EnableSettings() {
  for (QWidget* w :
       std::initializer_list<QWidget*>{Option1[0], Option1[1], Option3[0], Option3[1], Slider1,
                                       Slider3, Slider2, Check1, Label1, Label2})
    w->setEnabled(true);
  Check2->setEnabled(!s_.EnhanceUsed);
  if (Check2->isEnabled() && Check2->isChecked())
    for (QRadioButton* o : Option2) o->setEnabled(true);
}

void frmMAT::RunReconstruction() {
  ProgressBar1->raise();
  varnoth::RunReconstruction(s_, Settings(), progress_);
  progress_.Finish();
  const Count p = SetCurrentParameter(s_, Combo1->currentText().toStdString());
  const ScaleLimits limits = CurveLimits(s_, p);
  SyncSurfaces();
  if (limits.NoAnalogues) {
    noAnalogues_ = true;
    SetLimitTexts(QString(), QString());
    Surface& pic = Picture1->surface();
    pic.SetScale(0, 0, pic.Width(), pic.Height());
    DrawNoAnalogues(pic);
    Picture1->update();
  } else {
    noAnalogues_ = false;
    SetLimitTexts(QString::fromStdString(FormatGeneral(limits.Low)),
                  QString::fromStdString(FormatGeneral(limits.High)));
    DrawReconstructionCurve();
    ShowSamplePosition();
  }
  HighlightAnalogues();
  for (QWidget* w :
       std::initializer_list<QWidget*>{Check3, Combo1, Combo3, Text1, Text2, UpDown1, Command3})
    w->setEnabled(true);
  Command3->setFocus();
}

void frmMAT::SetLimitTexts(const QString& low, const QString& high) {
  // A limit the program writes changes the scale as a user's edit does:
  // matrices made for the old one are dropped.
  const bool lowChanged = Text1->text() != low, highChanged = Text2->text() != high;
  Text1->setText(low);
  Text2->setText(high);
  if (lowChanged) TextChanged(true, true);
  if (highChanged) TextChanged(true, false);
}

void frmMAT::DrawReconstructionCurve() {
  SyncSurfaces();
  const CurveSettings set = CurveSet();
  if (set.Low == set.High) return;
  // The histogram panel shares the curve's depth axis, whose ends are the
  // end samples when both are empty, else the diagram's gaps.
  Surface& p3 = Picture3->surface();
  p3.SetScale(set.Low, 0, set.High - set.Low, 1);
  SetCurveScale(s_, p3);
  if (histReady_)
    DrawHistPicture();
  else
    p3.SetBackColour(palette().color(QPalette::Window));
  const Count p = SetCurrentParameter(s_, Combo1->currentText().toStdString());
  varnoth::DrawReconstructionCurve(s_, p, set, Picture1->surface());
  if (Picture3->isVisible()) DrawCurveMarker(s_, set, Picture1->surface(), &p3);
  Picture1->update();
  Picture3->update();
  if (s_.ErrorModelReady) DrawEstObsScatter();
  DrawMatrixMarker();
  s_.ReconstructionOpen = true;
  for (QAction* a :
       {mnuSaveCurveEntry, mnuSaveCurve2Entry, mnuSaveCurveAllEntry, mnuSaveCurveAll2Entry,
        mnuSaveDistAna, mnuSaveDistAna2, mnuCopy1, mnuSaveCurveVOnly, mnuSaveCurve2VOnly,
        mnuSaveCurveAllVOnly, mnuSaveCurveAll2VOnly})
    a->setEnabled(true);
}

void frmMAT::DrawEstObsScatter() {
  const CurveSettings set = CurveSet();
  if (set.Low == set.High) return;
  if (!Picture2->isVisible()) {
    Picture2->setVisible(true);
    PlacePanels();
  }
  SyncSurfaces();
  const Count p = s_.CurrentParameter;
  varnoth::DrawEstObsScatter(s_, p, ScatterSet(), Picture2->surface());
  Picture2->update();
  s_.ErrorModelReady = true;
  Command3->setEnabled(false);
  // The calibration tool takes the error model from here.
  Command6->setEnabled(true);
  for (QAction* a : {mnuSaveScatter, mnuSaveScatter2, mnuCopy2}) a->setEnabled(true);
  const std::optional<double> r = EstObsCorrelation(s_, p);
  // The matrix panels take the label over while the histogram stands.
  if (!r || !histReady_) Label7->setText(QString::fromStdString(CorrelationCaption(r)));
}

void frmMAT::GenerateErrorModel() {
  boundary_.Run(
      [this] {
        // 1. The panels open beside the curve.
        for (QWidget* w : std::initializer_list<QWidget*>{Picture2, Picture3, Command4, Slider7})
          w->setVisible(true);
        Command3->setEnabled(false);
        SetPanelsOpen(true);
        FitPanels();
        // 2, 3.
        ProgressBar1->raise();
        varnoth::GenerateErrorModel(s_, Settings(), progress_);
        // 5, 6.
        SetCurrentParameter(s_, Combo1->currentText().toStdString());
        Empty(this, Picture2);
        DrawEstObsScatter();
        ShowSamplePosition();
        // 7. The calibration tool takes the pairs from here.
        for (QWidget* w :
             std::initializer_list<QWidget*>{Command6, Frame6, Slider7, Picture3, Label7})
          w->setVisible(true);
        PlacePanels();
        DrawReconstructionCurve();
        Command6->setFocus();
        // 8.
        progress_.Finish();
      },
      [this] { Command3->setEnabled(true); });
}

void frmMAT::ChangePara() {
  if (s_.ReconstructionOpen) {
    const Count p = SetCurrentParameter(s_, Combo1->currentText().toStdString());
    SetLimitTexts(
        QString::fromStdString(FormatGeneral(RoundScaleDown(s_.ReconMin(p), s_.ReconMax(p)))),
        QString::fromStdString(FormatGeneral(RoundScaleUp(s_.ReconMax(p), s_.ReconMin(p)))));
    DrawReconstructionCurve();
  }
  FollowParameterInLuvane();
  if (UpDown1->isEnabled()) UpDown1->setFocus();
  Picture4->setVisible(false);
  if (s_.ErrorModelReady) EmptyMatrices();
  // An open calibration tool holds the pairs of the parameter shown before.
  if (calibWindow_) calibWindow_->ReconstructionReset();
}

void frmMAT::EmptyMatrices() {
  Empty(this, Picture3);
  histReady_ = false;
  hist_.HistReady = false;
  if (calib_) calib_->CalibReady = false;
  Command4->setEnabled(false);
  for (QAction* a : {mnuSaveTamsek, mnuSaveTamsek2, mnuCopy3}) a->setEnabled(false);
  Empty(this, Picture4);
  calibReady_ = false;
  for (QAction* a : {mnuSaveOstrel, mnuSaveOstrel2, mnuCopy4}) a->setEnabled(false);
  // The curve's selection line stands on the histogram panel too.
  if (s_.ReconstructionOpen) DrawMarker();
}

void frmMAT::HistResize() {
  Picture4->setVisible(false);
  if (s_.ErrorModelReady) {
    DrawEstObsScatter();
    EmptyMatrices();
  }
  ShowSamplePosition();
  if (s_.ReconstructionOpen) DrawReconstructionCurve();
}

void frmMAT::TextChanged(bool edited, bool first) {
  boundary_.Run([this, edited, first] {
    scaleEdited_ = true;
    if (s_.ReconstructionOpen) {
      DrawReconstructionCurve();
      if (first) ShowSamplePosition();
    }
    Picture4->setVisible(false);
    if (s_.ErrorModelReady) {
      DrawEstObsScatter();
      if (edited) EmptyMatrices();
    }
  });
}

void frmMAT::Check5Clicked() {
  const bool on = Check5->isChecked();
  for (QAction* a :
       {mnuSaveCurveVandE, mnuSaveCurveAllVandE, mnuSaveCurve2VandE, mnuSaveCurveAll2VandE})
    a->setEnabled(on);
  boundary_.Run([this] {
    ShowSamplePosition();
    if (s_.ReconstructionOpen) DrawReconstructionCurve();
  });
  FocusNext();
}

void frmMAT::FocusNext() {
  if (Command3->isEnabled())
    Command3->setFocus();
  else if (Command1->isEnabled())
    Command1->setFocus();
}

void frmMAT::Slider6Changed() {
  Label6->setText(QString("Smoothing level: %1").arg(Slider6->value()));
  boundary_.Run([this] {
    DrawReconstructionCurve();
    ShowSamplePosition();
    if (histReady_) {
      Empty(this, Picture3);
      histReady_ = false;
      for (QAction* a : {mnuSaveTamsek, mnuSaveTamsek2, mnuCopy3}) a->setEnabled(false);
      Command4->setEnabled(true);
    }
  });
}

void frmMAT::Slider5Changed() {
  zEnhancement_ = Slider5->value() / 100.0;
  // Only the matrix colours depend on it; the calibration tool redraws them.
  boundary_.Run([this] {
    if (calibReady_ && Option4[0]->isChecked()) DrawResponseMatrices();
  });
  colours_.PaletteChanged = true;
  if (calibReady_ && calibWindow_) {
    calibWindow_->ToggleColours();
    colours_.PaletteChanged = false;
  }
}

void frmMAT::Slider7Changed() {
  if (Slider7->value() == 0) {
    Slider7->setValue(1);
    return;
  }
  pictureWidth_ = Slider7->value() * 2055 / 10 / 15;
  FitPanels();
  boundary_.Run([this] { HistResize(); });
}

void frmMAT::ShowSamplePosition() {
  const long n = s_.FossilSampleCount;
  if (n < 1) return;
  const long k = std::clamp<long>(s_.SampleCursor, 1, n);
  const bool out = s_.SampleIsOut.Allocated() &&
                   s_.SampleIsOut.Size() > static_cast<std::size_t>(k) && s_.SampleIsOut(k);
  SetTextColour(Check3, out ? QColor(200, 0, 0) : QColor(0, 0, 0));
  SetTextColour(Combo3, out ? colours_.SmoothCurveColour.ToQColor() : QColor(0, 0, 0));

  const Surface& pic = Picture1->surface();
  if (pic.ScaleHeight() != 0) {
    const double offset = SampleBoxOffset(CurvePosition(s_, k), pic.ScaleTop(), pic.ScaleHeight(),
                                          Picture1->height() * 15.0);
    // Kept inside the window, so that the first and last samples' boxes show.
    const int top = Picture1->y() + static_cast<int>(std::lround(offset / 15));
    const int lowest = std::max(0, centralWidget()->height() - Frame5->height());
    Frame5->move(Frame5->x(), std::clamp(top, 0, lowest));
  }
  const QString label = QString::fromStdString(s_.FossilLabels(k));
  Check3->setText(label);
  {
    const QSignalBlocker quiet(Combo3);
    Combo3->setCurrentIndex(Combo3->findText(label, Qt::MatchExactly));
    Combo3->setEditText(label);
  }
  if (!s_.FossilEmptySample(k) && s_.ReconstructionOpen)
    Label4->setText(QString("No. of analogues: %1").arg(s_.AnalogueCount(k)));
  else
    Label4->setText(QString());
  HighlightAnalogues();
}

void frmMAT::HighlightAnalogues() {
  // The analogues are marked on the map of the interpolation tool.
  if (luvane_) luvane_->HighlightAnalogues();
}

void frmMAT::DrawMarker() {
  const CurveSettings set = CurveSet();
  if (s_.ReconstructionOpen && Picture1->surface().HasStoredBackground()) {
    DrawCurveMarker(s_, set, Picture1->surface(),
                    Picture3->isVisible() ? &Picture3->surface() : nullptr);
    Picture1->update();
    Picture3->update();
  }
  if (s_.ErrorModelReady && Picture2->surface().HasStoredBackground()) {
    DrawScatterMarker(s_, s_.CurrentParameter, ScatterSet(), Picture2->surface());
    Picture2->update();
  }
  DrawMatrixMarker();
}

void frmMAT::SetSample(long sample) {
  boundary_.Run([this, sample] {
    s_.SampleCursor = ToCount(static_cast<long long>(sample));
    SetQuietly(UpDown1, static_cast<int>(sample));
    DrawMarker();
    ShowSamplePosition();
    emit SampleSelected();
  });
}

void frmMAT::StepSample(int value) { SetSample(value); }

void frmMAT::SelectLabel() {
  const std::string label = Combo3->currentText().toStdString();
  for (long i = 1; i <= s_.FossilSampleCount; ++i)
    if (s_.FossilLabels(i) == label) {
      SetSample(i);
      return;
    }
}

void frmMAT::MoveMarker() {
  if (!loaded_) return;
  boundary_.Run([this] {
    if (s_.SampleCursor < 1 || s_.SampleCursor > s_.FossilSampleCount) return;
    SetQuietly(UpDown1, s_.SampleCursor);
    DrawMarker();
    ShowSamplePosition();
  });
}

void frmMAT::FollowSelectionLine(bool on) {
  if (loaded_ && Check3->isChecked() != on) Check3->setChecked(on);
}

void frmMAT::RedrawAll() {
  if (!loaded_ || !s_.ReconstructionOpen) return;
  boundary_.Run([this] {
    DrawReconstructionCurve();
    // Both matrices take the colours of the moment.
    if (calibReady_) DrawResponseMatrices();
    ShowSamplePosition();
  });
}

bool frmMAT::eventFilter(QObject* watched, QEvent* event) {
  if ((watched == Picture1 || watched == Picture3) && event->type() == QEvent::MouseMove) {
    auto* e = static_cast<QMouseEvent*>(event);
    if (!(e->buttons() & Qt::LeftButton)) {
      auto* p = static_cast<PictureBox*>(watched);
      const QPointF at = p->surface().ToUser(e->position() - QPointF(p->Origin()));
      boundary_.Run([this, at] { Hover(at); });
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmMAT::Hover(const QPointF& at) {
  const bool near = Check3->isChecked() && s_.ReconstructionOpen &&
                    NearSelectionLine(s_, Picture1->surface(), at.y());
  if (near == sizing_) return;
  sizing_ = near;
  for (PictureBox* p : {Picture1, Picture3})
    if (near)
      p->setCursor(Qt::SizeVerCursor);
    else
      p->unsetCursor();
}

void frmMAT::PressCurve(const QPointF&) {
  if (sizing_) dragging_ = true;
}

void frmMAT::MoveOnCurve(const QPointF& at) {
  boundary_.Run([this, at] {
    const long k = NearestSample(s_, at.y());
    if (k >= 1 && k != s_.SampleCursor) SetSample(k);
  });
}

void frmMAT::ReleaseCurve() {
  if (!dragging_) return;
  dragging_ = false;
  sizing_ = false;
  for (PictureBox* p : {Picture1, Picture3}) p->unsetCursor();
  boundary_.Run([this] {
    if (s_.ReconstructionOpen) DrawReconstructionCurve();
    ShowSamplePosition();
    emit DiagramRedrawRequested();
  });
}

}  // namespace varnoth
