#pragma once
// The test form: one button writes a table of the session's working values
// to a file the user chooses, for checking a run by hand.
#include <QWidget>

#include "state/RecordWriter.h"

class QLabel;
class QPushButton;

namespace varnoth {

class frmMain;
struct Session;

// The table the test form writes: one line per taxon with its name, the
// base table's mean and deviation, the mean of the standardised data and
// its row of the decomposed matrix, then the eigenvalues and contributions.
RecordWriter WorkingValues(const Session& s);

class frmTest : public QWidget {
  Q_OBJECT
 public:
  explicit frmTest(frmMain& main);
  void WriteWorkingValues();  // Command1

  QLabel* Label1 = nullptr;
  QPushButton* Command1 = nullptr;

 private:
  frmMain& main_;
};

}  // namespace varnoth
