// The control panel on a session analysed by the engine: the axes chosen
// by control name, the two lists, "Set more axes", "Reflect" and "OK", and
// the table of contributions with its scroll bar.
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <string>
#include <vector>

#include "envelope/Envelope.h"
#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "ui/PictureBox.h"
#include "ui/ScriptedDialogs.h"
#include "ui/frmControl.h"

using namespace varnoth;

namespace {

std::string Example(const char* name) { return std::string(VARNOTH_EXAMPLES) + "/" + name; }

// A session through the whole road, a panel on it, and a record of what
// the panel asked of the main window.
struct Fixture {
  Session session;
  ScriptedDialogs dialogs;
  NoProgress none;
  bool threeD = false;
  int redraws = 0, envelopes = 0, reflected = 0, started = 0;
  std::unique_ptr<frmControl> panel;

  explicit Fixture(bool threeDView, const std::string& reference = Example("reference.csv"),
                   bool fossil = true)
      : threeD(threeDView) {
    if (!ImportReference(session, reference, dialogs, none).Ok) qFatal("reference import failed");
    ApplyPreTreatment(session, PreTreatmentSettings{}, none);
    if (fossil && !ImportFossil(session, Example("fossil.csv"), dialogs, none).Ok)
      qFatal("fossil import failed");
    ControlPanelLinks links;
    links.ThreeD = [this] { return threeD; };
    links.RedrawScatter = [this] { ++redraws; };
    links.RunEnvelope = [this] {
      ++envelopes;
      RunEnvelope(session, 1, none);
    };
    links.Reflected = [this] { ++reflected; };
    links.MoreAxisStarted = [this] { ++started; };
    panel = std::make_unique<frmControl>(session, dialogs, links);
    panel->Open();
  }

  template <typename T>
  T* Find(const char* name) {
    T* found = panel->findChild<T*>(name);
    if (!found) qWarning("no control named %s", name);
    return found;
  }

  void Choose(const char* combo, int eof) {
    auto* c = Find<QComboBox>(combo);
    c->setCurrentIndex(c->findText(QString::number(eof)));
  }

  static void Select(QListWidget* list, const std::vector<int>& rows) {
    list->clearSelection();
    for (int r : rows) list->item(r)->setSelected(true);
  }

  std::vector<int> List2() {
    std::vector<int> v;
    auto* l = Find<QListWidget>("List2");
    for (int i = 0; i < l->count(); ++i) v.push_back(l->item(i)->text().toInt());
    return v;
  }

  std::vector<int> EnvelopeAxes() {
    std::vector<int> v;
    for (Count k = 1; k <= session.EnvelopeAxisCount; ++k) v.push_back(session.EnvelopeAxes(k));
    return v;
  }
};

bool HasInk(PictureBox* p) {
  const QImage& image = p->surface().Image();
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (image.pixelColor(x, y) != QColor(Qt::white)) return true;
  return false;
}

}  // namespace

class tst_frmControl : public QObject {
  Q_OBJECT
 private slots:
  void captionsAndNames() {
    Fixture f(true);
    QCOMPARE(f.panel->objectName(), QString("frmControl"));
    QCOMPARE(f.panel->windowTitle(), QString("Control panel"));
    QCOMPARE(f.Find<QGroupBox>("Frame2")->title(), QString(" Selected EOFs for default display"));
    QCOMPARE(f.Find<QGroupBox>("Frame1")->title(), QString(" EOFs for emvelope analysis"));
    QCOMPARE(f.Find<QLabel>("Label2")->text(), QString("X-Axis"));
    QCOMPARE(f.Find<QLabel>("Label3")->text(), QString("Y-Axis"));
    QCOMPARE(f.Find<QLabel>("Label4")->text(), QString("Z-Axis"));
    QCOMPARE(f.Find<QCheckBox>("Check1")->text(), QString("Set more axes"));
    QCOMPARE(f.Find<QLabel>("Label1")->text(),
             QString(" (Invisible, reflected in envelop analysis)"));
    QCOMPARE(f.Find<QPushButton>("Command1")->text(), QString("Add >>"));
    QCOMPARE(f.Find<QPushButton>("Command2")->text(), QString("<< Delete"));
    QCOMPARE(f.Find<QLabel>("Label5")->text(), QString("EOF No."));
    QCOMPARE(f.Find<QLabel>("Label6")->text(), QString("Contribution"));
    QCOMPARE(f.Find<QLabel>("Label7")->text(), QString("Cumulative"));
    QCOMPARE(f.Find<QPushButton>("Command3")->text(), QString("Reflect"));
    QCOMPARE(f.Find<QPushButton>("Command4")->text(), QString("OK"));
    for (const char* name : {"Combo1_1", "Combo1_2", "Combo1_3", "List1", "List2", "Picture1_0",
                             "Picture1_1", "Picture1_2", "Picture2", "Picture3", "VScroll1"})
      QVERIFY2(f.panel->findChild<QWidget*>(name), name);
  }

  void openingFillsTheControlsFromTheSession() {
    Fixture f(true);
    QVERIFY(f.panel->isVisible());
    for (const char* name : {"Combo1_1", "Combo1_2", "Combo1_3"}) {
      auto* c = f.Find<QComboBox>(name);
      QCOMPARE(c->count(), 22);
      QCOMPARE(c->itemText(0), QString("1"));
      QCOMPARE(c->itemText(21), QString("22"));
      QVERIFY(c->isEnabled());
    }
    QCOMPARE(f.Find<QComboBox>("Combo1_1")->currentText(), QString("1"));
    QCOMPARE(f.Find<QComboBox>("Combo1_3")->currentText(), QString("3"));
    QCOMPARE(f.Find<QListWidget>("List1")->count(), 22);
    QCOMPARE(f.List2(), (std::vector<int>{1, 2, 3}));
    QVERIFY(!f.Find<QCheckBox>("Check1")->isChecked());
    QVERIFY(!f.Find<QListWidget>("List1")->isEnabled());
    QVERIFY(!f.Find<QListWidget>("List2")->isEnabled());
    QVERIFY(!f.Find<QPushButton>("Command1")->isEnabled());
    QCOMPARE(f.session.EnvelopeAxisCount, Count(3));
    QCOMPARE(f.session.VisibleAxisCount, Count(3));
    QVERIFY(f.Find<QLabel>("Label4")->isVisible());
    QVERIFY(f.Find<QComboBox>("Combo1_3")->isVisible());
    // The table is drawn.
    QVERIFY(HasInk(f.Find<PictureBox>("Picture1_0")));
    QVERIFY(HasInk(f.Find<PictureBox>("Picture1_1")));
    QVERIFY(HasInk(f.Find<PictureBox>("Picture2")));
    QVERIFY(HasInk(f.Find<PictureBox>("Picture3")));
  }

  void openingInTheFlatViewHidesTheZAxis() {
    Fixture f(false);
    QVERIFY(!f.Find<QLabel>("Label4")->isVisible());
    QVERIFY(!f.Find<QComboBox>("Combo1_3")->isVisible());
    QVERIFY(f.Find<QLabel>("Label3")->isVisible());
    QVERIFY(f.Find<QComboBox>("Combo1_2")->isVisible());
    QCOMPARE(f.session.EnvelopeAxisCount, Count(2));
    QCOMPARE(f.session.VisibleAxisCount, Count(2));
    QCOMPARE(f.List2(), (std::vector<int>{1, 2}));
  }

  void choosingAxesAndReflecting() {
    Fixture f(true);
    f.Choose("Combo1_1", 4);
    f.Choose("Combo1_2", 7);
    f.Choose("Combo1_3", 2);
    f.Find<QPushButton>("Command3")->click();
    QCOMPARE(f.EnvelopeAxes(), (std::vector<int>{4, 7, 2}));
    QCOMPARE(f.session.DisplayAxes(1), Count(4));
    QCOMPARE(f.session.DisplayAxes(2), Count(7));
    QCOMPARE(f.session.DisplayAxes(3), Count(2));
    QVERIFY(!f.session.MoreAxis);
    QCOMPARE(f.redraws, 1);
    QCOMPARE(f.envelopes, 1);  // projected: the envelope runs on the new axes
    QCOMPARE(f.reflected, 1);
    QVERIFY(f.session.EnvelopeDone);
    QVERIFY(f.dialogs.Messages.empty());
  }

  void moreAxesAddDeleteAndReflect() {
    Fixture f(true);
    auto* check = f.Find<QCheckBox>("Check1");
    check->click();
    QVERIFY(f.session.MoreAxis);
    QCOMPARE(f.started, 1);
    QVERIFY(f.Find<QListWidget>("List1")->isEnabled());
    QVERIFY(f.Find<QListWidget>("List2")->isEnabled());
    QVERIFY(f.Find<QPushButton>("Command1")->isEnabled());
    QVERIFY(f.Find<QPushButton>("Command2")->isEnabled());
    QVERIFY(!f.Find<QComboBox>("Combo1_1")->isEnabled());
    QVERIFY(!f.Find<QComboBox>("Combo1_3")->isEnabled());

    // EOFs 3, 7 and 9 chosen: 3 is listed already.
    auto* list1 = f.Find<QListWidget>("List1");
    Fixture::Select(list1, {2, 6, 8});
    f.Find<QPushButton>("Command1")->click();
    QCOMPARE(f.List2(), (std::vector<int>{1, 2, 3, 7, 9}));
    QCOMPARE(list1->selectedItems().size(), qsizetype(0));
    QCOMPARE(f.session.EnvelopeAxisCount, Count(5));

    // The first three stay whatever is chosen.
    Fixture::Select(f.Find<QListWidget>("List2"), {0, 2, 3});
    f.Find<QPushButton>("Command2")->click();
    QCOMPARE(f.List2(), (std::vector<int>{1, 2, 3, 9}));
    QCOMPARE(f.session.EnvelopeAxisCount, Count(4));

    f.Find<QPushButton>("Command3")->click();
    QVERIFY(f.session.MoreAxis);
    QVERIFY(check->isChecked());
    QCOMPARE(f.EnvelopeAxes(), (std::vector<int>{1, 2, 3, 9}));
    for (Count k = 1; k <= 4; ++k) QCOMPARE(f.session.DisplayAxes(k), f.session.EnvelopeAxes(k));
    QCOMPARE(f.envelopes, 1);
    QVERIFY(f.session.EnvelopeDone);
    QVERIFY(f.dialogs.Messages.empty());
  }

  void reflectWithThreeEofsInTheTurningViewClearsMoreAxis() {
    Fixture f(true);
    auto* check = f.Find<QCheckBox>("Check1");
    check->click();
    QVERIFY(f.session.MoreAxis);
    f.Choose("Combo1_1", 5);  // read only without MoreAxis
    f.Find<QPushButton>("Command3")->click();
    QVERIFY(!check->isChecked());
    QVERIFY(!f.session.MoreAxis);
    QVERIFY(!f.Find<QListWidget>("List1")->isEnabled());
    QVERIFY(f.Find<QComboBox>("Combo1_1")->isEnabled());
    QCOMPARE(f.session.EnvelopeAxisCount, Count(3));
    QCOMPARE(f.EnvelopeAxes(), (std::vector<int>{5, 2, 3}));
  }

  void untickingMoreAxisDropsTheInvisibleEofs() {
    Fixture f(false);
    f.Find<QCheckBox>("Check1")->click();
    Fixture::Select(f.Find<QListWidget>("List1"), {10, 11});
    f.Find<QPushButton>("Command1")->click();
    QCOMPARE(f.List2(), (std::vector<int>{1, 2, 11, 12}));
    QCOMPARE(f.session.EnvelopeAxisCount, Count(4));
    f.Find<QCheckBox>("Check1")->click();
    QVERIFY(!f.session.MoreAxis);
    QCOMPARE(f.List2(), (std::vector<int>{1, 2}));
    QCOMPARE(f.session.EnvelopeAxisCount, Count(2));
    QVERIFY(!f.Find<QComboBox>("Combo1_3")->isEnabled());  // hidden in the flat view
    QVERIFY(f.Find<QComboBox>("Combo1_2")->isEnabled());
  }

  void okAppliesAndCloses() {
    Fixture f(false);
    f.Choose("Combo1_1", 3);
    f.Choose("Combo1_2", 1);
    f.Find<QPushButton>("Command4")->click();
    QVERIFY(!f.panel->isVisible());
    QCOMPARE(f.session.EnvelopeAxes(1), Count(3));
    QCOMPARE(f.session.EnvelopeAxes(2), Count(1));
    QCOMPARE(f.reflected, 1);
    // Opened again, it shows what was applied.
    f.panel->Open();
    QVERIFY(f.panel->isVisible());
    QCOMPARE(f.Find<QComboBox>("Combo1_1")->currentText(), QString("3"));
    QCOMPARE(f.List2(), (std::vector<int>{3, 1}));
  }

  void manyEofsTurnTheScrollBarOn() {
    Fixture f(true);
    auto* bar = f.Find<QScrollBar>("VScroll1");
    const int lines = f.panel->TableLines();
    QVERIFY(lines >= 3);
    QVERIFY(lines < 22);
    QVERIFY(bar->isEnabled());
    QCOMPARE(bar->maximum(), 22 - lines + 1);
    auto* numbers = f.Find<PictureBox>("Picture1_0");
    const QImage first = numbers->surface().Image().copy();
    bar->setValue(bar->maximum());
    QVERIFY(numbers->surface().Image() != first);
    bar->setValue(1);
    QCOMPARE(numbers->surface().Image(), first);
  }

  void withThreeTaxaTheTableFitsAndTheScrollBarStaysOff() {
    QTemporaryDir dir;
    const QString path = dir.path() + "/three.csv";
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Site,A,B,C\r\ns1,10,20,70\r\ns2,30,30,40\r\ns3,50,10,40\r\ns4,5,60,35\r\n");
    file.close();
    Fixture f(true, path.toStdString(), false);
    QCOMPARE(f.session.RefTaxaCount, Count(3));
    QVERIFY(!f.Find<QScrollBar>("VScroll1")->isEnabled());
    QVERIFY(HasInk(f.Find<PictureBox>("Picture1_0")));
    QVERIFY(!HasInk(f.Find<PictureBox>("Picture2")));  // nothing to sum up for three EOFs
    // Without a projection "Reflect" redraws but runs no envelope.
    f.Find<QPushButton>("Command3")->click();
    QCOMPARE(f.redraws, 1);
    QCOMPARE(f.envelopes, 0);
  }

  void theMainWindowsDimensionReachesThePanel() {
    Fixture f(false);
    QVERIFY(!f.Find<QComboBox>("Combo1_3")->isVisible());
    f.threeD = true;
    f.session.EnvelopeAxisCount = 3;  // what the main window's choice did
    f.panel->DimensionChanged(true);
    QVERIFY(f.Find<QComboBox>("Combo1_3")->isVisible());
    QVERIFY(f.Find<QLabel>("Label4")->isVisible());
    QVERIFY(f.Find<QComboBox>("Combo1_3")->isEnabled());
    QCOMPARE(f.List2(), (std::vector<int>{1, 2, 3}));
    QCOMPARE(f.session.EnvelopeAxisCount, Count(3));
  }

  void beforeAnyAnalysisThePanelIsEmptyAndHarmless() {
    Session session;
    ScriptedDialogs dialogs;
    int redraws = 0;
    ControlPanelLinks links;
    links.RedrawScatter = [&redraws] { ++redraws; };
    frmControl panel(session, dialogs, links);
    panel.Open();
    QCOMPARE(panel.Combo1[1]->count(), 0);
    QCOMPARE(panel.List1->count(), 0);
    QVERIFY(!panel.VScroll1->isEnabled());
    panel.Command3->click();
    QCOMPARE(session.EnvelopeAxes(1), Count(1));
    QCOMPARE(session.EnvelopeAxes(2), Count(2));
    QCOMPARE(session.EnvelopeAxes(3), Count(3));
    QCOMPARE(redraws, 0);
    QVERIFY(dialogs.Messages.empty());
  }

  void picture() {
    // With VARNOTH_SHOTS set to a folder, the panel is saved there to look at.
    Fixture f(true);
    f.Find<QCheckBox>("Check1")->click();
    Fixture::Select(f.Find<QListWidget>("List1"), {6, 9});
    f.Find<QPushButton>("Command1")->click();
    f.Find<QScrollBar>("VScroll1")->setValue(4);
    const QPixmap shot = f.panel->grab();
    QVERIFY(!shot.isNull());
    const QByteArray folder = qgetenv("VARNOTH_SHOTS");
    if (!folder.isEmpty()) QVERIFY(shot.save(QString(folder) + "/frmControl.png"));
    Fixture flat(false);
    const QPixmap flatShot = flat.panel->grab();
    QVERIFY(!flatShot.isNull());
    if (!folder.isEmpty()) QVERIFY(flatShot.save(QString(folder) + "/frmControl-2d.png"));
  }
};

QTEST_MAIN(tst_frmControl)
#include "tst_frmControl.moc"
