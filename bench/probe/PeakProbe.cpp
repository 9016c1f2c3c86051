// The machine's arithmetic ceiling: double-precision GFLOP/s of independent
// multiply-adds held in vector registers, fused and unfused, on one core and
// on all of them at once. The engine sums without fused multiply-add, so the
// unfused figure is the ceiling its loops are measured against. Beside it,
// how fast a core reads a block that stays in its first- or second-level
// cache: the ceiling of a loop that multiplies and adds each value it reads
// once, as a matrix times a vector does.
#include <immintrin.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

constexpr long kRounds = 20000000;  // of each chain; 16 chains per round

// Each function returns a sum of its accumulators so that nothing is dropped.
// The constants keep the values bounded and away from subnormals.

__attribute__((target("avx512f"))) double Fused512(long rounds) {
  __m512d acc[16];
  for (int k = 0; k < 16; ++k) acc[k] = _mm512_set1_pd(1.0 + k);
  const __m512d a = _mm512_set1_pd(0.9999999), b = _mm512_set1_pd(1e-7);
  for (long r = 0; r < rounds; ++r)
    for (int k = 0; k < 16; ++k) acc[k] = _mm512_fmadd_pd(acc[k], a, b);
  __m512d s = acc[0];
  for (int k = 1; k < 16; ++k) s = _mm512_add_pd(s, acc[k]);
  double out[8];
  _mm512_storeu_pd(out, s);
  return out[0] + out[1] + out[2] + out[3] + out[4] + out[5] + out[6] + out[7];
}

// s += x y with independent products: the form of every sum in the engine.
__attribute__((target("avx512f"))) double Unfused512(long rounds) {
  __m512d acc[16], x[16];
  for (int k = 0; k < 16; ++k) acc[k] = _mm512_set1_pd(1.0 + k), x[k] = _mm512_set1_pd(1e-9 * k);
  const __m512d y = _mm512_set1_pd(0.5);
  for (long r = 0; r < rounds; ++r)
    for (int k = 0; k < 16; ++k) acc[k] = _mm512_add_pd(acc[k], _mm512_mul_pd(x[k], y));
  __m512d s = acc[0];
  for (int k = 1; k < 16; ++k) s = _mm512_add_pd(s, acc[k]);
  double out[8];
  _mm512_storeu_pd(out, s);
  return out[0] + out[1] + out[2] + out[3] + out[4] + out[5] + out[6] + out[7];
}

__attribute__((target("avx2,fma"))) double Fused256(long rounds) {
  __m256d acc[16];
  for (int k = 0; k < 16; ++k) acc[k] = _mm256_set1_pd(1.0 + k);
  const __m256d a = _mm256_set1_pd(0.9999999), b = _mm256_set1_pd(1e-7);
  for (long r = 0; r < rounds; ++r)
    for (int k = 0; k < 16; ++k) acc[k] = _mm256_fmadd_pd(acc[k], a, b);
  __m256d s = acc[0];
  for (int k = 1; k < 16; ++k) s = _mm256_add_pd(s, acc[k]);
  double out[4];
  _mm256_storeu_pd(out, s);
  return out[0] + out[1] + out[2] + out[3];
}

__attribute__((target("avx2"))) double Unfused256(long rounds) {
  __m256d acc[16], x[16];
  for (int k = 0; k < 16; ++k) acc[k] = _mm256_set1_pd(1.0 + k), x[k] = _mm256_set1_pd(1e-9 * k);
  const __m256d y = _mm256_set1_pd(0.5);
  for (long r = 0; r < rounds; ++r)
    for (int k = 0; k < 16; ++k) acc[k] = _mm256_add_pd(acc[k], _mm256_mul_pd(x[k], y));
  __m256d s = acc[0];
  for (int k = 1; k < 16; ++k) s = _mm256_add_pd(s, acc[k]);
  double out[4];
  _mm256_storeu_pd(out, s);
  return out[0] + out[1] + out[2] + out[3];
}

struct Kernel {
  const char* name;
  double (*run)(long);
  int lanes;
  bool available;
};

// The shortest time in seconds of `threads` threads running work(i) at
// once, of `repeats` tries, since other work on the machine only ever makes
// a try slower. Each work returns a value that is kept, so that nothing is
// dropped.
template <typename Work>
double Fastest(int threads, int repeats, Work work) {
  double fastest = 0;
  for (int t = 0; t < repeats; ++t) {
    std::vector<std::thread> pool;
    std::vector<double> sink(static_cast<std::size_t>(threads));
    const auto t0 = std::chrono::steady_clock::now();
    for (int i = 0; i < threads; ++i)
      pool.emplace_back([&, i] { sink[static_cast<std::size_t>(i)] = work(i); });
    for (std::thread& th : pool) th.join();
    const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    double total = 0;
    for (double v : sink) total += v;
    if (total == 0.123) std::puts("");  // keeps the results alive
    if (t == 0 || s < fastest) fastest = s;
  }
  return fastest;
}

// GFLOP/s of `threads` threads running the kernel at once (2 flops per
// lane per chain per round, fused or not).
double Measure(const Kernel& k, int threads, int repeats) {
  const long rounds = kRounds / (k.lanes / 4);
  const double s = Fastest(threads, repeats, [&](int) { return k.run(rounds); });
  return 2.0 * 16 * k.lanes * static_cast<double>(rounds) * threads / s / 1e9;
}

// Reads a block of `doubles` values `passes` times, multiplying each by a
// factor into eight running sums of four: the loop of a product of a matrix
// and a vector. Every thread has its own block.
__attribute__((target("avx2"))) double Stream256(const double* block, long doubles, long passes) {
  __m256d acc[8];
  for (int k = 0; k < 8; ++k) acc[k] = _mm256_setzero_pd();
  const __m256d f = _mm256_set1_pd(0.5);
  for (long p = 0; p < passes; ++p)
    for (long i = 0; i < doubles; i += 32)
#pragma GCC unroll 8
      for (int k = 0; k < 8; ++k)
        acc[k] = _mm256_add_pd(acc[k], _mm256_mul_pd(f, _mm256_loadu_pd(block + i + 4 * k)));
  __m256d s = acc[0];
  for (int k = 1; k < 8; ++k) s = _mm256_add_pd(s, acc[k]);
  double out[4];
  _mm256_storeu_pd(out, s);
  return out[0] + out[1] + out[2] + out[3];
}

// The same reads with no arithmetic: what the cache delivers.
__attribute__((target("avx2"))) double Read256(const double* block, long doubles, long passes) {
  __m256i acc[4];
  for (int k = 0; k < 4; ++k) acc[k] = _mm256_setzero_si256();
  for (long p = 0; p < passes; ++p)
    for (long i = 0; i < doubles; i += 16)
#pragma GCC unroll 4
      for (int k = 0; k < 4; ++k)
        acc[k] = _mm256_or_si256(
            acc[k], _mm256_loadu_si256(reinterpret_cast<const __m256i*>(block + i + 4 * k)));
  const __m256i s =
      _mm256_or_si256(_mm256_or_si256(acc[0], acc[1]), _mm256_or_si256(acc[2], acc[3]));
  long long out[4];
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), s);
  return static_cast<double>(out[0] | out[1] | out[2] | out[3]);
}

// GB/s read by `threads` threads at once, each from a block of `bytes`.
double MeasureStream(long bytes, int threads, int repeats, bool arithmetic = true) {
  const long doubles = bytes / 8 / 32 * 32;
  const long passes = std::max(1L, (8L << 30) / 8 / doubles / 4);  // 2 GB a thread
  std::vector<std::vector<double>> blocks(
      static_cast<std::size_t>(threads),
      std::vector<double>(static_cast<std::size_t>(doubles), 1e-3));
  const double s = Fastest(threads, repeats, [&](int i) {
    const double* block = blocks[static_cast<std::size_t>(i)].data();
    return arithmetic ? Stream256(block, doubles, passes) : Read256(block, doubles, passes);
  });
  return 8.0 * doubles * passes * threads / s / 1e9;
}

}  // namespace

int main(int argc, char** argv) {
  const int repeats = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  __builtin_cpu_init();
  const Kernel kernels[] = {
      {"AVX-512, fused multiply-add", Fused512, 8, __builtin_cpu_supports("avx512f") != 0},
      {"AVX-512, multiply then add", Unfused512, 8, __builtin_cpu_supports("avx512f") != 0},
      {"AVX2, fused multiply-add", Fused256, 4,
       __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")},
      {"AVX2, multiply then add", Unfused256, 4, __builtin_cpu_supports("avx2") != 0},
  };
  const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
  std::printf("%-30s %14s %14s\n", "double precision", "1 thread", "all threads");
  for (const Kernel& k : kernels) {
    if (!k.available) {
      std::printf("%-30s %14s\n", k.name, "not present");
      continue;
    }
    const double one = Measure(k, 1, repeats), all = Measure(k, cores, repeats);
    std::printf("%-30s %9.1f GF/s %9.1f GF/s (%d)\n", k.name, one, all, cores);
  }
  if (!__builtin_cpu_supports("avx2")) return 0;
  // A multiply and an add for each 8-byte value read: GB/s / 4 is the
  // GFLOP/s such a loop can reach from that cache.
  std::printf("\n%-30s %14s %14s\n", "reading a block", "1 thread", "all threads");
  const struct {
    const char* name;
    long bytes;
  } blocks[] = {{"24 KB (first-level cache)", 24L << 10},
                {"384 KB (second-level cache)", 384L << 10}};
  for (const auto& b : blocks) {
    const double one = MeasureStream(b.bytes, 1, repeats),
                 all = MeasureStream(b.bytes, cores, repeats);
    std::printf("%-30s %9.1f GB/s %9.1f GB/s (%d)  = %.1f GFLOP/s at 2 flops per value\n", b.name,
                one, all, cores, all / 4);
  }
  const double one = MeasureStream(384L << 10, 1, repeats, false),
               all = MeasureStream(384L << 10, cores, repeats, false);
  std::printf("%-30s %9.1f GB/s %9.1f GB/s (%d)\n", "384 KB, no arithmetic", one, all, cores);
  return 0;
}
