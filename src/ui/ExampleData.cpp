#include "ui/ExampleData.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace varnoth {

std::string ExampleDataDir() {
  QStringList candidates;
  if (QCoreApplication::instance())
    candidates << QDir(QCoreApplication::applicationDirPath())
                      .absoluteFilePath(QStringLiteral("../share/varnoth/examples"));
#ifdef VARNOTH_EXAMPLES_DIR
  candidates << QStringLiteral(VARNOTH_EXAMPLES_DIR);
#endif
  for (const QString& dir : candidates)
    if (QFileInfo::exists(dir + QStringLiteral("/reference.csv")) &&
        QFileInfo::exists(dir + QStringLiteral("/fossil.csv")))
      return QDir::cleanPath(dir).toStdString();
  return {};
}

}  // namespace varnoth
