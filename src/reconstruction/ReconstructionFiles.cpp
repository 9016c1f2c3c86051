#include "reconstruction/ReconstructionFiles.h"

#include "state/RecordFile.h"

namespace varnoth {

namespace {

bool Missing(const Session& s, long k, long p) {
  return s.ReconValue(k, p) == kMissing || s.FossilEmptySample(k);
}

}  // namespace

bool SaveCurve(const Session& s, const std::optional<std::string>& path, Progress& progress) {
  const long p = s.CurrentParameter;
  return SaveRecordFile(path, progress, s.FossilSampleCount, [&](RecordWriter& w) {
    w.Text("Depth").Text(s.ClimateParamNames(p)).End();
    for (long k = 1; k <= s.FossilSampleCount; ++k) {
      progress.Step(k);
      w.Text(s.FossilLabels(k));
      if (Missing(s, k, p))
        w.Text("");
      else
        w.Number(s.ReconValue(k, p));
      w.End();
    }
  });
}

bool SaveCurveWithE(const Session& s, const std::optional<std::string>& path, Progress& progress) {
  const long p = s.CurrentParameter;
  return SaveRecordFile(path, progress, s.FossilSampleCount, [&](RecordWriter& w) {
    w.Text("Depth").Text("Error (from)").Text(s.ClimateParamNames(p)).Text("Error (to)");
    w.Text("No. of Analogues").End();
    for (long k = 1; k <= s.FossilSampleCount; ++k) {
      progress.Step(k);
      w.Text(s.FossilLabels(k));
      if (Missing(s, k, p)) {
        w.Text("").Text("").Text("").Text("");
      } else {
        w.Number(s.ReconLow(k, p)).Number(s.ReconValue(k, p)).Number(s.ReconHigh(k, p));
        w.Integer(s.AnalogueCount(k));
      }
      w.End();
    }
  });
}

bool SaveCurveAll(const Session& s, const std::optional<std::string>& path, Progress& progress) {
  const long m = s.ClimateParamCount;
  return SaveRecordFile(path, progress, s.FossilSampleCount, [&](RecordWriter& w) {
    w.Text("Depth");
    for (long q = 1; q <= m; ++q) w.Text(s.ClimateParamNames(q));
    w.End();
    for (long k = 1; k <= s.FossilSampleCount; ++k) {
      progress.Step(k);
      w.Text(s.FossilLabels(k));
      for (long q = 1; q <= m; ++q)
        if (Missing(s, k, q))
          w.Text("");
        else
          w.Number(s.ReconValue(k, q));
      w.End();
    }
  });
}

bool SaveCurveAllwithE(const Session& s, const std::optional<std::string>& path,
                       Progress& progress) {
  const long m = s.ClimateParamCount;
  return SaveRecordFile(path, progress, s.FossilSampleCount, [&](RecordWriter& w) {
    w.Text("Depth");
    for (long q = 1; q <= m; ++q) {
      const std::string& name = s.ClimateParamNames(q);
      w.Text(name + "-Error (from)").Text(name).Text(name + "-Error (to)");
    }
    w.Text("No. of Analogues").End();
    for (long k = 1; k <= s.FossilSampleCount; ++k) {
      progress.Step(k);
      w.Text(s.FossilLabels(k));
      for (long q = 1; q <= m; ++q)
        if (Missing(s, k, q))
          w.Text("").Text("").Text("");
        else
          w.Number(s.ReconLow(k, q)).Number(s.ReconValue(k, q)).Number(s.ReconHigh(k, q));
      if (Missing(s, k, m))
        w.Text("");
      else
        w.Integer(s.AnalogueCount(k));
      w.End();
    }
  });
}

bool SaveDistAna(const Session& s, const std::optional<std::string>& path, Progress& progress,
                 const SiteInfo* info) {
  const long p = s.CurrentParameter;
  return SaveRecordFile(path, progress, s.FossilSampleCount, [&](RecordWriter& w) {
    w.Text("Depth").Text("Parameter");
    for (long k = 1; k <= s.LastAnalogueCount; ++k) w.Text("Analogue-" + std::to_string(k));
    w.End();
    static const char* const kFields[5] = {"Analogue site name", "Longitude", "Latitude",
                                           "Altitude", "Squared chord distance"};
    for (long k = 1; k <= s.FossilSampleCount; ++k) {
      progress.Step(k);
      const std::string& label = s.FossilLabels(k);
      const long records = info ? 5 : 1;
      if (s.FossilEmptySample(k)) {
        for (long r = 0; r < records; ++r) w.Text(label).End();
        continue;
      }
      if (s.ReconValue(k, p) == kMissing) {
        if (info)
          for (const char* field : kFields) w.Text(label).Text(field).Text("No analogue").End();
        else
          w.Text(label).Text(kFields[0]).Text("No analogue").End();
        continue;
      }
      const long count = s.AnalogueCount(k);
      if (info) {
        for (int f = 0; f < 5; ++f) {
          w.Text(label).Text(kFields[f]);
          for (long r = 1; r <= count; ++r) {
            const long site = s.AnalogueSite(k, r);
            switch (f) {
              case 0:
                w.Text(info->SiteMapNames(site));
                break;
              case 1:
                w.Single(info->SiteLongitude(site));
                break;
              case 2:
                w.Single(info->SiteLatitude(site));
                break;
              case 3:
                w.Single(info->SiteAltitude(site));
                break;
              default:
                w.Single(s.AnalogueDistance(k, r));
            }
          }
          w.End();
        }
      } else {
        w.Text(label).Text(kFields[0]);
        for (long r = 1; r <= count; ++r) w.Text(s.ClimateSiteNames(s.AnalogueSite(k, r)));
        w.End();
        w.Text(label).Text(kFields[4]);
        for (long r = 1; r <= count; ++r) w.Single(s.AnalogueDistance(k, r));
        w.End();
      }
    }
  });
}

bool SaveScatter(const Session& s, const std::optional<std::string>& path, Progress& progress) {
  const long p = s.CurrentParameter;
  return SaveRecordFile(path, progress, s.RefSiteCount, [&](RecordWriter& w) {
    const std::string& name = s.ClimateParamNames(p);
    w.Text(name + "(Reconstructed)").Text(name + "(Estimated)").End();
    for (long i = 1; i <= s.RefSiteCount; ++i) {
      progress.Step(i);
      const double estimate = s.ReconRefValue(i, p);
      // The missing estimate is written as text, the missing climate value
      // as a number: readers of this file rely on both.
      if (estimate == kMissing)
        w.Text("-9999");
      else
        w.Number(estimate);
      w.Number(s.ClimateData(i, p)).End();
    }
  });
}

}  // namespace varnoth
