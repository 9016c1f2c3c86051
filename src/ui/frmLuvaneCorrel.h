#pragma once
// "Accuracy (Est-Obs)": each station's leave-one-out estimate against its
// observed value for one parameter, with the correlation, the pairs saved
// as a matrix on request.
#include <QMainWindow>
#include <array>

#include "state/Dialogs.h"
#include "state/Session.h"
#include "ui/ErrorBoundary.h"
#include "ui/QtDialogs.h"

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;

namespace varnoth {

class PictureBox;
class frmMAT;

class frmLuvaneCorrel : public QMainWindow {
  Q_OBJECT
 public:
  frmLuvaneCorrel(Session& session, Dialogs& dialogs, frmMAT& mat, QWidget* owner);
  ~frmLuvaneCorrel() override;

  // Shown at the end of every run, at the first parameter.
  void Open();
  void AutoScale();
  void DrawScatterPL();
  // The pointer over the scatter, in its units: the tool tip.
  void MoveOnScatter(double x, double y);
  // The reconstruction chose `name`: the list shows it and the scatter, the
  // count and the saved matrix follow the list.
  void FollowParameter(const QString& name);

  QComboBox* Combo1 = nullptr;
  std::array<QLineEdit*, 2> Text1{};
  std::array<QLabel*, 2> Label1{};
  QLabel *Label2 = nullptr, *Label3 = nullptr;
  PictureBox* Picture3 = nullptr;
  QMenu* RightButton = nullptr;
  QAction *mnuSave = nullptr, *mnuCopyScatter = nullptr;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void ChooseParameter(const QString& name);
  void ShowColumnNamed(const QString& name);
  void SaveMatrix();

  Session& s_;
  OwnedDialogs dialogs_;
  frmMAT& mat_;
  NoProgress quiet_;
  ErrorBoundary boundary_{dialogs_, quiet_};
};

}  // namespace varnoth
