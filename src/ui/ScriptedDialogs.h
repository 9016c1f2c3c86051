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
  };

  std::deque<std::optional<std::string>> OpenNames;  // empty queue: cancel
  std::deque<std::optional<std::string>> SaveNames;
  std::deque<bool> Answers;  // empty queue: No
  std::vector<Shown> Messages;
  std::vector<Shown> Questions;
  std::vector<std::string> Filters;
  std::deque<int> SaveChoices;           // the filter chosen with each save name; empty: -1
  std::vector<std::string> OpenFolders;  // where each open dialog that names one starts

  std::optional<std::string> OpenFileName(const std::string& filter) override {
    Filters.push_back(filter);
    return Take(OpenNames);
  }
  std::optional<std::string> SaveFileName(const std::string& filter) override {
    Filters.push_back(filter);
    return Take(SaveNames);
  }
  std::optional<std::string> SaveFileNameChoosing(const std::string& filter,
                                                  int& chosen) override {
    chosen = -1;
    if (!SaveChoices.empty()) {
      chosen = SaveChoices.front();
      SaveChoices.pop_front();
    }
    return SaveFileName(filter);
  }
  std::optional<std::string> OpenFileNameIn(const std::string& filter,
                                            const std::string& folder) override {
    OpenFolders.push_back(folder);
    return OpenFileName(filter);
  }
  void Message(const std::string& text, const std::string& title) override {
    Messages.push_back({text, title});
  }
  bool Question(const std::string& text, const std::string& title) override {
    Questions.push_back({text, title});
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
