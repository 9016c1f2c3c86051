#pragma once
// Sessions for benchmarks, analysed through the program's own road on
// synthetic tables, with no one to answer questions.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "Synthetic.h"
#include "eof/PreTreatment.h"
#include "state/Dialogs.h"
#include "state/Import.h"
#include "state/Session.h"

namespace varnoth::bench {

// Answers Yes, shows nothing, chooses no file.
class SilentDialogs final : public Dialogs {
 public:
  std::optional<std::string> OpenFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::optional<std::string> SaveFileName(const std::string&, const std::string&) override {
    return std::nullopt;
  }
  void Message(const std::string&, const std::string&) override {}
  bool Question(const std::string&, const std::string&) override { return true; }
};

// Writes `content` to a file of that name in the system's temporary folder.
inline std::string WriteTemporary(const std::string& name, const std::string& content) {
  const std::string path = (std::filesystem::temp_directory_path() / name).string();
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

// Reference and fossil tables imported, analysed and projected with the
// pre-treatment dialog's defaults; a failure ends the benchmark.
inline std::unique_ptr<Session> AnalysedSyntheticSession(int sites, int samples, int taxa,
                                                         std::uint64_t referenceSeed,
                                                         std::uint64_t fossilSeed) {
  auto s = std::make_unique<Session>();
  const std::string tag = std::to_string(referenceSeed) + "-" + std::to_string(fossilSeed);
  const std::string reference = WriteTemporary("varnoth-bench-reference-" + tag + ".csv",
                                               SyntheticTable(sites, taxa, referenceSeed, false));
  const std::string fossil = WriteTemporary("varnoth-bench-fossil-" + tag + ".csv",
                                            SyntheticTable(samples, taxa, fossilSeed, true));
  SilentDialogs dialogs;
  NoProgress progress;
  if (!ImportReference(*s, reference, dialogs, progress).Ok) std::abort();
  ApplyPreTreatment(*s, PreTreatmentSettings{}, progress);
  if (!ImportFossil(*s, fossil, dialogs, progress).Ok || !s->ProjectionDone) std::abort();
  std::filesystem::remove(reference);
  std::filesystem::remove(fossil);
  return s;
}

}  // namespace varnoth::bench
