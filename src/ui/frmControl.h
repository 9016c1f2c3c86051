#pragma once
// The control panel: which EOFs stand on the X, Y and Z axes, which take
// part in the envelope ("Set more axes" lets it use EOFs beyond those on
// screen), and the table of the EOFs' contributions. A panel beside the
// main window, not a modal dialog; closing it only hides it.
#include <QWidget>
#include <array>
#include <functional>
#include <vector>

#include "envelope/AxisSettings.h"
#include "state/Dialogs.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QListWidget;
class QPushButton;
class QScrollBar;

namespace varnoth {

class PictureBox;

// What the panel asks of the main window. Every link may be left empty.
struct ControlPanelLinks {
  // "3-D" is chosen in the main window.
  std::function<bool()> ThreeD;
  // The scatter figures with the axes of DisplayAxes.
  std::function<void()> RedrawScatter;
  // The envelope test as "Envelop" runs it, timers and captions included.
  std::function<void()> RunEnvelope;
  // After "Reflect": the "MoreAxis" label, the reconstruction window.
  std::function<void()> Reflected;
  // "Set more axes" ticked: the axis change timer runs, its interval
  // slider is usable.
  std::function<void()> MoreAxisStarted;
  // The panel became the active window: the line under the figures is
  // written again.
  std::function<void()> Activated;
};

class frmControl : public QWidget {
  Q_OBJECT
 public:
  frmControl(Session& session, Dialogs& dialogs, ControlPanelLinks links = {},
             Progress* progress = nullptr, QWidget* parent = nullptr);

  // Command3 and mnuControl of the main window: a hidden panel is filled
  // anew from the session, then shown and raised.
  void Open();
  // Fills the controls from the session, as the panel does when it opens.
  void Load();
  // The table of contributions and its two summaries.
  void ShowKiyo();
  // The main window chose "2-D" or "3-D": the Z axis shows or hides, and
  // the panel follows what that choice did to MoreAxis.
  void DimensionChanged(bool threeD);

  // The axis choice as the controls hold it.
  AxisChoice Choice() const;
  int TableLines() const;

  QGroupBox *Frame1 = nullptr, *Frame2 = nullptr;
  std::array<QComboBox*, 4> Combo1{};  // indices 1 to 3
  QLabel *Label1 = nullptr, *Label2 = nullptr, *Label3 = nullptr, *Label4 = nullptr,
         *Label5 = nullptr, *Label6 = nullptr, *Label7 = nullptr;
  QCheckBox* Check1 = nullptr;
  QListWidget *List1 = nullptr, *List2 = nullptr;
  QPushButton *Command1 = nullptr, *Command2 = nullptr, *Command3 = nullptr, *Command4 = nullptr;
  std::array<PictureBox*, 3> Picture1{};
  PictureBox *Picture2 = nullptr, *Picture3 = nullptr;
  QScrollBar* VScroll1 = nullptr;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void Build();
  void ConnectEvents();
  bool ThreeD() const;
  void ShowList2(const std::vector<Count>& entries);
  void SetListsEnabled(bool on);
  void SetCombosEnabled(bool on);
  void MoreAxisToggled(bool on);
  void Add();
  void Delete();
  void Reflect();
  void Ok();
  void DrawLines(PictureBox* picture, const std::vector<std::string>& lines);

  Session& s_;
  ControlPanelLinks links_;
  NoProgress noProgress_;
  OwnedDialogs ownDialogs_;  // messages stand over the panel
  ErrorBoundary boundary_;
  bool threeD_ = false;
};

}  // namespace varnoth
