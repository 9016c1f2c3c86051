// Mutated copies of real tables through both imports, in both orders: every
// one must end in a result or in the failure path, never in a crash.
#include <gtest/gtest.h>

#include "eof/PreTreatment.h"
#include "state/Import.h"
#include "support/TestSupport.h"

using namespace varnoth;
using namespace varnoth::test;

namespace {

class Mutator {
 public:
  explicit Mutator(std::uint32_t seed) : state_(seed) {}
  std::uint32_t Next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return state_;
  }
  std::string Mutate(std::string text) {
    static const std::string pieces[] = {",",          "\n",       "\r\n",  "\"",    " ",
                                         "",           "0.50",     "1e400", "-",     "abc",
                                         "9999999999", "\x01\xff", ",,",    "1E+308"};
    int edits = 1 + static_cast<int>(Next() % 4);
    for (int e = 0; e < edits && !text.empty(); ++e) {
      std::size_t at = Next() % text.size();
      switch (Next() % 6) {
        case 0:  // drop a stretch
          text.erase(at, 1 + Next() % 40);
          break;
        case 1:  // insert a troublesome piece
          text.insert(at, pieces[Next() % std::size(pieces)]);
          break;
        case 2:  // flip a byte
          text[at] = static_cast<char>(Next() & 0xFF);
          break;
        case 3:  // cut the file short
          text.resize(at);
          break;
        case 4:  // repeat a stretch
          text.insert(at, text.substr(at, 1 + Next() % 200));
          break;
        default:  // replace a comma by a line end or the reverse
          for (std::size_t i = at; i < text.size(); ++i)
            if (text[i] == ',' || text[i] == '\n') {
              text[i] = text[i] == ',' ? '\n' : ',';
              break;
            }
      }
    }
    return text;
  }

 private:
  std::uint32_t state_;
};

}  // namespace

TEST(ImportMutation, MutatedTablesNeverCrash) {
  TempDir dir;
  const std::string reference = ReadFile(Example("reference.csv"));
  const std::string fossil = ReadFile(Example("fossil.csv"));
  Mutator m(12345);
  NoProgress progress;
  int imported = 0, failed = 0;
  for (int round = 0; round < 300; ++round) {
    Session s;
    FakeDialogs dialogs;
    dialogs.QuestionAnswers = std::deque<bool>(30, round % 2 == 0);
    bool mutateReference = round % 3 != 1;
    bool mutateFossil = round % 3 != 0;
    std::string r = mutateReference ? m.Mutate(reference) : reference;
    std::string f = mutateFossil ? m.Mutate(fossil) : fossil;
    bool referenceFirst = round % 4 != 3;
    auto analyse = [&] {
      try {
        ApplyPreTreatment(s, PreTreatmentSettings{}, progress);
      } catch (const RuntimeFailure&) {
        // A table that imports but cannot be analysed ends in the run-time
        // failure, as an event handler would report it.
      }
    };
    if (referenceFirst) {
      ImportResult a = ImportReference(s, dir.Write("r.csv", r), dialogs, progress);
      if (a.Ok) analyse();
      ImportResult b = ImportFossil(s, dir.Write("f.csv", f), dialogs, progress);
      (b.Ok ? imported : failed)++;
      if (!a.Ok) {
        EXPECT_EQ(s.RefTaxaCount, 0);
      }
      if (!b.Ok) {
        EXPECT_EQ(s.FossilTaxaCount, 0);
      }
    } else {
      ImportResult a = ImportFossil(s, dir.Write("f.csv", f), dialogs, progress);
      if (a.Ok) analyse();
      ImportResult b = ImportReference(s, dir.Write("r.csv", r), dialogs, progress);
      EXPECT_FALSE(b.Ok && a.Ok);  // a reference after a fossil base never lands
      (b.Ok ? imported : failed)++;
    }
    EXPECT_FALSE(s.ReferenceIsBase && s.FossilIsBase);
  }
  // The mutations must exercise both outcomes.
  EXPECT_GT(imported, 10);
  EXPECT_GT(failed, 10);
}

TEST(ImportMutation, BinaryGarbage) {
  TempDir dir;
  Mutator m(99);
  NoProgress progress;
  int imported = 0;
  for (int round = 0; round < 50; ++round) {
    std::string junk;
    for (int i = 0; i < 2000; ++i) junk += static_cast<char>(m.Next() & 0xFF);
    Session s;
    FakeDialogs dialogs;
    const bool ok = ImportReference(s, dir.Write("g.csv", junk), dialogs, progress).Ok;
    if (ok) {
      // Whatever was read is a table of the size it reports.
      ++imported;
      EXPECT_GT(s.RefSiteCount, 0);
      EXPECT_GT(s.RefTaxaCount, 0);
      EXPECT_TRUE(s.ReferenceIsBase);
      EXPECT_EQ(s.RefData.Upper0(), s.RefSiteCount);
      EXPECT_EQ(s.RefData.Upper1(), s.RefTaxaCount);
    } else {
      // A refused file leaves nothing behind, and the import stays open.
      EXPECT_EQ(s.RefSiteCount, 0);
      EXPECT_EQ(s.RefTaxaCount, 0);
      EXPECT_FALSE(s.ReferenceIsBase);
      EXPECT_TRUE(s.ReferenceImportOpen);
    }
  }
  // Random bytes are not a table: nearly every round is refused.
  EXPECT_LT(imported, 5);
}
