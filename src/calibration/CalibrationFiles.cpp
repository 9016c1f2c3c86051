#include "calibration/CalibrationFiles.h"

#include <cmath>

#include "state/Format.h"
#include "state/RecordFile.h"
#include "state/RecordWriter.h"

namespace varnoth {

Array2<float> OutputMatrixOf(const CalibState& c) {
  Array2<float> out(kMatrixSteps, kMatrixSteps);
  for (long i = 0; i <= kMatrixSteps; ++i)
    for (long j = 0; j <= kMatrixSteps; ++j)
      out(i, j) = c.CalibMatrix(7, i + 25, j + 25) + c.CalibMatrix(6, i + 25, j + 25);
  return out;
}

Array1<float> CommonOutputAxis(double t1, double t2) {
  Array1<float> axis(kMatrixSteps);
  for (long k = 0; k < kMatrixSteps; ++k)
    axis(k) = ToSingle(t1 + (t2 - t1) / static_cast<double>(kMatrixSteps) * k);
  axis(kMatrixSteps) = ToSingle(t2);
  return axis;
}

void WriteCommonOutput(const std::string& path, const std::string& /*kind*/, const CalibState& c,
                       const CalibSettings& st, const Array2<float>& outputMatrix,
                       float smoothingLevel, float coefficient1, float coefficient2,
                       Progress& progress) {
  RecordWriter w;
  w.Text("Ostrel common output format").End();
  w.Text("Head note length (lines): ").Text("15").End();
  w.Text("Version: ").Text("2.5.0").End();
  w.Text("Original file1: ").Text(c.Labels.Label21[0]).End();
  w.Text("X: ").Text(c.Labels.Label14[0]).End();
  w.Text("Y: ").Text(c.Labels.Label15[0]).End();
  if (st.Check4) {
    // The model form keeps the axis name in front of its two fields.
    w.Text("Original file2: ").Text("N/A").End();
    w.Text("X: ").Text("Alternative: ").Text("Model").End();
    w.Text("Y: ").Text("Std. Dev. (% of range): ").Integer(st.Slider4).End();
  } else {
    w.Text("Original file2: ").Text(c.Labels.Label21[1]).End();
    w.Text("X: ").Text(c.Labels.Label14[1]).End();
    w.Text("Y: ").Text(c.Labels.Label15[1]).End();
  }
  w.Text("Resolution (steps): ").Integer(kMatrixSteps).End();
  w.Text("Smoothing level (% of range): ").Single(smoothingLevel).End();
  w.Text("Vertical threshold (samples):").Integer(st.Slider5).End();
  w.Text("Horizontal threshold (samples):").Integer(st.Slider6).End();
  w.Text("Confidence coefficient1 (%):").Single(coefficient1).End();
  w.Text("Confidence coefficient2 (%):").Single(coefficient2).End();

  const Array1<float> axis = CommonOutputAxis(LenientParse(c.Text1), LenientParse(c.Text2));
  w.Text("");
  for (long k = 0; k <= kMatrixSteps; ++k) w.Single(axis(k));
  w.End();
  progress.Start(kMatrixSteps);
  for (long j = 0; j <= kMatrixSteps; ++j) {
    progress.Step(j);
    w.Single(axis(j));
    for (long i = 0; i <= kMatrixSteps; ++i) w.Single(outputMatrix(i, j));
    w.End();
  }
  try {
    w.Save(path);
  } catch (...) {
    progress.Finish();
    throw;
  }
  progress.Finish();
}

namespace {

bool SaveCommon(const CalibState& c, const CalibSettings& st,
                const std::optional<std::string>& path, const std::string& kind,
                Progress& progress) {
  if (!path) return false;
  try {
    // The readouts: Label7 holds the smoothing slider, Label4 the
    // coefficients in percent.
    WriteCommonOutput(*path, kind, c, st, OutputMatrixOf(c), ToSingle(st.Slider3),
                      ToSingle(ShownCoefficient(st, 0)), ToSingle(ShownCoefficient(st, 1)),
                      progress);
  } catch (const RuntimeFailure& e) {
    lastSaveFailure = e.what();
    return false;
  }
  return true;
}

// Bin values rounded half to even to 4 places, as singles.
Array1<float> Bins(const CalibState& c, double t1) {
  Array1<float> b(kMatrixSteps);
  for (long i = 0; i <= kMatrixSteps; ++i)
    b(i) = ToSingle(std::nearbyint((t1 + static_cast<double>(i) * c.MatrixStepSize) * 1e4) / 1e4);
  return b;
}

void AnalogueLines(RecordWriter& w, const AnalogueChoices& a) {
  const AnalogueSettings& st = a.Settings;
  w.Text("Similarity index: ").Text("Taxa-based").End();
  w.Text("No. of analogues: ")
      .Text(std::to_string(st.MinAnalogues) + "-" + std::to_string(st.MaxAnalogues))
      .End();
  w.Text("Threshold: ").Number(static_cast<double>(a.ThresholdSlider) / 100).End();
  w.Text("Inversed weighting: ")
      .Text(!st.InverseWeighting                               ? "N/A"
            : st.WeightBy == AnalogueWeightBy::SquaredDistance ? "Squared distance"
                                                               : "Distance")
      .End();
  w.Text("Enhancing minor taxa: ")
      .Text(st.Enhance == AnalogueEnhance::None         ? "N/A"
            : st.Enhance == AnalogueEnhance::SquareRoot ? "Square root"
                                                        : "Log")
      .End();
}

// The calibration tool's two smoothing widths: along Vrec the smoothing
// kernel, along Vobs the generated model's deviation.
void SmoothingLines(RecordWriter& w, const CalibSettings& st) {
  w.Text("X-smoothing (%): ").Integer(st.Slider3).End();
  w.Text("Y-smoothing (%): ").Integer(st.Slider4).End();
  w.Text("Confidence coefficient1 (%): ").Text("68.2").End();
  w.Text("Confidence coefficient2 (%): ").Text("95.4").End();
}

void BinRecord(RecordWriter& w, const Array1<float>& b) {
  w.Text("");
  for (long i = 0; i <= kMatrixSteps; ++i) w.Single(b(i));
  w.End();
}

std::string StampText(const FileStamp& stamp) { return stamp.Date + " (" + stamp.Time + ")"; }

}  // namespace

bool SaveProbability(const CalibState& c, const CalibSettings& st,
                     const std::optional<std::string>& path, Progress& progress) {
  return SaveCommon(c, st, path, "Probability", progress);
}

bool SaveConfidence(const CalibState& c, const CalibSettings& st,
                    const std::optional<std::string>& path, Progress& progress) {
  return SaveCommon(c, st, path, "Confidence", progress);
}

bool SaveOstrel(const Session& s, const CalibState& c, const CalibSettings& st,
                const AnalogueChoices& choices, double t1, const FileStamp& stamp,
                const std::optional<std::string>& path, Progress& progress) {
  return SaveRecordFile(path, progress, kMatrixSteps, [&](RecordWriter& w) {
    const Array1<float> b = Bins(c, t1);
    w.Text("Varnoth 2.0 output file (Ostrel Light)").End();
    w.Text("Date/Time: ").Text(StampText(stamp)).End();
    w.Text("Reference data file: ").Text(s.RefFileName).End();
    w.Text("Climate data file: ").Text(s.ClimateFileName).End();
    AnalogueLines(w, choices);
    w.Text("Resolution (steps): ").Integer(kMatrixSteps).End();
    SmoothingLines(w, st);
    w.Text("Parameter").Text(s.ClimateParamNames(s.CurrentParameter)).End();
    BinRecord(w, b);
    for (long y = 25; y <= kMatrixSteps + 25; ++y) {
      progress.Step(y - 25);
      w.Single(b(y - 25));
      for (long x = 25; x <= kMatrixSteps + 25; ++x) w.Single(c.CalibMatrix(6, x, y));
      w.End();
    }
  });
}

bool SaveTamsek(const Session& s, const CalibState& c, const CalibSettings& st,
                const AnalogueChoices& choices, const HistState& h, long curveSmoothing, double t1,
                const FileStamp& stamp, const std::optional<std::string>& path,
                Progress& progress) {
  return SaveRecordFile(path, progress, h.HistColumns, [&](RecordWriter& w) {
    const Array1<float> b = Bins(c, t1);
    const long rows = h.HistColumns;
    double top = 1, bottom = s.FossilSampleCount;
    if (!s.FossilLabelsAreText) {
      top = LenientParse(s.FossilLabels(1));
      bottom = LenientParse(s.FossilLabels(s.FossilSampleCount));
    }
    w.Text("Varnoth 2.0 output file").End();
    w.Text("Date/Time: ").Text(StampText(stamp)).End();
    w.Text("Reference data file: ").Text(s.RefFileName).End();
    w.Text("Fossil data file: ").Text(s.FossilFileName).End();
    w.Text("Climate data file: ").Text(s.ClimateFileName).End();
    AnalogueLines(w, choices);
    w.Text("Horizontal resolution: ").Integer(kMatrixSteps).End();
    SmoothingLines(w, st);
    w.Text("Vertical resolution: ").Integer(rows).End();
    w.Text("Smoothed levels").Integer(curveSmoothing).End();
    w.Text("Parameter").Text(s.ClimateParamNames(s.CurrentParameter)).End();
    BinRecord(w, b);
    for (long r = 0; r <= rows; ++r) {
      progress.Step(r);
      const double depth =
          Div(static_cast<double>(rows - r) * top + static_cast<double>(r) * bottom,
              static_cast<double>(rows));
      w.Number(std::nearbyint(depth * 1e4) / 1e4);
      for (long i = 0; i <= kMatrixSteps; ++i) w.Single(h.HistMatrix(1, i, r));
      w.End();
    }
  });
}

}  // namespace varnoth
