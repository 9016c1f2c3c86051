#pragma once
// Station and target tables written as the user's files, and a session
// whose reference sites the target file must match.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "interpolation/Interpolation.h"
#include "interpolation/StationImport.h"
#include "state/Format.h"
#include "support/TestSupport.h"

namespace varnoth::test {

struct StationRow {
  std::string Name;
  double Lon = 0, Lat = 0, Alt = 0, TempRate = 0, PrecRate = 0;
  std::vector<double> Values;
};

// A table with a header of "Station", the five fixed columns and `names`.
inline std::string StationCsv(const std::vector<std::string>& names,
                              const std::vector<StationRow>& rows,
                              const std::string& corner = "Station") {
  std::string out = corner + ",Lon,Lat,Alt,TLapse,PLapse";
  for (const auto& n : names) out += "," + n;
  out += "\r\n";
  for (const auto& r : rows) {
    out += r.Name + "," + FormatGeneral(r.Lon) + "," + FormatGeneral(r.Lat) + "," +
           FormatGeneral(r.Alt) + "," + FormatGeneral(r.TempRate) + "," + FormatGeneral(r.PrecRate);
    for (double v : r.Values) out += "," + FormatGeneral(v);
    out += "\r\n";
  }
  return out;
}

struct InterpFixture : ::testing::Test {
  TempDir dir;
  FakeDialogs dialogs;
  NoProgress progress;
  Session s;

  // The reference sites the target file must match, by count and name.
  void Sites(const std::vector<std::string>& names) {
    s.RefSiteCount = static_cast<Count>(names.size());
    s.RefSiteNames.ReDim(s.RefSiteCount);
    for (std::size_t i = 0; i < names.size(); ++i)
      s.RefSiteNames(static_cast<long>(i) + 1) = names[i];
  }
  InterpImportResult Stations(const std::string& content, const std::string& file = "ref.csv") {
    return ImportData(s, kStationFile, dir.Write(file, content), dialogs);
  }
  InterpImportResult Targets(const std::string& content, const std::string& file = "tgt.csv") {
    return ImportData(s, kTargetFile, dir.Write(file, content), dialogs);
  }
  // Stations and targets in one go; the target rows name the sites.
  void Load(const std::vector<std::string>& names, const std::vector<StationRow>& stations,
            const std::vector<StationRow>& targets) {
    std::vector<std::string> siteNames;
    for (const auto& t : targets) siteNames.push_back(t.Name);
    Sites(siteNames);
    ASSERT_TRUE(Stations(StationCsv(names, stations)).Ok);
    ASSERT_TRUE(Targets(StationCsv({}, targets, "Site")).Ok);
  }
};

}  // namespace varnoth::test
