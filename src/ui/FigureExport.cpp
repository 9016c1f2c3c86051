#include "ui/FigureExport.h"

#include <optional>

#include "presentation/PictureFile.h"

namespace varnoth {

namespace {
// Asks for the file; the name with its extension, the format and the scale.
struct Destination {
  std::string Path;
  PictureFormat Format = PictureFormat::Png;
  int Scale = 1;
};

std::optional<Destination> AskDestination(Dialogs& dialogs) {
  int chosen = -1;
  std::optional<std::string> name =
      dialogs.SaveFileNameChoosing(kPictureFilter, "Save the picture", chosen);
  if (!name || name->empty()) return std::nullopt;
  std::string path = *name;
  const bool hasExtension = path.find('.', path.find_last_of('/') + 1) != std::string::npos;
  PictureFormat format = PictureFormatOf(path);
  if (!hasExtension) {
    // The chosen kind of file decides, and gives the name its extension.
    format = chosen == 3   ? PictureFormat::Svg
             : chosen == 4 ? PictureFormat::Pdf
                           : PictureFormat::Png;
    path += std::string(".") + PictureExtension(format);
  }
  const int scale = format != PictureFormat::Png ? 1 : chosen == 1 ? 2 : chosen == 2 ? 4 : 1;
  return Destination{path, format, scale};
}
}  // namespace

bool SavePictureAs(Dialogs& dialogs, const Surface& surface) {
  const std::optional<Destination> to = AskDestination(dialogs);
  if (!to) return false;
  SavePicture(surface, to->Path, to->Format, to->Scale);
  return true;
}

bool SavePictureAs(Dialogs& dialogs, const std::vector<PlacedSurface>& parts) {
  const std::optional<Destination> to = AskDestination(dialogs);
  if (!to) return false;
  SavePicture(parts, to->Path, to->Format, to->Scale);
  return true;
}

QAction* AddSavePictureEntry(QMenu* menu, const QString& objectName, Dialogs& dialogs,
                             ErrorBoundary& boundary, SurfaceOf surface, QAction* sameAs,
                             const QString& caption) {
  auto* entry = new QAction(caption, menu);
  entry->setObjectName(objectName);
  menu->addAction(entry);
  if (sameAs) {
    entry->setEnabled(sameAs->isEnabled());
    QObject::connect(sameAs, &QAction::enabledChanged, entry, &QAction::setEnabled);
  }
  QObject::connect(entry, &QAction::triggered, menu, [&dialogs, &boundary, surface] {
    boundary.Run([&] { SavePictureAs(dialogs, surface()); });
  });
  return entry;
}

QAction* AddSavePictureEntry(QMenu* menu, const QString& objectName, Dialogs& dialogs,
                             ErrorBoundary& boundary,
                             std::function<std::vector<PlacedSurface>()> parts,
                             const QString& caption) {
  auto* entry = new QAction(caption, menu);
  entry->setObjectName(objectName);
  menu->addAction(entry);
  QObject::connect(entry, &QAction::triggered, menu, [&dialogs, &boundary, parts] {
    boundary.Run([&] { SavePictureAs(dialogs, parts()); });
  });
  return entry;
}

void AddSavePictureMenu(QMenu* edit, Dialogs& dialogs, ErrorBoundary& boundary,
                        const std::vector<PictureChoice>& figures) {
  if (figures.size() == 1) {
    const PictureChoice& f = figures.front();
    AddSavePictureEntry(edit, f.ObjectName, dialogs, boundary, f.Of, f.SameAs);
    return;
  }
  QMenu* sub = edit->addMenu(QStringLiteral("Save Picture As"));
  sub->setObjectName(QStringLiteral("mnuSavePicture"));
  for (const PictureChoice& f : figures)
    AddSavePictureEntry(sub, f.ObjectName, dialogs, boundary, f.Of, f.SameAs, f.Caption + "...");
}

}  // namespace varnoth
