// The calibration tool's chain: the pair sets and their scatters, the error
// model, "Start" and the sliders that re-run the tail of the chain, clicks
// on blank figures, the overlays of Fig.8 and the hand-back.
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>

#include "calibration/PairSets.h"
#include "interpolation/CalibrationPairs.h"
#include "state/Format.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCalib.h"
#include "ui/frmMAT.h"
#include "ui/frmOutPut2.h"
#include "ui/frmPrintSetup.h"

namespace varnoth {

void frmCalib::ConnectEvents() {
  for (int k = 0; k < 2; ++k)
    connect(Command1[static_cast<std::size_t>(k)], &QPushButton::clicked, this,
            [this, k] { ImportPairs(k); });
  connect(Command3, &QPushButton::clicked, this, [this] { boundary_.Run([this] { Start(); }); });
  connect(Command10, &QPushButton::clicked, this, [this] {
    boundary_.Run([this] {
      UnloadSecondary();
      for (QWidget* w : QApplication::topLevelWidgets())
        if (w->objectName() == "frmColor") w->close();
      if (!RangeMatchesReconstruction()) return;
      ReturnData();
      mat_.Label7->setText("R1 = " + Label13[0]->text() + " / R2 = " + Label13[1]->text());
    });
  });
  connect(Command2, &QPushButton::clicked, this, &frmCalib::close);
  connect(Quit, &QAction::triggered, this, &frmCalib::close);
  connect(Check1, &QCheckBox::clicked, this, [this] {
    // The scatter is painted again with or without its line; the scatter
    // steps themselves would untick the box.
    boundary_.Run([this] {
      if (c_.PictDrawn[2]) PaintScatter(1);
      ShowFigures();
    });
  });
  connect(Check4, &QCheckBox::clicked, this,
          [this] { boundary_.Run([this] { Check4Clicked(); }); });
  connect(Check5, &QCheckBox::clicked, this,
          [this] { boundary_.Run([this] { Rerun(ChainChange::Skip); }); });
  connect(Check2, &QCheckBox::clicked, this, [this] { boundary_.Run([this] { Overlays(true); }); });
  connect(Check6, &QCheckBox::clicked, this, [this] { boundary_.Run([this] { Overlays(true); }); });

  // Readouts follow the thumbs; the chain runs when a slider is let go or
  // moved by the keyboard.
  for (int k = 0; k < 2; ++k) {
    QSlider* s = k == 0 ? Slider1 : Slider2;
    connect(s, &QSlider::valueChanged, this, [this, k, s](int v) {
      Label4[static_cast<std::size_t>(k)]->setText(QString::fromStdString(FormatGeneral(v / 10.0)));
      if (!s->isSliderDown()) boundary_.Run([this] { Rerun(ChainChange::Coefficient); });
    });
    connect(s, &QSlider::sliderReleased, this,
            [this] { boundary_.Run([this] { Rerun(ChainChange::Coefficient); }); });
  }
  connect(Slider3, &QSlider::valueChanged, this, [this](int v) {
    Label7->setText(QString::number(v));
    if (!Slider3->isSliderDown()) boundary_.Run([this] { Rerun(ChainChange::Smoothing); });
  });
  connect(Slider3, &QSlider::sliderReleased, this,
          [this] { boundary_.Run([this] { Rerun(ChainChange::Smoothing); }); });
  connect(Slider4, &QSlider::valueChanged, this, [this] {
    if (!Slider4->isSliderDown()) boundary_.Run([this] { Slider4Changed(); });
  });
  connect(Slider4, &QSlider::sliderReleased, this,
          [this] { boundary_.Run([this] { Slider4Changed(); }); });
  connect(Slider5, &QSlider::valueChanged, this, [this](int v) {
    Label23->setText(QString("Threshold: %1 sample(s)").arg(v));
    if (!Slider5->isSliderDown()) boundary_.Run([this] { Rerun(ChainChange::VerticalThreshold); });
  });
  connect(Slider5, &QSlider::sliderReleased, this,
          [this] { boundary_.Run([this] { Rerun(ChainChange::VerticalThreshold); }); });
  connect(Slider6, &QSlider::valueChanged, this, [this](int v) {
    Label24->setText(QString("Threshold: %1 sample(s)").arg(v));
    if (!Slider6->isSliderDown())
      boundary_.Run([this] { Rerun(ChainChange::HorizontalThreshold); });
  });
  connect(Slider6, &QSlider::sliderReleased, this,
          [this] { boundary_.Run([this] { Rerun(ChainChange::HorizontalThreshold); }); });

  for (QLineEdit* t : {Text1, Text2}) {
    connect(t, &QLineEdit::textEdited, this,
            [this] { boundary_.Run([this] { chRangeRedraw(); }); });
    connect(t, &QLineEdit::editingFinished, this,
            [this] { boundary_.Run([this] { SetRange(); }); });
    t->installEventFilter(this);
  }

  for (int i = 0; i < 6; ++i)
    connect(Picture2[static_cast<std::size_t>(i)], &PictureBox::LeftPressed, this,
            [this, i] { boundary_.Run([this, i] { PictureClicked(i); }); });
  std::vector<PictureChoice> pictures;
  for (int f = 1; f <= 8; ++f) {
    PictureBox* p = f <= 2 ? Picture1[static_cast<std::size_t>(f - 1)]
                           : Picture2[static_cast<std::size_t>(f - 3)];
    QMenu* menu = Fig[static_cast<std::size_t>(f)];
    connect(p, &PictureBox::RightPressed, this, [menu](const QPoint& at) { menu->popup(at); });
    for (QAction* a : {CopyFig[static_cast<std::size_t>(f)], CopyN[static_cast<std::size_t>(f)]})
      connect(a, &QAction::triggered, this, [p] { p->surface().CopyToClipboard(); });
    SurfaceOf of = [p]() -> const Surface& { return p->surface(); };
    AddSavePictureEntry(menu, QString("mnuSavePicture%1").arg(f), dialogs_, boundary_, of,
                        CopyN[static_cast<std::size_t>(f)]);
    pictures.push_back({QString("mnuSavePictureFig%1").arg(f), QString("Fig.&%1").arg(f), of,
                        CopyFig[static_cast<std::size_t>(f)]});
  }
  AddSavePictureMenu(Edit, dialogs_, boundary_, pictures);
  for (QAction* a : {ProbabilityDistribution, SaveMartixProb})
    connect(a, &QAction::triggered, this, &frmCalib::SaveProbability);
  for (QAction* a : {ConfidenceRegions, mnuCommonOutput, SaveMatrixConfi})
    connect(a, &QAction::triggered, this, &frmCalib::SaveConfidence);
  connect(DetailProb, &QAction::triggered, this,
          [this] { boundary_.Run([this] { PrepareChart(4); }); });
  connect(DetailConfi, &QAction::triggered, this,
          [this] { boundary_.Run([this] { PrepareChart(5); }); });
  connect(PrintAllEntry, &QAction::triggered, this, &frmCalib::PrintAll);
  connect(PrintOptionsEntry, &QAction::triggered, this, [this] {
    boundary_.Run([this] {
      printSetup_ = std::make_unique<frmPrintSetup>(*this);
      printSetup_->Open();
    });
  });
  connect(ColourSetting, &QAction::triggered, this, [this] {
    if (OpenColourSettings) OpenColourSettings();
  });
  connect(mnuAbout, &QAction::triggered, this, [this] {
    auto* about = findChild<QWidget*>("frmAbout", Qt::FindDirectChildrenOnly);
    if (!about) {
      about = new QWidget(this, Qt::Dialog);
      about->setObjectName("frmAbout");
      about->setWindowTitle("About Ostrel 3.0");
      auto* text =
          new QLabel("Ostrel 3.0\nProbabilistic calibration of reconstructed climate", about);
      text->setGeometry(16, 16, 320, 48);
      auto* ok = new QPushButton("OK", about);
      ok->setGeometry(136, 72, 80, 26);
      connect(ok, &QPushButton::clicked, about, &QWidget::close);
      about->resize(352, 110);
    }
    PlaceCentredOn(about, this);
    about->show();
  });
}

CalibSettings frmCalib::Settings() const {
  CalibSettings st;
  st.Slider1 = Slider1->value();
  st.Slider2 = Slider2->value();
  st.Slider3 = Slider3->value();
  st.Slider4 = Slider4->value();
  st.Slider5 = Slider5->value();
  st.Slider6 = Slider6->value();
  st.Check4 = Check4->isChecked();
  st.Check5 = Check5->isChecked();
  st.Label4 = {Label4[0]->text().toStdString(), Label4[1]->text().toStdString()};
  return st;
}

ChainContext frmCalib::Context() {
  ChainContext ctx;
  ctx.RefSiteCount = s_.RefSiteCount;
  ctx.GreyMode = colours_.GreyMode;
  ctx.ProgressBar = &progress_;
  ctx.Painter = &images_;
  return ctx;
}

void frmCalib::ClearFigure(PictureBox* p) {
  p->surface().SetScale(0, 0, kCalibCanvas, kCalibCanvas);
  p->surface().SetBackColour(Qt::white);
  p->update();
}

void frmCalib::ShowFigures() {
  for (int pic = 0; pic < 6; ++pic) {
    const auto f = static_cast<std::size_t>(pic + 3);
    PictureBox* p = Picture2[static_cast<std::size_t>(pic)];
    if (!c_.PictDrawn[f]) {
      if (images_.Dirty[static_cast<std::size_t>(pic)]) ClearFigure(p);
      images_.Dirty[static_cast<std::size_t>(pic)] = false;
      continue;
    }
    if (!images_.Dirty[static_cast<std::size_t>(pic)]) continue;
    images_.Dirty[static_cast<std::size_t>(pic)] = false;
    ShowMatrixImage(images_.Image(pic), p->surface());
    ++shows_[f];
    if (pic == 5) {
      p->surface().StoreBackground();
      Overlays();
    }
    p->update();
  }
  EnableMenus();
}

void frmCalib::Overlays(bool clicked) {
  if (!c_.PictDrawn[8]) return;
  Surface& fig8 = Picture2[5]->surface();
  fig8.Clear();
  // After a recomputation both overlays are tested on "Show mode": an
  // average shown without the mode is not redrawn then.
  if (Check2->isChecked()) CalibShowMode(c_, colours_.GreyMode, fig8);
  if ((clicked || Check2->isChecked()) && Check6->isChecked())
    CalibShowAve(c_, colours_.GreyMode, fig8);
  Picture2[5]->update();
}

void frmCalib::ClearFigures(int firstFigure) {
  for (int f = firstFigure; f <= 8; ++f) {
    c_.PictDrawn[static_cast<std::size_t>(f)] = false;
    if (f >= 3) images_.Dirty[static_cast<std::size_t>(f - 3)] = true;
  }
  ResetFrom(c_, firstFigure);
  Command10->setEnabled(false);
  for (QCheckBox* b : {Check2, Check6}) {
    const QSignalBlocker quiet(b);
    b->setChecked(false);
    b->setEnabled(false);
  }
  mat_.CalibrationCleared();
  ShowFigures();
}

void frmCalib::SetRange() {
  c_.Text1 = Text1->text().toStdString();
  c_.Text2 = Text2->text().toStdString();
  varnoth::SetRange(c_, dialogs_);
  {
    const QSignalBlocker q1(Text1), q2(Text2);
    if (Text1->text().toStdString() != c_.Text1) Text1->setText(QString::fromStdString(c_.Text1));
    if (Text2->text().toStdString() != c_.Text2) Text2->setText(QString::fromStdString(c_.Text2));
  }
  for (QLabel* l : Label1) l->setText(QString::fromStdString(c_.LastText1));
  for (QLabel* l : Label2) l->setText(QString::fromStdString(c_.LastText2));
}

void frmCalib::TransferData() {
  if (s_.SiteInfoLoaded) {
    // Climate from the interpolation tool: pair set 1 is its stations'
    // leave-one-out estimates against their observations, for the
    // parameter shown, and no file replaces it.
    Command1[1]->setEnabled(false);
    Check4->setEnabled(false);
    const InterpolatedPairs pairs =
        InterpolatedPairsFor(s_, mat_.Combo1->currentText().toStdString());
    varnoth::TransferData(c_, s_, std::string(), &pairs);
    // The scatter runs over all stations, with or without a pair.
    c_.PairRows[1] = s_.Interp.InterpRefCount;
  } else {
    // Without climate from the interpolation tool pair set 1 stays as it was.
    Command1[1]->setEnabled(!Check4->isChecked());
    Check4->setEnabled(true);
    varnoth::TransferData(c_, s_, std::string());
  }
  ShowLabels();
  ResetData(0);
  DrawScatter(0);
  if (s_.SiteInfoLoaded) DrawScatter(1);
  if (c_.PictDrawn[1] && (c_.PictDrawn[2] || Check4->isChecked())) Command3->setEnabled(true);
  Check4->setEnabled(true);
}

void frmCalib::ImportPairs(int k) {
  boundary_.Run([this, k] {
    const std::optional<std::string> path = dialogs_.OpenFileName(
        kDataFileFilter, k == 0 ? "Open pairs of reconstructed and estimated values (Vrec-Vest)"
                                : "Open pairs of estimated and observed values (Vest-Vobs)");
    if (!path) return;  // a cancel leaves everything as it was
    if (!ImportPairFile(c_, k, *path)) {
      if (k == 1) Command1[1]->setFocus();
      return;
    }
    c_.Labels.Label21[static_cast<std::size_t>(k)] = *path;
    ShowLabels();
    ResetData(k);
    DrawScatter(0);
    // An empty pair set 1 is no model: its scatter waits for its file. A
    // generated model stands for it.
    if (!Check4->isChecked() && c_.PairRows[1] > 0) DrawScatter(1);
    if (c_.PictDrawn[1] && (c_.PictDrawn[2] || Check4->isChecked())) {
      Command3->setEnabled(true);
      Command3->setFocus();
    }
  });
}

void frmCalib::ResetData(int k) {
  PictureBox* p = Picture1[static_cast<std::size_t>(k)];
  ClearFigure(p);
  c_.PictDrawn[static_cast<std::size_t>(k + 1)] = false;
  Command3->setEnabled(false);
  // Everything computed from the pairs goes, so that "Start" runs the chain
  // from its start. Only a generated model does not depend on them.
  ClearFigures(k == 0 && Check4->isChecked() ? 4 : 3);
}

void frmCalib::ResetRange() {
  ClearFigures(3);
  if (!Check4->isChecked() && !s_.SiteInfoLoaded) Command1[1]->setEnabled(true);
  for (QAction* a : {mnuCommonOutput, ProbabilityDistribution, ConfidenceRegions})
    a->setEnabled(false);
}

void frmCalib::DrawScatter(int k) {
  // The matrix and the curve it is applied to share one axis: a new pair
  // set 0 takes the reconstruction window's range every time.
  bool moved = false;
  if (k == 0 || Text1->text().isEmpty() || Text2->text().isEmpty()) {
    moved = LenientParse(mat_.Text1->text().toStdString()) != LenientParse(c_.LastText1) ||
            LenientParse(mat_.Text2->text().toStdString()) != LenientParse(c_.LastText2);
    const QSignalBlocker q1(Text1), q2(Text2);
    Text1->setText(mat_.Text1->text());
    Text2->setText(mat_.Text2->text());
  }
  PlotScatter(k);
  if (moved) {
    // Nothing computed on the old grid stays; a generated model is made
    // again on the new one.
    ResetRange();
    if (Check4->isChecked()) GenerateModel();
  }
}

void frmCalib::PlotScatter(int k) {
  SetRange();
  if (k == 1) {
    const QSignalBlocker quiet(Check1);
    Check1->setChecked(false);
  }
  if (k == 1 && !Check4->isChecked() && LenientParse(c_.Labels.Label12[1]) > 1) {
    FitPairSet1(c_);
    ShowLabels();
  }
  PaintScatter(k);
  if (k == 1) {
    c_.PictDrawn[2] = true;
    Check1->setEnabled(true);
  } else {
    c_.PictDrawn[1] = true;
  }
  Check4->setEnabled(true);
  if (!Check4->isChecked()) ResetModel();
  EnableMenus();
}

void frmCalib::PaintScatter(int k) {
  const auto i = static_cast<std::size_t>(k);
  const double t1 = LenientParse(c_.LastText1), t2 = LenientParse(c_.LastText2);
  PictureBox* p = Picture1[i];
  DrawPairScatter(c_, k, c_.PairRows[i], t1, t2, colours_.CurveColour.ToQColor(),
                  k == 1 && Check1->isChecked() && LenientParse(c_.Labels.Label12[1]) > 1,
                  p->surface());
  p->update();
  ++shows_[i + 1];
}

void frmCalib::chRangeRedraw() {
  if (!c_.PictDrawn[1]) return;
  SetRange();
  ResetRange();
  // The user's own range: the scatters follow it.
  PlotScatter(0);
  if (c_.PictDrawn[2] || c_.PairRows[1] > 0) PlotScatter(1);
  if (Check4->isChecked()) GenerateModel();
  if (c_.PictDrawn[1] && (c_.PictDrawn[2] || Check4->isChecked())) Command3->setEnabled(true);
}

void frmCalib::ResetModel() {
  Command1[1]->setEnabled(true);
  for (int i : {1, 2}) {
    Label1[static_cast<std::size_t>(i)]->setEnabled(true);
    Label2[static_cast<std::size_t>(i)]->setEnabled(true);
  }
  if (c_.PictDrawn[2]) Check1->setEnabled(true);
  Slider4->setEnabled(false);
  // Leaving the generated model: its slider goes back to its minimum and
  // the model's own texts go. Pair set 1 fitted by its scatter keeps its
  // texts, and the slider its opening value.
  if (c_.Labels.Label21[1] == "Generated error model") {
    const QSignalBlocker quiet(Slider4);
    Slider4->setValue(Slider4->minimum());
    varnoth::ResetModel(c_);
  }
  Label22->setVisible(false);
  Label22->setText("Std.Dev.: ");
  ShowLabels();
  mat_.CalibrationCleared();
}

void frmCalib::GenerateModel() {
  ClearFigures(4);
  varnoth::GenerateModel(c_, Settings(), progress_, &images_);
  ShowLabels();
  ShowFigures();
  if (c_.PictDrawn[1]) Command3->setEnabled(true);
}

void frmCalib::Check4Clicked() {
  ResetData(1);
  if (Check4->isChecked()) {
    Command1[1]->setEnabled(false);
    Command3->move(Command3->x(), Command3->y());  // the generated model's place
    for (int i : {1, 2}) {
      Label1[static_cast<std::size_t>(i)]->setEnabled(false);
      Label2[static_cast<std::size_t>(i)]->setEnabled(false);
    }
    Check1->setEnabled(false);
    Slider4->setEnabled(true);
    Label22->setText(QString("Std.Dev.: %1 % of range").arg(Slider4->value()));
    Label22->setVisible(true);
    UseGeneratedModel(c_, Settings(), progress_, &images_);
    ShowLabels();
    ClearFigure(Picture1[1]);
    ShowFigures();
    mnuCommonOutput->setEnabled(false);
    if (c_.PictDrawn[1]) Command3->setEnabled(true);
  } else {
    ResetModel();
    ClearFigure(Picture1[1]);
    ClearFigures(3);
    if (c_.PairRows[1] > 0) DrawScatter(1);
    if (c_.PictDrawn[1] && c_.PictDrawn[2]) Command3->setEnabled(true);
  }
}

void frmCalib::Slider4Changed() {
  if (!Check4->isChecked()) return;
  Label22->setText(QString("Std.Dev.: %1 % of range").arg(Slider4->value()));
  Command1[1]->setEnabled(false);
  ClearFigures(3);
  if (c_.PictDrawn[1]) {
    GenerateModel();
    Command3->setFocus();
  }
}

void frmCalib::Start() {
  // The engine goes on from the first figure still blank.
  if (!Check4->isChecked() && !c_.PictDrawn[3])
    ClearFigures(3);
  else if (Check4->isChecked() && !c_.PictDrawn[4])
    ClearFigures(4);
  StartChain(c_, Settings(), Context());
  ShowFigures();
  Command10->setEnabled(true);
  Check2->setEnabled(c_.PictDrawn[8]);
  Check6->setEnabled(c_.PictDrawn[8]);
}

void frmCalib::Rerun(ChainChange change) {
  if (!loaded_) return;
  if (!RerunAfter(c_, Settings(), change, Context())) return;
  Command10->setEnabled(false);
  for (QCheckBox* b : {Check2, Check6}) {
    const QSignalBlocker quiet(b);
    b->setChecked(false);
  }
  mat_.CalibrationCleared();
  Check2->setEnabled(c_.PictDrawn[8]);
  Check6->setEnabled(c_.PictDrawn[8]);
  ShowFigures();
}

void frmCalib::PictureClicked(int index) {
  if ((index == 4 && c_.PictDrawn[7]) || (index == 5 && c_.PictDrawn[8])) {
    PrepareChart(index);
    return;
  }
  if (!c_.PictDrawn[1]) return;
  if (index == 0 && Check4->isChecked()) return;  // the generated model is painted already
  if (!CatchUp(c_, Settings(), index, Context())) return;
  ShowFigures();
  Check2->setEnabled(c_.PictDrawn[8]);
  Check6->setEnabled(c_.PictDrawn[8]);
}

void frmCalib::ReturnData() {
  if (!c_.PictDrawn[8]) return;  // nothing computed for the present pairs
  varnoth::ReturnData(c_);
  mat_.ReceiveCalibration();
}

bool frmCalib::RangeMatchesReconstruction() {
  const std::string a = mat_.Text1->text().toStdString(), b = mat_.Text2->text().toStdString();
  if (LenientParse(a) == LenientParse(c_.LastText1) &&
      LenientParse(b) == LenientParse(c_.LastText2))
    return true;
  dialogs_.Message("The matrix is built on the range " + c_.LastText1 + " to " + c_.LastText2 +
                       ", but the reconstruction curve is drawn from " + a + " to " + b +
                       ". Set the same range in both windows.",
                   "Error");
  return false;
}

void frmCalib::ReconstructionReset() {
  if (!loaded_) return;
  ResetData(0);
}

void frmCalib::ResetColour() {
  RepaintCalibFigures(c_, Settings(), images_, c_.PictDrawn, colours_.GreyMode);
  ShowFigures();
  // Only the colours change: the scatters are painted again, nothing reset.
  if (c_.PictDrawn[1]) PaintScatter(0);
  if (c_.PictDrawn[2]) PaintScatter(1);
}

void frmCalib::ToggleColours() {
  check7_ = !check7_;
  boundary_.Run([this] { ResetColour(); });
}

}  // namespace varnoth
