#pragma once
// Every question the program asks a user goes through this interface, so that
// the engine runs without windows and tests answer for the user.
#include <optional>
#include <string>

namespace varnoth {

class Dialogs {
 public:
  virtual ~Dialogs() = default;
  // A file name to open, or nothing when the user cancels. The filter is in
  // the program's own form, "DataFile(*.csv)|*.csv"; the title says what
  // the dialog asks for ("Open reference table").
  virtual std::optional<std::string> OpenFileName(const std::string& filter,
                                                  const std::string& title) = 0;
  // A file name to save to; the dialog asks before an existing file is
  // replaced, and a "no" there is a cancel.
  virtual std::optional<std::string> SaveFileName(const std::string& filter,
                                                  const std::string& title) = 0;
  // The same, telling which of the filters the user chose (from 0), or -1
  // when the dialog cannot say.
  virtual std::optional<std::string> SaveFileNameChoosing(const std::string& filter,
                                                          const std::string& title, int& chosen) {
    chosen = -1;
    return SaveFileName(filter, title);
  }
  // An open dialog that starts in the given folder.
  virtual std::optional<std::string> OpenFileNameIn(const std::string& filter,
                                                    const std::string& title,
                                                    const std::string& /*folder*/) {
    return OpenFileName(filter, title);
  }
  // A message box with the exclamation icon and one OK button.
  virtual void Message(const std::string& text, const std::string& title) = 0;
  // A question with Yes and No buttons; true for Yes.
  virtual bool Question(const std::string& text, const std::string& title) = 0;

  // The window whose event asks: every dialog stands over it, so that the
  // window in use stays in front. Opaque here, as the engine knows no
  // windows; the desktop program passes its window.
  void SetOwner(void* owner) { owner_ = owner; }
  void* Owner() const { return owner_; }

 private:
  void* owner_ = nullptr;
};

inline constexpr const char* kDataFileFilter = "DataFile(*.csv)|*.csv";

// Progress of long work: a window shows it as its progress bar and busy
// pointer; the engine only reports.
class Progress {
 public:
  virtual ~Progress() = default;
  virtual void Start(long maximum) = 0;  // visible, value 0, busy pointer
  virtual void Step(long value) = 0;
  virtual void Finish() = 0;  // hidden, value 0, normal pointer
};

// For callers that want no report.
class NoProgress final : public Progress {
 public:
  void Start(long) override {}
  void Step(long) override {}
  void Finish() override {}
};

}  // namespace varnoth
