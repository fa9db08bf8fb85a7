// [Hag84] Hager, W. W.: Condition estimates. SIAM J. Sci. Stat. Comput. 5 (1984) 311-316.
#include "dense.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "scratch.hpp"

namespace kestrune::tools {
namespace {

using Index = std::ptrdiff_t;

constexpr Index kLocal = 64;  // orders up to this one need no heap
using Matrix = Scratch<double, kLocal * kLocal>;
using Vector = Scratch<double, kLocal>;
using Pivots = Scratch<Index, kLocal>;

void add_multiple(Index n, double factor, const double* x, double* y) noexcept {
  for (Index i = 0; i < n; ++i) y[i] += factor * x[i];
}

double dot(Index n, const double* x, const double* y) noexcept {
  double sum = 0.0;
  for (Index i = 0; i < n; ++i) sum += x[i] * y[i];
  return sum;
}

double largest(Index n, const double* x) noexcept {
  double result = 0.0;
  for (Index i = 0; i < n; ++i) result = std::max(result, std::fabs(x[i]));
  return result;
}

bool all_finite(Index n, const double* x) noexcept {
  for (Index i = 0; i < n; ++i) {
    if (!std::isfinite(x[i])) return false;
  }
  return true;
}

Index largest_row(Index first, Index n, const double* column) noexcept {
  Index row = first;
  for (Index i = first + 1; i < n; ++i) {
    if (std::fabs(column[i]) > std::fabs(column[row])) row = i;
  }
  return row;
}

// Writes the equilibrated matrix to s[n * n] and the row factors, powers of two, to scale[n].
DenseStatus equilibrate(Index n, Index lda, const double* a, double* s, double* scale) noexcept {
  std::fill_n(scale, n, 0.0);
  for (Index j = 0; j < n; ++j) {
    for (Index i = 0; i < n; ++i) {
      const double size = std::fabs(a[i + lda * j]);
      if (!std::isfinite(size)) return DenseStatus::bad_argument;
      scale[i] = std::max(scale[i], size);
    }
  }
  for (Index i = 0; i < n; ++i) {
    if (scale[i] == 0.0) return DenseStatus::singular;
    scale[i] = std::ldexp(1.0, std::clamp(-std::ilogb(scale[i]), -1022, 1023));
  }
  for (Index j = 0; j < n; ++j) {
    for (Index i = 0; i < n; ++i) s[i + n * j] = a[i + lda * j] * scale[i];
  }
  return DenseStatus::ok;
}

// s x = y with the factors P s = L U, L with unit diagonal, pivot[k] the row exchanged with row k.
void solve_scaled(Index n, Index lda, const double* lu, const Index* pivot, double* x) noexcept {
  for (Index k = 0; k < n; ++k) std::swap(x[k], x[pivot[k]]);
  for (Index k = 0; k < n; ++k) {
    if (x[k] != 0.0) add_multiple(n - k - 1, -x[k], lu + lda * k + k + 1, x + k + 1);
  }
  for (Index k = n; k-- > 0;) {
    x[k] /= lu[k + lda * k];
    add_multiple(k, -x[k], lu + lda * k, x);
  }
}

void solve_scaled_transposed(Index n, Index lda, const double* lu, const Index* pivot, double* x) noexcept {
  for (Index k = 0; k < n; ++k) x[k] = (x[k] - dot(k, lu + lda * k, x)) / lu[k + lda * k];
  for (Index k = n; k-- > 0;) x[k] -= dot(n - k - 1, lu + lda * k + k + 1, x + k + 1);
  for (Index k = n; k-- > 0;) std::swap(x[k], x[pivot[k]]);
}

// Lower bound, seldom far off, of the largest row sum of |C inverse(s)|, C = diag(column): the reciprocal of
// the distance of the matrix with both rows and columns equilibrated from a singular one [Hag84]. y, z:
// work[n].
double inverse_norm(Index n, Index lda, const double* lu, const Index* pivot, const double* column, double* y,
                    double* z) noexcept {
  constexpr int kSweeps = 3;
  double estimate = 0.0;
  std::fill_n(y, n, 1.0 / static_cast<double>(n));
  for (int sweep = 0; sweep < kSweeps; ++sweep) {
    for (Index i = 0; i < n; ++i) y[i] *= column[i];
    solve_scaled_transposed(n, lda, lu, pivot, y);
    double sum = 0.0;
    for (Index i = 0; i < n; ++i) {
      sum += std::fabs(y[i]);
      z[i] = y[i] < 0.0 ? -1.0 : 1.0;
    }
    if (!(sum > estimate)) return std::isnan(sum) ? HUGE_VAL : estimate;
    estimate = sum;
    solve_scaled(n, lda, lu, pivot, z);
    for (Index i = 0; i < n; ++i) z[i] *= column[i];
    const Index steepest = largest_row(0, n, z);
    std::fill_n(y, n, 0.0);
    y[steepest] = 1.0;
  }
  return estimate;
}

// Factors P s = L U in place. Singular: a change of n eps, measured in the largest element of each column,
// would make a pivot or the whole matrix so. The second is looked at only when a pivot is small.
DenseStatus factor_scaled(Index n, Index lda, double* s, Index* pivot) noexcept {
  constexpr double suspicious = 1e-8;
  Vector columns(static_cast<std::size_t>(n)), first(static_cast<std::size_t>(n)),
      second(static_cast<std::size_t>(n));
  double *size = columns.data(), *y = first.data(), *z = second.data();
  if (size == nullptr || y == nullptr || z == nullptr) return DenseStatus::bad_argument;
  const double noise = static_cast<double>(n) * std::numeric_limits<double>::epsilon();
  for (Index j = 0; j < n; ++j) size[j] = largest(n, s + lda * j);
  bool small_pivot = false;
  for (Index k = 0; k < n; ++k) {
    double* column = s + lda * k;
    const Index p = largest_row(k, n, column);
    if (!(std::fabs(column[p]) > noise * size[k])) return DenseStatus::singular;
    small_pivot = small_pivot || std::fabs(column[p]) < suspicious * size[k];
    pivot[k] = p;
    if (p != k) {
      for (Index j = 0; j < n; ++j) std::swap(s[k + lda * j], s[p + lda * j]);
    }
    const double diagonal = column[k];
    for (Index i = k + 1; i < n; ++i) column[i] /= diagonal;
    for (Index j = k + 1; j < n; ++j) {
      double* target = s + lda * j;
      if (target[k] != 0.0) add_multiple(n - k - 1, -target[k], column + k + 1, target + k + 1);
    }
  }
  const bool singular = small_pivot && inverse_norm(n, lda, s, pivot, size, y, z) * noise >= 1.0;
  return singular ? DenseStatus::singular : DenseStatus::ok;
}

// One step of refinement of x for s x = y; y is destroyed. A correction that is not small means a matrix
// too ill-conditioned for it to help, and is dropped.
void refine(Index n, Index lda, const double* s, const double* lu, const Index* pivot, double* y,
            double* x) noexcept {
  for (Index j = 0; j < n; ++j) add_multiple(n, -x[j], s + n * j, y);
  solve_scaled(n, lda, lu, pivot, y);
  if (!(largest(n, y) <= 0.25 * largest(n, x)) || !all_finite(n, y)) return;
  for (Index i = 0; i < n; ++i) x[i] += y[i];
}

}  // namespace

std::int32_t factor_classic(double* a, std::int32_t lda_in, std::int32_t n_in, std::int32_t* ipvt) noexcept {
  const Index n = n_in, lda = lda_in;
  std::int32_t info = 0;
  for (Index k = 0; k < n; ++k) {
    double* column = a + lda * k;
    const Index p = largest_row(k, n, column);
    ipvt[k] = static_cast<std::int32_t>(p + 1);
    if (column[p] == 0.0) {
      info = static_cast<std::int32_t>(k + 1);
      continue;
    }
    std::swap(column[k], column[p]);
    const double diagonal = column[k];
    for (Index i = k + 1; i < n; ++i) column[i] = -(column[i] / diagonal);
    for (Index j = k + 1; j < n; ++j) {
      double* target = a + lda * j;
      std::swap(target[k], target[p]);
      add_multiple(n - k - 1, target[k], column + k + 1, target + k + 1);
    }
  }
  return info;
}

void solve_classic(const double* a, std::int32_t lda_in, std::int32_t n_in, const std::int32_t* ipvt, double* b,
                   bool transposed) noexcept {
  const Index n = n_in, lda = lda_in;
  if (!transposed) {
    for (Index k = 0; k < n - 1; ++k) {
      std::swap(b[k], b[ipvt[k] - 1]);
      add_multiple(n - k - 1, b[k], a + lda * k + k + 1, b + k + 1);
    }
    for (Index k = n; k-- > 0;) {
      b[k] /= a[k + lda * k];
      add_multiple(k, -b[k], a + lda * k, b);
    }
    return;
  }
  for (Index k = 0; k < n; ++k) b[k] = (b[k] - dot(k, a + lda * k, b)) / a[k + lda * k];
  for (Index k = n - 1; k-- > 0;) {
    b[k] += dot(n - k - 1, a + lda * k + k + 1, b + k + 1);
    std::swap(b[k], b[ipvt[k] - 1]);
  }
}

DenseStatus solve_system(std::int32_t n_in, std::int32_t lda_in, double* a, std::int32_t m, std::int32_t ldb,
                         double* b) noexcept {
  if (n_in < 1 || lda_in < n_in || m < 0 || (m > 0 && ldb < n_in)) return DenseStatus::bad_argument;
  const Index n = n_in, lda = lda_in;
  const std::size_t size = static_cast<std::size_t>(n);
  for (Index k = 0; k < m; ++k) {
    if (!all_finite(n, b + Index{ldb} * k)) return DenseStatus::bad_argument;
  }
  Matrix scaled(size <= 0xFFFF ? size * size : std::numeric_limits<std::size_t>::max());
  Vector scales(size), rights(size);
  Pivots pivots(size);
  double *s = scaled.data(), *scale = scales.data(), *y = rights.data();
  Index* pivot = pivots.data();
  if (s == nullptr || scale == nullptr || y == nullptr || pivot == nullptr) return DenseStatus::bad_argument;

  DenseStatus status = equilibrate(n, lda, a, s, scale);
  if (status != DenseStatus::ok) return status;
  for (Index j = 0; j < n; ++j) std::copy_n(s + n * j, n, a + lda * j);
  status = factor_scaled(n, lda, a, pivot);
  if (status != DenseStatus::ok) return status;
  for (Index k = 0; k < m; ++k) {
    double* x = b + Index{ldb} * k;
    for (Index i = 0; i < n; ++i) x[i] = y[i] = x[i] * scale[i];
    solve_scaled(n, lda, a, pivot, x);
    refine(n, lda, s, a, pivot, y, x);
    if (!all_finite(n, x)) status = DenseStatus::singular;
  }
  return status;
}

DenseStatus invert(std::int32_t n_in, std::int32_t lda_in, double* a) noexcept {
  if (n_in < 1 || lda_in < n_in) return DenseStatus::bad_argument;
  const Index n = n_in, lda = lda_in;
  const std::size_t size = static_cast<std::size_t>(n);
  Matrix scaled(size <= 0xFFFF ? size * size : std::numeric_limits<std::size_t>::max());
  Vector scales(size);
  Pivots pivots(size);
  double *s = scaled.data(), *scale = scales.data();
  Index* pivot = pivots.data();
  if (s == nullptr || scale == nullptr || pivot == nullptr) return DenseStatus::bad_argument;

  DenseStatus status = equilibrate(n, lda, a, s, scale);
  if (status != DenseStatus::ok) return status;
  status = factor_scaled(n, n, s, pivot);
  if (status != DenseStatus::ok) return status;
  for (Index j = 0; j < n; ++j) {
    double* x = a + lda * j;
    std::fill_n(x, n, 0.0);
    x[j] = scale[j];
    solve_scaled(n, n, s, pivot, x);
    if (!all_finite(n, x)) status = DenseStatus::singular;
  }
  return status;
}

}  // namespace kestrune::tools
