#pragma once
// Checked arrays with lower bound 0 in every dimension and an inclusive upper
// bound. Data stand from index 1; index 0 is a spare that some routines use.
// An array that was never sized has no valid index at all. Every access out
// of range raises the "Subscript out of range" failure, which several
// routines rely on to end an operation. Hot loops may take a row pointer
// after one bounds check.
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <type_traits>
#include <vector>

#include "state/Failure.h"
#include "state/LargeMemory.h"

namespace varnoth {

// Storage that comes zeroed (from calloc, or for a large array straight from
// the system on huge pages), so that an array costs nothing until its pages
// are written; plain element types are then not zeroed a second time.
template <typename T>
struct ZeroAllocator {
  using value_type = T;
  ZeroAllocator() = default;
  template <typename U>
  ZeroAllocator(const ZeroAllocator<U>&) {}
  T* allocate(std::size_t n) {
    if (n >= kLargeBlock / sizeof(T)) return static_cast<T*>(ZeroedLarge(n * sizeof(T)));
    void* p = std::calloc(n == 0 ? 1 : n, sizeof(T));
    if (!p) throw std::bad_alloc();
    return static_cast<T*>(p);
  }
  void deallocate(T* p, std::size_t n) {
    if (n >= kLargeBlock / sizeof(T))
      FreeLarge(p, n * sizeof(T));
    else
      std::free(p);
  }
  template <typename U>
  void construct(U* p) {
    if constexpr (!std::is_trivially_default_constructible_v<U>) ::new (static_cast<void*>(p)) U();
  }
  template <typename U, typename... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
  template <typename U>
  bool operator==(const ZeroAllocator<U>&) const {
    return true;
  }
};

template <typename T>
using Storage = std::vector<T, ZeroAllocator<T>>;

namespace detail {
inline std::size_t Extent(long upper) {
  if (upper < 0) ThrowSubscript();
  return static_cast<std::size_t>(upper) + 1;
}
inline bool Inside(long i, std::size_t extent) { return static_cast<unsigned long>(i) < extent; }
}  // namespace detail

template <typename T>
class Array1 {
 public:
  Array1() = default;
  explicit Array1(long upper) { ReDim(upper); }

  // Sizes to 0..upper and clears every element.
  void ReDim(long upper) {
    std::size_t n = detail::Extent(upper);
    Storage<T> fresh;
    fresh.resize(n);
    values_.swap(fresh);
    allocated_ = true;
  }
  // Sizes to 0..upper keeping the elements that stay inside.
  void ReDimPreserve(long upper) {
    std::size_t n = detail::Extent(upper);
    if (n < values_.size()) {
      values_.resize(n);
    } else {
      values_.resize(n, T{});
    }
    allocated_ = true;
  }
  void Erase() {
    values_.clear();
    allocated_ = false;
  }

  T& operator()(long i) {
    if (!detail::Inside(i, values_.size())) ThrowSubscript();
    return values_[static_cast<std::size_t>(i)];
  }
  const T& operator()(long i) const {
    if (!detail::Inside(i, values_.size())) ThrowSubscript();
    return values_[static_cast<std::size_t>(i)];
  }

  bool Allocated() const { return allocated_; }
  // Upper bound; an unsized array raises the subscript failure, as UBound does.
  long Upper() const {
    if (!allocated_) ThrowSubscript();
    return static_cast<long>(values_.size()) - 1;
  }
  std::size_t Size() const { return values_.size(); }
  // Raw access for hot loops; check the range once with Require first.
  T* Data() { return values_.data(); }
  const T* Data() const { return values_.data(); }
  void Require(long last) const {
    if (!allocated_ || !detail::Inside(last, values_.size())) ThrowSubscript();
  }
  void Fill(const T& v) { std::fill(values_.begin(), values_.end(), v); }

  bool operator==(const Array1& o) const = default;

 private:
  Storage<T> values_;
  bool allocated_ = false;
};

template <typename T>
class Array2 {
 public:
  Array2() = default;
  Array2(long upper0, long upper1) { ReDim(upper0, upper1); }

  void ReDim(long upper0, long upper1) {
    std::size_t r = detail::Extent(upper0), c = detail::Extent(upper1);
    Storage<T> fresh;
    fresh.resize(r * c);
    values_.swap(fresh);
    rows_ = r;
    cols_ = c;
    allocated_ = true;
  }
  void ReDimPreserve(long upper0, long upper1) {
    std::size_t r = detail::Extent(upper0), c = detail::Extent(upper1);
    Storage<T> next;
    next.resize(r * c);
    std::size_t keepR = std::min(r, rows_), keepC = std::min(c, cols_);
    for (std::size_t i = 0; i < keepR; ++i)
      std::copy_n(values_.begin() + static_cast<std::ptrdiff_t>(i * cols_), keepC,
                  next.begin() + static_cast<std::ptrdiff_t>(i * c));
    values_.swap(next);
    rows_ = r;
    cols_ = c;
    allocated_ = true;
  }
  void Erase() {
    values_.clear();
    rows_ = cols_ = 0;
    allocated_ = false;
  }
  // Takes over row-major storage of 0..upper0 by 0..upper1 without a copy.
  void Adopt(Storage<T>&& values, long upper0, long upper1) {
    std::size_t r = detail::Extent(upper0), c = detail::Extent(upper1);
    if (values.size() != r * c) ThrowSubscript();
    values_ = std::move(values);
    rows_ = r;
    cols_ = c;
    allocated_ = true;
  }

  T& operator()(long i, long j) {
    if (!detail::Inside(i, rows_) || !detail::Inside(j, cols_)) ThrowSubscript();
    return values_[static_cast<std::size_t>(i) * cols_ + static_cast<std::size_t>(j)];
  }
  const T& operator()(long i, long j) const {
    if (!detail::Inside(i, rows_) || !detail::Inside(j, cols_)) ThrowSubscript();
    return values_[static_cast<std::size_t>(i) * cols_ + static_cast<std::size_t>(j)];
  }

  bool Allocated() const { return allocated_; }
  long Upper0() const {
    if (!allocated_) ThrowSubscript();
    return static_cast<long>(rows_) - 1;
  }
  long Upper1() const {
    if (!allocated_) ThrowSubscript();
    return static_cast<long>(cols_) - 1;
  }
  std::size_t Rows() const { return rows_; }
  std::size_t Cols() const { return cols_; }

  // Row pointer after checking that columns 0..lastCol of row i exist.
  T* Row(long i, long lastCol) {
    Require(i, lastCol);
    return values_.data() + static_cast<std::size_t>(i) * cols_;
  }
  const T* Row(long i, long lastCol) const {
    Require(i, lastCol);
    return values_.data() + static_cast<std::size_t>(i) * cols_;
  }
  void Require(long lastRow, long lastCol) const {
    if (!allocated_ || !detail::Inside(lastRow, rows_) || !detail::Inside(lastCol, cols_))
      ThrowSubscript();
  }
  T* Data() { return values_.data(); }
  const T* Data() const { return values_.data(); }
  void Fill(const T& v) { std::fill(values_.begin(), values_.end(), v); }

  bool operator==(const Array2& o) const = default;

 private:
  Storage<T> values_;
  std::size_t rows_ = 0, cols_ = 0;
  bool allocated_ = false;
};

template <typename T>
class Array3 {
 public:
  Array3() = default;
  Array3(long u0, long u1, long u2) { ReDim(u0, u1, u2); }

  void ReDim(long u0, long u1, long u2) {
    n0_ = detail::Extent(u0);
    n1_ = detail::Extent(u1);
    n2_ = detail::Extent(u2);
    Storage<T> fresh;
    fresh.resize(n0_ * n1_ * n2_);
    values_.swap(fresh);
    allocated_ = true;
  }
  void Erase() {
    values_.clear();
    n0_ = n1_ = n2_ = 0;
    allocated_ = false;
  }
  T& operator()(long i, long j, long k) {
    if (!detail::Inside(i, n0_) || !detail::Inside(j, n1_) || !detail::Inside(k, n2_))
      ThrowSubscript();
    return values_[(static_cast<std::size_t>(i) * n1_ + static_cast<std::size_t>(j)) * n2_ +
                   static_cast<std::size_t>(k)];
  }
  const T& operator()(long i, long j, long k) const {
    return const_cast<Array3*>(this)->operator()(i, j, k);
  }
  bool Allocated() const { return allocated_; }
  long Upper(int dim) const {
    if (!allocated_) ThrowSubscript();
    std::size_t n = dim == 0 ? n0_ : dim == 1 ? n1_ : n2_;
    return static_cast<long>(n) - 1;
  }
  T* Data() { return values_.data(); }
  const T* Data() const { return values_.data(); }

  bool operator==(const Array3& o) const = default;

 private:
  Storage<T> values_;
  std::size_t n0_ = 0, n1_ = 0, n2_ = 0;
  bool allocated_ = false;
};

}  // namespace varnoth
