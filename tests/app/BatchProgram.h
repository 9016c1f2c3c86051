#pragma once
// Runs varnoth-batch as a separate program, the way a user's script does.
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace varnoth::test {

struct BatchResult {
  int ExitCode = -1;
  std::string Out, Err;  // standard output and standard error
};

// Runs the program with these arguments in `workDir`.
BatchResult RunBatchProgram(std::vector<std::string> args, const std::string& workDir);
// The same with another program.
BatchResult RunProgram(const std::string& program, std::vector<std::string> args,
                       const std::string& workDir);

// A run in a fresh temporary folder, with `--out` pointing into it.
class BatchRun {
 public:
  // Arguments split at blanks; double quotes group a path with blanks.
  explicit BatchRun(const std::string& args);
  explicit BatchRun(std::vector<std::string> args);
  int Code() const { return result_.ExitCode; }
  std::string Errors() const { return result_.Err; }
  std::string File(const std::string& name) const;
  bool Has(const std::string& name) const;

 private:
  TempDir dir_;
  BatchResult result_;
};

}  // namespace varnoth::test
