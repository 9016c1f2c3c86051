// What the main window tells around its figures: the tables read in its
// title, the state of the analysis and the pointer's EOF coordinates in the
// status line, and the usual keyboard shortcuts.
#include <QAction>
#include <QEvent>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QStatusBar>

#include "diagram/DiagramLayout.h"
#include "ui/PictureBox.h"
#include "ui/frmMain.h"

namespace varnoth {

namespace {

// Reports the pointer over a figure, and which figure was last used.
class PointerWatch final : public QObject {
 public:
  PointerWatch(QObject* parent, std::function<void(const QPointF&)> moved,
               std::function<void()> used, std::function<void()> left)
      : QObject(parent), moved_(std::move(moved)), used_(std::move(used)), left_(std::move(left)) {}

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    switch (event->type()) {
      case QEvent::MouseMove:
        moved_(static_cast<QMouseEvent*>(event)->position());
        break;
      case QEvent::MouseButtonPress:
      case QEvent::FocusIn:
        used_();
        break;
      case QEvent::Leave:
        left_();
        break;
      default:
        break;
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  std::function<void(const QPointF&)> moved_;
  std::function<void()> used_, left_;
};

QString Counted(long n, const char* one, const char* many) {
  return QString::number(n) + " " + (n == 1 ? one : many);
}

}  // namespace

void frmMain::BuildStatusLine() {
  StatusState = new QLabel(this);
  StatusState->setObjectName("StatusState");
  StatusPointer = new QLabel(this);
  StatusPointer->setObjectName("StatusPointer");
  QStatusBar* bar = statusBar();
  bar->setObjectName("StatusLine");
  bar->setSizeGripEnabled(false);
  bar->addWidget(StatusState, 1);
  bar->addPermanentWidget(StatusPointer);
  for (int figure = 1; figure <= 2; ++figure)
    for (int i = 0; i < 2; ++i) {
      PictureBox* p = figure == 1 ? Picture1(i) : Picture2(i);
      p->setMouseTracking(true);
      p->setFocusPolicy(Qt::ClickFocus);
      p->installEventFilter(new PointerWatch(
          p,
          [this, figure, p](const QPointF& at) { ShowPointer(figure, at - QPointF(p->Origin())); },
          [this, figure] { focusedFigure_ = figure; }, [this] { StatusPointer->clear(); }));
    }
  ShowAnalysisState();
}

void frmMain::BuildShortcuts() {
  mnuQuit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
  mnuAbout->setShortcut(QKeySequence(Qt::Key_F1));
  // Not menu entries of their own: they do what a button or entry does.
  ImportNext = new QAction("Import the next table", this);
  ImportNext->setObjectName("ImportNext");
  ImportNext->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
  addAction(ImportNext);
  connect(ImportNext, &QAction::triggered, this, [this] {
    if (Command5->isEnabled())
      Command5->click();
    else if (Command6->isEnabled())
      Command6->click();
  });
  SaveScore = new QAction("Save the scores of the figure", this);
  SaveScore->setObjectName("SaveScore");
  SaveScore->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_S));
  addAction(SaveScore);
  connect(SaveScore, &QAction::triggered, this, &frmMain::SaveFocusedScore);
}

void frmMain::SaveFocusedScore() {
  // Fig1 holds the taxa, whose file is the loadings; Fig2 the scores of
  // the base table.
  QAction* entry = focusedFigure_ == 1 ? mnuSaveL : s_.FossilIsBase ? mnuSaveF : mnuSaveS;
  if (entry->isEnabled()) entry->trigger();
}

void frmMain::ShowTitle() {
  QStringList parts;
  auto reference = [&](bool base) {
    if (referenceFile_.isEmpty()) return;
    QString text = referenceFile_ + ": " + Counted(s_.RefSiteCount, "site", "sites");
    if (base) text += " x " + Counted(s_.RefTaxaCount, "taxon", "taxa");
    parts << text;
  };
  auto fossil = [&](bool base) {
    if (fossilFile_.isEmpty()) return;
    QString text = fossilFile_ + ": " + Counted(s_.FossilSampleCount, "sample", "samples");
    if (base) text += " x " + Counted(s_.FossilTaxaCount, "taxon", "taxa");
    parts << text;
  };
  if (s_.FossilIsBase) {
    fossil(true);
    reference(false);
  } else {
    reference(true);
    fossil(false);
  }
  setWindowTitle(parts.isEmpty() ? QString("Varnoth") : "Varnoth - " + parts.join("; "));
}

void frmMain::ShowAnalysisState() {
  QString text;
  if (!s_.ReferenceIsBase && !s_.FossilIsBase) {
    // The order of the imports decides what can follow: say so before the
    // user chooses.
    text =
        "Import the reference data first for the whole analysis; the fossil data first gives "
        "the EOFs of the core alone. Or: File > Open Example Data.";
  } else if (!s_.EofDone) {
    text = "Choose the pre-treatment to compute the EOFs.";
  } else {
    text = QString("EOFs done (") +
           (s_.UseCorrelation ? "correlation matrix" : "variance / covariance matrix") + ")";
    if (s_.ProjectionDone)
      text +=
          "; " + QString(s_.ReferenceIsBase ? "fossil samples" : "reference sites") + " projected";
    else if (s_.ReferenceIsBase)
      text += "; import the fossil data to project it";
    else
      text +=
          " of the fossil data; no reference table can follow in this order: for a "
          "reconstruction, start anew with the reference data";
    if (s_.ProjectionDone && s_.EnvelopeDone && EnvelopeStands())
      text += "; Out: " + QString::number(OutCount(s_)) + " of " +
              Counted(s_.FossilSampleCount, "sample", "samples");
  }
  StatusState->setText(text);
}

void frmMain::ShowPointer(int figure, const QPointF& pixel) {
  // In the turning 3-D view the screen shows no EOF axis of its own.
  if (!s_.EofDone || Option4[1]->isChecked()) {
    StatusPointer->clear();
    return;
  }
  PictureBox* p = figure == 1 ? Picture1(0) : Picture2(0);
  const QPointF at = p->surface().ToUser(pixel);
  const Count a = s_.DisplayAxes(1), b = s_.DisplayAxes(2);
  StatusPointer->setText(QString("Fig%1  EOF-%2: %3  EOF-%4: %5")
                             .arg(figure)
                             .arg(a)
                             .arg(at.x(), 0, 'f', 3)
                             .arg(b)
                             .arg(at.y(), 0, 'f', 3));
}

}  // namespace varnoth
