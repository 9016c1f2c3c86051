#pragma once
// Helpers shared by the engine tests: scripted dialog answers and files in a
// temporary folder.
#include <atomic>
#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "state/Dialogs.h"

namespace varnoth::test {

// Answers for the user, recorded for the test to inspect.
class FakeDialogs : public Dialogs {
 public:
  std::deque<std::optional<std::string>> OpenAnswers, SaveAnswers;
  std::deque<bool> QuestionAnswers;  // empty: answer No
  std::vector<std::string> Messages, Questions;
  std::vector<std::string> Titles;

  std::optional<std::string> OpenFileName(const std::string&, const std::string&) override {
    if (OpenAnswers.empty()) return std::nullopt;
    auto a = OpenAnswers.front();
    OpenAnswers.pop_front();
    return a;
  }
  std::optional<std::string> SaveFileName(const std::string&, const std::string&) override {
    if (SaveAnswers.empty()) return std::nullopt;
    auto a = SaveAnswers.front();
    SaveAnswers.pop_front();
    return a;
  }
  void Message(const std::string& text, const std::string& title) override {
    Messages.push_back(text);
    Titles.push_back(title);
  }
  bool Question(const std::string& text, const std::string& title) override {
    Questions.push_back(text);
    Titles.push_back(title);
    if (QuestionAnswers.empty()) return false;
    bool a = QuestionAnswers.front();
    QuestionAnswers.pop_front();
    return a;
  }
};

// A fresh folder under the system's temporary folder, removed at the end.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  // Writes `content` as the file `name` and returns its path.
  std::string Write(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path dir_;
};

// Threads that keep every core busy while they live, taking the engine's
// helper threads off their cores at random moments.
class BusyThreads {
 public:
  explicit BusyThreads(int count) {
    for (int k = 0; k < count; ++k)
      threads_.emplace_back([this] {
        volatile double x = 1;
        while (!stop_.load(std::memory_order_relaxed)) x = x * 1.0000001;
      });
  }
  ~BusyThreads() {
    stop_ = true;
    for (auto& t : threads_) t.join();
  }
  BusyThreads(const BusyThreads&) = delete;
  BusyThreads& operator=(const BusyThreads&) = delete;

 private:
  std::atomic<bool> stop_{false};
  std::vector<std::thread> threads_;
};

std::string ReadFile(const std::string& path);
// The lines of a text, without their line ends (CR LF or LF).
std::vector<std::string> Lines(const std::string& text);
std::string TestData(const std::string& relative);
std::string Example(const std::string& name);

}  // namespace varnoth::test
