#include "BatchProgram.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <filesystem>

extern char** environ;

namespace varnoth::test {

BatchResult RunBatchProgram(std::vector<std::string> args, const std::string& workDir) {
  return RunProgram(VARNOTH_BATCH, std::move(args), workDir);
}

BatchResult RunProgram(const std::string& program, std::vector<std::string> args,
                       const std::string& workDir) {
  const std::string outPath = workDir + "/.stdout", errPath = workDir + "/.stderr";
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_addopen(&actions, 2, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_addchdir_np(&actions, workDir.c_str());
  args.insert(args.begin(), program);
  std::vector<char*> argv;
  for (auto& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  BatchResult r;
  pid_t pid;
  if (posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ) == 0) {
    int status = 0;
    waitpid(pid, &status, 0);
    r.ExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  posix_spawn_file_actions_destroy(&actions);
  r.Out = ReadFile(outPath);
  r.Err = ReadFile(errPath);
  std::filesystem::remove(outPath);
  std::filesystem::remove(errPath);
  return r;
}

static std::vector<std::string> SplitArgs(const std::string& text) {
  std::vector<std::string> args;
  std::string current;
  bool quoted = false, any = false;
  for (char c : text) {
    if (c == '"') {
      quoted = !quoted;
      any = true;
    } else if (c == ' ' && !quoted) {
      if (any) args.push_back(current);
      current.clear();
      any = false;
    } else {
      current += c;
      any = true;
    }
  }
  if (any) args.push_back(current);
  return args;
}

BatchRun::BatchRun(const std::string& args) : BatchRun(SplitArgs(args)) {}

BatchRun::BatchRun(std::vector<std::string> args) {
  args.push_back("--out");
  args.push_back(dir_.Path("out"));
  result_ = RunBatchProgram(std::move(args), dir_.Path(""));
}

std::string BatchRun::File(const std::string& name) const {
  return ReadFile(dir_.Path("out/" + name));
}

bool BatchRun::Has(const std::string& name) const {
  return std::filesystem::exists(dir_.Path("out/" + name));
}

}  // namespace varnoth::test
