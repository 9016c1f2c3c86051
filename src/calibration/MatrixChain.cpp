#include "calibration/MatrixChain.h"

#include <cmath>
#include <vector>

#include "state/Clones.h"
#include "state/Finite.h"
#include "state/Format.h"

namespace varnoth {

namespace {

// y[j] += a * x[j]: one multiply and one add per element, in single
// precision, so every vector width gives the same sums.
VARNOTH_CLONES void AddScaled(float* __restrict y, const float* __restrict x, float a, long n) {
  for (long j = 0; j < n; ++j) y[j] += a * x[j];
}

constexpr long kN = kGridLast + 1;  // 251 bins

// Slot s as one row-major block of 251 x 251, after one bounds check.
float* Slot(CalibState& c, int s) {
  c.CalibMatrix(s, kGridLast, kGridLast);
  return &c.CalibMatrix(s, 0, 0);
}
const float* Slot(const CalibState& c, int s) {
  c.CalibMatrix(s, kGridLast, kGridLast);
  return &c.CalibMatrix(s, 0, 0);
}

bool Shown(long i) { return i >= kShownFirst && i <= kShownLast; }

// Sums in single precision overflow to infinity without a failure of their
// own: each step checks the slot it filled.
void RequireFiniteSlot(const CalibState& c, int s) { RequireFinite(Slot(c, s), kN * kN); }

void Paint(CalibPainter* painter, const float* m, int pic, float z) {
  if (!painter) return;
  for (long p = kShownFirst; p <= kShownLast; ++p)
    for (long q = kShownFirst; q <= kShownLast; ++q)
      painter->Rainbow(m[p * kN + q] * z, static_cast<float>(p), static_cast<float>(q), pic);
}

// The density of one row of the error model around a * value(i) + b.
void DensityRow(const CalibState& c, long i, double a, double b, double s, float* row) {
  const double mean = a * GridValue(c, i) + b;
  const double twoS2 = 2 * (s * s);
  const double norm = std::pow(6.2831853071796, 0.5) * s;
  for (long j = 0; j < kN; ++j) {
    const double d = GridValue(c, j) - mean;
    row[j] = ToSingle(Div(std::exp(Div(-(d * d), twoS2)), norm));
  }
}

}  // namespace

double GridValue(const CalibState& c, long i) {
  return static_cast<double>(c.GridLow) + static_cast<double>(i) * c.MatrixStepSize;
}

void CountPairs(CalibState& c, long refSiteCount) {
  float* m0 = Slot(c, 0);
  std::fill(m0, m0 + kN * kN, 0.0f);
  for (long s = 1; s <= refSiteCount; ++s) {
    const double x = c.PairData(0, s, 1), y = c.PairData(0, s, 2);
    // Rounded in double: a missing -9999 lands far outside the grid.
    const double i = Round(Div(x - static_cast<double>(c.GridLow), c.MatrixStepSize));
    const double j = Round(Div(y - static_cast<double>(c.GridLow), c.MatrixStepSize));
    if (i >= 0 && i <= kGridLast && j >= 0 && j <= kGridLast)
      m0[static_cast<long>(i) * kN + static_cast<long>(j)] += 1.0f;
  }
}

void GaussianModel(CalibState& c, CalibPainter* painter) {
  float* m1 = Slot(c, 1);
  const double a = c.FitSlope[1], b = c.FitIntercept[1], s = c.FitStdDev[1];
  for (long i = 0; i < kN; ++i) DensityRow(c, i, a, b, s, m1 + i * kN);
  if (painter) painter->Clear(0);
  Paint(painter, m1, 0, ToSingle(c.RangeWidth / 20.0));
  c.PictDrawn[3] = true;
}

void GenerateModel(CalibState& c, const CalibSettings& st, Progress& progress,
                   CalibPainter* painter) {
  c.FitSlope[1] = 1;
  c.FitIntercept[1] = 0;
  c.FitStdDev[1] = ToSingle(static_cast<double>(c.RangeWidth) * st.Slider4 / 100.0);
  c.Labels.Label17 = "y = x";
  c.Labels.Label19 = FormatSingle(c.FitStdDev[1]);
  if (painter) painter->Clear(0);
  float* m1 = Slot(c, 1);
  std::vector<float> work(kN);
  const float z = ToSingle(c.RangeWidth / 20.0);
  progress.Start(kGridLast);
  for (long i = 0; i < kN; ++i) {
    DensityRow(c, i, 1.0, 0.0, c.FitStdDev[1], work.data());
    std::copy(work.begin(), work.end(), m1 + i * kN);
    if (painter && Shown(i))
      for (long j = kShownFirst; j <= kShownLast; ++j)
        painter->Rainbow(work[j] * z, static_cast<float>(i), static_cast<float>(j), 0);
    progress.Step(i);
  }
  progress.Finish();
  c.PictDrawn[3] = true;
}

void MultipleMatrix(CalibState& m, int a, int b, int c, int pic, float z, Progress& progress,
                    CalibPainter* painter) {
  const float* ma = Slot(m, a);
  const float* mb = Slot(m, b);
  float* mc = Slot(m, c);
  // A zero factor adds +0 or -0 to a sum that is never -0, which leaves it
  // as it is; so zero cells of M_b are skipped, unless M_a holds an infinity
  // or NaN whose product with 0 would show.
  bool finite = true;
  for (long x = 0; x < kN * kN && finite; ++x) finite = std::isfinite(ma[x]);
  std::vector<float> acc(kN);
  if (painter) painter->Clear(pic);
  progress.Start(kGridLast);
  for (long i = 0; i < kN; ++i) {
    std::fill(acc.begin(), acc.end(), 0.0f);
    float* sum = acc.data();
    const float* rowB = mb + i * kN;
    // One k at a time across all j, so that each cell still sums in k order.
    for (long k = 0; k < kN; ++k) {
      const float f = rowB[k];
      if (f == 0.0f && finite) continue;
      AddScaled(sum, ma + k * kN, f, kN);
    }
    std::copy(acc.begin(), acc.end(), mc + i * kN);
    if (painter && Shown(i))
      for (long j = kShownFirst; j <= kShownLast; ++j)
        painter->Rainbow(sum[j] * z, static_cast<float>(i), static_cast<float>(j), pic);
    progress.Step(i);
  }
  progress.Finish();
  RequireFiniteSlot(m, c);
}

void DescreteModel(CalibState& c, long refSiteCount, Progress& progress, CalibPainter* painter) {
  CountPairs(c, refSiteCount);
  MultipleMatrix(c, 1, 0, 2, 1, ToSingle(c.RangeWidth / 20.0), progress, painter);
  c.PictDrawn[4] = true;
}

void Smoothing(CalibState& c, const CalibSettings& st, Progress& progress, CalibPainter* painter) {
  const double h = static_cast<double>(st.Slider3) * 200 / 100 / 2;
  float* m3 = Slot(c, 3);
  for (long i = 0; i < kN; ++i)
    for (long j = 0; j < kN; ++j) {
      const double d = static_cast<double>(std::labs(i - j));
      m3[i * kN + j] = h >= d ? ToSingle((1 - Div(d, h)) * 0.5) : 0.0f;
    }
  const float z =
      ToSingle((Div(2.5, static_cast<double>(st.Slider3)) * 0.75) * (c.RangeWidth / 20.0));
  MultipleMatrix(c, 2, 3, 4, 2, z, progress, painter);
  c.PictDrawn[5] = true;
}

void NormalizeH(CalibState& c, const CalibSettings& st, CalibPainter* painter) {
  const float* m1 = Slot(c, 1);
  const float* m3 = Slot(c, 3);
  const float* m4 = Slot(c, 4);
  float* m5 = Slot(c, 5);
  // The sums are doubles; only the cells are singles.
  double a = 0, vertical = 0;
  float peak = 0;
  for (long i = 0; i < kN; ++i) {
    a += m3[i * kN + 25];
    vertical += m1[25 * kN + i];
    if (m1[25 * kN + i] > peak) peak = m1[25 * kN + i];
  }
  c.HorizontalUnit = FormatGeneral(a * static_cast<double>(peak));
  c.VerticalUnit = FormatGeneral(vertical);
  c.PictDrawn[6] = true;
  if (st.Check5) {
    std::copy(m4, m4 + kN * kN, m5);
    return;
  }
  const double t = LenientParse(c.HorizontalUnit) * static_cast<double>(st.Slider5) * 1.05;
  if (painter) painter->Clear(3);
  for (long q = 0; q < kN; ++q) {
    double s = 0;
    for (long p = 0; p < kN; ++p) s += m4[p * kN + q];
    for (long p = 0; p < kN; ++p) {
      float& out = m5[p * kN + q];
      if (s == 0 || t > s) {
        out = 0;
      } else {
        out = ToSingle(m4[p * kN + q] / s);
        if (painter && Shown(p) && Shown(q))
          painter->Rainbow(out * 25.0f, static_cast<float>(p), static_cast<float>(q), 3);
      }
    }
  }
  RequireFiniteSlot(c, 5);
}

void NormalizeV(CalibState& c, const CalibSettings& st, CalibPainter* painter) {
  const float* m4 = Slot(c, 4);
  const float* m5 = Slot(c, 5);
  float* m6 = Slot(c, 6);
  const double t = LenientParse(c.VerticalUnit) * static_cast<double>(st.Slider6) * 1.05;
  if (painter) painter->Clear(4);
  for (long p = 0; p < kN; ++p) {
    double s5 = 0, s4 = 0;
    for (long q = 0; q < kN; ++q) {
      s5 += m5[p * kN + q];
      s4 += m4[p * kN + q];
    }
    for (long q = 0; q < kN; ++q) {
      float& out = m6[p * kN + q];
      if (s5 == 0 || t > s4) {
        out = 0;
      } else {
        out = ToSingle(m5[p * kN + q] / s5);
        if (painter && Shown(p) && Shown(q))
          painter->Rainbow(out * 15.0f, static_cast<float>(p), static_cast<float>(q), 4);
      }
    }
  }
  for (long p = 0; p < kN; ++p) {
    const float* col = m6 + p * kN;
    double total = 0;
    for (long q = 0; q < kN; ++q) total += col[q];
    if (total == 0) {
      c.MedianIndex(p) = 0;
      continue;
    }
    // The half is compared as a single, the running sum is a double.
    const double half = Single(total / 2);
    double run = 0;
    for (long q = 0; q < kN; ++q) {
      run += col[q];
      if (run > half) {
        c.MedianIndex(p) = static_cast<Count>(q);
        run = 0;
      }
    }
  }
  // A median in bin 0 is never marked.
  for (long p = 0; p < kN; ++p) {
    const long q = c.MedianIndex(p);
    if (q > 0 && q < kN) m6[p * kN + q] = -m6[p * kN + q];
  }
  c.PictDrawn[7] = true;
  RequireFiniteSlot(c, 6);
}

void BuildConfidence(CalibState& c, const CalibSettings& st, CalibPainter* painter) {
  const float* m6 = Slot(c, 6);
  float* m7 = Slot(c, 7);
  const double coefficient1 = static_cast<double>(st.Slider1) / 1000;
  const double coefficient2 = static_cast<double>(st.Slider2) / 1000;
  const bool whole = st.Slider1 == 1000 || st.Slider2 == 1000;
  if (painter) painter->Clear(5);
  for (long p = 0; p < kN; ++p) {
    const float* col = m6 + p * kN;
    float* cls = m7 + p * kN;
    float peak = 0;
    double total = 0;
    for (long q = 0; q < kN; ++q) {
      cls[q] = 0;
      const float v = std::fabs(col[q]);
      if (v > peak) {  // strictly: the lowest q wins a tie
        peak = v;
        c.ModeIndex(p) = static_cast<Count>(q);
      }
      total += v;
      if (total == 0) c.ModeIndex(p) = c.MedianIndex(p) = static_cast<Count>(kMissing);
    }
    if (!(total > 0)) continue;
    // Ten halvings towards the level that holds the coefficient's mass.
    const auto [level1, level2] =
        ConfidenceLevels(col, kN, peak, total, coefficient1, coefficient2);
    c.ConfidenceLevel(p, 1) = level1;
    c.ConfidenceLevel(p, 2) = level2;
    for (long q = 0; q < kN; ++q) {
      const float v = std::fabs(col[q]);
      if (v > level1) cls[q] += 1;
      if (v > level2) cls[q] += 1;
      if (q > 0 && q == c.ModeIndex(p)) cls[q] = 3;
      if (col[q] < 0) {
        cls[q] = -cls[q];
        c.MedianIndex(p) = static_cast<Count>(q);
      }
      if (whole && cls[q] == 0) cls[q] = 1;
      if (painter && Shown(p) && Shown(q)) {
        const float a = std::fabs(cls[q]);
        if (a >= 1) painter->Region(static_cast<int>(p), static_cast<int>(q), a >= 2 ? 2 : 1);
      }
    }
  }
  c.PictDrawn[8] = true;
  RequireFiniteSlot(c, 7);
  RequireFinite(c.ConfidenceLevel);
}

std::pair<float, float> ConfidenceLevels(const float* column, long count, float peak, double total,
                                         double coefficient1, double coefficient2) {
  float level1 = 0, level2 = 0;
  float d1 = 1, d2 = 1;
  for (int k = 1; k <= 10; ++k) {
    const double delta = static_cast<double>(peak) / std::pow(2.0, k);
    level1 = ToSingle(level1 + d1 * delta);
    level2 = ToSingle(level2 + d2 * delta);
    double mass1 = 0, mass2 = 0;
    for (long q = 0; q < count; ++q) {
      const float v = std::fabs(column[q]);
      if (v > level1) mass1 += v;
      if (v > level2) mass2 += v;
    }
    // Too much mass inside raises the level, too little lowers it.
    d1 = coefficient1 < mass1 / total ? 1.0f : -1.0f;
    d2 = coefficient2 < mass2 / total ? 1.0f : -1.0f;
  }
  return {level1, level2};
}

void FitSusono(const CalibState& c, bool greyMode, CalibPainter* painter) {
  if (greyMode || !painter) return;
  const float* m6 = Slot(c, 6);
  const float* m7 = Slot(c, 7);
  for (long p = kShownFirst; p <= kShownLast; ++p)
    for (long q = kShownFirst; q <= kShownLast; ++q)
      painter->Susono(std::fabs(m6[p * kN + q]) * 1.25f * (200.0f / 10.0f), static_cast<int>(p),
                      static_cast<int>(q), std::fabs(m7[p * kN + q]) >= 1);
}

void UseGeneratedModel(CalibState& c, const CalibSettings& st, Progress& progress,
                       CalibPainter* painter) {
  ResetFrom(c, 3);
  c.StoredLabel12 = c.Labels.Label12[1];
  c.Labels.Label12[1].clear();
  c.Labels.Label13[1].clear();
  c.Labels.Label14[1] = c.Labels.Label15[0];
  c.Labels.Label15[1] = "Error model";
  c.Labels.Label21[1] = "Generated error model";
  c.PictDrawn[2] = false;
  GenerateModel(c, st, progress, painter);
}

void ResetModel(CalibState& c) {
  c.Labels.Label12[1] = c.StoredLabel12;
  c.Labels.Label14[1].clear();
  c.Labels.Label15[1].clear();
  c.Labels.Label17.clear();
  c.Labels.Label19.clear();
  c.Labels.Label21[1].clear();
  c.CalibReady = false;
}

void RunChainFrom(CalibState& c, const CalibSettings& st, ChainStep first,
                  const ChainContext& ctx) {
  NoProgress none;
  Progress& progress = ctx.ProgressBar ? *ctx.ProgressBar : none;
  CalibPainter* painter = ctx.Painter;
  switch (first) {
    case ChainStep::GaussianModel:
      GaussianModel(c, painter);
      [[fallthrough]];
    case ChainStep::DescreteModel:
      DescreteModel(c, ctx.RefSiteCount, progress, painter);
      [[fallthrough]];
    case ChainStep::Smoothing:
      Smoothing(c, st, progress, painter);
      [[fallthrough]];
    case ChainStep::NormalizeH:
      NormalizeH(c, st, painter);
      [[fallthrough]];
    case ChainStep::NormalizeV:
      NormalizeV(c, st, painter);
      [[fallthrough]];
    case ChainStep::BuildConfidence:
      BuildConfidence(c, st, painter);
      [[fallthrough]];
    case ChainStep::FitSusono:
      FitSusono(c, ctx.GreyMode, painter);
  }
}

void StartChain(CalibState& c, const CalibSettings& st, const ChainContext& ctx) {
  // The generated model stands in slot 1 with Fig.3 drawn already; its
  // chain goes on from the product while Fig.4 is blank.
  if (!st.Check4 && !c.PictDrawn[3])
    RunChainFrom(c, st, ChainStep::GaussianModel, ctx);
  else if (st.Check4 && !c.PictDrawn[4])
    RunChainFrom(c, st, ChainStep::DescreteModel, ctx);
  c.ReturnEnabled = true;
}

bool RerunAfter(CalibState& c, const CalibSettings& st, ChainChange change,
                const ChainContext& ctx) {
  int guard = 8, reset = 8;
  ChainStep from = ChainStep::BuildConfidence;
  switch (change) {
    case ChainChange::Coefficient:
      break;
    case ChainChange::Smoothing:
      guard = reset = 5;
      from = ChainStep::Smoothing;
      break;
    case ChainChange::VerticalThreshold:
      guard = reset = 6;
      from = ChainStep::NormalizeH;
      break;
    case ChainChange::HorizontalThreshold:
      guard = reset = 7;
      from = ChainStep::NormalizeV;
      break;
    case ChainChange::Skip:
      guard = 7;
      reset = 6;
      from = ChainStep::NormalizeH;
      break;
  }
  if (!c.PictDrawn[guard]) return false;
  ResetFrom(c, reset);
  RunChainFrom(c, st, from, ctx);
  return true;
}

bool CatchUp(CalibState& c, const CalibSettings& st, int pictureIndex, const ChainContext& ctx) {
  static const ChainStep steps[] = {ChainStep::GaussianModel, ChainStep::DescreteModel,
                                    ChainStep::Smoothing,     ChainStep::NormalizeH,
                                    ChainStep::NormalizeV,    ChainStep::BuildConfidence};
  if (pictureIndex < 0 || pictureIndex > 5 || pictureIndex == 4) return false;
  if (c.PictDrawn[pictureIndex + 3]) return false;
  RunChainFrom(c, st, steps[pictureIndex], ctx);
  return true;
}

void ResetFrom(CalibState& c, int firstFigure) {
  for (int f = firstFigure; f <= 8; ++f) c.PictDrawn[f] = false;
  c.ReturnEnabled = false;
  c.CalibReady = false;
}

}  // namespace varnoth
