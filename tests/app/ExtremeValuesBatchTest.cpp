// Tables of extreme values through the whole batch road (EOFs, envelope,
// CONISS, reconstruction and error model): each run either writes only
// finite numbers or fails with a message, and a failed run writes nothing
// made of the failed step.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <functional>

#include "BatchProgram.h"
#include "state/Format.h"
#include "support/Tables.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;
using namespace varnoth;
using namespace varnoth::test;

namespace {

constexpr int kTaxa = 6, kSites = 12, kSamples = 8;

struct Extreme {
  const char* Name;
  std::function<double(int, int)> Reference, Fossil, Climate;
};

double Plain(int i, int j) { return Varied(i, j); }

// Every field of a result file that reads as a number must be finite: the
// general format writes an infinity as "Inf" and a NaN as "NaN".
void ExpectFiniteFile(const std::string& path) {
  const std::string text = ReadFile(path);
  for (const char* bad : {"NaN", "Inf", "nan", "inf"})
    EXPECT_EQ(text.find(bad), std::string::npos) << path << " holds " << bad;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find_first_of(",\r\n", start);
    if (end == std::string::npos) end = text.size();
    const std::string field = text.substr(start, end - start);
    if (!field.empty() && field[0] != '"') {
      const double v = std::strtod(field.c_str(), nullptr);
      EXPECT_TRUE(std::isfinite(v)) << path << ": " << field;
    }
    start = end + 1;
  }
}

std::vector<Extreme> Cases() {
  auto huge = [](int i, int j) { return (i + j) % 3 == 0 ? 1e300 : Plain(i, j); };
  auto hugeNegative = [](int i, int j) { return (i + j) % 3 == 0 ? -1e300 : Plain(i, j); };
  auto tiny = [](int i, int j) { return 1e-300 * Plain(i, j); };
  auto zeros = [](int i, int j) { return i % 4 == 1 && j == 2 ? 1 : 0; };
  auto oneTaxon = [](int i, int j) { return j == 3 ? Plain(i, j) : 0; };
  auto overflowSum = [](int i, int j) { return j <= 2 ? 1.5e308 : Plain(i, j); };
  auto climate = [](int i, int j) { return 10.0 * i + j; };
  return {
      {"plain", Plain, Plain, climate},
      {"huge_reference", huge, Plain, climate},
      {"huge_negative_reference", hugeNegative, Plain, climate},
      {"huge_fossil", Plain, huge, climate},
      {"huge_negative_fossil", Plain, hugeNegative, climate},
      {"tiny_values", tiny, tiny, climate},
      {"long_runs_of_zeros", zeros, zeros, climate},
      {"one_taxon", oneTaxon, oneTaxon, climate},
      {"row_sum_overflows", overflowSum, overflowSum, climate},
      {"huge_climate", Plain, Plain, [](int i, int) { return i % 2 ? 1e308 : -1e308; }},
      {"tiny_climate", Plain, Plain, [](int i, int j) { return 1e-300 * (i + j); }},
  };
}

class ExtremeValues : public ::testing::TestWithParam<Extreme> {};

void PrintTo(const Extreme& e, std::ostream* os) { *os << e.Name; }

std::string ClimateTable(const std::function<double(int, int)>& value) {
  std::string out = "Site,Temp,Rain\r\n";
  for (int i = 1; i <= kSites; ++i)
    out += "S" + std::to_string(i) + "," + FormatGeneral(value(i, 1)) + "," +
           FormatGeneral(value(i, 2)) + "\r\n";
  return out;
}

}  // namespace

TEST_P(ExtremeValues, FiniteFilesOrAMessage) {
  const Extreme& c = GetParam();
  for (const char* convert : {"yes", "no"}) {
    for (const char* matrix : {"covariance", "correlation"}) {
      TempDir work;
      const std::string reference =
          work.Write("reference.csv", MakeTable(kTaxa, kSites, true, c.Reference));
      const std::string fossil =
          work.Write("fossil.csv", MakeTable(kTaxa, kSamples, false, c.Fossil));
      const std::string climate = work.Write("climate.csv", ClimateTable(c.Climate));
      BatchResult r = RunBatchProgram(
          {"--reference", reference,        "--fossil",      fossil,  "--climate",  climate,
           "--convert",   convert,          "--matrix",      matrix,  "--envelope", "0.1",
           "--coniss",    "--save-all-eof", "--error-model", "--max", "3",          "--threshold",
           "2",           "--out",          work.Path("out")},
          work.Path(""));
      SCOPED_TRACE(std::string(c.Name) + " --convert " + convert + " --matrix " + matrix);
      if (r.ExitCode == 0) {
        EXPECT_TRUE(r.Err.empty()) << r.Err;
        EXPECT_TRUE(fs::exists(work.Path("out/curve-all.csv")));
      } else {
        EXPECT_EQ(r.ExitCode, 1);
        EXPECT_EQ(r.Err.rfind("Error: ", 0), 0u) << r.Err;
        EXPECT_EQ(r.Err.find("Error: \n"), std::string::npos) << r.Err;
      }
      if (fs::exists(work.Path("out")))
        for (auto& e : fs::directory_iterator(work.Path("out")))
          ExpectFiniteFile(e.path().string());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Tables, ExtremeValues, ::testing::ValuesIn(Cases()),
                         [](const ::testing::TestParamInfo<Extreme>& info) {
                           return std::string(info.param.Name);
                         });

// The gap the checks close: before them, 1e308 cells ran to the end and
// wrote "NaN" into every contribution and score.
TEST(ExtremeValues, HugeReferenceCellsEndInOverflow) {
  TempDir work;
  const std::string reference = work.Write(
      "reference.csv",
      MakeTable(kTaxa, kSites, true, [](int i, int j) { return j <= 2 ? 1e308 : Plain(i, j); }));
  BatchResult r =
      RunBatchProgram({"--reference", reference, "--out", work.Path("out")}, work.Path(""));
  EXPECT_EQ(r.ExitCode, 1);
  EXPECT_EQ(r.Err, "Error: Overflow in the EOF analysis of " + reference + "\n");
  EXPECT_FALSE(fs::exists(work.Path("out/loading.csv")));
}
