// Nodes: eigenvalues of the Jacobi matrix [Gol69] by bisection on its Sturm sequence, which cannot miss a zero
// or find one twice. Matrices: barycentric formulas [Ber04], their diagonals from the rule that the derivative
// of a constant is zero.
//
// [Gol69] Golub, G. H.; Welsch, J. H.: Calculation of Gauss quadrature rules. Math. Comp. 23 (1969) 221-230.
// [Ber04] Berrut, J.-P.; Trefethen, L. N.: Barycentric Lagrange interpolation. SIAM Rev. 46 (2004) 501-517.
#include "collocation.hpp"

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace kestrune::tools {
namespace {

using Index = std::ptrdiff_t;
using Doubles = std::vector<double>;

// Three-term recurrence of the monic polynomials on [0, 1]:
// p(k+1) = (x - diagonal[k]) p(k) - off2[k] p(k-1); off2[0] is not used.
struct Recurrence {
  Doubles diagonal, off2;
};

Recurrence jacobi_recurrence(Index n, double alpha, double beta) {
  Recurrence r{Doubles(static_cast<std::size_t>(n)), Doubles(static_cast<std::size_t>(n))};
  const double sum = alpha + beta;
  for (Index i = 0; i < n; ++i) {
    const std::size_t at = static_cast<std::size_t>(i);
    const double k = static_cast<double>(i), c = 2.0 * k + sum;
    // On [-1, 1] the diagonal is (beta - alpha)(beta + alpha) / (c (c + 2)); x = (1 + t) / 2.
    const double d = i == 0 ? (beta - alpha) / (sum + 2.0) : (beta - alpha) * sum / (c * (c + 2.0));
    r.diagonal[at] = 0.5 * (1.0 + d);
    if (i == 1) {
      r.off2[at] = (1.0 + alpha) * (1.0 + beta) / ((sum + 2.0) * (sum + 2.0) * (sum + 3.0));
    } else if (i > 1) {
      r.off2[at] = k * (k + alpha) * (k + beta) * (k + sum) / (c * c * (c + 1.0) * (c - 1.0));
    }
  }
  return r;
}

// Number of zeros below x, from the signs of the ratios p(k+1) / p(k).
Index zeros_below(const Recurrence& r, double x) noexcept {
  Index count = 0;
  double ratio = 1.0;
  for (std::size_t k = 0; k < r.diagonal.size(); ++k) {
    ratio = x - r.diagonal[k] - (k > 0 ? r.off2[k] / ratio : 0.0);
    if (ratio == 0.0) ratio = -std::numeric_limits<double>::min();
    if (ratio > 0.0) ++count;
  }
  return count;
}

void jacobi_zeros(Index n, double alpha, double beta, double* x) {
  const Recurrence r = jacobi_recurrence(n, alpha, beta);
  double floor = 0.0;
  for (Index i = 0; i < n; ++i) {
    double low = floor, high = 1.0;
    for (;;) {
      const double mid = 0.5 * (low + high);
      if (mid <= low || mid >= high) break;
      (zeros_below(r, mid) > i ? high : low) = mid;
    }
    x[i] = high;
    floor = low;
  }
}

// Barycentric weights 1 / prod (x_i - x_j) as mantissa and binary exponent: they never overflow.
struct Barycentric {
  Doubles mantissa;
  std::vector<int> exponent;
  double ratio(Index j, Index i) const {
    const std::size_t a = static_cast<std::size_t>(j), b = static_cast<std::size_t>(i);
    return std::ldexp(mantissa[a] / mantissa[b], exponent[a] - exponent[b]);
  }
};

Barycentric barycentric_weights(Index nt, const double* x) {
  Barycentric result{Doubles(static_cast<std::size_t>(nt)), std::vector<int>(static_cast<std::size_t>(nt))};
  for (Index i = 0; i < nt; ++i) {
    double product = 1.0;
    int exponent = 0;
    for (Index j = 0; j < nt; ++j) {
      if (j == i) continue;
      int shift = 0;
      product = std::frexp(product * (x[i] - x[j]), &shift);
      exponent += shift;
    }
    result.mantissa[static_cast<std::size_t>(i)] = 1.0 / product;
    result.exponent[static_cast<std::size_t>(i)] = -exponent;
  }
  return result;
}

void derivative_matrices(Index nt, const double* x, const Barycentric& weight, double* a, double* b) {
  for (Index i = 0; i < nt; ++i) {
    double first = 0.0, second = 0.0;
    for (Index j = 0; j < nt; ++j) {
      if (j == i) continue;
      const double value = weight.ratio(j, i) / (x[i] - x[j]);
      a[i + nt * j] = value;
      first -= value;
    }
    a[i + nt * i] = first;
    for (Index j = 0; j < nt; ++j) {
      if (j == i) continue;
      const double value = 2.0 * a[i + nt * j] * (first - 1.0 / (x[i] - x[j]));
      b[i + nt * j] = value;
      second -= value;
    }
    b[i + nt * i] = second;
  }
}

// Values of all Lagrange polynomials at t, second barycentric form.
void lagrange_values(Index nt, const double* x, const Barycentric& weight, double t, Doubles& value) {
  int top = std::numeric_limits<int>::min();
  for (const int exponent : weight.exponent) top = exponent > top ? exponent : top;
  double sum = 0.0;
  for (Index j = 0; j < nt; ++j) {
    const std::size_t at = static_cast<std::size_t>(j);
    if (t == x[j]) {
      value.assign(value.size(), 0.0);
      value[at] = 1.0;
      return;
    }
    value[at] = std::ldexp(weight.mantissa[at], weight.exponent[at] - top) / (t - x[j]);
    sum += value[at];
  }
  for (double& v : value) v /= sum;
}

// Gauss-Legendre weight on [0, 1] at the zero t of the polynomial of degree m: 1 / ((1 - s^2) P'(s)^2) with
// s = 2 t - 1, and P' from P and the polynomial before it.
double gauss_weight(Index m, double t) noexcept {
  double previous = 0.0, value = 1.0;
  const double s = 2.0 * t - 1.0;
  for (Index k = 1; k <= m; ++k) {
    const double c = static_cast<double>(k);
    const double next = ((2.0 * c - 1.0) * s * value - (c - 1.0) * previous) / c;
    previous = value;
    value = next;
  }
  const double width = 4.0 * t * (1.0 - t);  // 1 - s^2
  const double slope = static_cast<double>(m) * (previous - s * value) / width;
  return 1.0 / (width * slope * slope);
}

// Every l_j has degree nt - 1: a Gauss rule of half as many points integrates it exactly.
void interpolatory_weights(Index nt, const double* x, const Barycentric& weight, double* w) {
  const Index m = (nt + 1) / 2;
  Doubles t(static_cast<std::size_t>(m)), value(static_cast<std::size_t>(nt));
  jacobi_zeros(m, 0.0, 0.0, t.data());
  for (Index j = 0; j < nt; ++j) w[j] = 0.0;
  for (const double node : t) {
    const double gauss = gauss_weight(m, node);
    lagrange_values(nt, x, weight, node, value);
    for (Index j = 0; j < nt; ++j) w[j] += gauss * value[static_cast<std::size_t>(j)];
  }
}

}  // namespace

bool collocation(std::int32_t n, std::int32_t n0, std::int32_t n1, double alpha, double beta, double* x,
                 double* a, double* b, double* w) {
  if (n < 0 || n > kMaxCollocation || n0 < 0 || n0 > 1 || n1 < 0 || n1 > 1 || n + n0 + n1 < 1) return false;
  if (!(alpha > -1.0) || !(beta > -1.0) || !std::isfinite(alpha) || !std::isfinite(beta)) return false;
  const Index nt = n + n0 + n1;
  if (n0 == 1) x[0] = 0.0;
  jacobi_zeros(n, alpha, beta, x + n0);
  if (n1 == 1) x[nt - 1] = 1.0;
  const Barycentric weight = barycentric_weights(nt, x);
  derivative_matrices(nt, x, weight, a, b);
  interpolatory_weights(nt, x, weight, w);
  return true;
}

}  // namespace kestrune::tools
