#pragma once
// The calibration tool, "Ostrel 3.0": the two pair sets, the error model,
// the chain of six matrices with its sliders, and the hand-back to the
// reconstruction window. Eight figures in the order of the data flow; the
// computation is the calibration engine's, this window reads its controls
// into the settings record and paints what the engine reports.
#include <QMainWindow>
#include <QPointer>
#include <QWindow>
#include <array>
#include <functional>
#include <memory>

#include "calibration/CalibState.h"
#include "calibration/MatrixChain.h"
#include "presentation/CalibFigure.h"
#include "presentation/Colours.h"
#include "state/Dialogs.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QAction;
class QCheckBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPrinter;
class QProgressBar;
class QPushButton;
class QSlider;

namespace varnoth {

class PictureBox;
class frmMAT;
class frmOutPut2;
class frmCC1;
class frmCC2;
class frmPrintSetup;
class frmColor;

// The print options the dialog edits, shared by the tool and its chart.
struct PrintOptions {
  float PrintDotSize = 6;
  float PrintFrameWidth = 3;
  float PrintZoom = 1.0f;
  float PrintFontSize = 10;
  std::string PrintTitle;
};

class frmCalib : public QMainWindow {
  Q_OBJECT
 public:
  frmCalib(Session& session, CalibState& calib, frmMAT& mat, ColourSettings& colours,
           Dialogs& dialogs, QWidget* parent = nullptr);
  ~frmCalib() override;

  // Opened from the reconstruction window: load at the first time, show,
  // and run the activation.
  void Open();

  // Public operations.
  void TransferData();
  void SetRange();
  void DrawScatter(int k);
  void ResetData(int k);
  void ResetRange();
  void ResetModel();
  void GenerateModel();
  void chRangeRedraw();
  void ReturnData();
  void ResetColour();
  void PrepareChart(int index);
  void SaveProbability();
  void SaveConfidence();
  // The same asked over another window of the tool (the chart).
  void SaveConfidenceOver(Dialogs& dialogs);
  void PrintAll();
  // The reconstruction window's Z-axis enhancement changed: the colours
  // follow (Check7).
  void ToggleColours();
  // The reconstruction window ran its search again (or shows another
  // parameter): what the tool computed from the old pairs is taken back,
  // and the next activation takes the pairs afresh.
  void ReconstructionReset();
  frmMAT& Reconstruction() const { return mat_; }
  // frmCC1 or frmCC2 put a typed coefficient into Label4(index).
  void CoefficientTyped(int index);
  // The printed pages of the tool onto any target; the number of pages.
  int PrintTo(class PrintTarget& target);

  // The settings as the controls say.
  CalibSettings Settings() const;
  const CalibState& State() const { return c_; }
  bool PictDrawn(int figure) const { return c_.PictDrawn[static_cast<std::size_t>(figure)]; }
  bool Check3() const { return check3_; }
  void SetCheck3(bool on) { check3_ = on; }
  PrintOptions& Print() { return print_; }
  frmOutPut2* Chart() const { return chart_.get(); }
  frmCC1* CC1() const { return cc1_.get(); }
  frmCC2* CC2() const { return cc2_.get(); }
  frmPrintSetup* PrintSetup() const { return printSetup_.get(); }
  const CalibImages& Images() const { return images_; }
  // How often Fig.n was painted on its picture: a redraw leaves the figures
  // before the re-run tail alone.
  int FigureShows(int figure) const { return shows_[static_cast<std::size_t>(figure)]; }
  bool GreyMode() const { return colours_.GreyMode; }
  double ZEnhancement() const;
  // The client area that holds every control.
  QSize ContentsSize() const;
  // The settings and buttons on the left, in the window's coordinates.
  QRect SettingsArea() const;
  void SetZEnhancement(double z);
  ColourSettings& Colours() { return colours_; }
  Dialogs& DialogsUsed() { return dialogs_; }
  // The printer of a print job: the print dialog, or a test's PDF file.
  std::function<std::unique_ptr<QPrinter>(QWidget* owner)> ChoosePrinter;
  // ChoosePrinter when set, else the print dialog; nothing on a cancel.
  std::unique_ptr<QPrinter> AskPrinter(QWidget* owner);
  // "Colour Settings" of the Edit menu.
  std::function<void()> OpenColourSettings;

  // Controls, by their names.
  std::array<QPushButton*, 2> Command1{};
  QPushButton *Command2 = nullptr, *Command3 = nullptr, *Command10 = nullptr;
  QLineEdit *Text1 = nullptr, *Text2 = nullptr;
  QCheckBox *Check1 = nullptr, *Check2 = nullptr, *Check4 = nullptr, *Check5 = nullptr,
            *Check6 = nullptr;
  QSlider *Slider1 = nullptr, *Slider2 = nullptr, *Slider3 = nullptr, *Slider4 = nullptr,
          *Slider5 = nullptr, *Slider6 = nullptr;
  std::array<QLabel*, 2> Label4{}, Label12{}, Label13{}, Label14{}, Label15{}, Label21{};
  std::array<QLabel*, 4> Label5{};
  std::array<QLabel*, 14> Label1{}, Label2{};
  QLabel* StatusNext = nullptr;  // the next step of the calibration
  QString NextStep() const;
  QLabel *Label7 = nullptr, *Label8 = nullptr, *Label9 = nullptr, *Label10 = nullptr,
         *Label11 = nullptr, *Label16 = nullptr, *Label17 = nullptr, *Label18 = nullptr,
         *Label19 = nullptr, *Label22 = nullptr, *Label23 = nullptr, *Label24 = nullptr,
         *StatusLabel = nullptr;
  std::array<PictureBox*, 2> Picture1{};
  std::array<PictureBox*, 6> Picture2{};
  QProgressBar* ProgressBar1 = nullptr;
  QMenu *File = nullptr, *SaveMatrix = nullptr, *Ostrel20output = nullptr, *Edit = nullptr,
        *Copy = nullptr, *About = nullptr;
  QAction *mnuCommonOutput = nullptr, *ProbabilityDistribution = nullptr,
          *ConfidenceRegions = nullptr, *PrintOptionsEntry = nullptr, *PrintAllEntry = nullptr,
          *Quit = nullptr, *ColourSetting = nullptr, *mnuAbout = nullptr;
  std::array<QAction*, 9> CopyFig{}, CopyN{};  // 1..8
  std::array<QMenu*, 9> Fig{};                 // 1..8, the right-button menus
  QAction *SaveMartixProb = nullptr, *DetailProb = nullptr, *SaveMatrixConfi = nullptr,
          *DetailConfi = nullptr;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // frmCalib.cpp: construction, layout, menus, life.
  void BuildControls();
  void BuildMenus();
  void ConnectEvents();
  void Load();
  void Activate();
  void Deactivated();
  void UnloadSecondary();
  void ShowLabels();
  void EnableMenus();

  // frmCalib_chain.cpp: the chain and its figures.
  ChainContext Context();
  void Start();
  void Rerun(ChainChange change);
  void PictureClicked(int index);
  void Check4Clicked();
  void Slider4Changed();
  void ClearFigures(int firstFigure);
  void ShowFigures();
  void PaintScatter(int k);
  // DrawScatter without taking the reconstruction window's range.
  void PlotScatter(int k);
  // "Return" hands back only a matrix built on the curve's own axis.
  bool RangeMatchesReconstruction();
  void Overlays(bool clicked = false);
  void ImportPairs(int k);
  void ClearFigure(PictureBox* p);
  void Hover(PictureBox* p, const QPointF& at);

  Session& s_;
  CalibState& c_;
  frmMAT& mat_;
  ColourSettings& colours_;
  OwnedDialogs ownDialogs_;  // dialogs stand over this window
  Dialogs& dialogs_;
  BarProgress progress_{nullptr};
  ErrorBoundary boundary_{dialogs_, progress_};
  CalibImages images_;
  PrintOptions print_;
  std::unique_ptr<frmOutPut2> chart_;
  std::unique_ptr<frmCC1> cc1_;
  std::unique_ptr<frmCC2> cc2_;
  std::unique_ptr<frmPrintSetup> printSetup_;
  bool loaded_ = false;
  bool check3_ = false;  // the print options ask for a rebuild
  // The last window of the program that was active before this one.
  QPointer<QWindow> lastOther_;
  bool ComingFromOwnWindow() const;
  bool check7_ = false;  // a change of state repaints every figure
  std::array<int, 9> shows_{};
};

}  // namespace varnoth
