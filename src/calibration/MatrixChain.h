#pragma once
// The calibration chain on the nine 251 x 251 slots: pair counts, the error
// model, their product, the smoothing along Vrec, the normalisations along
// both axes, the median, mode and confidence regions of every column. Each
// step that the window paints takes an optional painter; without one it
// only computes.
#include <utility>

#include "calibration/CalibState.h"
#include "state/Dialogs.h"

namespace varnoth {

// Painting of the chain's figures on a 0..1875 canvas. Cells outside the
// shown bins 25..225 never reach it.
class CalibPainter {
 public:
  virtual ~CalibPainter() = default;
  // Picture2(pic) cleared to white.
  virtual void Clear(int pic) = 0;
  // One cell in the rainbow colour of `value` (the matrix value times the
  // step's colour factor; the painter applies the Z-axis enhancement).
  virtual void Rainbow(float value, float p, float q, int pic) = 0;
  // A cell of Fig.8: cls 1 in the second, 2 or more in the first colour.
  virtual void Region(int p, int q, int cls) = 0;
  // A cell of the probability view kept (inside a region) or whitened.
  virtual void Susono(float value, int p, int q, bool inside) = 0;
};

// The grid value of bin i.
double GridValue(const CalibState& c, long i);

void CountPairs(CalibState& c, long refSiteCount);
void GaussianModel(CalibState& c, CalibPainter* painter = nullptr);
// The model of Check4: slope 1, intercept 0, deviation Slider4 % of the
// range; fills slot 1.
void GenerateModel(CalibState& c, const CalibSettings& st, Progress& progress,
                   CalibPainter* painter = nullptr);
// M_c = M_b times M_a, summed in single precision in the order of k.
void MultipleMatrix(CalibState& m, int a, int b, int c, int pic, float z, Progress& progress,
                    CalibPainter* painter = nullptr);
void DescreteModel(CalibState& c, long refSiteCount, Progress& progress,
                   CalibPainter* painter = nullptr);
void Smoothing(CalibState& c, const CalibSettings& st, Progress& progress,
               CalibPainter* painter = nullptr);
void NormalizeH(CalibState& c, const CalibSettings& st, CalibPainter* painter = nullptr);
void NormalizeV(CalibState& c, const CalibSettings& st, CalibPainter* painter = nullptr);
void BuildConfidence(CalibState& c, const CalibSettings& st, CalibPainter* painter = nullptr);
void FitSusono(const CalibState& c, bool greyMode, CalibPainter* painter);

// The two levels of a column found by ten halvings of its peak: the levels
// above which the column holds the two coefficients (fractions) of its
// total, to a 1024th of the peak.
std::pair<float, float> ConfidenceLevels(const float* column, long count, float peak, double total,
                                         double coefficient1, double coefficient2);

// Check4 ticked: the pair set 1 labels show the model and slot 1 holds it.
void UseGeneratedModel(CalibState& c, const CalibSettings& st, Progress& progress,
                       CalibPainter* painter = nullptr);
// Back from the generated model to the file state of pair set 1.
void ResetModel(CalibState& c);

// The steps of the chain, in their order.
enum class ChainStep {
  GaussianModel,
  DescreteModel,
  Smoothing,
  NormalizeH,
  NormalizeV,
  BuildConfidence,
  FitSusono,
};

struct ChainContext {
  long RefSiteCount = 0;
  bool GreyMode = false;
  Progress* ProgressBar = nullptr;  // none: no report
  CalibPainter* Painter = nullptr;  // none: compute only
};

// Runs from `first` to the end of the chain.
void RunChainFrom(CalibState& c, const CalibSettings& st, ChainStep first, const ChainContext& ctx);

// "Start": the fitted model from GaussianModel, the generated one (already
// in slot 1) from DescreteModel, nothing once Fig.3 is drawn; then "Return"
// is enabled.
void StartChain(CalibState& c, const CalibSettings& st, const ChainContext& ctx);

// The controls whose change re-runs the tail of the chain.
enum class ChainChange {
  Coefficient,          // Slider1 or Slider2 released
  Smoothing,            // Slider3 released
  VerticalThreshold,    // Slider5 released
  HorizontalThreshold,  // Slider6 released
  Skip,                 // Check5 clicked
};

// The reset and the tail for a change, only when its figure is drawn.
// Returns whether anything ran.
bool RerunAfter(CalibState& c, const CalibSettings& st, ChainChange change,
                const ChainContext& ctx);

// A click on a blank figure of Picture2(index) catches up from its step:
// 0 the fitted model, 1 the product, 2 the smoothing, 3 the normalisation
// per Vobs bin, 5 the confidence regions. False when the figure is drawn
// already or the index has no step of its own.
bool CatchUp(CalibState& c, const CalibSettings& st, int pictureIndex, const ChainContext& ctx);

// Clears figures from Fig.`firstFigure` on, disables "Return" and takes back
// what the reconstruction window received.
void ResetFrom(CalibState& c, int firstFigure);

}  // namespace varnoth
