#include "ui/frmLuvaneHelp.h"

#include <QGroupBox>
#include <QLabel>
#include <QVBoxLayout>

namespace varnoth {

namespace {

QGroupBox* Frame(const QString& name, const QString& caption, const QStringList& lines) {
  auto* frame = new QGroupBox(caption);
  frame->setObjectName(name);
  auto* layout = new QVBoxLayout(frame);
  int i = 0;
  for (const QString& line : lines) {
    auto* label = new QLabel(line, frame);
    label->setObjectName(QString("%1_Label%2").arg(name).arg(i++));
    layout->addWidget(label);
  }
  return frame;
}

}  // namespace

frmLuvaneHelp::frmLuvaneHelp(QWidget* owner) : QWidget(owner, Qt::Window) {
  setObjectName("frmLuvaneHelp");
  setWindowTitle("Help");
  setAttribute(Qt::WA_QuitOnClose, false);
  const QStringList format = {
      "First 5 collumns:",
      "Longitude / Latitude / Altitude / Temperature laps rate / Precipitation laps rate.",
      "(Cordinates must be given in decimal values. )"};
  QStringList reference = format;
  reference << "Notes:"
            << "Temperature laps rate (increment per 100m) will be applied if the parameter name"
            << "is one of the followings: \"T---\", \"MT---\", \"(T)---\", \"(t)---\", "
               "\"---(T)\", or \"---(t)\"."
            << "Precipitation laps rate (increment per 100m) will be applied if the parameter name"
            << "is one of the followings: \"P---\", \"MP---\", \"(P)---\", \"(p)---\", "
               "\"---(P)\", or \"---(p)\".";
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(Frame("Frame1", " Reference data file format", reference));
  layout->addWidget(Frame("Frame2", " Target data file format", format));
}

}  // namespace varnoth
