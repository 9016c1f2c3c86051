// The diagram window's drawing and the events of its controls.
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QMouseEvent>
#include <QScrollBar>
#include <QSlider>
#include <QStatusBar>
#include <algorithm>
#include <cmath>

#include "diagram/Coniss.h"
#include "diagram/EofCurveFiles.h"
#include "state/Format.h"
#include "ui/Controls.h"
#include "ui/ListName.h"
#include "ui/PictureBox.h"
#include "ui/frmDiagram.h"

namespace varnoth {

void frmDiagram::Load() {
  const Count n = s_.FossilSampleCount;
  s_.DiagramOpen = false;
  if (s_.SampleCursor < 1 || s_.SampleCursor > n) s_.SampleCursor = 1;
  const bool was = Slider1->blockSignals(true);
  Slider1->setRange(1, std::max<int>(1, n));
  Slider1->setValue(s_.SampleCursor);
  Slider1->setPageStep(std::max(1, n / 10));
  Slider1->blockSignals(was);
  UpDown1->blockSignals(true);
  UpDown1->setRange(1, std::max<int>(1, n));
  UpDown1->setValue(s_.SampleCursor);
  UpDown1->blockSignals(false);

  // EOF numbers 1 to the reference taxa count, the first display axis shown.
  const long eofs = s_.RefTaxaCount > 0 ? s_.RefTaxaCount : s_.FossilTaxaCount;
  Combo1->clear();
  for (long e = 1; e <= eofs; ++e) Combo1->addItem(QString::number(e));
  const Count first =
      s_.DisplayAxes.Allocated() && s_.DisplayAxes.Size() > 1 ? s_.DisplayAxes(1) : Count{1};
  Combo1->setCurrentIndex(std::max(0, Combo1->findText(QString::number(first))));

  // The EOF half width follows the main window's range.
  const int zoom = static_cast<int>(std::lround(std::log2(std::max(1.0, s_.ScatterZoom))));
  SetQuietly(Slider2, std::clamp(zoom, Slider2->minimum(), Slider2->maximum()));
  s_.ScatterZoom = ScatterZoomFor(Slider2->value());
  for (int i = 0; i < 3; ++i)
    Label3[static_cast<std::size_t>(i)]->setText(ZoomLabel(s_.ScatterZoom, i));

  // The tree is computed anew on demand: a new opening shows the EOF curve.
  nmuConiss->setChecked(false);
  ShowEofControls(true);

  Combo2->clear();
  for (long i = 1; i <= n; ++i)
    if (!s_.FossilEmptySample(i)) Combo2->addItem(QString::fromStdString(s_.FossilLabels(i)));
  SetFollowers(s_.SampleCursor);
  RefreshSettings();
  // The main window marks the same sample as the line here does: with the
  // line on, its fossil names go to "Sequential".
  emit SelectionLineToggled(Check1->isChecked());
}

void frmDiagram::FollowSampleNames(bool sequential) {
  if (Check1->isChecked() == sequential) return;
  {
    const QSignalBlocker quiet(Check1);
    Check1->setChecked(sequential);
  }
  boundary_.Run([this] {
    DrawDiagramMarker();
    DrawEofMarker();
  });
}

void frmDiagram::ShowDiagram() {
  boundary_.Run([this] {
    Load();
    show();
    raise();
    PlacePanels();
    FullRedraw();
  });
}

void frmDiagram::FullRedraw() {
  SyncSurfaces();
  LayoutTaxaColumns();
  DrawDiagram();
  DrawTaxaNames();
  emit SampleSelected();
}

void frmDiagram::SyncSurfaces() {
  // A panel placed while hidden has its new size only once shown.
  for (PictureBox* p : {Picture1, Picture2, Picture4, DepthScale})
    if (p->surface().Width() != p->width() || p->surface().Height() != p->height())
      p->surface().Resize(p->width(), p->height());
}

void frmDiagram::RefreshSettings() {
  settings_.Colours = colours_;
  settings_.MarkerShown = Check1->isChecked() || sizing_;
  settings_.ShownEof = static_cast<Count>(std::max(1, Combo1->currentText().toInt()));
  settings_.ConissShown = nmuConiss->isChecked();
  settings_.Scroll = HScroll1->value();
}

void frmDiagram::RedrawAll() {
  boundary_.Run([this] {
    if (s_.DiagramOpen)
      DrawDiagram();
    else if (eofCurveDrawn_)
      DrawEofCurve();
  });
}

void frmDiagram::MoveMarker() {
  boundary_.Run([this] {
    if (s_.SampleCursor < 1 || s_.SampleCursor > s_.FossilSampleCount) return;
    SetQuietly(Slider1, s_.SampleCursor);
    SetFollowers(s_.SampleCursor);
    if (!s_.DiagramOpen) return;
    DrawDiagramMarker();
    DrawEofMarker();
  });
}

void frmDiagram::FollowRange(int value) {
  // Slider2's own change redraws the curve; the main window is already drawn.
  SetQuietly(Slider2, std::clamp(value, Slider2->minimum(), Slider2->maximum()));
  boundary_.Run([this] {
    s_.ScatterZoom = ScatterZoomFor(Slider2->value());
    for (int i = 0; i < 3; ++i)
      Label3[static_cast<std::size_t>(i)]->setText(ZoomLabel(s_.ScatterZoom, i));
    if (s_.DiagramOpen) DrawEofCurve();
  });
}

void frmDiagram::LayoutTaxaColumns() {
  settings_.Columns = varnoth::LayoutTaxaColumns(s_.FossilProportion, s_.FossilSampleCount,
                                                 s_.FossilTaxaCount, Slider3->value());
  const TaxaColumns& c = settings_.Columns;
  const bool was = HScroll1->blockSignals(true);
  HScroll1->setValue(0);
  HScroll1->setRange(0, static_cast<int>(std::max(0L, c.ScrollMax)));
  HScroll1->setPageStep(static_cast<int>(std::max(1L, c.ScrollLargeChange)));
  HScroll1->setSingleStep(static_cast<int>(c.ScrollSmallChange));
  HScroll1->setVisible(c.ScrollVisible);
  HScroll1->blockSignals(was);
  settings_.Scroll = 0;
}

void frmDiagram::DrawDiagram() {
  RefreshSettings();
  SyncSurfaces();
  if (settings_.Columns.DiagramColumnStart.Size() == 0) LayoutTaxaColumns();
  // The taxa are counted on the main window's bar at the first drawing only.
  varnoth::DrawDiagram(s_, settings_, Picture1->surface(), s_.DiagramOpen ? nullptr : &progress_);
  Picture1->update();
  s_.DiagramOpen = true;
  DrawEofCurve();
  DrawDepthScale();
}

void frmDiagram::DrawDepthScale() {
  SyncSurfaces();
  DrawSampleLabels(s_, Picture1->surface(), DepthScale->surface());
  DepthScale->update();
}

void frmDiagram::DrawEofCurve() {
  RefreshSettings();
  SyncSurfaces();
  if (!s_.DiagramOpen) SetDiagramScale(s_, Picture1->surface());
  const long out = varnoth::DrawEofCurve(s_, settings_, Picture1->surface(), Picture2->surface());
  Picture2->update();
  if (!settings_.ConissShown) {
    Label4->setText(QString::fromStdString(OutCountText(out)));
    eofCurveDrawn_ = true;
  }
}

void frmDiagram::DrawTaxaNames() {
  RefreshSettings();
  varnoth::DrawTaxaNames(s_, settings_, Picture4->surface());
  Picture4->update();
}

void frmDiagram::DrawDiagramMarker() {
  RefreshSettings();
  if (!Picture1->surface().HasStoredBackground()) return;
  varnoth::DrawDiagramMarker(s_, settings_, Picture1->surface());
  Picture1->update();
}

void frmDiagram::DrawEofMarker() {
  RefreshSettings();
  if (!Picture2->surface().HasStoredBackground()) return;
  varnoth::DrawEofMarker(s_, settings_, Picture2->surface());
  Picture2->update();
}

void frmDiagram::SetFollowers(Count sample) {
  SetQuietly(UpDown1, sample);
  // An empty sample has no entry in the list: its label shows all the same.
  ShowListName(Combo2, sample >= 1 && sample <= s_.FossilSampleCount
                           ? QString::fromStdString(s_.FossilLabels(sample))
                           : QString());
}

void frmDiagram::SelectSample(int sample) {
  boundary_.Run([this, sample] {
    s_.SampleCursor = ToCount(static_cast<long long>(sample));
    SetFollowers(s_.SampleCursor);
    if (!s_.DiagramOpen) return;
    DrawDiagramMarker();
    DrawEofMarker();
    emit SampleSelected();
  });
}

void frmDiagram::ChooseLabel() {
  const std::string label = Combo2->currentText().toStdString();
  for (long i = 1; i <= s_.FossilSampleCount; ++i)
    if (s_.FossilLabels(i) == label) {
      SetQuietly(UpDown1, static_cast<int>(i));
      Slider1->setValue(static_cast<int>(i));
      return;
    }
}

void frmDiagram::ZoomMoved(int value) {
  boundary_.Run([this, value] {
    s_.ScatterZoom = ScatterZoomFor(value);
    for (int i = 0; i < 3; ++i)
      Label3[static_cast<std::size_t>(i)]->setText(ZoomLabel(s_.ScatterZoom, i));
    emit ZoomChanged(value);
    if (s_.DiagramOpen) DrawEofCurve();
  });
}

void frmDiagram::SetSizing(bool on) {
  if (sizing_ == on) return;
  sizing_ = on;
  if (on)
    Slider1->setCursor(Qt::SizeVerCursor);
  else
    Slider1->unsetCursor();
  // The line shows while the thumb is dragged, whether or not Check1 is ticked.
  if (s_.DiagramOpen)
    boundary_.Run([this] {
      DrawDiagramMarker();
      DrawEofMarker();
    });
}

bool frmDiagram::eventFilter(QObject* watched, QEvent* event) {
  if (watched == Picture1 && event->type() == QEvent::MouseMove) {
    auto* e = static_cast<QMouseEvent*>(event);
    ShowReadout(e->position() - QPointF(Picture1->Origin()));
  }
  return QMainWindow::eventFilter(watched, event);
}

void frmDiagram::ShowReadout(const QPointF& pixel) {
  if (!s_.DiagramOpen) return;
  boundary_.Run([this, pixel] {
    const QPointF at = Picture1->surface().ToUser(pixel);
    const DiagramHit hit = HitDiagram(s_, settings_, at.x(), at.y());
    if (hit.Sample == 0) return;
    QString text = "Sample: " + QString::fromStdString(s_.FossilLabels(hit.Sample));
    if (hit.Taxon > 0) {
      const double value = s_.FossilProportion(hit.Sample, hit.Taxon) * 100;
      text = QString::fromStdString(s_.FossilTaxaNames(hit.Taxon)) + "    " + text +
             "    Value: " + QString::fromStdString(FormatSingle(ToSingle(value))) + "%";
    }
    StatusBar1->showMessage(text);
  });
}

void frmDiagram::SaveEOF() { SaveWith(false); }
void frmDiagram::SaveAllEOF() { SaveWith(true); }

void frmDiagram::SaveWith(bool all) {
  boundary_.Run([this, all] {
    // The dialog asks before an existing file is replaced; a cancel ends quietly.
    const std::optional<std::string> path = dialogs_.SaveFileName(
        kDataFileFilter, all ? "Save the curves of all EOFs down the core"
                             : "Save the curve of EOF " + Combo1->currentText().toStdString());
    if (!path) return;
    RefreshSettings();
    if (all)
      varnoth::SaveAllEOF(s_, *path, progress_);
    else
      varnoth::SaveEOF(s_, settings_.ShownEof, *path, progress_);
  });
}

void frmDiagram::ShowEofControls(bool on) {
  for (QWidget* w : {static_cast<QWidget*>(Label3[0]), static_cast<QWidget*>(Label3[1]),
                     static_cast<QWidget*>(Label3[2]), static_cast<QWidget*>(Label2),
                     static_cast<QWidget*>(Slider2), static_cast<QWidget*>(Combo1),
                     // The count belongs to the EOF curve, not to the tree.
                     static_cast<QWidget*>(Label4)}) {
    w->setVisible(on);
    w->setEnabled(on);
  }
  mnuSaveEOF->setEnabled(on);
  mnuSaveAllEOF->setEnabled(on);
}

void frmDiagram::ToggleConiss() {
  // The action has already turned its check mark over.
  const bool on = nmuConiss->isChecked();
  boundary_.Run(
      [this, on] {
        ShowEofControls(!on);
        // The joins are made anew at every switching on; with the check
        // mark set the panel draws the tree and the marker.
        if (on) DoConiss(s_, progress_);
        DrawEofCurve();
        progress_.Finish();
      },
      [this] {
        // A tree that cannot be drawn leaves the EOF curve in its place.
        nmuConiss->setChecked(false);
        ShowEofControls(true);
        DrawEofCurve();
      });
}

}  // namespace varnoth
