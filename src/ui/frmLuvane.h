#pragma once
// The interpolation tool "Luvane 1.1": the station table and the target
// sites, the run in either mode, the world map with the sites, and the
// hand-back of the interpolated climate to the reconstruction window.
#include <QMainWindow>
#include <QPointer>
#include <array>
#include <string>
#include <vector>

#include "interpolation/Interpolation.h"
#include "presentation/MapFigure.h"
#include "state/Dialogs.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"
#include "ui/frmLuvaneCorrel.h"
#include "ui/frmLuvaneHelp.h"
#include "ui/frmLuvaneMag.h"

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QProgressBar;
class QPushButton;
class QRadioButton;

namespace varnoth {

class PictureBox;
class frmMAT;

// Where the coastline is looked for: beside an installed program, in the
// working folder, in the source tree.
std::vector<std::string> CoastlineCandidates();

class frmLuvane : public QMainWindow {
  Q_OBJECT
 public:
  frmLuvane(Session& session, Dialogs& dialogs, frmMAT& mat, QWidget* parent = nullptr);
  ~frmLuvane() override;

  // frmMAT's "Launch Luvane 1.1": loads the window if need be and shows it.
  void Open();
  bool Loaded() const { return loaded_; }
  // The next step of the interpolation, shown in the status line.
  QString NextStep() const;
  QLabel* StatusNext = nullptr;

  // Public operations.
  void ImportData(Count mode);
  void DoInterpolation();
  void UnloadAll();
  void RedrawInterpMap();
  void DrawCoastline();
  void DrawTargetSites();
  void MarkNoDataTargets();
  void DrawMagnifier(double x, double y, double half);
  void HighlightAnalogues();
  void LayOutMap();
  void ShowStationRange();
  InterpolationSettings Settings() const;
  const Coastline& Coast() const { return coast_; }

  frmLuvaneMag* Magnifier() const { return mag_; }
  frmLuvaneCorrel* Correl() const { return correl_; }
  frmLuvaneHelp* Help() const { return help_; }

  // The pointer on the map, in degrees: what moving and clicking there do.
  void MoveOnMap(double x, double y);
  void ClickOnMap(double x, double y);
  void MoveOnMagnifier(double x, double y);
  void MagnifierClosed();

  QPushButton *Command0 = nullptr, *Command1 = nullptr, *Command2 = nullptr, *Command3 = nullptr,
              *Command4 = nullptr;
  std::array<QRadioButton*, 2> Option1{};
  QComboBox *Combo1 = nullptr, *Combo2 = nullptr;
  QLabel *Label1 = nullptr, *Label2 = nullptr, *Label3 = nullptr;
  QLineEdit* Text3 = nullptr;
  std::array<QLineEdit*, 2> Text1{}, Text2{};
  PictureBox* Picture1 = nullptr;
  QProgressBar* ProgressBar1 = nullptr;
  QMenu *mnuHelpTag = nullptr, *mnuRBTag = nullptr;
  QAction *mnuHelp = nullptr, *mnuCopyMap = nullptr;

 signals:
  void Unloaded();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void BuildControls();
  void Load();
  void InputChanged(bool radius);
  void ReturnToVarnoth();
  void PlaceControls();
  void KeepOnScreen();
  void PlaceBesideMap(QWidget* window, const QWidget* other);
  double Radius() const;
  frmLuvaneMag* MagWindow();
  frmLuvaneCorrel* CorrelWindow();

  Session& s_;
  OwnedDialogs dialogs_;
  frmMAT& mat_;
  BarProgress progress_{nullptr};
  ErrorBoundary boundary_{dialogs_, progress_};
  const Coastline& coast_;
  QPointer<frmLuvaneMag> mag_;
  QPointer<frmLuvaneCorrel> correl_;
  QPointer<frmLuvaneHelp> help_;
  bool loaded_ = false;
  int mapHeight_ = 0;
};

}  // namespace varnoth
