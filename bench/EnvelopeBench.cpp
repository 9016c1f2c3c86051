// The envelope test on a large database: 8000 reference sites and 1000
// fossil samples, with 3 axes and with 10 axes (the MoreAxis way). Each size
// runs the fast marking and, as the baseline in the same run, the plain
// loops. The counter "projections" is sites and samples times 3000
// directions, per second.
#include <benchmark/benchmark.h>

#include <cmath>  // before Synthetic.h, which uses std::nearbyint

#include "Synthetic.h"
#include "envelope/Envelope.h"

using namespace varnoth;

namespace {

constexpr int kSites = 8000, kSamples = 1000, kEofs = 12;

// Scores of a cloud of sites with a falling spread per EOF, and samples
// partly inside it and partly beyond.
Session MakeSession(int axes) {
  Session s;
  bench::SplitMix rng(20261122);
  auto normal = [&] {
    double v = 0;
    for (int i = 0; i < 6; ++i) v += rng.Uniform();
    return v - 3.0;
  };
  s.RefSiteCount = kSites;
  s.FossilSampleCount = kSamples;
  s.RefTaxaCount = s.FossilTaxaCount = s.TaxaCount = kEofs;
  s.RefScores.ReDim(kSites, kEofs);
  s.FossilScores.ReDim(kSamples, kEofs);
  for (int i = 1; i <= kSites; ++i)
    for (int k = 1; k <= kEofs; ++k) s.RefScores(i, k) = normal() * 4.0 / k;
  for (int i = 1; i <= kSamples; ++i)
    for (int k = 1; k <= kEofs; ++k) s.FossilScores(i, k) = normal() * 5.0 / k;
  s.EnvelopeAxes.ReDim(kEofs);
  s.DisplayAxes.ReDim(kEofs);
  for (int k = 1; k <= kEofs; ++k) s.EnvelopeAxes(k) = s.DisplayAxes(k) = static_cast<Count>(k);
  s.EnvelopeAxisCount = static_cast<Count>(axes);
  s.MoreAxis = axes > 3;
  s.EnvelopeTolerance = EnvelopeToleranceFor(1);
  DrawEnvelopeDirections(s);
  return s;
}

void Report(benchmark::State& state) {
  state.counters["projections"] = benchmark::Counter(3000.0 * (kSites + kSamples),
                                                     benchmark::Counter::kIsIterationInvariantRate);
}

void BM_EnvelopeFast(benchmark::State& state) {
  Session s = MakeSession(static_cast<int>(state.range(0)));
  NoProgress progress;
  for (auto _ : state) {
    MarkEnvelope(s, progress);
    benchmark::DoNotOptimize(s.SampleIsOut.Data());
  }
  Report(state);
}

void BM_EnvelopePlainBaseline(benchmark::State& state) {
  Session s = MakeSession(static_cast<int>(state.range(0)));
  NoProgress progress;
  for (auto _ : state) {
    MarkEnvelopePlain(s, progress);
    benchmark::DoNotOptimize(s.SampleIsOut.Data());
  }
  Report(state);
}

// The whole run as the button starts it: directions drawn anew each time.
void BM_RunEnvelope(benchmark::State& state) {
  Session s = MakeSession(static_cast<int>(state.range(0)));
  NoProgress progress;
  for (auto _ : state) {
    RunEnvelope(s, 1, progress);
    benchmark::DoNotOptimize(s.SampleIsOut.Data());
  }
  Report(state);
}

}  // namespace

BENCHMARK(BM_EnvelopeFast)->Arg(3)->Arg(10)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_EnvelopePlainBaseline)->Arg(3)->Arg(10)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_RunEnvelope)->Arg(3)->Arg(10)->Unit(benchmark::kMillisecond)->UseRealTime();
