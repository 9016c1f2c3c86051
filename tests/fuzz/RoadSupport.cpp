#include "RoadSupport.h"

#include "reconstruction/AnalogueSearch.h"
#include "reconstruction/ReconstructionFiles.h"
#include "state/Format.h"

namespace varnoth::fuzz {

AnalogueSettings AnalogueSettingsFrom(const Session& s, unsigned a, unsigned b) {
  AnalogueSettings st;
  const bool eof = a & 1;
  if (eof) {
    st.Basis = AnalogueBasis::EofValues;
    if (s.PreTreatment.Enhance)
      st.Enhance = s.PreTreatment.SquareRoot ? AnalogueEnhance::SquareRoot : AnalogueEnhance::Log;
  } else if (!s.PreTreatment.Enhance) {
    const unsigned e = (a >> 1) % 3;
    st.Enhance = e == 1   ? AnalogueEnhance::SquareRoot
                 : e == 2 ? AnalogueEnhance::Log
                          : AnalogueEnhance::None;
  }
  st.InverseWeighting = (a >> 3) & 1;
  st.WeightBy = (a >> 4) & 1 ? AnalogueWeightBy::Distance : AnalogueWeightBy::SquaredDistance;
  st.MaxAnalogues = static_cast<Count>(1 + b % 20);
  st.MinAnalogues = static_cast<Count>(((a >> 5) * 3) % (st.MaxAnalogues + 1));
  DefineThreshold(st, static_cast<long>((b * 7 + (a >> 5)) % 201));
  return st;
}

std::string ClimateFor(const Session& s, double extreme) {
  std::string out = "Site,Temp,Extreme\r\n";
  for (long i = 1; i <= s.RefSiteCount; ++i) {
    std::string name = s.RefSiteNames(i);
    out += "\"" + name + "\"," + FormatGeneral(0.5 * static_cast<double>(i % 17) - 3) + "," +
           FormatGeneral(i % 3 == 0 ? extreme : static_cast<double>(i)) + "\r\n";
  }
  return out;
}

bool ReconstructAndSave(Session& s, const AnalogueSettings& st) {
  NoProgress progress;
  s.CurrentParameter = 1;
  if (!Stage([&] { RunReconstruction(s, st, progress); })) return false;
  Reached(st.Basis == AnalogueBasis::EofValues ? "reconstruction on EOF values"
                                               : "reconstruction on taxa");
  const std::string out = WriteInput("road-out", "");
  FUZZ_SAVED(SaveCurveAll(s, out, progress), out);
  FUZZ_SAVED(SaveCurveAllwithE(s, out, progress), out);
  FUZZ_SAVED(SaveCurve(s, out, progress), out);
  FUZZ_SAVED(SaveCurveWithE(s, out, progress), out);
  FUZZ_SAVED(SaveDistAna(s, out, progress), out);
  if (!Stage([&] { GenerateErrorModel(s, st, progress); })) return false;
  Reached("error model");
  for (Count p = 1; p <= s.ClimateParamCount; ++p) {
    s.CurrentParameter = p;
    FUZZ_SAVED(SaveScatter(s, out, progress), out);
  }
  s.CurrentParameter = 1;
  s.ErrorModelReady = true;
  return true;
}

}  // namespace varnoth::fuzz
