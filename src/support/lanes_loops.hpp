// The loops of support/lanes.hpp. Included by one source file per width, which names its table KESTRUNE_LANES; all
// else has internal linkage, so that no code for a wider processor gets in the way of a narrower one.

#include <cstddef>

#include "support/arena.hpp"
#include "support/lanes.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::support {
namespace {

// What is padded is a multiple of four: said once, the compiler leaves out the code for a rest.
[[gnu::always_inline]] inline int whole(int ld) {
  if (ld % 4 != 0) __builtin_unreachable();
  return ld;
}

[[gnu::always_inline]] inline double total(const double (&part)[4]) {
  return (part[0] + part[1]) + (part[2] + part[3]);
}

Sums combine(int n, int ld_, const double* m, const double* x, const double* b, double* __restrict s) {
  const int ld = whole(ld_);
  // Two columns at a time: half the loads and stores of s. The first ones set it.
  int j = 2;
  if (n < 2) {
    for (int i = 0; i < ld; ++i) s[i] = x[0] * m[i];
  } else {
    const double* __restrict c0 = m;
    const double* __restrict c1 = c0 + ld;
    const double x0 = x[0], x1 = x[1];
    for (int i = 0; i < ld; ++i) s[i] = x0 * c0[i] + x1 * c1[i];
  }
  for (; j + 1 < n; j += 2) {
    const double* __restrict c0 = m + static_cast<std::size_t>(j) * ld;
    const double* __restrict c1 = c0 + ld;
    const double x0 = x[j], x1 = x[j + 1];
    for (int i = 0; i < ld; ++i) s[i] += x0 * c0[i] + x1 * c1[i];
  }
  if (j < n) {
    const double* __restrict c0 = m + static_cast<std::size_t>(j) * ld;
    const double x0 = x[j];
    for (int i = 0; i < ld; ++i) s[i] += x0 * c0[i];
  }
  double xs[4] = {}, xb[4] = {};
  for (int i = 0; i < ld; i += 4)
    for (int k = 0; k < 4; ++k) {
      xs[k] += x[i + k] * s[i + k];
      xb[k] += x[i + k] * b[i + k];
    }
  return {total(xs), total(xb)};
}

void linear(int ld_, double c0, double cb, const double* __restrict b, double cs, const double* __restrict s,
            double* __restrict out) {
  const int ld = whole(ld_);
  for (int i = 0; i < ld; ++i) out[i] = c0 + cb * b[i] + cs * s[i];
}

// One column of the matrix of pairs, elements begin .. end - 1.
[[gnu::always_inline]] inline void pairs_of(const PairTerms& p, int j, const double* __restrict a,
                                            const double* __restrict b, const double* __restrict s,
                                            double* __restrict column, int begin, int end) {
  const double lj = p.h_b * b[j] + p.h_s * s[j];
  const double f = p.e - lj * p.inv_k;  // factor of l_i
  const double c0 = p.unit + p.g_b * b[j] + p.e * lj;
  const double cb = p.g_b + p.g_bb * b[j] + p.g_bs * s[j] + f * p.h_b;
  const double cs = p.g_bs * b[j] + f * p.h_s;
  for (int i = begin; i < end; ++i) column[i] = c0 + cb * b[i] + cs * s[i] + p.g_a * a[i];
}

void pairs(const PairTerms& p, int n, int ld_, const double* a, const double* b, const double* s, double* out,
           int ld_out, int rows, bool lower) {
  const int ld = whole(ld_);
  const auto at = [](int j, int lead) { return static_cast<std::size_t>(j) * lead; };
  if (ld_out == ld && rows == ld) {
    for (int j = 0; j < n; ++j)
      pairs_of(p, j, a + at(j, ld), b, s, out + at(j, ld), lower ? block_start(j) : 0, ld);
  } else {
    for (int j = 0; j < n; ++j) pairs_of(p, j, a + at(j, ld), b, s, out + at(j, ld_out), 0, rows);
  }
}

double shares(int n, int ld_, double highest, double* __restrict log_w, double* __restrict w) {
  const int ld = whole(ld_);
  for (int i = n; i < ld; ++i) log_w[i] = 0.0;
  for (int i = 0; i < ld; ++i) {
    log_w[i] = log_w[i] < highest ? log_w[i] : highest;
    w[i] = fast_exp(log_w[i]);
  }
  for (int i = n; i < ld; ++i) w[i] = 0.0;
  double sum[4] = {};
  for (int i = 0; i < ld; i += 4)
    for (int k = 0; k < 4; ++k) sum[k] += w[i + k];
  const double all = total(sum), scale = 1.0 / all;
  for (int i = 0; i < ld; ++i) w[i] *= scale;
  return all;
}

void powers(int count, const double* __restrict factor, const double* __restrict argument, double scale,
            double* __restrict out) {
  for (int i = 0; i < count; ++i) out[i] = factor[i] * fast_exp(argument[i] * scale);
}

void scale(int n, int ld_, const double* __restrict root, const double* __restrict m, double* __restrict h) {
  const int ld = whole(ld_);
  for (int j = 0; j < n; ++j) {
    const std::size_t at = static_cast<std::size_t>(j) * ld;
    const double rj = root[j];
    for (int i = block_start(j); i < ld; ++i) h[at + i] = rj * root[i] * m[at + i];
  }
}

bool ldl_factor(int n, int ld_, double* a, double floor) {
  const int ld = whole(ld_);
  for (int j = 0; j < n; ++j) {
    double* __restrict cj = a + static_cast<std::size_t>(j) * ld;
    const double pivot = cj[j];
    if (!(pivot > floor)) return false;
    const double inverse = 1.0 / pivot;
    // Right-looking: the columns to the right are updated with this one before it is scaled.
    for (int k = j + 1; k < n; ++k) {
      double* __restrict ck = a + static_cast<std::size_t>(k) * ld;
      const double w = cj[k] * inverse;
      for (int i = block_start(k); i < ld; ++i) ck[i] -= w * cj[i];
    }
    for (int i = block_start(j); i < ld; ++i) cj[i] *= inverse;
    cj[j] = inverse;
  }
  return true;
}

void group_sums(int n, int ld_, int m, const double* __restrict f, const double* __restrict A,
                const double* __restrict e, const double* __restrict b, double* __restrict half,
                double* __restrict d, double* __restrict out) {
  const int ld = whole(ld_);
  // half = A f^T, kept as [ld * m]; then d_i.
  for (int i = 0; i < ld; ++i) d[i] = 0.0;
  for (int k = 0; k < m; ++k) {
    double* __restrict h = half + static_cast<std::size_t>(k) * ld;
    for (int i = 0; i < ld; ++i) h[i] = 0.0;
    for (int l = 0; l < m; ++l) {
      const double w = A[l + k * m];
      if (w == 0.0) continue;
      const double* __restrict fl = f + static_cast<std::size_t>(l) * ld;
      for (int i = 0; i < ld; ++i) h[i] += w * fl[i];
    }
    const double* __restrict fk = f + static_cast<std::size_t>(k) * ld;
    for (int i = 0; i < ld; ++i) d[i] += fk[i] * h[i];
  }
  for (int i = 0; i < ld; ++i) d[i] = e[i] + 0.5 * d[i];
  for (int j = 0; j < n; ++j) {
    double* __restrict column = out + static_cast<std::size_t>(j) * ld;
    const double dj = d[j], factor = 0.5 * b[j];
    for (int i = 0; i < ld; ++i) column[i] = d[i] + dj;
    for (int k = 0; k < m; ++k) {
      const double w = f[j + static_cast<std::size_t>(k) * ld];
      if (w == 0.0) continue;
      const double* __restrict h = half + static_cast<std::size_t>(k) * ld;
      for (int i = 0; i < ld; ++i) column[i] -= w * h[i];
    }
    for (int i = 0; i < ld; ++i) column[i] *= factor * b[i];
  }
}

}  // namespace

const Lanes KESTRUNE_LANES = {KESTRUNE_LANES_NAME, combine,   linear, pairs, shares, powers, scale,
                              ldl_factor,          group_sums};

}  // namespace kestrune::support
