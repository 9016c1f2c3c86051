#pragma once
// The calibration result files: the common output format of the calibration
// tool (its probability and confidence entries write the same file), and
// the reconstruction window's matrix files of the calibration matrix and of
// the histogram matrix down the core.
#include <optional>
#include <string>

#include "calibration/CalibState.h"
#include "calibration/HistMatrix.h"
#include "reconstruction/AnalogueSettings.h"
#include "state/Dialogs.h"
#include "state/ScoreFiles.h"
#include "state/Session.h"

namespace varnoth {

// The shown part of slot 7 + slot 6: (i along Vrec, j along Vobs), 0..200.
Array2<float> OutputMatrixOf(const CalibState& c);

// The value axis of the common output: 201 singles from T1 to exactly T2.
Array1<float> CommonOutputAxis(double t1, double t2);

// Writes the head of 15 lines and the matrix with its axes. `kind` names
// the menu entry and changes nothing in the file. Creates or replaces the
// file; one that cannot be written is the file failure.
void WriteCommonOutput(const std::string& path, const std::string& kind, const CalibState& c,
                       const CalibSettings& st, const Array2<float>& outputMatrix,
                       float smoothingLevel, float coefficient1, float coefficient2,
                       Progress& progress);

// The menu entries: nothing written when the dialog was cancelled (no path)
// or the file could not be written. The numbers come from the tool's
// readouts, the smoothing level and the coefficients in percent.
bool SaveProbability(const CalibState& c, const CalibSettings& st,
                     const std::optional<std::string>& path, Progress& progress);
bool SaveConfidence(const CalibState& c, const CalibSettings& st,
                    const std::optional<std::string>& path, Progress& progress);

// The analogue choices as the reconstruction window shows them.
struct AnalogueChoices {
  AnalogueSettings Settings;
  long ThresholdSlider = 20;  // hundredths
};

// The calibration matrix (probability, the median negative) with the
// analogue settings; t1 is the value of the reconstruction window's Text1.
bool SaveOstrel(const Session& s, const CalibState& c, const CalibSettings& st,
                const AnalogueChoices& choices, double t1, const FileStamp& stamp,
                const std::optional<std::string>& path, Progress& progress);

// The histogram matrix down the core, class and probability packed.
bool SaveTamsek(const Session& s, const CalibState& c, const CalibSettings& st,
                const AnalogueChoices& choices, const HistState& h, long curveSmoothing, double t1,
                const FileStamp& stamp, const std::optional<std::string>& path, Progress& progress);

}  // namespace varnoth
