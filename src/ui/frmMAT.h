#pragma once
// The reconstruction window: the analogue settings, the climate file, the
// down-core curve of one parameter with the box of the selected sample
// beside it, and after the error model the estimated-observed scatter.
// Every change of a setting runs the search again through Reset.
#include <QMainWindow>
#include <QPointer>
#include <array>
#include <memory>
#include <vector>

#include "calibration/CalibState.h"
#include "calibration/HistMatrix.h"
#include "presentation/Colours.h"
#include "presentation/ReconstructionFigure.h"
#include "reconstruction/AnalogueSettings.h"
#include "state/Dialogs.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QAction;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSlider;
class QWidget;

namespace varnoth {

class PictureBox;
class SampleUpDown;
class frmCalib;
class frmLuvane;

class frmMAT : public QMainWindow {
  Q_OBJECT
 public:
  // Progress is the main window's bar, which the save operations use.
  frmMAT(Session& session, ColourSettings& colours, Dialogs& dialogs, Progress& mainProgress,
         QWidget* parent = nullptr);
  ~frmMAT() override;

  // The main window's "Reconstruction": loads the window if it is not
  // loaded, shows it and runs its activation.
  void Open();
  bool Loaded() const { return loaded_; }

  // Public operations of the window.
  void Reset();
  void DefineThreshold();
  void Inport_climate_data();
  void RunReconstruction();
  void GenerateErrorModel();
  void ChangePara();
  void HistResize();
  void DrawReconstructionCurve();
  void DrawEstObsScatter();
  void ShowSamplePosition();
  void HighlightAnalogues();
  void SaveCurve();
  void SaveCurveWithE();
  void SaveCurveAll();
  void SaveCurveAllwithE();
  void SaveDistAna();
  void SaveScatter();
  // The main window's redraw-all: the curve again if one is shown.
  void RedrawAll();
  // The selected sample was changed elsewhere: the line and the box follow.
  void MoveMarker();
  // The diagram's selection line was switched: Check3 follows.
  void FollowSelectionLine(bool on);

  // The interpolation tool of Command8, loaded at first use.
  frmLuvane* LuvaneWindow();
  frmLuvane* Luvane() const;

  // The settings as the controls say.
  AnalogueSettings Settings() const;
  CurveSettings CurveSet() const;
  bool PanelsOpen() const { return panelsOpen_; }
  bool CalibReady() const { return calibReady_; }
  bool HistReady() const { return histReady_; }
  bool ScaleEdited() const { return scaleEdited_; }
  double ZEnhancement() const { return zEnhancement_; }
  // The chart of the calibration tool sets the shared enhancement too.
  void SetZEnhancement(double z) { zEnhancement_ = z; }

  // The calibration tool and what it hands back, in frmMAT_calib.cpp.
  frmCalib* CalibWindow() const { return calibWindow_.get(); }
  CalibState* Calib() const { return calib_.get(); }
  const HistState& Hist() const { return hist_; }
  // Command6: the matrix at the first click, then the tool.
  void OpenCalibration();
  // Command10 of the tool: slot 8 stands; the matrix is shown.
  void ReceiveCalibration();
  // The tool dropped its result: the matrices here go too.
  void CalibrationCleared();
  // Command4: the calibration applied down the core.
  void BuildHistMatrix();
  void DrawResponseMatrices();
  void SaveOstrel();
  void SaveTamsek();

  // Controls, by their names.
  QGroupBox *Frame1 = nullptr, *Frame2 = nullptr, *Frame3 = nullptr, *Frame4 = nullptr,
            *Frame5 = nullptr, *Frame6 = nullptr;
  std::array<QRadioButton*, 2> Option1{}, Option2{}, Option3{}, Option4{};
  QComboBox *Combo1 = nullptr, *Combo2 = nullptr, *Combo3 = nullptr;
  QPushButton *Command1 = nullptr, *Command2 = nullptr, *Command3 = nullptr, *Command4 = nullptr,
              *Command5 = nullptr, *Command6 = nullptr, *Command7 = nullptr, *Command8 = nullptr;
  QCheckBox *Check1 = nullptr, *Check2 = nullptr, *Check3 = nullptr, *Check5 = nullptr;
  std::array<QCheckBox*, 2> Check4{};
  QLabel* StatusNext = nullptr;  // the next step of the reconstruction
  // The next step, told by the stage the window has reached.
  QString NextStep() const;
  QLabel *Label1 = nullptr, *Label2 = nullptr, *Label4 = nullptr, *Label5 = nullptr,
         *Label6 = nullptr, *Label7 = nullptr;
  std::array<QLabel*, 2> Label3{};
  QSlider *Slider1 = nullptr, *Slider2 = nullptr, *Slider3 = nullptr, *Slider5 = nullptr,
          *Slider6 = nullptr, *Slider7 = nullptr;
  QLineEdit *Text1 = nullptr, *Text2 = nullptr;
  SampleUpDown* UpDown1 = nullptr;
  PictureBox *Picture1 = nullptr, *Picture2 = nullptr, *Picture3 = nullptr, *Picture4 = nullptr;
  QWidget *Picture0 = nullptr, *Picture99 = nullptr;
  QProgressBar* ProgressBar1 = nullptr;
  QMenu *mnuFile = nullptr, *mnuSaveMother = nullptr, *mnuSaveCurve = nullptr,
        *mnuSaveCurveAll = nullptr, *mnuEdit = nullptr, *mnuRB1 = nullptr, *mnuRB2 = nullptr,
        *mnuRB3 = nullptr, *mnuRB4 = nullptr, *mnuSaveCurve2 = nullptr, *mnuSaveCurveAll2 = nullptr;
  QAction *mnuSaveCurveVOnly = nullptr, *mnuSaveCurveVandE = nullptr,
          *mnuSaveCurveAllVOnly = nullptr, *mnuSaveCurveAllVandE = nullptr,
          *mnuSaveDistAna2 = nullptr, *mnuSaveScatter = nullptr, *mnuSaveOstrel = nullptr,
          *mnuSaveTamsek = nullptr, *mnuColor = nullptr, *mnuCopy1 = nullptr,
          *mnuSaveCurve2VOnly = nullptr, *mnuSaveCurve2VandE = nullptr,
          *mnuSaveCurveAll2VOnly = nullptr, *mnuSaveCurveAll2VandE = nullptr,
          *mnuSaveDistAna = nullptr, *mnuCopy2 = nullptr, *mnuSaveScatter2 = nullptr,
          *mnuCopy3 = nullptr, *mnuSaveTamsek2 = nullptr, *mnuCopy4 = nullptr,
          *mnuSaveOstrel2 = nullptr;
  // The menu entries of the sub-menus, as actions of their parents.
  QAction *mnuSaveCurveEntry = nullptr, *mnuSaveCurveAllEntry = nullptr,
          *mnuSaveCurve2Entry = nullptr, *mnuSaveCurveAll2Entry = nullptr;

 signals:
  // SampleCursor was changed here: the diagram and the main window follow.
  void SampleSelected();
  // Check3 was switched: the diagram's selection line follows.
  void SelectionLineToggled(bool on);
  // A drag of the selection line ended: the diagram is drawn again.
  void DiagramRedrawRequested();
  // Command7 "Axis settings".
  void AxisSettingsRequested();
  // "Colour Settings" of the Edit menu.
  void ColourSettingsRequested();
  // Pictures and the other windows are to be refreshed.
  void RefreshRequested();
  // The interpolation tool was made: the main window closes it at quitting.
  void LuvaneCreated(QWidget* window);
  // The window was unloaded: the main window's button opens it again.
  void Unloaded();

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::vector<QAction*> SaveAndCopyEntries() const;
  // Construction, layout and the window's life, in frmMAT.cpp.
  void BuildControls();
  void BuildMenus();
  void AddPublicationEntries();  // the figures for papers, frmMAT_publication.cpp
  void BuildStatusLine();
  void ConnectEvents();
  void Load();
  void Activate();
  void PlacePanels();
  // Widens the window to hold every picture shown, within the screen; the
  // pictures shrink where the screen is too narrow (true then).
  bool FitPanels();
  int PanelsRight() const;
  void ResizeOwn(int newWidth);
  void SyncSurfaces();
  void SetPanelsOpen(bool open);

  // Events, in frmMAT_events.cpp.
  void Slider1Changed();
  void Slider3Changed();
  void Slider2Changed();
  void Slider6Changed();
  void Slider7Changed();
  void Slider5Changed();
  void Option1Clicked();
  void TextChanged(bool edited, bool first);
  void Check5Clicked();
  void SelectLabel();
  void StepSample(int value);
  void SetSample(long sample);
  void PressCurve(const QPointF& pixel);
  void MoveOnCurve(const QPointF& pixel);
  void ReleaseCurve();
  void Hover(const QPointF& pixel);
  void SetLimitTexts(const QString& low, const QString& high);
  void DrawMarker();
  void EmptyMatrices();
  void FillLabels();
  void FocusNext();
  void EnableSettings();
  void ConnectLuvane();
  void FollowParameterInLuvane();

  // Saves, in frmMAT_files.cpp.
  template <typename Writer>
  void SaveWith(Writer writer, const std::string& title);
  std::string ShownParameter() const;  // the parameter in Combo1

  Session& s_;
  ColourSettings& colours_;
  OwnedDialogs ownDialogs_;  // dialogs stand over this window
  Dialogs& dialogs_;
  Progress& mainProgress_;
  BarProgress progress_{nullptr};
  ErrorBoundary boundary_{dialogs_, progress_};

  bool loaded_ = false;
  bool taxaBased_ = true;
  bool panelsOpen_ = false;
  bool calibReady_ = false, histReady_ = false;
  bool scaleEdited_ = false;
  bool noAnalogues_ = false;  // the three lines stand in Picture1
  bool dragging_ = false, sizing_ = false;
  bool activating_ = false;
  double zEnhancement_ = 1;
  std::unique_ptr<CalibState> calib_;
  std::unique_ptr<frmCalib> calibWindow_;
  HistState hist_;
  void DrawHistPicture();
  void DrawMatrixLines();
  // While the calibration matrix shows, the selected sample's estimate
  // stands as an upright line over it and over the scatter.
  bool MatrixShown() const;
  CurveSettings ScatterSet() const;
  void DrawMatrixMarker();
  CalibSettings CalibSettingsShown() const;
  double threshold_ = 0.2;  // AnalogueThreshold, set by DefineThreshold
  int frame5Width_ = 0;
  int panelsExtra_ = 0;  // what the window widened by for the panels
  bool resizingOwn_ = false;
  QSize ownSize_;         // a widening of the window's own, until its resize arrives
  int pictureWidth_ = 0;  // Picture1 to Picture4, from Slider7
  QPointer<frmLuvane> luvane_;
};

}  // namespace varnoth
