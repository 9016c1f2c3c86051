// varnoth-batch on tables small enough to check by hand: the expected values
// come from the arithmetic written out below or from an independent few-line
// computation (a Jacobi eigen-decomposition), never from the program itself.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "BatchProgram.h"

using namespace varnoth::test;

namespace {

// The numbers of a record after its first field.
std::vector<double> Numbers(const std::string& line) {
  std::vector<double> out;
  std::size_t at = line.find(',');
  while (at != std::string::npos) {
    const std::size_t next = line.find(',', at + 1);
    out.push_back(std::stod(line.substr(at + 1, next == std::string::npos ? next : next - at - 1)));
    at = next;
  }
  return out;
}

std::string Quoted(const std::string& path) { return "\"" + path + "\""; }

// Eigenvalues and eigenvectors (columns) of a symmetric matrix by cyclic
// Jacobi rotations: a different road from the program's power iteration.
void Jacobi(std::vector<std::vector<double>> a, std::vector<double>& values,
            std::vector<std::vector<double>>& vectors) {
  const std::size_t n = a.size();
  vectors.assign(n, std::vector<double>(n, 0.0));
  for (std::size_t i = 0; i < n; ++i) vectors[i][i] = 1;
  for (int sweep = 0; sweep < 100; ++sweep) {
    for (std::size_t p = 0; p < n; ++p)
      for (std::size_t q = p + 1; q < n; ++q) {
        if (std::fabs(a[p][q]) < 1e-300) continue;
        const double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
        const double t = (theta >= 0 ? 1 : -1) / (std::fabs(theta) + std::sqrt(theta * theta + 1));
        const double c = 1 / std::sqrt(t * t + 1), s = t * c;
        for (std::size_t k = 0; k < n; ++k) {
          const double kp = a[k][p], kq = a[k][q];
          a[k][p] = c * kp - s * kq;
          a[k][q] = s * kp + c * kq;
        }
        for (std::size_t k = 0; k < n; ++k) {
          const double pk = a[p][k], qk = a[q][k];
          a[p][k] = c * pk - s * qk;
          a[q][k] = s * pk + c * qk;
        }
        for (std::size_t k = 0; k < n; ++k) {
          const double kp = vectors[k][p], kq = vectors[k][q];
          vectors[k][p] = c * kp - s * kq;
          vectors[k][q] = s * kp + c * kq;
        }
      }
  }
  values.resize(n);
  for (std::size_t i = 0; i < n; ++i) values[i] = a[i][i];
}

}  // namespace

// Four sites and three taxa, raw values, covariance matrix. The EOFs are the
// eigenvectors of the population covariance, largest first, each with the
// sign that the first taxon's unit start vector gives it (a positive first
// element); loadings are the vectors times the root of their eigenvalue,
// standardised over the taxa; scores are the centred, standardised data on
// the vectors, standardised over the sites.
TEST(HandComputedBatch, EofFilesAgreeWithAnIndependentEigenDecomposition) {
  TempDir in;
  const std::vector<std::vector<double>> x = {{12, 3, 1}, {2, 5, 2}, {22, 9, 4}, {8, 1, 3}};
  std::string table = "Site,A,B,C\n";
  for (std::size_t i = 0; i < x.size(); ++i) {
    table += "S" + std::to_string(i + 1);
    for (double v : x[i]) table += "," + std::to_string(static_cast<int>(v));
    table += "\n";
  }
  BatchRun r("--reference " + Quoted(in.Write("ref.csv", table)) +
             " --convert no --matrix covariance");
  ASSERT_EQ(r.Code(), 0) << r.Errors();

  const std::size_t m = x.size(), n = 3;
  std::vector<double> mean(n, 0), deviation(n, 0);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < m; ++i) mean[j] += x[i][j] / m;
    for (std::size_t i = 0; i < m; ++i)
      deviation[j] += (x[i][j] - mean[j]) * (x[i][j] - mean[j]) / m;
  }
  std::vector<std::vector<double>> cov(n, std::vector<double>(n, 0));
  for (std::size_t a = 0; a < n; ++a)
    for (std::size_t b = 0; b < n; ++b)
      for (std::size_t i = 0; i < m; ++i)
        cov[a][b] += (x[i][a] - mean[a]) * (x[i][b] - mean[b]) / m;
  std::vector<double> values;
  std::vector<std::vector<double>> vectors;
  Jacobi(cov, values, vectors);
  std::vector<std::size_t> order = {0, 1, 2};
  std::sort(order.begin(), order.end(), [&](auto a, auto b) { return values[a] > values[b]; });
  // Well apart, so that twenty power steps reach the same vectors.
  ASSERT_GT(values[order[0]], 3 * values[order[1]]);
  ASSERT_GT(values[order[1]], 3 * values[order[2]]);
  double total = 0;
  for (double v : values) total += v;

  const std::vector<std::string> loading = Lines(r.File("loading.csv"));
  ASSERT_EQ(loading.size(), 10u);
  const std::vector<double> contribution = Numbers(loading[6]);
  const std::vector<std::string> scores = Lines(r.File("score-reference.csv"));
  ASSERT_EQ(scores.size(), 14u);
  for (std::size_t e = 0; e < n; ++e) {
    const std::size_t c = order[e];
    std::vector<double> v(n);
    for (std::size_t k = 0; k < n; ++k) v[k] = vectors[k][c] * (vectors[0][c] < 0 ? -1 : 1);
    EXPECT_NEAR(contribution[e], values[c] * 100 / total, 1e-5) << "EOF " << e + 1;

    std::vector<double> l(n);
    double lm = 0, ls = 0;
    for (std::size_t k = 0; k < n; ++k) lm += (l[k] = v[k] * std::sqrt(values[c])) / n;
    for (std::size_t k = 0; k < n; ++k) ls += (l[k] - lm) * (l[k] - lm) / n;
    for (std::size_t k = 0; k < n; ++k)
      EXPECT_NEAR(Numbers(loading[7 + k])[e], (l[k] - lm) / std::sqrt(ls), 1e-9)
          << "taxon " << k + 1 << ", EOF " << e + 1;

    std::vector<double> raw(m);
    double sm = 0, ss = 0;
    for (std::size_t i = 0; i < m; ++i) {
      raw[i] = 0;
      for (std::size_t k = 0; k < n; ++k)
        raw[i] += (x[i][k] - mean[k]) / std::sqrt(deviation[k]) * v[k];
      sm += raw[i] / m;
    }
    for (std::size_t i = 0; i < m; ++i) ss += (raw[i] - sm) * (raw[i] - sm) / m;
    for (std::size_t i = 0; i < m; ++i)
      EXPECT_NEAR(Numbers(scores[10 + i])[e], (raw[i] - sm) / std::sqrt(ss), 1e-9)
          << "site " << i + 1 << ", EOF " << e + 1;
  }
}

// Proportions of four sites: R1 (.6, .3, .1), R2 (.5, .3, .2), R3 (.1, .3,
// .6), R4 (.2, .2, .6), with temperatures 10, 12, 20, 24.
//  - Sample 0 (.55, .3, .15) lies 0.005 from R1 and R2 and 0.405, 0.335 from
//    the others: below the threshold of 0.2 stand R1 and R2, mean 11.
//  - Sample 10 (.15, .25, .6) lies 0.005 from R3 and R4 and 0.455, 0.285 from
//    R1 and R2: mean 22.
//  - Leaving each site out: R1 finds R2 at 0.02 (R3 0.5, R4 0.42), so 12; R2
//    finds R1 (R3 0.32, R4 0.26), so 10; R3 finds R4 at 0.02 (R1 0.5, R2 0.32),
//    so 24; R4 finds R3, so 20.
//  - Sample 20 (0, 1, 0) is 0.54 and more from every site: no analogue, an
//    empty field.
TEST(HandComputedBatch, ReconstructionAndErrorModelByHand) {
  TempDir in;
  const std::string ref =
      in.Write("ref.csv", "Site,A,B,C\nR1,60,30,10\nR2,50,30,20\nR3,10,30,60\nR4,20,20,60\n");
  const std::string fossil =
      in.Write("fossil.csv", "Depth,A,B,C\n0,55,30,15\n10,15,25,60\n20,0,7,0\n");
  const std::string climate = in.Write("climate.csv", "Site,T\nR1,10\nR2,12\nR3,20\nR4,24\n");
  BatchRun r("--reference " + Quoted(ref) + " --fossil " + Quoted(fossil) + " --climate " +
             Quoted(climate) + " --error-model");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  EXPECT_EQ(r.File("curve.csv"), "\"Depth\",\"T\"\r\n\"0\",11\r\n\"10\",22\r\n\"20\",\"\"\r\n");
  const std::vector<std::string> scatter = Lines(r.File("scatter-T.csv"));
  ASSERT_EQ(scatter.size(), 5u);
  EXPECT_EQ(scatter[0], "\"T(Reconstructed)\",\"T(Estimated)\"");
  std::vector<std::string> pairs(scatter.begin() + 1, scatter.end());
  std::sort(pairs.begin(), pairs.end());
  EXPECT_EQ(pairs, (std::vector<std::string>{"10,12", "12,10", "20,24", "24,20"}));
}

// Four sites at the corners of a square in the plane of their first two
// taxa, a sample at its centre and one far outside: whatever the random
// directions, every corner is the farthest site along some of them, the
// centre lies inside along all of them, and the far sample outside.
TEST(HandComputedBatch, EnvelopeOfASquare) {
  TempDir in;
  const std::string ref =
      in.Write("ref.csv", "Site,A,B,C\nP1,20,20,60\nP2,40,20,40\nP3,40,40,20\nP4,20,40,40\n");
  const std::string fossil = in.Write("fossil.csv", "Depth,A,B,C\n0,30,30,40\n10,90,5,5\n");
  BatchRun r("--reference " + Quoted(ref) + " --fossil " + Quoted(fossil) + " --envelope 0");
  ASSERT_EQ(r.Code(), 0) << r.Errors();
  EXPECT_EQ(r.File("extreme-sites.csv"),
            "\"P1\",\"Yes\"\r\n\"P2\",\"Yes\"\r\n\"P3\",\"Yes\"\r\n\"P4\",\"Yes\"\r\n");
  const std::vector<std::string> scores = Lines(r.File("score-fossil.csv"));
  ASSERT_GE(scores.size(), 2u);
  EXPECT_EQ(scores[scores.size() - 2].rfind("\"0\",\"In\",", 0), 0u) << scores[scores.size() - 2];
  EXPECT_EQ(scores.back().rfind("\"10\",\"Out\",", 0), 0u) << scores.back();
}
