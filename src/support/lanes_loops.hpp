// The loops of support/lanes.hpp. Included by one source file per width, which names its table KESTRUNE_LANES; all
// else has internal linkage, so that no code for a wider processor gets in the way of a narrower one.

#include <cstddef>
#include <type_traits>

#include "support/arena.hpp"
#include "support/lanes.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::support {

// What the processor works on at once.
#ifdef __AVX2__
typedef double Lane [[gnu::vector_size(32)]];
typedef std::uint64_t LaneBits [[gnu::vector_size(32)]];
#else
typedef double Lane [[gnu::vector_size(16)]];
typedef std::uint64_t LaneBits [[gnu::vector_size(16)]];
#endif
template <>
struct kernel::BitsOf<Lane> {
  typedef LaneBits Type;
};

namespace {

constexpr int kLane = sizeof(Lane) / sizeof(double);
// Four doubles in all widths.
typedef double Quad [[gnu::vector_size(32)]];
// Vectors in memory, aligned as doubles are: one, four doubles, and half of these.
typedef Lane LaneAt [[gnu::aligned(8), gnu::may_alias]];
typedef Quad Four [[gnu::aligned(8), gnu::may_alias]];
typedef double Two [[gnu::vector_size(16), gnu::aligned(8), gnu::may_alias]];

// What is padded is a multiple of four: said once, the compiler leaves out the code for a rest.
[[gnu::always_inline]] inline int whole(int ld) {
  if (ld % 4 != 0) __builtin_unreachable();
  return ld;
}

[[gnu::always_inline]] inline double total(const double (&part)[4]) {
  return (part[0] + part[1]) + (part[2] + part[3]);
}

[[gnu::always_inline]] inline const Four* four_at(const double* m, int ld, int j, int begin) {
  return reinterpret_cast<const Four*>(m + static_cast<std::size_t>(j) * ld + begin);
}

// The doubles at p in halves of four: what other code has just written two at a time is at hand as such only.
template <class Vector>
[[gnu::always_inline]] inline void by_halves(const double* p, Vector& out) {
  const Two *const low = reinterpret_cast<const Two*>(p), *const high = low + 1;
  if constexpr (sizeof(Vector) == sizeof(Two))
    out = *low;
  else
    out = __builtin_shufflevector(*low, *high, 0, 1, 2, 3);
}

[[gnu::always_inline]] inline double total(const Four& part) {
  return (part[0] + part[1]) + (part[2] + part[3]);
}

// Rows begin .. begin + 4 Vectors - 1 of the sum of x_j times column j, two columns at a time, in registers; xs and
// xb take what they add to the sums of x s and x b.
template <int Vectors>
[[gnu::always_inline]] inline void combine_rows(int n, int ld, const double* m, const double* x,
                                                const double* b, int begin, double* s, Four& xs, Four& xb) {
  Quad own[Vectors];
  for (int v = 0; v < Vectors; ++v) {
    by_halves(x + begin + 4 * v, own[v]);
    xb += own[v] * four_at(b, ld, 0, begin)[v];
  }
  Four sum[Vectors];
  int j = 0;
  if (n % 2 != 0) {
    for (int v = 0; v < Vectors; ++v) sum[v] = x[0] * four_at(m, ld, 0, begin)[v];
    j = 1;
  } else {
    for (int v = 0; v < Vectors; ++v)
      sum[v] = x[0] * four_at(m, ld, 0, begin)[v] + x[1] * four_at(m, ld, 1, begin)[v];
    j = 2;
  }
  for (; j < n; j += 2) {
    const Four *const c0 = four_at(m, ld, j, begin), *const c1 = four_at(m, ld, j + 1, begin);
    const double x0 = x[j], x1 = x[j + 1];
    for (int v = 0; v < Vectors; ++v) sum[v] += x0 * c0[v] + x1 * c1[v];
  }
  Four* const out = reinterpret_cast<Four*>(s + begin);
  for (int v = 0; v < Vectors; ++v) {
    out[v] = sum[v];
    xs += own[v] * sum[v];
  }
}

// Calls rows(i, number of vectors) for the rows from begin to ld, in strips that fit the registers.
template <class Rows>
[[gnu::always_inline]] inline void in_strips(int begin, int ld, Rows&& rows) {
  int i = begin;
  for (; ld - i >= 16; i += 16) rows(i, std::integral_constant<int, 4>());
  if (ld - i == 12) rows(i, std::integral_constant<int, 3>());
  if (ld - i == 8) rows(i, std::integral_constant<int, 2>());
  if (ld - i == 4) rows(i, std::integral_constant<int, 1>());
}

Sums combine(int n, int ld_, const double* m, const double* x, const double* b, double* __restrict s) {
  const int ld = whole(ld_);
  Four xs{}, xb{};
  in_strips(0, ld, [&](int i, auto vectors) { combine_rows<vectors>(n, ld, m, x, b, i, s, xs, xb); });
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
  const Lane most = Lane{} + highest, end = Lane{} + n, step = Lane{} + kLane;
  Lane index{}, sum[4 / kLane] = {};
  for (int k = 0; k < kLane; ++k) index[k] = k;
  for (int i = 0; i < ld; i += 4)
    for (int k = 0; k < 4; k += kLane, index += step) {
      // The padding is left out here: written alone it would be late for the vector that it is a part of.
      const auto inside = index < end;
      Lane v;
      by_halves(log_w + i + k, v);
      v = inside ? (v < most ? v : most) : Lane{};
      const Lane e = inside ? exponential(v) : Lane{};
      *reinterpret_cast<LaneAt*>(log_w + i + k) = v;
      *reinterpret_cast<LaneAt*>(w + i + k) = e;
      sum[k / kLane] += e;
    }
  double part[4];
  for (int k = 0; k < 4; ++k) part[k] = sum[k / kLane][k % kLane];
  const double all = total(part);
  const Lane scale = Lane{} + 1.0 / all;
  for (int i = 0; i < ld; i += kLane) *reinterpret_cast<LaneAt*>(w + i) *= scale;
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

double squares(int n, int ld_, const double* m) {
  const int ld = whole(ld_);
  double part[4] = {}, diagonal = 0.0;
  for (int j = 0; j < n; ++j) {
    const double* column = m + static_cast<std::size_t>(j) * ld;
    diagonal += column[j] * column[j];
    for (int i = block_start(j); i < ld; i += 4)
      for (int k = 0; k < 4; ++k) part[k] += column[i + k] * column[i + k];
  }
  return 2.0 * total(part) - diagonal;
}

// Takes from rows begin .. begin + 4 Vectors - 1 of column j what the columns before it have there, in registers.
template <int Vectors>
[[gnu::always_inline]] inline void eliminate(int j, int ld, double* a, int begin) {
  Four* const column = reinterpret_cast<Four*>(a + static_cast<std::size_t>(j) * ld + begin);
  Four sum[Vectors];
  for (int v = 0; v < Vectors; ++v) sum[v] = column[v];
  for (int k = 0; k < j; ++k) {
    const double* const ck = a + static_cast<std::size_t>(k) * ld;
    const double w = ck[j] * ck[k];
    const Four* const rows = reinterpret_cast<const Four*>(ck + begin);
    for (int v = 0; v < Vectors; ++v) sum[v] -= w * rows[v];
  }
  for (int v = 0; v < Vectors; ++v) column[v] = sum[v];
}

// Column by column; they are scaled at the end. On the diagonal stand the inverse pivots of those that are done.
bool ldl_factor(int n, int ld_, double* a, double floor) {
  const int ld = whole(ld_);
  for (int j = 0; j < n; ++j) {
    in_strips(block_start(j), ld, [&](int i, auto vectors) { eliminate<vectors>(j, ld, a, i); });
    double& pivot = a[static_cast<std::size_t>(j) * ld + j];
    if (!(pivot > floor)) return false;
    pivot = 1.0 / pivot;
  }
  for (int j = 0; j < n; ++j) {
    double* __restrict cj = a + static_cast<std::size_t>(j) * ld;
    const double inverse = cj[j];
    for (int i = block_start(j); i < ld; ++i) cj[i] *= inverse;
    cj[j] = inverse;
  }
  return true;
}

// Rows begin .. of group_sums: half and d. Zeros of A are left out.
template <int Vectors>
[[gnu::always_inline]] inline void group_halves(int ld, int m, const double* f, const double* A,
                                                const double* e, int begin, double* half, double* d) {
  Four all[Vectors] = {};
  for (int k = 0; k < m; ++k) {
    Four sum[Vectors] = {};
    for (int l = 0; l < m; ++l) {
      const double w = A[l + k * m];
      if (w == 0.0) continue;
      const Four* const fl = four_at(f, ld, l, begin);
      for (int v = 0; v < Vectors; ++v) sum[v] += w * fl[v];
    }
    const Four* const fk = four_at(f, ld, k, begin);
    Four* const h = reinterpret_cast<Four*>(half + static_cast<std::size_t>(k) * ld + begin);
    for (int v = 0; v < Vectors; ++v) {
      h[v] = sum[v];
      all[v] += fk[v] * sum[v];
    }
  }
  const Four* const own = four_at(e, ld, 0, begin);
  Four* const out = reinterpret_cast<Four*>(d + begin);
  for (int v = 0; v < Vectors; ++v) out[v] = own[v] + 0.5 * all[v];
}

// Rows begin .. of column j of its result. Groups that j does not have are left out.
template <int Vectors>
[[gnu::always_inline]] inline void group_column(int j, int ld, int m, const double* f, const double* b,
                                                const double* half, const double* d, int begin, double* out) {
  const Four *const di = four_at(d, ld, 0, begin), *const bi = four_at(b, ld, 0, begin);
  const double dj = d[j], factor = 0.5 * b[j];
  Four sum[Vectors];
  for (int v = 0; v < Vectors; ++v) sum[v] = di[v] + dj;
  for (int k = 0; k < m; ++k) {
    const double w = f[j + static_cast<std::size_t>(k) * ld];
    if (w == 0.0) continue;
    const Four* const h = four_at(half, ld, k, begin);
    for (int v = 0; v < Vectors; ++v) sum[v] -= w * h[v];
  }
  Four* const column = reinterpret_cast<Four*>(out + static_cast<std::size_t>(j) * ld + begin);
  for (int v = 0; v < Vectors; ++v) column[v] = sum[v] * (factor * bi[v]);
}

void group_sums(int n, int ld_, int m, const double* f, const double* A, const double* e, const double* b,
                double* half, double* d, double* out) {
  const int ld = whole(ld_);
  in_strips(0, ld, [&](int i, auto vectors) { group_halves<vectors>(ld, m, f, A, e, i, half, d); });
  for (int j = 0; j < n; ++j)
    in_strips(0, ld, [&](int i, auto vectors) { group_column<vectors>(j, ld, m, f, b, half, d, i, out); });
}

}  // namespace

const Lanes KESTRUNE_LANES = {KESTRUNE_LANES_NAME, combine,   linear, pairs, shares, powers, scale, squares,
                              ldl_factor,          group_sums};

}  // namespace kestrune::support
