#pragma once
// The shared state of one session: the two data sets, the EOF results, the
// envelope and display state and the stage flags. One object, one owner;
// every window and routine reads it, and each result array is written only
// by the operation that fills it.
#include <cstdint>
#include <string>

#include "eof/PreTreatmentSettings.h"
#include "state/Array.h"
#include "state/InterpolationState.h"
#include "state/Numeric.h"

namespace varnoth {

using Flag = std::uint8_t;  // a per-row mark, 0 or 1

struct RotationPair {
  double A1 = 0;  // turn
  double A2 = 0;  // tilt
};

struct Session {
  Session();

  // Data sets.
  std::string RefFileName, FossilFileName;
  Count RefSiteCount = 0, FossilSampleCount = 0;
  Count RefTaxaCount = 0, FossilTaxaCount = 0;
  Count TaxaCount = 0;
  Count BaseRowCount = 0;
  Count EigenOrder = 1000;
  Array1<std::string> RefSiteNames, FossilLabels;
  Array1<std::string> RefTaxaNames, FossilTaxaNames;
  bool RefLabelsAreText = false, FossilLabelsAreText = false;
  Array2<double> RefData, FossilData;
  Array2<double> RefProportion, FossilProportion;
  Array1<Flag> FossilEmptySample;
  Array1<std::string> TaxaMismatch;

  // EOF results.
  bool UseCorrelation = true;
  bool EnhanceUsed = false;
  Array2<double> EofMatrix;
  Array2<double> EigenWork;
  Array2<double> EigenVectors;
  Array1<float> Contribution, CumContribution;
  Array2<double> Loadings;
  Array2<double> ColumnMean, ColumnStd;
  Array2<double> StatWork;
  Array2<double> RefScoreRaw, RefScores;
  Array2<double> FossilStandardised, FossilScoreRaw, FossilScores;
  double AnalysisTime = 0;

  // Envelope and display state.
  Array1<Count> EnvelopeAxes, DisplayAxes;
  Count EnvelopeAxisCount = 2;
  Count VisibleAxisCount = 2;
  bool MoreAxis = false;
  float EnvelopeTolerance = 0.1f;
  std::int32_t EnvelopeDirectionCount = 3000;
  Array2<double> EnvelopeDirections;
  Array1<Flag> SiteIsExtreme, SampleIsOut;
  Count TaxonCursor = 1, SiteCursor = 1, SampleCursor = 1;
  double ScatterZoom = 4;
  RotationPair RotationAngles;
  float RotationStep = 0.01f;

  // Session flags.
  bool ReferenceIsBase = false, FossilIsBase = false;
  bool EofDone = false, ProjectionDone = false, EnvelopeDone = false;
  bool DiagramOpen = false, ReconstructionOpen = false;

  // Whether each import may still run: a successful import closes its own
  // for good; the end of the base analysis and a failure open one again.
  bool ReferenceImportOpen = true, FossilImportOpen = true;
  // The folder of the shipped example set when the user opened it, where the
  // later file dialogs of the session start; empty otherwise.
  std::string ExampleFolder;

  // The pre-treatment confirmed in the dialog; the second import applies it.
  PreTreatmentSettings PreTreatment;

  // Vertical spacing of the diagram, set by the fossil import.
  long DiagramGapA = 0, DiagramGapB = 0;

  // Envelope test and CONISS (src/envelope, src/diagram).
  // The state of the program's uniform generator (envelope/Uniform.h). It is
  // never seeded: every session starts here, so its first envelope is always
  // drawn alike, and later runs go on from where the last one stopped.
  std::uint64_t UniformState = 0x2545F4914F6CDD1DULL;
  // CONISS work rows and its result, one entry per join s = 1..N - 1; the
  // result stays for later redraws of the tree.
  Array2<float> ConissData;
  Array1<float> ConissPos;
  Array1<double> ConissDist, ConissSum;
  Array1<float> ConissLeft, ConissRight, ConissHeight;

  // Climate data and the analogue reconstruction (src/reconstruction).
  // Climate at the reference sites, from a climate file or the interpolation
  // tool; every user tests ClimateLoaded first.
  bool ClimateLoaded = false;
  std::string ClimateFileName;
  Count ClimateParamCount = 0;
  Array1<std::string> ClimateParamNames;  // index 0: the corner cell
  Array1<std::string> ClimateSiteNames;
  bool ClimateSiteNamesAreText = false;
  Array2<double> ClimateData;               // (site, parameter), -9999 missing
  Array1<std::string> ClimateNameMismatch;  // [0] the count, then "[climate]/[reference]"
  // Results of the analogue search, rebuilt by each run.
  Array2<double> ReconValue;  // (sample, parameter); column 0 the analogues used
  Array2<double> ReconLow, ReconHigh;
  Array1<Count> AnalogueCount;
  Array2<Count> AnalogueSite;      // (sample, rank 0..20)
  Array2<float> AnalogueDistance;  // (sample, rank 0..MaxAnalogues)
  Array1<float> ReconMin, ReconMax;
  Count LastAnalogueCount = 0;
  // Leave-one-out estimates at the reference sites: the error model.
  Array2<double> ReconRefValue;  // (site, parameter); column 0 the analogues used
  bool ErrorModelReady = false;
  // The parameter shown and its moving average.
  Count CurrentParameter = 0;
  Array1<float> SmoothedPosition, SmoothedValue;
  // Estimated-observed pairs read from a file.
  bool EstObsImported = false;
  Count EstObsCount = 0;
  Array1<float> EstObsEstimated, EstObsObserved;

  // The interpolation tool (src/interpolation). SiteInfoLoaded: the climate
  // in use came from it ("Return to Varnoth"); a climate file clears it.
  InterpolationState Interp;
  bool SiteInfoLoaded = false;
};

}  // namespace varnoth
