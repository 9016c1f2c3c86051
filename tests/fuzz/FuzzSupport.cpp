#include "FuzzSupport.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>

#include "eof/PreTreatment.h"
#include "interpolation/StationImport.h"
#include "state/Import.h"

namespace varnoth::fuzz {

std::string WriteInput(std::string_view tag, const std::uint8_t* data, std::size_t size) {
  // Memory-backed where there is such a folder: thousands of inputs a second.
  static const std::string folder = std::filesystem::is_directory("/dev/shm")
                                        ? "/dev/shm"
                                        : std::filesystem::temp_directory_path().string();
  static std::map<std::string, std::string, std::less<>> paths;
  auto it = paths.find(tag);
  if (it == paths.end())
    it = paths
             .emplace(std::string(tag), folder + "/varnoth-fuzz-" + std::to_string(::getpid()) +
                                            "-" + std::string(tag) + ".csv")
             .first;
  const std::string& path = it->second;
  static const bool cleanup = [] {
    std::atexit([] {
      for (auto& [name, file] : paths) ::unlink(file.c_str());
    });
    return true;
  }();
  (void)cleanup;
  int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (fd < 0) Broken("the input file can be written", __FILE__, __LINE__);
  for (std::size_t done = 0; done < size;) {
    ssize_t n = ::write(fd, data + done, size - done);
    if (n <= 0) Broken("the input file can be written", __FILE__, __LINE__);
    done += static_cast<std::size_t>(n);
  }
  ::close(fd);
  return path;
}

namespace {
std::vector<std::pair<std::string, long>>& Stages() {
  static std::vector<std::pair<std::string, long>> stages;
  return stages;
}
}  // namespace

void Reached(std::string_view stage) {
  auto& stages = Stages();
  for (auto& [name, count] : stages)
    if (name == stage) {
      ++count;
      return;
    }
  stages.emplace_back(std::string(stage), 1);
}

const std::vector<std::pair<std::string, long>>& StagesReached() { return Stages(); }

bool Saved(std::string_view call, bool written, const std::string& path) {
  if (!written) return true;
  if (!FileIsFinite(path)) return false;
  // "SaveCurve(s, out, progress)" counts as "SaveCurve written".
  Reached(std::string(call.substr(0, call.find('('))) + " written");
  return true;
}

bool FileIsFinite(const std::string& path) {
  std::FILE* f = std::fopen(path.c_str(), "rb");
  if (!f) return false;
  std::string text;
  char buffer[65536];
  for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, f)) > 0;) text.append(buffer, n);
  std::fclose(f);
  std::size_t start = 0;
  while (start < text.size()) {
    if (text[start] == '"') {
      // A text field: up to its closing quote (a doubled quote stays inside).
      std::size_t i = start + 1;
      while (i < text.size()) {
        if (text[i] == '"' && (i + 1 >= text.size() || text[i + 1] != '"')) break;
        i += text[i] == '"' ? 2 : 1;
      }
      start = text.find_first_of(",\r\n", i);
      if (start == std::string::npos) break;
      ++start;
      continue;
    }
    std::size_t end = text.find_first_of(",\r\n", start);
    if (end == std::string::npos) end = text.size();
    if (end > start) {
      const std::string field = text.substr(start, end - start);
      char* stop = nullptr;
      const double v = std::strtod(field.c_str(), &stop);
      if (stop == field.c_str() || *stop != '\0' || !std::isfinite(v)) return false;
    }
    start = end + 1;
  }
  return true;
}

const char* const kReferenceTable =
    "Site,Abies,Betula,Corylus,Pinus,Quercus\r\n"
    "S1,10,20,5,60,5\r\n"
    "S2,0,35,10,40,15\r\n"
    "S3,5,5,30,50,10\r\n"
    "S4,20,10,0,45,25\r\n"
    "S5,1,60,4,30,5\r\n"
    "S6,8,12,22,33,25\r\n"
    "S7,15,25,15,25,20\r\n"
    "S8,3,7,40,20,30\r\n";

const char* const kFossilTable =
    "Depth,Abies,Betula,Corylus,Pinus,Quercus\r\n"
    "10,12,18,6,58,6\r\n"
    "20,2,30,12,41,15\r\n"
    "30,6,8,28,48,10\r\n"
    "40,18,12,2,44,24\r\n";

Session FreshSession() {
  Session s;
  s.EigenWork.Erase();
  s.EigenVectors.Erase();
  return s;
}

Session AnalysedSession(bool withFossil) {
  Session s = FreshSession();
  FuzzDialogs yes(true);
  NoProgress progress;
  if (!ImportReference(s, WriteInput("start-reference", kReferenceTable), yes, progress).Ok)
    Broken("the starting reference imports", __FILE__, __LINE__);
  ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
  if (withFossil && !ImportFossil(s, WriteInput("start-fossil", kFossilTable), yes, progress).Ok)
    Broken("the starting fossil imports", __FILE__, __LINE__);
  return s;
}

// Stations around the sites of the reference table, with two temperatures
// and a precipitation.
const char* const kStationTable =
    "Station,Lon,Lat,Alt,TL,PL,TSummer,TWinter,Prec\r\n"
    "W1,-10,40,100,0.6,2,20,10,800\r\n"
    "W2,-8,42,300,0.6,2,18,8,900\r\n"
    "W3,-12,44,50,0.6,2,17,6,1000\r\n"
    "W4,-9,38,500,0.6,2,22,12,600\r\n"
    "W5,-11,41,0,0.6,2,19,9,850\r\n";

const char* const kTargetTable =
    "Site,Lon,Lat,Alt,TL,PL\r\n"
    "S1,-10,40,0,0.6,2\r\nS2,-9,41,0,0.6,2\r\nS3,-11,42,0,0.6,2\r\n"
    "S4,-10,43,0,0.6,2\r\nS5,-8,39,0,0.6,2\r\nS6,-12,40,0,0.6,2\r\n"
    "S7,-10,41,0,0.6,2\r\nS8,-9,42,0,0.6,2\r\n";

Session InterpolationSession(bool forTargets) {
  Session s = AnalysedSession(false);
  FuzzDialogs yes(true);
  s.Interp.InterpWindowOpen = true;
  if (!ImportData(s, kStationFile, WriteInput("start-stations", kStationTable), yes).Ok)
    Broken("the starting stations import", __FILE__, __LINE__);
  if (!forTargets && !ImportData(s, kTargetFile, WriteInput("start-targets", kTargetTable), yes).Ok)
    Broken("the starting targets import", __FILE__, __LINE__);
  return s;
}

bool SameInterpolationInputs(const Session& x, const Session& y) {
  const InterpolationState &a = x.Interp, &b = y.Interp;
  return a.InterpColumnCount == b.InterpColumnCount && a.InterpRefCount == b.InterpRefCount &&
         a.InterpRefNames == b.InterpRefNames && a.SiteMapNames == b.SiteMapNames &&
         a.InterpParamNames == b.InterpParamNames && a.InterpRefLon == b.InterpRefLon &&
         a.InterpRefLat == b.InterpRefLat && a.InterpRefAlt == b.InterpRefAlt &&
         a.SiteLongitude == b.SiteLongitude && a.SiteLatitude == b.SiteLatitude &&
         a.SiteAltitude == b.SiteAltitude && a.InterpRefClimate == b.InterpRefClimate &&
         a.InterpRefLapse == b.InterpRefLapse && a.InterpTargetLapse == b.InterpTargetLapse &&
         a.InterpRefLoaded == b.InterpRefLoaded && a.InterpTargetLoaded == b.InterpTargetLoaded;
}

bool SameReference(const Session& a, const Session& b) {
  return a.RefFileName == b.RefFileName && a.RefSiteCount == b.RefSiteCount &&
         a.RefTaxaCount == b.RefTaxaCount && a.RefSiteNames == b.RefSiteNames &&
         a.RefTaxaNames == b.RefTaxaNames && a.RefData == b.RefData &&
         a.RefProportion == b.RefProportion && a.SiteIsExtreme == b.SiteIsExtreme;
}

bool SameFossil(const Session& a, const Session& b) {
  return a.FossilFileName == b.FossilFileName && a.FossilSampleCount == b.FossilSampleCount &&
         a.FossilTaxaCount == b.FossilTaxaCount && a.FossilLabels == b.FossilLabels &&
         a.FossilTaxaNames == b.FossilTaxaNames && a.FossilData == b.FossilData &&
         a.FossilProportion == b.FossilProportion && a.FossilScores == b.FossilScores &&
         a.FossilEmptySample == b.FossilEmptySample;
}

bool SameEofResults(const Session& a, const Session& b) {
  return a.EofMatrix == b.EofMatrix && a.EigenVectors == b.EigenVectors &&
         a.Loadings == b.Loadings && a.Contribution == b.Contribution &&
         a.RefScores == b.RefScores && a.RefScoreRaw == b.RefScoreRaw && a.EofDone == b.EofDone;
}

}  // namespace varnoth::fuzz
