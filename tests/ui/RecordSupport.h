#pragma once
// The tests' own reading of the files the program writes: records split
// into fields, compared field by field with the files of an independent
// implementation kept under tests/data.
#include <QString>
#include <algorithm>
#include <cmath>
#include <vector>

#include "UiSupport.h"

namespace varnoth::uitest {

// The test's own reading of a written file: quoted records split into
// fields, each remembering whether it stood in double quotes.
struct Field {
  QString Text;
  bool Quoted = false;
};
using Record = std::vector<Field>;

inline std::vector<Record> Records(const QString& path) {
  std::vector<Record> records;
  const QString text = QString::fromUtf8(ReadAll(path));
  for (const QString& line : text.split("\r\n", Qt::SkipEmptyParts)) {
    Record r;
    int i = 0;
    while (i <= line.size()) {
      Field f;
      if (i < line.size() && line[i] == '"') {
        const int close = line.indexOf('"', i + 1);
        f.Text = line.mid(i + 1, close - i - 1);
        f.Quoted = true;
        i = close + 1;
      } else {
        const int comma = line.indexOf(',', i);
        f.Text = line.mid(i, comma < 0 ? -1 : comma - i);
        i = comma < 0 ? static_cast<int>(line.size()) : comma;
      }
      r.push_back(f);
      ++i;  // the comma
    }
    records.push_back(r);
  }
  return records;
}

// Whether two fields agree: texts exactly, numbers within a relative
// tolerance (single precision by default).
inline bool Agree(const Field& a, const Field& b, double tolerance = 2.5e-7) {
  if (a.Quoted || b.Quoted) return a.Quoted == b.Quoted && a.Text == b.Text;
  bool okA = false, okB = false;
  const double x = a.Text.toDouble(&okA), y = b.Text.toDouble(&okB);
  if (!okA || !okB) return false;
  return std::abs(x - y) <= tolerance * std::max(std::abs(x), std::abs(y));
}

// The first disagreement between two files read as records, or empty.
inline QString Compare(const std::vector<Record>& mine, const std::vector<Record>& expected,
                       double tolerance = 2.5e-7) {
  if (mine.size() != expected.size())
    return QString("%1 records, expected %2").arg(mine.size()).arg(expected.size());
  for (std::size_t i = 0; i < mine.size(); ++i) {
    if (mine[i].size() != expected[i].size())
      return QString("record %1: %2 fields, expected %3")
          .arg(i + 1)
          .arg(mine[i].size())
          .arg(expected[i].size());
    for (std::size_t j = 0; j < mine[i].size(); ++j)
      if (!Agree(mine[i][j], expected[i][j], tolerance))
        return QString("record %1 field %2: %3, expected %4")
            .arg(i + 1)
            .arg(j + 1)
            .arg(mine[i][j].Text, expected[i][j].Text);
  }
  return QString();
}

// The second field of the record whose first field is `key`.
inline QString Value(const std::vector<Record>& records, const QString& key) {
  for (const Record& r : records)
    if (!r.empty() && r[0].Text == key && r.size() > 1) return r[1].Text;
  return "(none)";
}

// Files kept with the tests.
inline QString TestData(const QString& name) {
  return QString(VARNOTH_EXAMPLES) + "/../../tests/data/" + name;
}

// The records without the clock and the paths of the tables read, which
// differ by nature between two runs.
inline std::vector<Record> WithoutClockAndPaths(const std::vector<Record>& records) {
  std::vector<Record> kept;
  for (const Record& row : records)
    if (row.empty() ||
        (row[0].Text != "Date/Time: " && row[0].Text != "Reference data file: " &&
         row[0].Text != "Fossil data file: " && row[0].Text != "Climate data file: "))
      kept.push_back(row);
  return kept;
}

}  // namespace varnoth::uitest
