// The diagram's results in a batch run: the CONISS joins and the file of
// all EOF curves of the core.
#include "Batch.h"
#include "diagram/Coniss.h"
#include "diagram/EofCurveFiles.h"
#include "state/RecordWriter.h"

namespace varnoth::batch {
namespace {

void WriteConiss(Context& c) {
  Session& s = c.S;
  NoProgress progress;
  DoConiss(s, progress);
  RecordWriter w;
  w.Text("Join").Text("Left").Text("Right").Text("Height").End();
  for (long j = 1; j <= s.FossilSampleCount - 1; ++j)
    w.Integer(j).Single(s.ConissLeft(j)).Single(s.ConissRight(j)).Single(s.ConissHeight(j)).End();
  w.Save(c.Out("coniss.csv"));
}

void WriteAllEof(Context& c) {
  NoProgress progress;
  SaveAllEOF(c.S, c.Out("eof-all.csv"), progress);
}

const bool registered = RegisterStep(
    Step{200,
         {{"--coniss", "", "CONISS zonation of the core into coniss.csv"},
          {"--save-all-eof", "", "all EOF curves of the core into eof-all.csv"}},
         [](const Options& o) {
           if ((o.Has("--coniss") || o.Has("--save-all-eof")) && !o.Has("--fossil"))
             throw UsageError{"--coniss and --save-all-eof need --fossil"};
           if (o.Has("--save-all-eof") && !o.Has("--reference") && o.Get("--base") != "fossil")
             throw UsageError{
                 "--save-all-eof needs the fossil table scored: --reference or --base fossil"};
         },
         [](const Options& o) { return o.Has("--coniss") || o.Has("--save-all-eof"); },
         [](Context& c) {
           if (c.Opts.Has("--coniss")) WriteConiss(c);
           if (c.Opts.Has("--save-all-eof")) WriteAllEof(c);
         }});

}  // namespace
}  // namespace varnoth::batch
