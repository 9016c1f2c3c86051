#pragma once
// The batch runner: the program's road without windows. Each analysis adds
// its own step with its own options by registering it here, so that new
// steps do not touch the runner's core.
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "calibration/CalibState.h"
#include "calibration/HistMatrix.h"
#include "state/Dialogs.h"
#include "state/ScoreFiles.h"
#include "state/Session.h"

namespace varnoth::batch {

struct OptionSpec {
  std::string Name;       // "--climate"
  std::string ValueName;  // "FILE"; empty for a plain switch
  std::string Help;
};

class Options {
 public:
  bool Has(const std::string& name) const { return values_.count(name) > 0; }
  std::string Get(const std::string& name, const std::string& fallback = {}) const {
    auto it = values_.find(name);
    return it == values_.end() ? fallback : it->second;
  }
  void Set(const std::string& name, const std::string& value) { values_[name] = value; }
  void Erase(const std::string& name) { values_.erase(name); }

 private:
  std::map<std::string, std::string> values_;
};

// Answers for the user: the name question by --accept-names, messages to
// standard error as "Error: <message>".
class BatchDialogs final : public Dialogs {
 public:
  explicit BatchDialogs(bool acceptNames) : acceptNames_(acceptNames) {}
  std::optional<std::string> OpenFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> SaveFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  void Message(const std::string& text, const std::string& title) override;
  bool Question(const std::string& text, const std::string& title) override;
  int MessageCount() const { return messages_; }

 private:
  bool acceptNames_;
  int messages_ = 0;
};

// A wrong option value: usage and exit code 2.
struct UsageError {
  std::string Text;
};
// The run stopped after the program showed its message: exit code 1.
struct RunStopped {};

// What the calibration step leaves for the figures: the matrix chain with
// its settings and range, and the matrix down the core.
struct CalibrationOutcome {
  CalibState Chain;
  CalibSettings Settings;
  HistState Hist;
  double T1 = 0, T2 = 0;
};

struct Context {
  Session& S;
  BatchDialogs& Dialogs;
  const Options& Opts;
  std::string OutDir;
  FileStamp Stamp;
  std::shared_ptr<CalibrationOutcome> Calibration;  // set by --calibrate
  // Path of a file in the output folder.
  std::string Out(const std::string& file) const { return OutDir + "/" + file; }
};

struct Step {
  int Order;  // steps run in ascending order; the EOF road is 0
  std::vector<OptionSpec> Options;
  // Checks option values before anything runs; throws UsageError.
  std::function<void(const batch::Options&)> Check;
  // Runs only when it applies to the given options.
  std::function<bool(const batch::Options&)> Applies;
  std::function<void(Context&)> Run;
};

// Prints "Error: <message>" and stops the run with exit code 1.
[[noreturn]] void Stop(const std::string& message);
// Stops the run when a result file could not be written.
void Written(bool written, const std::string& path);
// A parameter's name as part of a file name.
std::string FilePart(const std::string& name);

// Called from a static initialiser of each step's file.
bool RegisterStep(Step step);
std::vector<Step>& Steps();

}  // namespace varnoth::batch
