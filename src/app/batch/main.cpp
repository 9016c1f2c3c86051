// varnoth-batch: reproducible runs of the analyses from the command line.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "Batch.h"
#include "Cores.h"
#include "state/Failure.h"

using namespace varnoth;
using namespace varnoth::batch;

namespace {

const std::vector<OptionSpec> kCoreOptions = {
    {"--out", "DIR", "folder for the result files (created when missing)"},
    {"--timestamp", "\"DATE TIME\"", "date and time written into file headers"},
    {"--help", "", "this text"},
};

std::vector<OptionSpec> AllOptions() {
  std::vector<OptionSpec> all = kCoreOptions;
  for (const Step& s : Steps()) all.insert(all.end(), s.Options.begin(), s.Options.end());
  return all;
}

void PrintUsage(std::ostream& out) {
  out << "usage: varnoth-batch --reference FILE [--fossil FILE] [options] --out DIR\n"
         "       varnoth-batch --reference FILE --climate FILE --cores LIST [options] --out DIR\n"
         "                                (exit status 3: some cores failed, see failures.csv)\n"
         "       varnoth-batch            (runs the example data set into ./varnoth-out)\n"
         "       varnoth-batch --figures DIR   (the same, with its figures in DIR)\n\n";
  for (const OptionSpec& o : AllOptions()) {
    std::string head = o.Name + (o.ValueName.empty() ? "" : " " + o.ValueName);
    out << "  " << head << std::string(head.size() < 34 ? 34 - head.size() : 1, ' ') << o.Help
        << "\n";
  }
}

// The example set beside the working folder, where an installed program
// keeps it (share/varnoth/examples next to bin/), or in the source tree.
std::string ExamplesDir() {
  std::vector<std::string> candidates = {"data/examples"};
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error)
    candidates.push_back((self.parent_path().parent_path() / "share/varnoth/examples").string());
  candidates.push_back(VARNOTH_EXAMPLES_DIR);
  for (const std::string& candidate : candidates)
    if (std::filesystem::exists(candidate + "/reference.csv")) return candidate;
  return "data/examples";
}

Options Parse(int argc, char** argv) {
  std::vector<OptionSpec> specs = AllOptions();
  Options o;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    auto spec = std::find_if(specs.begin(), specs.end(),
                             [&](const OptionSpec& s) { return s.Name == arg; });
    if (spec == specs.end() && (arg == "--figures" || arg.rfind("--figure-", 0) == 0))
#ifdef VARNOTH_FIGURES_PROGRAM
      throw UsageError{arg + " needs " VARNOTH_FIGURES_PROGRAM " beside varnoth-batch"};
#else
      throw UsageError{arg + " needs varnoth-batch built with the desktop program (VARNOTH_GUI)"};
#endif
    if (spec == specs.end()) throw UsageError{"unknown argument " + arg};
    if (spec->ValueName.empty()) {
      o.Set(arg, "yes");
    } else {
      if (i + 1 >= argc) throw UsageError{arg + " needs a value"};
      o.Set(arg, argv[++i]);
    }
  }
  return o;
}

// The files a run reads, by option. Each must be a plain file: a device such
// as /dev/zero never ends, and a named pipe waits for a writer for ever.
const std::vector<std::pair<std::string, std::string>> kInputs = {
    {"--reference", "reference table"}, {"--fossil", "fossil table"}, {"--climate", "climate file"},
    {"--stations", "station file"},     {"--targets", "target file"}, {"--vest-vobs", "pair file"}};

void CheckInputs(const Options& o) {
  for (const auto& [option, what] : kInputs) {
    if (!o.Has(option)) continue;
    const std::string path = o.Get(option);
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
      Stop("Cannot read the " + what + " " + path + " (" + FailureName(FileFailureKind(errno)) +
           ").");
    if (!S_ISREG(info.st_mode))
      Stop("Cannot read the " + what + " " + path + " (" +
           FailureName(FailureKind::PathFileAccess) + "): it is not a regular file.");
  }
}

FileStamp StampFrom(const Options& o) {
  if (!o.Has("--timestamp")) return CurrentStamp();
  std::string t = o.Get("--timestamp");
  auto space = t.find(' ');
  if (space == std::string::npos) throw UsageError{"--timestamp takes \"DATE TIME\""};
  return {t.substr(0, space), t.substr(space + 1)};
}

#ifdef VARNOTH_FIGURES_PROGRAM
// The drawing libraries take longer to load than a run of the EOF analysis,
// so this program is built without them: a run that asks for figures, or
// for the list of options (which includes the figures'), goes on in the
// program beside this one that has them, with the same arguments. Returns
// only when that program cannot be started.
void HandOverFigures(int argc, char** argv) {
  bool handOver = false;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    handOver = handOver || arg == "--help" || arg == "--figures" || arg.rfind("--figure-", 0) == 0;
  }
  if (!handOver) return;
  std::error_code error;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
  if (error) return;
  const std::string program = (self.parent_path() / VARNOTH_FIGURES_PROGRAM).string();
  std::vector<char*> args(argv, argv + argc + 1);
  args[0] = const_cast<char*>(program.c_str());
  execv(program.c_str(), args.data());
}
#endif

}  // namespace

int main(int argc, char** argv) {
#ifdef VARNOTH_FIGURES_PROGRAM
  HandOverFigures(argc, argv);
#endif
  std::sort(Steps().begin(), Steps().end(),
            [](const Step& a, const Step& b) { return a.Order < b.Order; });
  Options options;
  bool example = argc == 1;
  try {
    if (!example) {
      options = Parse(argc, argv);
      if (options.Has("--help")) {
        PrintUsage(std::cout);
        return 0;
      }
      // Figures alone ask for the example set's figures.
      example = !options.Has("--reference") && !options.Has("--fossil") && !options.Has("--out") &&
                options.Has("--figures");
    }
    if (example) {
      const Options given = options;
      std::string dir = ExamplesDir();
      options.Set("--reference", dir + "/reference.csv");
      options.Set("--fossil", dir + "/fossil.csv");
      options.Set("--climate", dir + "/climate.csv");
      options.Set("--envelope", "0.1");
      options.Set("--coniss", "yes");
      options.Set("--save-all-eof", "yes");
      options.Set("--error-model", "yes");
      options.Set("--out", "varnoth-out");
      for (const char* kept : {"--figures", "--figure-format", "--figure-style", "--figure-width",
                               "--zones", "--timestamp"})
        if (given.Has(kept)) options.Set(kept, given.Get(kept));
    } else {
      if (!options.Has("--out")) throw UsageError{"--out is required"};
    }
    // With --cores the steps check their options as for one core.
    const Options checked = options.Has("--cores") ? CoresCheckOptions(options) : options;
    for (const Step& s : Steps())
      if (s.Check) s.Check(checked);
  } catch (const UsageError& e) {
    std::cerr << "varnoth-batch: " << e.Text << "\n";
    PrintUsage(std::cerr);
    return 2;
  }

  if (options.Has("--cores")) try {
      return RunCores(options, StampFrom(options));
    } catch (const UsageError& e) {
      std::cerr << "varnoth-batch: " << e.Text << "\n";
      return 2;
    }
  BatchDialogs dialogs(options.Has("--accept-names"));
  Session session;
  try {
    Context context{session, dialogs, options, options.Get("--out"), StampFrom(options), nullptr};
    CheckInputs(options);
    std::filesystem::create_directories(context.OutDir);
    for (const Step& s : Steps())
      if (s.Applies(options)) s.Run(context);
  } catch (const UsageError& e) {
    std::cerr << "varnoth-batch: " << e.Text << "\n";
    PrintUsage(std::cerr);
    return 2;
  } catch (const RunStopped&) {
    return 1;
  } catch (const RuntimeFailure& e) {
    std::cerr << "Error: " << e.what() << "\n";
    return 1;
  } catch (const std::filesystem::filesystem_error& e) {
    std::cerr << "Error: " << e.what() << "\n";
    return 1;
  } catch (const std::bad_alloc&) {
    // An allocation that failed anywhere on the road.
    std::cerr << "Error: " << FailureName(FailureKind::OutOfMemory) << "\n";
    return 1;
  }
  if (example)
    std::cout << "Ran the example data set; the result files are in "
              << std::filesystem::absolute(options.Get("--out")).string()
              << (options.Has("--figures")
                      ? ", the figures in " +
                            std::filesystem::absolute(options.Get("--figures")).string()
                      : std::string())
              << "\n";
  return 0;
}
