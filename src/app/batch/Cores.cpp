// Many cores in one run. The reference stage runs once into the top of the
// output folder: the EOF road without a fossil table, the envelope's extreme
// sites, the climate file, the error model with its tables, the loading and
// reference score files. Each core then runs the steps that a single run
// with --fossil runs after the road, into a folder of its own, on a copy of
// the session as the reference stage left it; the large reference arrays
// are lent to that copy, not copied, and taken back after the core, so that
// the run holds one core at a time.
#include "Cores.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <sstream>

#include "ErrorModels.h"
#include "ReconstructionStep.h"
#include "diagram/DiagramLayout.h"
#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ClimateImport.h"
#include "reconstruction/Curves.h"
#include "reconstruction/ReconstructionFiles.h"
#include "state/CoreList.h"
#include "state/Failure.h"
#include "state/Import.h"
#include "state/RecordWriter.h"

namespace varnoth::batch {
namespace {

namespace fs = std::filesystem;

const std::vector<std::string> kNotWithCores = {"--fossil", "--calibrate", "--stations",
                                                "--eof-climate", "--figures"};

const bool registered = RegisterStep(
    Step{-100,
         {{"--cores", "LIST",
           "many cores: a list file (one fossil table a line) or a folder of .csv files"}},
         nullptr,
         [](const Options&) { return false; },
         nullptr});

void RunOrder(int order, Context& c) {
  for (const Step& st : Steps())
    if (st.Order == order && st.Run && st.Applies(c.Opts)) st.Run(c);
}

// The arrays that only the reference stage fills and every core reads.
struct Lent {
  Array2<double> RefData, RefProportion, RefScoreRaw, RefScores, ClimateData, ReconRefValue;
  Array2<double> EigenWork, EigenVectors;
  void Swap(Session& s) {
    std::swap(RefData, s.RefData);
    std::swap(RefProportion, s.RefProportion);
    std::swap(RefScoreRaw, s.RefScoreRaw);
    std::swap(RefScores, s.RefScores);
    std::swap(ClimateData, s.ClimateData);
    std::swap(ReconRefValue, s.ReconRefValue);
    std::swap(EigenWork, s.EigenWork);
    std::swap(EigenVectors, s.EigenVectors);
  }
};

std::string Clock(double seconds) {
  const long t = static_cast<long>(seconds + 0.5);
  char text[32];
  if (t >= 3600)
    std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", t / 3600, t / 60 % 60, t % 60);
  else
    std::snprintf(text, sizeof text, "%ld:%02ld", t / 60, t % 60);
  return text;
}

// Cores done of all, elapsed and estimated time left: one line rewritten
// in place on a terminal, plain lines otherwise.
class CoreProgress {
 public:
  explicit CoreProgress(long all) : all_(all), terminal_(isatty(2) != 0) {}
  void Report(long done) {
    const double elapsed =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    const double left = done > 0 ? elapsed / done * (all_ - done) : 0;
    const std::string text = "Cores " + std::to_string(done) + " of " + std::to_string(all_) +
                             " done, " + Clock(elapsed) + " elapsed, about " + Clock(left) +
                             " left";
    if (terminal_) {
      std::cerr << "\r" << text << "\x1b[K" << std::flush;
      open_ = true;
    } else {
      std::cerr << text << "\n";
    }
  }
  // Before other text: the line in place is ended first.
  void Clear() {
    if (open_) std::cerr << "\r\x1b[K";
    open_ = false;
  }
  void Finish() {
    if (open_) std::cerr << "\n";
    open_ = false;
  }

 private:
  long all_;
  bool terminal_;
  bool open_ = false;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// Standard error into a string while a core runs.
class Capture {
 public:
  Capture() : old_(std::cerr.rdbuf(text_.rdbuf())) {}
  ~Capture() { std::cerr.rdbuf(old_); }
  std::string Text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* old_;
};

// The messages of a failed core as one text, without their "Error: ".
std::string MessageOf(const std::string& errors) {
  std::string message;
  std::istringstream lines(errors);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("Error: ", 0) == 0) line = line.substr(7);
    if (line.empty()) continue;
    message += (message.empty() ? "" : " ") + line;
  }
  return message;
}

long Place(const std::string& message, const char* what) {
  std::smatch m;
  if (!std::regex_search(message, m, std::regex(std::string(", ") + what + " ([0-9]+)"))) return 0;
  return std::stol(m[1].str());
}

// One record per sample and parameter, as the core's curve files hold them.
void SummaryRows(const Session& s, const std::string& core, bool envelope, RecordWriter& w) {
  Array1<double> position;
  bool positioned = true;
  try {
    position = SamplePositions(s);
  } catch (const RuntimeFailure&) {
    positioned = false;
  }
  for (long k = 1; k <= s.FossilSampleCount; ++k) {
    if (s.FossilEmptySample(k)) continue;
    for (long p = 1; p <= s.ClimateParamCount; ++p) {
      w.Text(core).Text(s.FossilLabels(k));
      if (positioned)
        w.Number(position(k));
      else
        w.Text("");
      w.Text(s.ClimateParamNames(p));
      if (s.ReconValue(k, p) == kMissing)
        w.Text("").Text("").Text("");
      else
        w.Number(s.ReconValue(k, p)).Number(s.ReconLow(k, p)).Number(s.ReconHigh(k, p));
      w.Integer(s.AnalogueCount(k));
      if (s.AnalogueSite(k, 1) != 0)
        w.Single(s.AnalogueDistance(k, 1));
      else
        w.Text("");
      if (envelope) w.Text(s.SampleIsOut(k) ? "Out" : "In");
      w.End();
    }
  }
}

// The reference stage: everything that belongs to the reference alone.
void ReferenceStage(Context& c) {
  Session& s = c.S;
  RunOrder(0, c);
  // The envelope's directions come from the program's generator; every core
  // draws them afresh from where a single run starts.
  const std::uint64_t uniform = s.UniformState;
  RunOrder(100, c);
  s.UniformState = uniform;

  const std::string path = c.Opts.Get("--climate");
  const ClimateImportResult imported = Inport_climate_data(s, path, c.Dialogs);
  if (!imported.Ok) {
    if (imported.Failure == FailureKind::FileNotFound)
      Stop("Cannot read the climate file " + path + ".");
    Stop(imported.Problem);
  }
  const std::string name = c.Opts.Get("--parameter", s.ClimateParamNames(1));
  if (SetCurrentParameter(s, name) == 0) Stop("No climate parameter is named " + name + ".");
  s.CurrentParameter = 0;

  NoProgress progress;
  if (c.Opts.Has("--error-model")) {
    GenerateErrorModel(s, AnalogueSettingsFrom(s, c.Opts), progress);
    const Count shown = s.CurrentParameter;
    for (Count p = 1; p <= s.ClimateParamCount; ++p) {
      s.CurrentParameter = p;
      const std::string file = c.Out("scatter-" + FilePart(s.ClimateParamNames(p)) + ".csv");
      Written(SaveScatter(s, file, progress), file);
    }
    s.CurrentParameter = shown;
    WriteErrorModelTables(s, c.Opts, c.Dialogs, c.OutDir);
  }
  SaveLoading(s, c.Out("loading.csv"), c.Stamp, progress);
  sSaveScore(s, c.Out("score-reference.csv"), c.Stamp, progress);
}

struct CoreResult {
  bool Ok = false;
  std::string Message;
};

CoreResult RunCore(const Session& start, Lent& lent, const Options& o, const std::string& path,
                   const std::string& folder, const std::string& name, const FileStamp& stamp,
                   RecordWriter& rows) {
  CoreResult result;
  Capture capture;
  std::string failure;
  {
    Session s = start;
    lent.Swap(s);
    try {
      Options coreOptions = o;
      coreOptions.Erase("--cores");
      coreOptions.Erase("--error-model");
      coreOptions.Set("--fossil", path);
      BatchDialogs dialogs(o.Has("--accept-names"));
      fs::create_directories(folder);
      Context c{s, dialogs, coreOptions, folder, stamp, nullptr};
      NoProgress progress;
      const ImportResult imported = ImportFossil(s, path, dialogs, progress);
      if (!imported.Ok) Stop(imported.Problem);
      for (const Step& st : Steps())
        if (st.Order > 0 && st.Order < 1000 && st.Run && st.Applies(coreOptions)) st.Run(c);
      fs::remove(c.Out("extreme-sites.csv"));
      if (s.FossilTaxaCount > 0) fSaveScore(s, c.Out("score-fossil.csv"), stamp, progress);
      SummaryRows(s, name, o.Has("--envelope") || o.Has("--envelope-axes"), rows);
      result.Ok = true;
    } catch (const RunStopped&) {
    } catch (const UsageError& e) {
      failure = e.Text;
    } catch (const RuntimeFailure& e) {
      failure = e.what();
    } catch (const fs::filesystem_error& e) {
      failure = e.what();
    } catch (const std::bad_alloc&) {
      failure = "Out of memory";
    }
    lent.Swap(s);
  }
  std::string errors = capture.Text();
  if (!failure.empty()) errors += "Error: " + failure + "\n";
  result.Message = MessageOf(errors);
  return result;
}

}  // namespace

Options CoresCheckOptions(const Options& o) {
  for (const std::string& name : kNotWithCores)
    if (o.Has(name)) throw UsageError{name + " cannot be used with --cores"};
  if (o.Get("--base", "reference") != "reference")
    throw UsageError{"--cores needs the reference as the base"};
  if (!o.Has("--climate")) throw UsageError{"--cores needs --climate"};
  Options checked = o;
  checked.Set("--fossil", o.Get("--cores"));
  return checked;
}

int RunCores(const Options& o, const FileStamp& stamp) {
  const std::string out = o.Get("--out");
  const CoreListResult list = ReadCoreList(o.Get("--cores"));
  if (!list.Ok) {
    std::cerr << "Error: " << list.Problem << ".\n";
    return 1;
  }
  const std::vector<std::string> names = CoreFolderNames(list.Paths);

  BatchDialogs dialogs(o.Has("--accept-names"));
  Session base;
  Options reference = o;
  reference.Erase("--cores");
  try {
    fs::create_directories(out);
    Context c{base, dialogs, reference, out, stamp, nullptr};
    ReferenceStage(c);
  } catch (const UsageError& e) {
    std::cerr << "varnoth-batch: " << e.Text << "\n";
    return 2;
  } catch (const RunStopped&) {
    return 1;
  } catch (const RuntimeFailure& e) {
    std::cerr << "Error: " << e.what() << "\n";
    return 1;
  } catch (const fs::filesystem_error& e) {
    std::cerr << "Error: " << e.what() << "\n";
    return 1;
  }
  Lent lent;
  lent.Swap(base);
  base.EnvelopeDirections = {};  // a core draws its own

  std::ofstream summary(out + "/summary.csv", std::ios::binary);
  std::ofstream failures(out + "/failures.csv", std::ios::binary);
  {
    RecordWriter head;
    head.Text("Core").Text("Sample").Text("Position").Text("Parameter").Text("Estimate");
    head.Text("Low").Text("High").Text("Analogues").Text("Closest distance");
    if (o.Has("--envelope") || o.Has("--envelope-axes")) head.Text("Envelope");
    head.End();
    summary << head.Content();
    RecordWriter fhead;
    fhead.Text("Core").Text("File").Text("Row").Text("Column").Text("Message").End();
    failures << fhead.Content();
  }
  if (!summary || !failures) {
    std::cerr << "Error: Cannot write " << out << "/summary.csv.\n";
    return 1;
  }

  CoreProgress progress(static_cast<long>(list.Paths.size()));
  long failed = 0;
  for (std::size_t i = 0; i < list.Paths.size(); ++i) {
    const std::string& path = list.Paths[i];
    const std::string folder = out + "/" + names[i];
    RecordWriter rows;
    const CoreResult r = RunCore(base, lent, o, path, folder, names[i], stamp, rows);
    const bool again = CoreFolderNames({path})[0] != names[i];
    if (again || !r.Ok) progress.Clear();
    if (again)
      std::cerr << "Note: " << path << " is in the list again; its results are in " << names[i]
                << "/\n";
    if (r.Ok) {
      summary << rows.Content();
    } else {
      ++failed;
      std::error_code ignored;
      fs::remove_all(folder, ignored);
      std::cerr << names[i] << ": Error: " << r.Message << "\n";
      RecordWriter w;
      w.Text(names[i]).Text(path);
      const long row = Place(r.Message, "row"), column = Place(r.Message, "column");
      if (row > 0)
        w.Integer(row);
      else
        w.Text("");
      if (column > 0)
        w.Integer(column);
      else
        w.Text("");
      w.Text(r.Message).End();
      failures << w.Content() << std::flush;
    }
    summary.flush();
    progress.Report(static_cast<long>(i + 1));
  }
  progress.Finish();
  if (!summary || !failures) {
    std::cerr << "Error: Cannot write " << out << "/summary.csv.\n";
    return 1;
  }
  if (failed > 0)
    std::cerr << failed << " of " << list.Paths.size() << " cores failed; see failures.csv\n";
  return failed > 0 ? 3 : 0;
}

}  // namespace varnoth::batch
