#pragma once
// The EOF-climate correlation window: a table of the Pearson coefficients
// of every EOF with every climate parameter, and the scatter of the chosen
// pair, reference sites against climate, with the selected fossil sample
// as a line. It stays linked with the diagram window that opens it.
#include <QWidget>
#include <array>

#include "presentation/Colours.h"
#include "presentation/EccFigure.h"
#include "state/Dialogs.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QAction;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QScrollBar;
class QSlider;

namespace varnoth {

class PictureBox;
class frmDiagram;

class frmECC : public QWidget {
  Q_OBJECT
 public:
  // Progress is the main window's bar; the diagram is the window whose EOF
  // choice and EOF axis this one shares.
  frmECC(Session& session, ColourSettings& colours, Dialogs& dialogs, Progress& progress,
         frmDiagram& diagram, QWidget* parent = nullptr);

  // The click of mnuECC: loads the window, asking for the climate file if
  // there is none, and shows it; without climate data it closes again.
  void Open();
  // Draws the visible part of the table for the pointer at (x, y) on
  // Picture2, in twips.
  void ShowSoukan(double x, double y);
  // The scatter of the selected pair on Picture3.
  void DrawScatter();

  // Links from the other windows, acting only while the window is open.
  void FollowSample();         // SampleCursor moved
  void FollowZoom(int value);  // the diagram's Slider2 moved
  void FollowEof();            // the diagram's Combo1 chose an EOF

  // State of the window.
  Array2<float> EccMatrix;  // (EOF, parameter)
  Count EccClimate = 1, EccEof = 1;
  Count EccHoverRow = 0, EccHoverCol = 0;
  bool EccOpen = false;

  // Controls, by their names.
  QGroupBox *Frame1 = nullptr, *Frame2 = nullptr;
  PictureBox *Picture1 = nullptr, *Picture2 = nullptr, *Picture3 = nullptr;
  std::array<PictureBox*, 2> Picture0{};
  QScrollBar *HScroll1 = nullptr, *VScroll1 = nullptr;
  std::array<QLineEdit*, 2> Text1{};
  QSlider* Slider1 = nullptr;
  std::array<QLabel*, 2> Label1{}, Label2{};
  QMenu* RB = nullptr;
  QAction* mnuCopy = nullptr;

 protected:
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildControls();
  void ConnectEvents();
  bool Load();
  void SetBounds();
  void CellClicked(const QPointF& pixel);
  void BoundsEdited();
  void SliderMoved(int value);
  EccTableView View() const;
  void SetScrollBars();

  Session& s_;
  ColourSettings& colours_;
  OwnedDialogs ownDialogs_;  // dialogs stand over this window
  Dialogs& dialogs_;
  Progress& progress_;
  frmDiagram& diagram_;
  ErrorBoundary boundary_{dialogs_, progress_};
  bool filling_ = false;  // the program itself is writing the bound boxes
  double pointerX_ = 0, pointerY_ = 0;
};

}  // namespace varnoth
