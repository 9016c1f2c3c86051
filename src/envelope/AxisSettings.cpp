#include "envelope/AxisSettings.h"

#include <algorithm>
#include <cmath>

#include "state/Format.h"
#include "state/Numeric.h"

namespace varnoth {

namespace {
Count Visible(bool threeD) { return threeD ? 3 : 2; }
}  // namespace

Count PanelEofCount(const Session& s) {
  return s.RefTaxaCount > 0 ? s.RefTaxaCount : s.FossilTaxaCount;
}

AxisChoice LoadAxisChoice(Session& s, bool threeD) {
  AxisChoice c;
  s.VisibleAxisCount = Visible(threeD);
  if (!s.MoreAxis) s.EnvelopeAxisCount = s.VisibleAxisCount;
  c.MoreAxis = s.MoreAxis;
  for (int k = 1; k <= 3; ++k) c.Combo[static_cast<std::size_t>(k)] = s.EnvelopeAxes(k);
  for (Count k = 1; k <= s.EnvelopeAxisCount; ++k) c.List2.push_back(s.EnvelopeAxes(k));
  return c;
}

void MoreAxisOn(Session& s, AxisChoice& choice) {
  s.MoreAxis = true;
  choice.MoreAxis = true;
}

void MoreAxisOff(Session& s, AxisChoice& choice, bool threeD) {
  s.MoreAxis = false;
  choice.MoreAxis = false;
  s.EnvelopeAxisCount = Visible(threeD);
  if (choice.List2.size() > static_cast<std::size_t>(s.EnvelopeAxisCount))
    choice.List2.resize(static_cast<std::size_t>(s.EnvelopeAxisCount));
}

void AddToList(std::vector<Count>& list2, const std::vector<Count>& chosen) {
  for (Count eof : chosen)
    if (std::find(list2.begin(), list2.end(), eof) == list2.end()) list2.push_back(eof);
}

void DeleteFromList(std::vector<Count>& list2, const std::vector<int>& chosen, int keep) {
  for (int i = static_cast<int>(list2.size()) - 1; i >= std::max(keep, 0); --i)
    if (std::find(chosen.begin(), chosen.end(), i) != chosen.end()) list2.erase(list2.begin() + i);
}

bool NothingInvisible(bool threeD, std::size_t listCount) {
  return listCount == static_cast<std::size_t>(Visible(threeD));
}

void ApplyAxisChoice(Session& s, const AxisChoice& choice) {
  if (choice.MoreAxis) {
    const Count n = ToCount(static_cast<long long>(choice.List2.size()));
    s.EnvelopeAxisCount = n;
    for (Count k = 1; k <= n; ++k) {
      const Count eof = choice.List2[static_cast<std::size_t>(k - 1)];
      s.EnvelopeAxes(k) = eof;
      s.DisplayAxes(k) = eof;
    }
  } else {
    for (int k = 1; k <= 3; ++k) {
      const Count eof = choice.Combo[static_cast<std::size_t>(k)];
      s.EnvelopeAxes(k) = eof;
      s.DisplayAxes(k) = eof;
    }
  }
}

ReflectOutcome Reflect(Session& s, AxisChoice& choice, bool threeD) {
  ReflectOutcome r;
  if (NothingInvisible(threeD, choice.List2.size())) {
    r.MoreAxisCleared = choice.MoreAxis;
    if (choice.MoreAxis) MoreAxisOff(s, choice, threeD);
    s.MoreAxis = false;
    choice.MoreAxis = false;
  }
  ApplyAxisChoice(s, choice);
  r.Redraw = s.EofDone;
  r.RunEnvelope = s.ProjectionDone;
  return r;
}

int KiyoLinesFit(int heightPixels) {
  return static_cast<int>(Int(heightPixels * 15.0 / kKiyoLineTwips));
}

std::string KiyoPercent(double value) { return FormatGeneral(Round(value * 1000) / 1000) + "%"; }

KiyoText ShowKiyo(Session& s, const std::vector<Count>& list2, int first, int linesFit) {
  KiyoText t;
  const Count n = PanelEofCount(s);
  t.ScrollEnabled = n > linesFit;
  for (int line = 0; line < linesFit; ++line) {
    const long eof = static_cast<long>(first) + line;
    if (eof > n || eof < 1) {
      t.Lines.push_back({});
      continue;
    }
    t.Lines.push_back({std::to_string(eof), KiyoPercent(s.Contribution(eof)),
                       KiyoPercent(s.CumContribution(eof))});
  }
  if (n >= 4) {
    t.Summary.push_back(KiyoPercent(s.CumContribution(3)));
    t.Summary.push_back("No. of parameters:  " + std::to_string(n));
  }
  double sum = 0;
  for (Count eof : list2) sum += s.Contribution(eof);
  t.Selected.push_back(KiyoPercent(sum));
  t.Selected.push_back("No. of selected EOFs:  " + std::to_string(list2.size()));
  s.EnvelopeAxisCount = ToCount(static_cast<long long>(list2.size()));
  return t;
}

}  // namespace varnoth
