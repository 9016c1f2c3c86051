#pragma once
// The state of the calibration tool: the two pair sets and their fits, the
// range and its grid, the nine matrices of the chain with their per-column
// results, and the settings the tool's controls hold. A window reads its
// controls into CalibSettings and calls the engine; the batch runner fills
// the same record from its options.
#include <array>
#include <string>

#include "state/Array.h"
#include "state/Numeric.h"

namespace varnoth {

// The grid: 200 steps across the range and 25 bins of margin on each side,
// so that the kernels never run off the shown part.
inline constexpr long kMatrixSteps = 200;
inline constexpr long kGridLast = kMatrixSteps + 50;  // bins 0..250
inline constexpr long kShownFirst = 25, kShownLast = 225;
inline constexpr long kPairRowLimit = 10000;

// The reconstruction window's histogram picture at its default size: the
// size slider at 10 makes it 2055 twips wide, and it stands 2415 twips
// shorter than the window's default height of 7500.
inline constexpr long kHistPictureWidth = 2055;
inline constexpr long kHistPictureHeight = 7500 - 2415;

// Rows of the histogram matrix for a picture of that size.
Count HistColumnsFor(long pictureWidth, long pictureHeight);

struct CalibSettings {
  long Slider1 = 682;   // confidence coefficient 1, tenths of a percent, 0..1000
  long Slider2 = 954;   // confidence coefficient 2, tenths of a percent, 0..1000
  long Slider3 = 10;    // smoothing: basal width in % of the range, 1..20
  long Slider4 = 5;     // generated model: standard deviation in % of the range, 1..20
  long Slider5 = 2;     // vertical threshold, samples, 0..10
  long Slider6 = 1;     // horizontal threshold, samples, 0..10
  bool Check4 = false;  // "Generate model"
  bool Check5 = false;  // "Skip" the normalisation per Vobs bin
  // The coefficient readouts Label4(0), Label4(1) in percent. A coefficient
  // typed into its dialog (68.25) is finer than the slider's tenths; empty
  // means the slider's value / 10.
  std::array<std::string, 2> Label4;
};

// The coefficient k (0 or 1) in percent as the readout shows it.
double ShownCoefficient(const CalibSettings& st, int k);

// What the tool's labels show of each pair set; several operations read
// their numbers back from this text, as the window does.
struct PairLabelsShown {
  std::array<std::string, 2> Label12;  // rows with both values
  std::array<std::string, 2> Label13;  // correlation, 4 places
  std::array<std::string, 2> Label14;  // name of x
  std::array<std::string, 2> Label15;  // name of y
  std::array<std::string, 2> Label21;  // file or source
  std::string Label17;                 // the fitting line
  std::string Label19;                 // the residual deviation
};

struct CalibState {
  CalibState();

  // Pair sets: 0 is Vrec-Vest, 1 is Vest-Vobs. PairData(k, s, c): row s
  // from 1, column 1 x and 2 y, -9999 missing.
  Array3<float> PairData;  // (0..1, 0..10000, 0..2)
  Count PairCount = 0;
  // Rows stored of each pair set, complete or not: how far a scatter reads.
  std::array<long, 2> PairRows{};
  std::array<std::string, 2> PairMax{"-99999999", "-99999999"};
  std::array<std::string, 2> PairMin{"99999999", "99999999"};
  std::array<std::string, 4> PairLabels;
  std::array<float, 2> FitSlope{}, FitIntercept{}, FitStdDev{}, FitCorrelation{};
  PairLabelsShown Labels;
  bool CalibToolOpen = true;  // opened from the reconstruction window
  // Label12(1) kept aside while the generated model blanks it.
  std::string StoredLabel12;

  // The range boxes and the last valid pair of strings.
  std::string Text1, Text2, LastText1, LastText2;
  float GridLow = 0, GridHigh = 0, RangeWidth = 0;
  double MatrixStepSize = 0;

  // Nine 251 x 251 slots.
  Array3<float> CalibMatrix;
  Array1<Count> ModeIndex, MedianIndex;
  Array2<float> ConfidenceLevel;  // (p, 1..2)
  // Kept as text between uses, as the window keeps them.
  std::string HorizontalUnit = "0", VerticalUnit = "0";

  // Drawn flags of Fig.1 to Fig.8 (index 1..8).
  std::array<bool, 9> PictDrawn{};
  bool ReturnEnabled = false;  // Command10 "Return"
  bool CalibReady = false;
};

}  // namespace varnoth
