#pragma once
// The diagram window: one column per taxon down the core, the EOF curve or
// the CONISS tree beside it, the taxon names above, and the line of the
// selected sample, which moves with the main window's scatter.
#include <QMainWindow>
#include <QSpinBox>
#include <array>

#include "presentation/Colours.h"
#include "presentation/DiagramFigure.h"
#include "state/Dialogs.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QAction;
class QActionGroup;
class QCheckBox;
class QComboBox;
class QLabel;
class QMenu;
class QScrollBar;
class QSlider;
class QStatusBar;

namespace varnoth {

class PictureBox;

// UpDown1: steps the selected sample by one and wraps at both ends.
class SampleUpDown final : public QSpinBox {
 public:
  using QSpinBox::QSpinBox;
  void stepBy(int steps) override;

 protected:
  StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
};

class frmDiagram : public QMainWindow {
  Q_OBJECT
 public:
  // Progress is the main window's bar.
  frmDiagram(Session& session, ColourSettings& colours, Dialogs& dialogs, Progress& progress,
             QWidget* parent = nullptr);

  // Opens the window on the current data and draws it (the "Diagram"
  // button of the main window); again after a close, it starts afresh.
  void ShowDiagram();
  // After a colour or envelope change: the columns if the diagram is open,
  // the EOF curve if it has been drawn.
  void RedrawAll();
  // The selected sample was changed elsewhere: slider, list and markers
  // follow, without telling the others again.
  void MoveMarker();
  // The main window's range slider moved: Slider2 and the EOF curve follow.
  void FollowRange(int value);

  // The public operations of the window.
  void LayoutTaxaColumns();
  void DrawDiagram();
  void DrawEofCurve();
  void DrawTaxaNames();
  void DrawDiagramMarker();
  void DrawEofMarker();
  void DrawDepthScale();
  void SaveEOF();
  void SaveAllEOF();
  void ToggleConiss();  // nmuConiss

  bool EofCurveDrawn() const { return eofCurveDrawn_; }
  const DiagramSettings& Settings() const { return settings_; }

  // The resize rules: the window is kept at 6000 by 4000 twips at least,
  // and a diagram squeezed below 500 twips says "Frame too small" and gives
  // the diagram itself 5000 twips of height or 3500 of width again, beside
  // the margins of this layout. Margins are the window's size less
  // Picture1's. Pure, so that the rules can be tested alone.
  struct FrameRules {
    QSize Size;
    int Messages = 0;
  };
  static FrameRules ApplyFrameRules(QSize window, QSize margins);
  // The window's size less Picture1's at the designed layout.
  QSize Margins() const;
  // The smallest window that still shows a diagram of 500 twips and the
  // whole row of controls under it.
  static QSize SmallestWindow(QSize margins);
  // The main window shows the selected sample's name ("Sequential") or not:
  // the selection line follows, without telling it back.
  void FollowSampleNames(bool sequential);

  // Controls, by their names.
  PictureBox *Picture1 = nullptr, *Picture2 = nullptr, *Picture4 = nullptr;
  PictureBox* DepthScale = nullptr;  // the sample labels beside the diagram
  QMenu *mnuDrawMode = nullptr, *nmuTools = nullptr, *RB1 = nullptr, *RB2 = nullptr, *RB3 = nullptr;
  QAction *mnuBar = nullptr, *mnuArea = nullptr, *mnuDot = nullptr, *mnuCurve = nullptr,
          *mnuDotCurve = nullptr, *nmuConiss = nullptr, *mnuECC = nullptr,
          *mnuCopyDiagram = nullptr, *mnuCopyEOF = nullptr, *mnuSaveEOF = nullptr,
          *mnuSaveAllEOF = nullptr, *mnuCopyTaxaName = nullptr;
  QSlider *Slider1 = nullptr, *Slider2 = nullptr, *Slider3 = nullptr;
  QComboBox *Combo1 = nullptr, *Combo2 = nullptr;
  SampleUpDown* UpDown1 = nullptr;
  QCheckBox* Check1 = nullptr;
  std::array<QLabel*, 3> Label3{};
  QLabel *Label2 = nullptr, *Label4 = nullptr, *CaptionSlider3 = nullptr;
  QScrollBar* HScroll1 = nullptr;
  QStatusBar* StatusBar1 = nullptr;

 signals:
  // SampleCursor was changed here, or the diagram was redrawn in full: the
  // main scatter's marker (and the reconstruction's) follow.
  void SampleSelected();
  // Slider2 set ScatterZoom to 2 ^ value: the main scatter is redrawn.
  void ZoomChanged(int value);
  // Check1: the main window shows the selected sample's name, or hides it.
  void SelectionLineToggled(bool on);
  // mnuECC "&EOF-Climate correlation".
  void EccRequested();
  // Combo1 chose the EOF shown: the correlation window follows.
  void EofChosen();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;

 private:
  // Construction and layout, in frmDiagram.cpp.
  void BuildControls();
  void BuildMenus();
  void ConnectEvents();
  void Load();
  void PlacePanels();
  void ScheduleRedraw();

  // Events and drawing, in frmDiagram_events.cpp.
  void FullRedraw();
  void SyncSurfaces();
  void RefreshSettings();
  void SelectSample(int sample);
  void ChooseLabel();
  void ZoomMoved(int value);
  void ShowReadout(const QPointF& pixel);
  void SaveWith(bool all);
  void ShowEofControls(bool on);
  void SetSizing(bool on);
  void SetFollowers(Count sample);
  void KeepUsableSize();

  Session& s_;
  ColourSettings& colours_;
  OwnedDialogs ownDialogs_;  // messages stand over this window
  Dialogs& dialogs_;
  Progress& progress_;
  ErrorBoundary boundary_{dialogs_, progress_};
  DiagramSettings settings_;
  QActionGroup* styles_ = nullptr;
  bool eofCurveDrawn_ = false;
  bool sizing_ = false;  // the vertical-size pointer of a drag on Slider1
  bool redrawPending_ = false;
  QSize corrected_;  // the size the resize rules last set
};

}  // namespace varnoth
