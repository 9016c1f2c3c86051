#include "ui/QtDialogs.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressBar>
#include <QStringList>
#include <algorithm>

namespace varnoth {

QString QtFilter(const std::string& filter) {
  const QStringList parts = QString::fromStdString(filter).split('|');
  QStringList out;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    QString name = parts[i];
    const qsizetype open = name.indexOf('(');
    if (open > 0 && name[open - 1] != ' ') name.insert(open, ' ');
    out << name;
  }
  return out.join(QStringLiteral(";;"));
}

std::optional<std::string> QtDialogs::Chosen(const QString& name) {
  if (name.isEmpty()) return std::nullopt;
  folder_ = QFileInfo(name).absolutePath();
  return name.toStdString();
}

std::optional<std::string> QtDialogs::OpenFileName(const std::string& filter,
                                                   const std::string& title) {
  return Chosen(QFileDialog::getOpenFileName(Parent(), QString::fromStdString(title), folder_,
                                             QtFilter(filter)));
}

std::optional<std::string> QtDialogs::SaveFileName(const std::string& filter,
                                                   const std::string& title) {
  // The Qt save dialog asks before replacing a file; a "no" there is a cancel.
  return Chosen(QFileDialog::getSaveFileName(Parent(), QString::fromStdString(title), folder_,
                                             QtFilter(filter)));
}

std::optional<std::string> QtDialogs::SaveFileNameChoosing(const std::string& filter,
                                                           const std::string& title, int& chosen) {
  const QStringList filters = QtFilter(filter).split(QStringLiteral(";;"));
  QString selected;
  QString name = QFileDialog::getSaveFileName(Parent(), QString::fromStdString(title), folder_,
                                              filters.join(QStringLiteral(";;")), &selected);
  chosen = static_cast<int>(filters.indexOf(selected));
  return Chosen(name);
}

std::optional<std::string> QtDialogs::OpenFileNameIn(const std::string& filter,
                                                     const std::string& title,
                                                     const std::string& folder) {
  return Chosen(QFileDialog::getOpenFileName(Parent(), QString::fromStdString(title),
                                             QString::fromStdString(folder), QtFilter(filter)));
}

void QtDialogs::Message(const std::string& text, const std::string& title) {
  // The user must see the message with a normal pointer.
  const bool busy = BusyPointer::IsBusy();
  if (busy) BusyPointer::Restore();
  QMessageBox box(QMessageBox::Warning, QString::fromStdString(title), QString::fromStdString(text),
                  QMessageBox::Ok, Parent());
  box.exec();
  if (busy) BusyPointer::Set();
}

bool QtDialogs::Question(const std::string& text, const std::string& title) {
  const bool busy = BusyPointer::IsBusy();
  if (busy) BusyPointer::Restore();
  QMessageBox box(QMessageBox::Warning, QString::fromStdString(title), QString::fromStdString(text),
                  QMessageBox::Yes | QMessageBox::No, Parent());
  const bool yes = box.exec() == QMessageBox::Yes;
  if (busy) BusyPointer::Set();
  return yes;
}

namespace {
Dialogs& Innermost(Dialogs& d) {
  auto* owned = dynamic_cast<OwnedDialogs*>(&d);
  return owned ? owned->Inner() : d;
}
}  // namespace

OwnedDialogs::OwnedDialogs(Dialogs& inner, QWidget* owner)
    : inner_(Innermost(inner)), owner_(owner) {
  SetOwner(owner);
}

template <typename Call>
auto OwnedDialogs::Owned(Call call) {
  struct Restore {
    Dialogs& d;
    void* was;
    ~Restore() { d.SetOwner(was); }
  } restore{inner_, inner_.Owner()};
  if (owner_) inner_.SetOwner(static_cast<QWidget*>(owner_.data()));
  return call();
}

std::optional<std::string> OwnedDialogs::OpenFileName(const std::string& filter,
                                                      const std::string& title) {
  return Owned([&] { return inner_.OpenFileName(filter, title); });
}

std::optional<std::string> OwnedDialogs::SaveFileName(const std::string& filter,
                                                      const std::string& title) {
  return Owned([&] { return inner_.SaveFileName(filter, title); });
}

std::optional<std::string> OwnedDialogs::SaveFileNameChoosing(const std::string& filter,
                                                              const std::string& title,
                                                              int& chosen) {
  return Owned([&] { return inner_.SaveFileNameChoosing(filter, title, chosen); });
}

std::optional<std::string> OwnedDialogs::OpenFileNameIn(const std::string& filter,
                                                        const std::string& title,
                                                        const std::string& folder) {
  return Owned([&] { return inner_.OpenFileNameIn(filter, title, folder); });
}

void OwnedDialogs::Message(const std::string& text, const std::string& title) {
  Owned([&] { inner_.Message(text, title); });
}

bool OwnedDialogs::Question(const std::string& text, const std::string& title) {
  return Owned([&] { return inner_.Question(text, title); });
}

namespace {
bool g_busy = false;
}

void BusyPointer::Set() {
  if (g_busy) return;
  g_busy = true;
  QApplication::setOverrideCursor(Qt::WaitCursor);
}

void BusyPointer::Restore() {
  if (!g_busy) return;
  g_busy = false;
  QApplication::restoreOverrideCursor();
}

bool BusyPointer::IsBusy() { return g_busy; }

void BarProgress::Start(long maximum) {
  BusyPointer::Set();
  if (!bar_) return;
  bar_->setMinimum(0);
  bar_->setMaximum(static_cast<int>(std::max(0L, maximum)));
  bar_->setValue(0);
  bar_->setVisible(true);
  shown_ = 0;
  bar_->repaint();
}

void BarProgress::Step(long value) {
  if (!bar_) return;
  const int v = static_cast<int>(std::clamp(value, 0L, static_cast<long>(bar_->maximum())));
  bar_->setValue(v);
  // Repaint only when the bar visibly moves: long loops report often.
  const long width = std::max(1, bar_->width());
  const long step = bar_->maximum() > 0 ? v * width / bar_->maximum() : 0;
  if (step != shown_) {
    shown_ = step;
    bar_->repaint();
  }
}

void BarProgress::Finish() {
  if (bar_) {
    bar_->setVisible(false);
    bar_->setValue(0);
  }
  shown_ = -1;
  BusyPointer::Restore();
}

}  // namespace varnoth
