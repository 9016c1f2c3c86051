#include "ui/PublicationExport.h"

#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace varnoth {

namespace {
PublicationAnswer& Answer() {
  static PublicationAnswer answer;
  return answer;
}
}  // namespace

void SetPublicationAnswer(PublicationAnswer answer) { Answer() = std::move(answer); }

std::optional<PublicationChoice> AskPublicationChoice(QWidget* parent, PublicationKind kind,
                                                      bool zonesPossible) {
  if (Answer()) return Answer()(kind);
  QDialog dialog(parent);
  dialog.setObjectName("frmPublication");
  dialog.setWindowTitle("Save Figure for Publication");
  auto* layout = new QVBoxLayout(&dialog);
  auto* widthBox = new QGroupBox("Width", &dialog);
  auto* single = new QRadioButton("Single column (85 mm)", widthBox);
  single->setObjectName("optSingleColumn");
  auto* twice = new QRadioButton("Double column (175 mm)", widthBox);
  twice->setObjectName("optDoubleColumn");
  twice->setChecked(true);
  auto* widthLayout = new QVBoxLayout(widthBox);
  widthLayout->addWidget(single);
  widthLayout->addWidget(twice);
  layout->addWidget(widthBox);
  auto* form = new QFormLayout;
  QSpinBox* zones = nullptr;
  QDoubleSpinBox* least = nullptr;
  QCheckBox* exaggerate = nullptr;
  QCheckBox* analogues = nullptr;
  if (kind == PublicationKind::PollenDiagram) {
    zones = new QSpinBox(&dialog);
    zones->setObjectName("spnZones");
    zones->setRange(0, 20);
    zones->setEnabled(zonesPossible);
    zones->setToolTip("Zone lines where the CONISS tree is cut into this many zones (0: none)");
    form->addRow("CONISS zones:", zones);
    least = new QDoubleSpinBox(&dialog);
    least->setObjectName("spnLeastMaximum");
    least->setRange(0, 100);
    least->setSuffix(" %");
    least->setDecimals(1);
    least->setToolTip("Only the taxa that reach this percentage in some sample (0: all)");
    form->addRow("Taxa reaching at least:", least);
    exaggerate = new QCheckBox("Ten times outline of the rare taxa", &dialog);
    exaggerate->setObjectName("chkExaggerate");
    form->addRow(exaggerate);
  } else if (kind == PublicationKind::Reconstruction) {
    analogues = new QCheckBox("Analogue count beside the curve", &dialog);
    analogues->setObjectName("chkAnalogueCount");
    form->addRow(analogues);
  }
  layout->addLayout(form);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  layout->addWidget(buttons);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  PublicationChoice c;
  c.WidthMm = single->isChecked() ? pub::kSingleColumnMm : pub::kDoubleColumnMm;
  if (zones) c.Zones = zones->value();
  if (least) c.MinMaxPercent = least->value();
  if (exaggerate) c.Exaggerate = exaggerate->isChecked();
  if (analogues) c.AnalogueCount = analogues->isChecked();
  return c;
}

bool SaveFigureForPublication(Dialogs& dialogs, QWidget* parent, PublicationKind kind,
                              bool zonesPossible, const DrawPublication& draw) {
  const std::optional<PublicationChoice> choice = AskPublicationChoice(parent, kind, zonesPossible);
  if (!choice) return false;
  const pub::Page page = draw(*choice);
  if (page.Height() <= 0) {
    dialogs.Message("There is nothing to draw in this figure yet.", "Varnoth");
    return false;
  }
  int chosen = -1;
  const std::optional<std::string> name =
      dialogs.SaveFileNameChoosing(kPublicationFilter, "Save the figure for publication", chosen);
  if (!name || name->empty()) return false;
  std::string path = *name;
  pub::PageFormat format = pub::PageFormatOf(path);
  if (path.find('.', path.find_last_of('/') + 1) == std::string::npos) {
    // The chosen kind of file decides, and gives the name its extension.
    format = chosen == 1   ? pub::PageFormat::Pdf
             : chosen == 2 ? pub::PageFormat::Png
                           : pub::PageFormat::Svg;
    path += std::string(".") + pub::PageExtension(format);
  }
  pub::SavePage(page, path, format);
  return true;
}

QAction* AddPublicationEntry(QMenu* menu, const QString& objectName, Dialogs& dialogs,
                             ErrorBoundary& boundary, QWidget* parent, PublicationKind kind,
                             std::function<bool()> zonesPossible, DrawPublication draw,
                             QAction* sameAs) {
  auto* entry = new QAction(kPublicationCaption, menu);
  entry->setObjectName(objectName);
  menu->addAction(entry);
  if (sameAs) {
    entry->setEnabled(sameAs->isEnabled());
    QObject::connect(sameAs, &QAction::enabledChanged, entry, &QAction::setEnabled);
  }
  QObject::connect(
      entry, &QAction::triggered, menu, [&dialogs, &boundary, parent, kind, zonesPossible, draw] {
        boundary.Run(
            [&] { SaveFigureForPublication(dialogs, parent, kind, zonesPossible(), draw); });
      });
  return entry;
}

}  // namespace varnoth
