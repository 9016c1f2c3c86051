// The envelope test in a batch run: once after the projection, so that the
// fossil score file carries "In"/"Out", and the extreme reference sites as
// a file of their own.
#include "envelope/Envelope.h"

#include <cmath>
#include <sstream>

#include "Batch.h"
#include "state/RecordWriter.h"

namespace varnoth::batch {
namespace {

// The slider position (0 to 10) of a tolerance 0, 0.1, ..., 1.
int SliderFor(const std::string& text) {
  std::size_t used = 0;
  double v = 0;
  try {
    v = std::stod(text, &used);
  } catch (...) {
    used = 0;
  }
  const double steps = v * 10;
  if (used == 0 || used != text.size() || !(v >= 0 && v <= 1) ||
      std::fabs(steps - std::nearbyint(steps)) > 1e-9)
    throw UsageError{"--envelope takes a tolerance from 0 to 1 in steps of 0.1"};
  return static_cast<int>(std::nearbyint(steps));
}

std::vector<Count> AxesFrom(const std::string& text) {
  std::vector<Count> axes;
  std::stringstream in(text);
  std::string item;
  const UsageError wrong{"--envelope-axes takes two or more different EOF numbers, as 1,2,3"};
  while (std::getline(in, item, ',')) {
    if (item.empty() || item.find_first_not_of("0123456789") != std::string::npos ||
        item.size() > 5)
      throw wrong;
    const long v = std::stol(item);
    if (v < 1 || v > 32767) throw wrong;
    for (Count a : axes)
      if (a == v) throw wrong;
    axes.push_back(static_cast<Count>(v));
  }
  if (axes.size() < 2 || text.back() == ',') throw wrong;
  return axes;
}

// Two axes are the 2-D display, three the 3-D one; more are the "Set more
// axes" list, which the envelope uses the MoreAxis way.
void SetAxes(Session& s, const std::vector<Count>& axes) {
  const long n = static_cast<long>(axes.size());
  for (Count a : axes)
    if (a > s.TaxaCount)
      throw UsageError{"--envelope-axes: EOF " + std::to_string(a) + " is beyond the " +
                       std::to_string(s.TaxaCount) + " EOFs of the analysis"};
  if (s.EnvelopeAxes.Upper() < n) s.EnvelopeAxes.ReDimPreserve(n);
  if (s.DisplayAxes.Upper() < n) s.DisplayAxes.ReDimPreserve(n);
  for (long k = 1; k <= n; ++k)
    s.EnvelopeAxes(k) = s.DisplayAxes(k) = axes[static_cast<std::size_t>(k - 1)];
  s.EnvelopeAxisCount = static_cast<Count>(n);
  s.VisibleAxisCount = static_cast<Count>(std::min(n, 3L));
  s.MoreAxis = n > 3;
}

void RunEnvelopeStep(Context& c) {
  Session& s = c.S;
  if (c.Opts.Has("--envelope-axes")) SetAxes(s, AxesFrom(c.Opts.Get("--envelope-axes")));
  NoProgress progress;
  RunEnvelope(s, SliderFor(c.Opts.Get("--envelope", "0.1")), progress);

  RecordWriter w;
  for (long i = 1; i <= s.RefSiteCount; ++i)
    w.Text(s.RefSiteNames(i)).Text(s.SiteIsExtreme(i) ? "Yes" : "No").End();
  w.Save(c.Out("extreme-sites.csv"));
}

const bool registered = RegisterStep(
    Step{100,
         {{"--envelope", "TOLERANCE", "envelope test after the projection, 0 to 1 by 0.1 (0.1)"},
          {"--envelope-axes", "1,2[,3...]", "EOFs of the envelope (1,2); over three: MoreAxis"}},
         [](const Options& o) {
           if (!o.Has("--envelope") && !o.Has("--envelope-axes")) return;
           if (o.Has("--envelope")) SliderFor(o.Get("--envelope"));
           if (o.Has("--envelope-axes")) AxesFrom(o.Get("--envelope-axes"));
           if (!o.Has("--reference") || !o.Has("--fossil"))
             throw UsageError{"--envelope needs both --reference and --fossil"};
         },
         [](const Options& o) { return o.Has("--envelope") || o.Has("--envelope-axes"); },
         RunEnvelopeStep});

}  // namespace
}  // namespace varnoth::batch
