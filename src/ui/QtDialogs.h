#pragma once
// The program's questions to the user as real Qt dialogs, and a progress
// report on a window's progress bar under the busy pointer.
#include <QPointer>
#include <QProgressBar>
#include <QString>
#include <QWidget>

#include "state/Dialogs.h"

namespace varnoth {

// "DataFile(*.csv)|*.csv" as Qt writes a filter: "DataFile (*.csv)".
QString QtFilter(const std::string& filter);

// The owner (Dialogs::Owner) is always a QWidget here. File dialogs start
// in the folder of the last file chosen in this session, or in the
// starting folder (the example data) before that.
class QtDialogs final : public Dialogs {
 public:
  void SetStartFolder(const std::string& folder) { folder_ = QString::fromStdString(folder); }
  QString Folder() const { return folder_; }
  std::optional<std::string> OpenFileName(const std::string& filter,
                                          const std::string& title) override;
  std::optional<std::string> SaveFileName(const std::string& filter,
                                          const std::string& title) override;
  std::optional<std::string> SaveFileNameChoosing(const std::string& filter,
                                                  const std::string& title, int& chosen) override;
  std::optional<std::string> OpenFileNameIn(const std::string& filter, const std::string& title,
                                            const std::string& folder) override;
  void Message(const std::string& text, const std::string& title) override;
  bool Question(const std::string& text, const std::string& title) override;

 private:
  QWidget* Parent() const { return static_cast<QWidget*>(Owner()); }
  std::optional<std::string> Chosen(const QString& name);
  QString folder_;
};

// The dialogs of one window: a message or file dialog raised by that
// window's events stands over it, not over the main window. Answers come
// from the dialogs it wraps, scripted ones included.
class OwnedDialogs final : public Dialogs {
 public:
  // Wrapping another window's dialogs wraps what that one wraps: the owner
  // is always the window at hand.
  OwnedDialogs(Dialogs& inner, QWidget* owner);
  std::optional<std::string> OpenFileName(const std::string& filter,
                                          const std::string& title) override;
  std::optional<std::string> SaveFileName(const std::string& filter,
                                          const std::string& title) override;
  std::optional<std::string> SaveFileNameChoosing(const std::string& filter,
                                                  const std::string& title, int& chosen) override;
  std::optional<std::string> OpenFileNameIn(const std::string& filter, const std::string& title,
                                            const std::string& folder) override;
  void Message(const std::string& text, const std::string& title) override;
  bool Question(const std::string& text, const std::string& title) override;
  Dialogs& Inner() { return inner_; }

 private:
  template <typename Call>
  auto Owned(Call call);

  Dialogs& inner_;
  QPointer<QWidget> owner_;
};

// The busy pointer, set once however often it is asked for.
class BusyPointer {
 public:
  static void Set();
  static void Restore();
  static bool IsBusy();
};

class BarProgress final : public Progress {
 public:
  explicit BarProgress(QProgressBar* bar) : bar_(bar) {}
  void SetBar(QProgressBar* bar) { bar_ = bar; }
  void Start(long maximum) override;
  void Step(long value) override;
  void Finish() override;

 private:
  QPointer<QProgressBar> bar_;
  long shown_ = -1;
};

}  // namespace varnoth
