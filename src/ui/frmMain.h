#pragma once
// The main window: the import buttons, the two scatter figures with their
// stereo partners, the display controls and the menus. It stays open for
// the whole session and opens the other windows.
#include <QMainWindow>
#include <QPointer>
#include <QTimer>
#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "presentation/Colours.h"
#include "presentation/Scatter.h"
#include "state/Dialogs.h"
#include "state/Import.h"
#include "state/ScoreFiles.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QAction;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QMenu;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSlider;
class QWidget;

namespace varnoth {

class PictureBox;
class frmCorrelVar;
class frmColor;
class frmAbout1;
class frmTest;
class frmControl;
class frmDiagram;
class frmMAT;
class frmECC;

// Windows are closed by QuitProgram in this order; later tools add theirs.
enum class WindowOrder {
  TestForm,
  About,
  Control,
  MAT,
  Color,
  ECC,
  CorrelVar,
  Interpolation,
  Calibration,
  Diagram,
};

class frmMain : public QMainWindow {
  Q_OBJECT
 public:
  frmMain(Session& session, ColourSettings& colours, Dialogs& dialogs, QWidget* parent = nullptr);
  ~frmMain() override;

  Session& session() { return s_; }
  ColourSettings& colours() { return colours_; }
  Dialogs& dialogs() { return dialogs_; }
  bool Quitting() const { return quitting_; }
  Progress& progress() { return progress_; }
  ErrorBoundary& boundary() { return boundary_; }

  // Public operations of the form.
  void ImportReference();
  void ImportFossil();
  void ConfirmPreTreatment(const PreTreatmentSettings& settings);
  void RedrawAll();
  void ChangeRange();
  void QuitProgram();
  void ApplyColourPreset();
  void ApplyGreyPreset();
  // The click of Command11: runs the envelope test, or resets it.
  void EnvelopClick();
  // The results of the envelope test are shown ("Reset envelope").
  bool EnvelopeStands() const;
  void DrawTaxaFigure(Count a, Count b, Count c);
  void DrawSitesFigure(Count a, Count b, Count c);
  void DrawFossilFigure(Count a, Count b, Count c);
  ScatterView View() const;

  // Windows that exist; QuitProgram closes them in their order.
  void AddWindow(WindowOrder order, QWidget* window);
  frmCorrelVar* CorrelVar();
  frmColor* ColorWindow();
  frmAbout1* AboutWindow();
  frmTest* TestForm();
  frmControl* ControlPanel();
  frmDiagram* DiagramWindow();
  frmMAT* MATWindow();
  frmECC* EccWindow();
  // What ends the process after the windows are closed.
  void SetEndProgram(std::function<void()> end) { endProgram_ = std::move(end); }

  PictureBox* Picture1(int i) { return picture1_[static_cast<std::size_t>(i)]; }
  PictureBox* Picture2(int i) { return picture2_[static_cast<std::size_t>(i)]; }
  PictureBox* Picture3() { return picture3_; }
  QTimer& Timer1() { return timer1_; }
  QTimer& Timer2() { return timer2_; }

 signals:
  // After the scatter is redrawn for a colour or tolerance change, so that
  // the diagram and its curves follow in that order.
  void RedrawOthers();
  // The range slider moved: the diagram's EOF curves follow its value.
  void RangeChanged(int value);
  // The selected sample moved in the main window: the diagram's marker
  // follows.
  void SampleChosen();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  // Construction, in frmMain.cpp.
  void BuildControls();
  void BuildMenus();
  void BuildPopups();
  void AddPictureFiles();  // frmMain_export.cpp
  void ConnectEvents();
  void StartValues();
  QWidget* BuildDisplayFrame();
  QWidget* BuildListFrame(QGroupBox*& frame, const QString& name, const QString& caption,
                          std::array<QRadioButton*, 3>& options, QButtonGroup*& group,
                          QComboBox*& combo, std::array<QPushButton*, 2>& stepping,
                          const QString& comboName, const QString& steppingName);

  // Stages, in frmMain_import.cpp.
  // With a path given, that table is read without asking.
  void RunImport(bool reference, std::optional<std::string> given = std::nullopt);
  bool exampleFossilPending_ = false;  // the example set's fossil table follows the base
  void BaseImportRead();
  void SecondImportRead(bool fossil);
  void EofAnalysisEnded();
  void ProjectionEnded();
  void ImportButtonsFromSession();
  void FillLists(bool reference, bool isBase);
  void RestartTurning();
  void SaveWith(void (*writer)(const Session&, const std::string&, const FileStamp&, Progress&));
  void ShowPopup(QMenu* menu, const QPoint& at);
  void RefreshMoreAxisLabel();

  // Envelope, in frmMain_envelope.cpp.
  void RunEnvelopeAndRedraw();

  // The diagram window and its link to the scatter, in frmMain_diagram.cpp.
  void ConnectDiagramEvents();

  // The reconstruction window and its links, in frmMain_mat.cpp.
  void ConnectMATEvents();
  void LinkDiagramAndMAT();

  // Axes: the control panel and the ring of EOFs, in frmMain_axes.cpp.
  void ConnectAxisEvents();
  void StepAxisRing(bool next);
  void ChooseAxisChangeMode(bool automatic);

  // Title, status line, tool tips and shortcuts, in frmMain_status.cpp.
  void BuildStatusLine();
  void BuildShortcuts();
  void ShowPointer(int figure, const QPointF& pixel);
  void SaveFocusedScore();

  // Display, in frmMain_scatter.cpp.
  void RedrawScatter(Count a, Count b, Count c);
  void SetStereo(bool on);
  void ChooseDimension(bool threeD);
  void TurnStep();
  void ChangeAngle(int which);
  void ChangeVelocity();
  void ChangeTolerance();
  void PlaceLabel4();
  void NameOptionChosen(int list);
  void StepCursor(int list, int direction);
  void ChooseByName(int list);
  void ScheduleRedraw();

  Session& s_;
  ColourSettings& colours_;
  Dialogs& dialogs_;
  QProgressBar* progressBar1_ = nullptr;
  BarProgress progress_{nullptr};
  ErrorBoundary boundary_{dialogs_, progress_};
  std::function<void()> endProgram_;
  bool quitting_ = false;
  bool redrawPending_ = false;
  int widthBeforeStereo_ = 0;

  std::map<WindowOrder, std::vector<QPointer<QWidget>>> windows_;
  QPointer<frmCorrelVar> correlVar_;
  QPointer<frmColor> color_;
  QPointer<frmAbout1> about_;
  QPointer<frmTest> test_;
  QPointer<frmControl> control_;
  QPointer<frmDiagram> diagram_;
  QPointer<frmMAT> mat_;
  QPointer<frmECC> ecc_;

  QTimer timer1_, timer2_;

 public:
  // Controls, by their names.
  QPushButton *Command5 = nullptr, *Command6 = nullptr, *Command3 = nullptr, *Command11 = nullptr,
              *Command14 = nullptr, *Command8 = nullptr, *Command9 = nullptr, *Command7 = nullptr;
  std::array<QPushButton*, 2> Command1{}, Command2{}, Command13{}, Command4{};
  QGroupBox *Frame2 = nullptr, *Frame3 = nullptr, *Frame4 = nullptr, *Frame5 = nullptr,
            *Frame6 = nullptr, *Frame7 = nullptr;
  std::array<QRadioButton*, 3> Option2{}, Option3{}, Option5{};
  std::array<QRadioButton*, 2> Option4{}, Option6{};
  QButtonGroup *group2_ = nullptr, *group3_ = nullptr, *group5_ = nullptr, *group4_ = nullptr,
               *group6_ = nullptr;
  QCheckBox *Check1 = nullptr, *Check2 = nullptr, *Check3 = nullptr, *Check4 = nullptr;
  QSlider *Slider1 = nullptr, *Slider3 = nullptr, *Slider4 = nullptr, *Slider5 = nullptr;
  std::array<QSlider*, 3> Slider2{};  // indices 1 and 2
  std::array<QLabel*, 2> Label{};     // "Rotate", "Tilt"
  QLabel *Label1 = nullptr, *Label2 = nullptr, *Label3 = nullptr, *Label4 = nullptr,
         *LabelRange = nullptr, *Label6 = nullptr, *Label7 = nullptr, *Label8 = nullptr,
         *Label9 = nullptr;
  QComboBox *Combo1 = nullptr, *Combo3 = nullptr, *Combo4 = nullptr;
  QProgressBar* ProgressBar1 = nullptr;
  QAction *mnuSaveL = nullptr, *mnuSaveS = nullptr, *mnuSaveF = nullptr, *mnuQuit = nullptr,
          *mnuControl = nullptr, *mnuColor = nullptr, *mnuGrey = nullptr, *mnuAbout = nullptr,
          *mnuCopy1L = nullptr, *mnuSaveL2 = nullptr, *mnuCopy1R = nullptr, *mnuCopy2L = nullptr,
          *mnuSaveS2 = nullptr, *mnuSaveF2 = nullptr, *mnuCopy2R = nullptr;
  QMenu *mnuFig1L = nullptr, *mnuFig1R = nullptr, *mnuFig2L = nullptr, *mnuFig2R = nullptr;
  // File > "Open Example Data": the shipped tables through the usual imports.
  QAction* mnuOpenExample = nullptr;
  void OpenExampleData();

 private:
  std::array<PictureBox*, 2> picture1_{}, picture2_{};
  PictureBox* picture3_ = nullptr;
  QWidget* partnerColumn1_ = nullptr;
  QString referenceFile_, fossilFile_;  // names of the tables read
  int focusedFigure_ = 2;               // the figure Ctrl+S saves from

 public:
  // The window's title: the program and the tables read, with their sizes.
  void ShowTitle();
  // The status line under the figures: how far the analysis has come.
  void ShowAnalysisState();
  QLabel *StatusState = nullptr, *StatusPointer = nullptr;
  QAction *ImportNext = nullptr, *SaveScore = nullptr;
};

}  // namespace varnoth
