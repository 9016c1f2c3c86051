// The main window's scatter figures and display controls.
#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <cmath>

#include "envelope/Animation.h"
#include "state/Format.h"
#include "ui/ListName.h"
#include "ui/PictureBox.h"
#include "ui/WindowPlacement.h"
#include "ui/frmControl.h"
#include "ui/frmMain.h"

namespace varnoth {

namespace {
constexpr double kPi = 3.1415926535898;

NameDisplay Chosen(const std::array<QRadioButton*, 3>& options) {
  if (options[1]->isChecked()) return NameDisplay::Sequential;
  if (options[2]->isChecked()) return NameDisplay::Hide;
  return NameDisplay::ShowAll;
}
}  // namespace

ScatterView frmMain::View() const {
  ScatterView v;
  v.ThreeD = Option4[1]->isChecked();
  v.Stereo = Check1->isChecked();
  v.TicksAndLabels = Check4->isChecked();
  v.TaxaNames = Chosen(Option2);
  v.SiteNames = Chosen(Option3);
  v.SampleNames = Chosen(Option5);
  v.FontSize = 7;
  return v;
}

void frmMain::DrawTaxaFigure(Count a, Count b, Count c) {
  DrawTaxa(s_, colours_, View(), a, b, c, {&picture1_[0]->surface(), &picture1_[1]->surface()});
  DrawAxesLine(s_, colours_, picture3_->surface());
  picture1_[0]->update();
  picture1_[1]->update();
  picture3_->update();
}

void frmMain::DrawSitesFigure(Count a, Count b, Count c) {
  DrawSites(s_, colours_, View(), a, b, c, {&picture2_[0]->surface(), &picture2_[1]->surface()});
  Label8->setText(TempLabelText(s_));
  Label9->setText(AxisLabelText(s_));
  picture2_[0]->update();
  picture2_[1]->update();
}

void frmMain::DrawFossilFigure(Count a, Count b, Count c) {
  DrawFossil(s_, colours_, View(), a, b, c, {&picture2_[0]->surface(), &picture2_[1]->surface()});
  picture2_[0]->update();
  picture2_[1]->update();
}

void frmMain::RedrawScatter(Count a, Count b, Count c) {
  if (s_.EofDone) {
    DrawSitesFigure(a, b, c);
    DrawTaxaFigure(a, b, c);
  }
  // With a fossil base the samples are the base's own points.
  if (s_.ProjectionDone || (s_.EofDone && s_.FossilIsBase)) DrawFossilFigure(a, b, c);
}

void frmMain::RedrawAll() {
  RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
  emit RedrawOthers();
}

void frmMain::ChangeRange() {
  s_.ScatterZoom = std::pow(2.0, Slider4->value());
  RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
  if (s_.DiagramOpen) emit RangeChanged(Slider4->value());
}

void frmMain::ChangeAngle(int which) {
  const double angle = Slider2[static_cast<std::size_t>(which)]->value() * kPi / 180;
  if (which == 1)
    s_.RotationAngles.A1 = angle;
  else
    s_.RotationAngles.A2 = angle;
  boundary_.Run([this] { RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3)); },
                [this] { timer1_.stop(); });
}

void frmMain::ChangeVelocity() { s_.RotationStep = RotationStepFor(Slider3->value()); }

void frmMain::ChangeTolerance() {
  s_.EnvelopeTolerance = ToSingle(Slider1->value() / 10.0);
  Label4->setText(QString::fromStdString(FormatSingle(s_.EnvelopeTolerance)));
  PlaceLabel4();
  boundary_.Run([this] {
    // While the results stand, a new tightness runs the test again.
    if (EnvelopeStands()) RunEnvelopeAndRedraw();
    RedrawAll();
  });
}

void frmMain::PlaceLabel4() {
  // The value rides above the slider's thumb.
  QStyleOptionSlider option;
  option.initFrom(Slider1);
  option.orientation = Qt::Horizontal;
  option.minimum = Slider1->minimum();
  option.maximum = Slider1->maximum();
  option.sliderPosition = option.sliderValue = Slider1->value();
  const QRect handle = Slider1->style()->subControlRect(QStyle::CC_Slider, &option,
                                                        QStyle::SC_SliderHandle, Slider1);
  const int half = Label4->fontMetrics().horizontalAdvance(Label4->text()) / 2;
  Label4->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  Label4->setIndent(std::max(0, handle.center().x() - half));
}

void frmMain::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  PlaceLabel4();
}

void frmMain::SetStereo(bool on) {
  const bool was = picture1_[1]->isVisible();
  const int before = width();
  if (on && !was) widthBeforeStereo_ = before;
  picture1_[1]->setVisible(on);
  picture2_[1]->setVisible(on);
  if (!isVisible() || was == on) return;
  // The window grows by one picture's width, as far as the screen allows:
  // past that the pictures shrink instead. Shrinking gives back the width
  // the window had before.
  centralWidget()->layout()->activate();
  layout()->activate();  // the window's smallest size follows its pictures
  const int frame = frameGeometry().width() - width();
  const int room = AvailableArea(this).width() - frame;
  int wanted = on ? before + picture1_[0]->width() : widthBeforeStereo_;
  if (room > 0) wanted = std::min(wanted, room);
  resize(std::max(wanted, minimumSizeHint().width()), height());
  KeepOnScreen(this);
}

void frmMain::ChooseDimension(bool threeD) {
  const DimensionEffect e = varnoth::ChooseDimension(s_, threeD, Check2->isChecked());
  if (e.Timer1On)
    timer1_.start();
  else if (!threeD)
    timer1_.stop();
  if (e.StopTimer2) timer2_.stop();
  if (control_) control_->DimensionChanged(threeD);
  RefreshMoreAxisLabel();
  const Array1<Count>& axes = e.WithDisplayAxes ? s_.DisplayAxes : s_.EnvelopeAxes;
  RedrawScatter(axes(1), axes(2), axes(3));
  if (e.RerunEnvelope) RunEnvelopeAndRedraw();
}

void frmMain::TurnStep() {
  // The slider's change does the drawing, once per whole degree.
  if (auto v = TurnTick(s_, {Option4[1]->isChecked(), Check2->isChecked(), Check3->isChecked()}))
    Slider2[1]->setValue(*v);
}

void frmMain::NameOptionChosen(int list) {
  const std::array<QRadioButton*, 3>& options = list == 0 ? Option2 : list == 1 ? Option3 : Option5;
  const bool sequential = options[1]->isChecked();
  QComboBox* combo = list == 0 ? Combo3 : list == 1 ? Combo4 : Combo1;
  std::array<QPushButton*, 2>& stepping = list == 0 ? Command1 : list == 1 ? Command2 : Command13;
  combo->setEnabled(sequential);
  for (QPushButton* b : stepping) b->setEnabled(sequential);
  boundary_.Run([this, list] {
    const Count a = s_.DisplayAxes(1), b = s_.DisplayAxes(2), c = s_.DisplayAxes(3);
    if (list == 0) {
      if (s_.EofDone) DrawTaxaFigure(a, b, c);
    } else {
      RedrawScatter(a, b, c);
    }
  });
}

void frmMain::StepCursor(int list, int direction) {
  boundary_.Run([this, list, direction] {
    const ListKind kind = static_cast<ListKind>(list);
    const Count cursor = varnoth::StepCursor(s_, kind, direction);
    QComboBox* combo = list == 0 ? Combo3 : list == 1 ? Combo4 : Combo1;
    ShowListName(combo, QString::fromStdString(ListNames(s_, kind)(cursor)));
    const Count a = s_.DisplayAxes(1), b = s_.DisplayAxes(2), c = s_.DisplayAxes(3);
    if (list == 0)
      DrawTaxaFigure(a, b, c);
    else
      RedrawScatter(a, b, c);
    if (kind == ListKind::Samples) emit SampleChosen();
  });
}

void frmMain::ChooseByName(int list) {
  boundary_.Run([this, list] {
    QComboBox* combo = list == 0 ? Combo3 : list == 1 ? Combo4 : Combo1;
    const ListKind kind = static_cast<ListKind>(list);
    MoveRedDot(s_, kind, combo->currentText().toStdString());
    const Count a = s_.DisplayAxes(1), b = s_.DisplayAxes(2), c = s_.DisplayAxes(3);
    if (list == 0) {
      DrawTaxaFigure(a, b, c);
      if (s_.ProjectionDone) DrawFossilFigure(a, b, c);
    } else {
      RedrawScatter(a, b, c);
    }
    if (kind == ListKind::Samples) emit SampleChosen();
  });
}

void frmMain::ScheduleRedraw() {
  if (redrawPending_) return;
  redrawPending_ = true;
  QTimer::singleShot(0, this, [this] {
    redrawPending_ = false;
    boundary_.Run([this] {
      if (s_.EofDone) RedrawScatter(s_.DisplayAxes(1), s_.DisplayAxes(2), s_.DisplayAxes(3));
      if (s_.EofDone) DrawAxesLine(s_, colours_, picture3_->surface());
      picture3_->update();
    });
  });
}

void frmMain::ApplyColourPreset() {
  varnoth::ApplyColourPreset(colours_);
  mnuColor->setChecked(true);
  mnuGrey->setChecked(false);
  RedrawAll();
}

void frmMain::ApplyGreyPreset() {
  varnoth::ApplyGreyPreset(colours_);
  mnuColor->setChecked(false);
  mnuGrey->setChecked(true);
  RedrawAll();
}

}  // namespace varnoth
