#include "ui/frmTest.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "state/RecordWriter.h"
#include "ui/QtDialogs.h"
#include "ui/frmMain.h"

namespace varnoth {

RecordWriter WorkingValues(const Session& s) {
  RecordWriter w;
  const long n = s.EofDone ? s.TaxaCount : 0;
  w.Text("Working values").End();
  w.Text("No. of taxa: ").Integer(s.TaxaCount).End();
  w.Text("No. of base rows: ").Integer(s.BaseRowCount).End();
  w.Text("Taxon").Text("Mean").Text("Deviation").Text("Standardised mean");
  for (long j = 1; j <= n; ++j) w.Text("Matrix " + std::to_string(j));
  w.End();
  const Array1<std::string>& names = s.ReferenceIsBase ? s.RefTaxaNames : s.FossilTaxaNames;
  for (long i = 1; i <= n; ++i) {
    w.Text(names(i))
        .Number(s.ColumnMean(0, i))
        .Number(s.ColumnStd(0, i))
        .Number(s.ColumnMean(1, i));
    for (long j = 1; j <= n; ++j) w.Number(s.EofMatrix(i, j));
    w.End();
  }
  w.Text("Eigenvalue");
  for (long j = 1; j <= n; ++j) w.Number(s.EigenVectors(n + 1, j));
  w.End();
  w.Text("Contribution");
  for (long j = 1; j <= n; ++j) w.Single(s.Contribution(j));
  w.End();
  return w;
}

frmTest::frmTest(frmMain& main) : QWidget(&main, Qt::Dialog), main_(main) {
  setObjectName("frmTest");
  setWindowTitle("Test");
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* layout = new QVBoxLayout(this);
  Label1 = new QLabel("Write the working values of the analysis to a file.", this);
  Label1->setObjectName("Label1");
  Command1 = new QPushButton("Write working values", this);
  Command1->setObjectName("Command1");
  layout->addWidget(Label1);
  layout->addWidget(Command1);
  connect(Command1, &QPushButton::clicked, this, &frmTest::WriteWorkingValues);
}

void frmTest::WriteWorkingValues() {
  main_.boundary().Run([this] {
    // The file dialog stands over this form, which asked for it.
    OwnedDialogs owned(main_.dialogs(), this);
    std::optional<std::string> path =
        owned.SaveFileName(kDataFileFilter, "Save the table of working values");
    if (!path) return;
    WorkingValues(main_.session()).Save(*path);
  });
}

}  // namespace varnoth
