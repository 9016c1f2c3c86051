#include "ui/frmOutPut2.h"

#include <QAction>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPrinter>
#include <QProgressBar>
#include <QRadioButton>
#include <QSlider>
#include <cmath>

#include "presentation/CalibFigure.h"
#include "presentation/CalibPrint.h"
#include "presentation/publication/Figures.h"
#include "state/Format.h"
#include "ui/Controls.h"
#include "ui/FigureExport.h"
#include "ui/PictureBox.h"
#include "ui/PrinterTarget.h"
#include "ui/PublicationExport.h"
#include "ui/WindowPlacement.h"
#include "ui/frmCalib.h"
#include "ui/frmMAT.h"

namespace varnoth {

namespace {

constexpr int kMain = 401, kSection = 120, kLegend = 24;

}  // namespace

frmOutPut2::frmOutPut2(frmCalib& calib)
    : QMainWindow(&calib, Qt::Window),
      calib_(calib),
      dialogs_(calib.DialogsUsed(), this),
      boundary_(dialogs_, progress_) {
  setObjectName("frmOutPut2");
  setWindowTitle("Calibration chart");
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* w = new QWidget(this);
  setCentralWidget(w);
  const int left = 60, top = 28;
  Picture1 = new PictureBox("Main figure", QSize(kMain, kMain), false, w);
  Picture1->setObjectName("Picture1");
  Picture1->setGeometry(left, top, kMain, kMain);
  Picture2 = new PictureBox("Section", QSize(kSection, kMain), false, w);
  Picture2->setObjectName("Picture2");
  Picture2->setGeometry(left + kMain + 16, top, kSection, kMain);
  Picture3 = new PictureBox("Legend", QSize(kLegend, kMain), false, w);
  Picture3->setObjectName("Picture3");
  Picture3->setGeometry(left + kMain + kSection + 28, top, kLegend, kMain);
  for (PictureBox* p : {Picture1, Picture2, Picture3}) p->surface().Resize(p->width(), p->height());

  for (int i = 0; i < 2; ++i) {
    Label1[static_cast<std::size_t>(i)] = Named(new QLabel(w), QString("Label1_%1").arg(i));
    Label2[static_cast<std::size_t>(i)] = Named(new QLabel(w), QString("Label2_%1").arg(i));
  }
  // T1 and T2 along both axes of the main figure.
  Label1[0]->setGeometry(4, top + kMain - 16, left - 8, 18);
  Label2[0]->setGeometry(4, top, left - 8, 18);
  Label1[1]->setGeometry(left, top + kMain + 2, 80, 18);
  Label2[1]->setGeometry(left + kMain - 80, top + kMain + 2, 80, 18);
  Label2[1]->setAlignment(Qt::AlignRight);

  // The section slider stands under the picture, reaching past both ends.
  Slider1 = Named(new QSlider(Qt::Horizontal, w), "Slider1");
  Slider1->setRange(0, 100);
  Slider1->setGeometry(left - 7, top + kMain + 20, kMain + 14, 24);
  Label3 = Named(new QLabel(w), "Label3");
  Label5 = Named(new QLabel(w), "Label5");
  Label3->setGeometry(left, top + kMain + 46, 80, 18);
  Label5->setGeometry(left + kMain + 16, top - 20, kSection, 18);

  Slider2 = Named(new QSlider(Qt::Horizontal, w), "Slider2");
  Slider2->setRange(0, 200);
  Slider2->setGeometry(left + kMain + 16, top + kMain + 20, kSection, 24);
  Label4 = Named(new QLabel(w), "Label4");
  Label4->setGeometry(left + kMain + 16, top + kMain + 46, 60, 18);

  const int x2 = left + kMain + kSection + kLegend + 44;
  Option1[0] = Named(new QRadioButton("Pobability", w), "Option1_0");
  Option1[1] = Named(new QRadioButton("Confidence", w), "Option1_1");
  Option1[0]->setGeometry(x2, top, 140, 20);
  Option1[1]->setGeometry(x2, top + 22, 140, 20);
  Check1 = Named(new QCheckBox("Show mode", w), "Check1");
  Check4 = Named(new QCheckBox("Show average", w), "Check4");
  Check2 = Named(new QCheckBox("Show intervals", w), "Check2");
  Check1->setGeometry(x2, top + 52, 140, 20);
  Check4->setGeometry(x2, top + 74, 140, 20);
  Check2->setGeometry(x2, top + 96, 140, 20);
  Text = Named(new QLabel(w), "Text");
  Text->setGeometry(x2, top + 124, 180, kMain - 124);
  Text->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  ProgressBar1 = Named(new QProgressBar(w), "ProgressBar1");
  ProgressBar1->setRange(0, 250);
  ProgressBar1->setGeometry(left, top + kMain + 68, kMain, 12);
  ProgressBar1->setTextVisible(false);
  ProgressBar1->setVisible(false);
  progress_.SetBar(ProgressBar1);
  resize(x2 + 190, top + kMain + 90);

  File = menuBar()->addMenu("File(&F)");
  File->setObjectName("File");
  SaveMatrixEntry = File->addAction("&Save Matrix");
  SaveMatrixEntry->setObjectName("SaveMatrix");
  Print = File->addAction("&Print");
  Print->setObjectName("Print");
  Fig1 = new QMenu(this);
  Fig1->setObjectName("Fig1");
  Copy1 = Fig1->addAction("&Main figure");
  Copy1->setObjectName("Copy1");
  Fig2 = new QMenu(this);
  Fig2->setObjectName("Fig2");
  Copy2 = Fig2->addAction("Section");
  Copy2->setObjectName("Copy2");

  connect(SaveMatrixEntry, &QAction::triggered, this, &frmOutPut2::SaveMatrix);
  connect(Print, &QAction::triggered, this, &frmOutPut2::PrintChart);
  connect(Copy1, &QAction::triggered, this, [this] { Picture1->surface().CopyToClipboard(); });
  connect(Copy2, &QAction::triggered, this, [this] { Picture2->surface().CopyToClipboard(); });
  connect(Picture1, &PictureBox::RightPressed, this, [this](const QPoint& at) { Fig1->popup(at); });
  connect(Picture2, &PictureBox::RightPressed, this, [this](const QPoint& at) { Fig2->popup(at); });
  AddSavePictureEntry(
      Fig1, "mnuSavePicture1", dialogs_, boundary_,
      [this]() -> const Surface& { return Picture1->surface(); }, Copy1);
  AddSavePictureEntry(
      Fig2, "mnuSavePicture2", dialogs_, boundary_,
      [this]() -> const Surface& { return Picture2->surface(); }, Copy2);
  // The chart drawn again for a paper, at the section chosen here.
  const DrawPublication chart = [this](const PublicationChoice& c) {
    const CalibSettings st = calib_.Settings();
    return pub::CalibrationFigure(
        {fine_, LenientParse(calib_.Text1->text().toStdString()),
         LenientParse(calib_.Text2->text().toStdString()), st.Slider1, st.Slider2, SectionColumn(),
         pub::CalibrationParameter(calib_.State())},
        c.WidthMm);
  };
  for (auto [menu, copy] : {std::pair{Fig1, Copy1}, std::pair{Fig2, Copy2}})
    AddPublicationEntry(
        menu, "mnuPublication" + copy->objectName().right(1), calib_.DialogsUsed(), boundary_, this,
        PublicationKind::WidthOnly, [] { return false; }, chart, copy);
  connect(Slider1, &QSlider::valueChanged, this, [this] {
    SectionLabels();
    if (!Slider1->isSliderDown()) SectionReleased();
  });
  connect(Slider1, &QSlider::sliderReleased, this, &frmOutPut2::SectionReleased);
  connect(Slider2, &QSlider::valueChanged, this, [this](int v) {
    Label4->setText(QString("%1 %").arg(v));
    Label4->move(Slider2->x() + Picture2->width() * v / 200 - Label4->width() / 2, Label4->y());
    if (Slider2->isSliderDown()) return;
    boundary_.Run([this] {
      calib_.SetZEnhancement(Slider2->value() / 100.0);
      calib_.Colours().PaletteChanged = true;
      DrawChart();
      DrawPicture2();
      Overlays();
    });
  });
  connect(Slider2, &QSlider::sliderReleased, this,
          [this] { Slider2->valueChanged(Slider2->value()); });
  for (QRadioButton* o : Option1)
    connect(o, &QRadioButton::clicked, this, [this] {
      boundary_.Run([this] { DrawChart(); });
      SectionReleased();
    });
  connect(Check2, &QCheckBox::clicked, this, [this](bool on) {
    boundary_.Run([this, on] {
      if (on)
        DrawIntervals();
      else
        WipeInterval();
    });
  });
  for (QCheckBox* c : {Check1, Check4})
    connect(c, &QCheckBox::clicked, this, [this] { boundary_.Run([this] { Overlays(); }); });
}

void frmOutPut2::Open(const FineGrid& fine, int index) {
  fine_ = fine;
  {
    const QSignalBlocker q1(Slider1), q2(Slider2);
    Slider1->setValue(0);
  }
  Option1[index == 4 ? 0 : 1]->setChecked(true);
  Check1->setChecked(index == 5);
  Check4->setChecked(index == 5);
  {
    const QSignalBlocker q(Check2);
    Check2->setChecked(false);
  }
  WipeInterval();
  {
    // The enhancement opens at the reconstruction window's slider.
    const QSignalBlocker q(Slider2);
    Slider2->setValue(calib_.Reconstruction().Slider5->value());
  }
  Label4->setText(QString("%1 %").arg(Slider2->value()));
  calib_.Colours().PaletteChanged = false;
  Label1[0]->setText(calib_.Text1->text());
  Label1[1]->setText(calib_.Text1->text());
  Label2[0]->setText(calib_.Text2->text());
  Label2[1]->setText(calib_.Text2->text());
  SectionLabels();
  DrawChart();
  DrawPicture2();
  DrawLegend();
  if (Check2->isChecked()) DrawIntervals();
  Overlays();
  // Beside the tool, or else over its figures: its settings and the
  // Start and Return buttons stay in view.
  if (NeverPlaced(this)) PlaceBesideKeeping(this, &calib_, calib_.SettingsArea());
  show();
  raise();
}

long frmOutPut2::SectionColumn() const { return varnoth::SectionColumn(Slider1->value()); }

void frmOutPut2::SectionLabels() {
  const double t1 = LenientParse(calib_.Text1->text().toStdString()),
               t2 = LenientParse(calib_.Text2->text().toStdString());
  const double v = t1 + (t2 - t1) * Slider1->value() / 100.0;
  const QString text = QString::fromStdString(FormatValue(v));
  Label3->setText(text);
  Label5->setText(text);
  Label3->move(Picture1->x() + Picture1->width() * Slider1->value() / 100 - Label3->width() / 2,
               Label3->y());
}

void frmOutPut2::DrawChart() {
  Surface& s = Picture1->surface();
  s.SetScale(0, 0, 400, 400);
  s.SetBackColour(Qt::white);
  const QImage image =
      ChartImage(fine_, Option1[1]->isChecked(), Slider2->value(), calib_.Colours(), &progress_);
  s.DrawImage(0, 0, 400, 400, image);
  s.StoreBackground();
  Picture1->update();
  progress_.Finish();
}

void frmOutPut2::DrawPicture2() {
  DrawSectionProfile(fine_, SectionColumn(), Slider2->value(), calib_.GreyMode(),
                     Picture2->surface());
  Picture2->surface().StoreBackground();
  Picture2->update();
}

void frmOutPut2::Overlays() {
  Surface& s = Picture1->surface();
  s.Clear();
  if (Check4->isChecked()) ChartShowAve(fine_, calib_.GreyMode(), s);
  if (Check1->isChecked()) ChartShowMode(fine_, calib_.GreyMode(), s);
  DrawSectionMark();
  Picture1->update();
}

void frmOutPut2::DrawSectionMark() {
  Surface& s = Picture1->surface();
  const double x = 400.0 * Slider1->value() / 100;
  s.Line(x, 0, x, 400, calib_.GreyMode() ? QColor(Qt::black) : QColor(0, 0, 255));
  markX_ = static_cast<int>(std::lround(x));
  Picture1->update();
}

void frmOutPut2::DrawIntervals() {
  const CalibSettings st = calib_.Settings();
  const double t1 = LenientParse(calib_.Text1->text().toStdString()),
               t2 = LenientParse(calib_.Text2->text().toStdString());
  const SectionIntervals r = varnoth::DrawIntervals(fine_, st, SectionColumn(), t1, t2);
  intervals_.clear();
  Surface& p2 = Picture2->surface();
  p2.Clear();
  p2.SetDrawWidth(6);
  const QColor mark = calib_.GreyMode() ? QColor(Qt::black) : QColor(255, 0, 0);
  for (int k = 0; k < 2; ++k) {
    intervals_ << QString::fromStdString(r.Coefficient[k]);
    for (const auto& [low, high] : r.Intervals[k]) {
      intervals_ << QString::fromStdString("  " + low + " - " + high);
      for (const std::string& limit : {low, high}) {
        if (limit == "?" || t1 == t2) continue;
        const double qf = 50 + (LenientParse(limit) - t1) / (t2 - t1) * 400;
        p2.Line(0, 450 - qf, 15, 450 - qf, mark);
      }
    }
  }
  p2.SetDrawWidth(1);
  intervals_ << "Average" << QString::fromStdString("  " + r.Average) << "Mode"
             << QString::fromStdString("  " + r.Mode);
  Text->setText(intervals_.join('\n'));
  Picture2->update();
}

void frmOutPut2::WipeInterval() {
  intervals_.clear();
  Text->clear();
  Picture2->surface().Clear();
  Picture2->update();
}

void frmOutPut2::DrawLegend() {
  Surface& s = Picture3->surface();
  s.SetScale(0, 0, 1, 400);
  s.SetBackColour(Qt::white);
  if (Option1[1]->isChecked()) {
    s.FilledBox(0, 0, 1, 200, RegionColour(calib_.GreyMode(), 2));
    s.FilledBox(0, 200, 1, 400, RegionColour(calib_.GreyMode(), 1));
  } else {
    // The probability scale from the top (high) to the bottom (none).
    for (int y = 0; y < 400; ++y)
      s.Line(0, y, 1, y, PaletteColour(calib_.Colours(), 1.0 - y / 400.0));
  }
  s.Box(0, 0, 1, 399.9, Qt::black);
  Picture3->update();
}

void frmOutPut2::SectionReleased() {
  // Any failure on the way is the interpolation of the section failing.
  try {
    DrawPicture2();
    if (Check2->isChecked()) {
      WipeInterval();
      DrawIntervals();
    }
    Overlays();
    DrawLegend();
  } catch (const std::exception&) {
    progress_.Finish();
    dialogs_.Message("Interpolation failed", "Error");
    const QSignalBlocker quiet(Slider1);
    Slider1->setValue(0);
  }
}

void frmOutPut2::SaveMatrix() { calib_.SaveConfidenceOver(dialogs_); }

void frmOutPut2::PrintChart() {
  boundary_.Run([this] {
    std::unique_ptr<QPrinter> printer = calib_.AskPrinter(this);
    if (!printer) return;
    BusyPointer::Set();
    PrinterTarget target(*printer);
    const PrintOptions& o = calib_.Print();
    PrintSettings ps{o.PrintDotSize, o.PrintFrameWidth, o.PrintZoom, o.PrintFontSize,
                     QString::fromStdString(o.PrintTitle)};
    const CalibState& c = calib_.State();
    varnoth::PrintChart(target, Picture1->surface().Image(), Picture2->surface().Image(),
                        intervals_, QString::fromStdString(c.Labels.Label14[0]),
                        QString::fromStdString(c.Labels.Label15[1]), calib_.Text1->text(),
                        calib_.Text2->text(), ps);
    BusyPointer::Restore();
  });
}

}  // namespace varnoth
