#pragma once
// A Dialogs that answers from a script instead of a user: file names and
// answers are queued, messages are recorded. For window tests and for the
// offscreen picture tool.
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "state/Dialogs.h"

namespace varnoth {

class ScriptedDialogs final : public Dialogs {
 public:
  struct Shown {
    std::string Text, Title;
    void* Owner = nullptr;  // the window it stood over
  };

  std::deque<std::optional<std::string>> OpenNames;  // empty queue: cancel
  std::deque<std::optional<std::string>> SaveNames;
  std::deque<bool> Answers;  // empty queue: No
  std::vector<Shown> Messages;
  std::vector<Shown> Questions;
  std::vector<std::string> Filters;
  std::deque<int> SaveChoices;           // the filter chosen with each save name; empty: -1
  std::vector<std::string> OpenFolders;  // where each open dialog that names one starts
  std::vector<Shown> FileDialogs;        // the title and owner of every file dialog

  std::optional<std::string> OpenFileName(const std::string& filter,
                                          const std::string& title) override {
    Filters.push_back(filter);
    FileDialogs.push_back({filter, title, Owner()});
    return Take(OpenNames);
  }
  std::optional<std::string> SaveFileName(const std::string& filter,
                                          const std::string& title) override {
    Filters.push_back(filter);
    FileDialogs.push_back({filter, title, Owner()});
    return Take(SaveNames);
  }
  std::optional<std::string> SaveFileNameChoosing(const std::string& filter,
                                                  const std::string& title, int& chosen) override {
    chosen = -1;
    if (!SaveChoices.empty()) {
      chosen = SaveChoices.front();
      SaveChoices.pop_front();
    }
    return SaveFileName(filter, title);
  }
  std::optional<std::string> OpenFileNameIn(const std::string& filter, const std::string& title,
                                            const std::string& folder) override {
    OpenFolders.push_back(folder);
    return OpenFileName(filter, title);
  }
  void Message(const std::string& text, const std::string& title) override {
    Messages.push_back({text, title, Owner()});
  }
  bool Question(const std::string& text, const std::string& title) override {
    Questions.push_back({text, title, Owner()});
    if (Answers.empty()) return false;
    bool a = Answers.front();
    Answers.pop_front();
    return a;
  }

 private:
  static std::optional<std::string> Take(std::deque<std::optional<std::string>>& q) {
    if (q.empty()) return std::nullopt;
    auto v = q.front();
    q.pop_front();
    return v;
  }
};

}  // namespace varnoth
