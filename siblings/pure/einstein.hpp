// Heat capacities built of vibration terms, equations 107 and 127, and their integrals.
//
// With u = theta/T, E = exp(-u) and s = +1 or -1 every term is  C u^2 E/(1 - s E)^2:
//   s = +1: Einstein's function, which is (x/sinh x)^2 with x = u/2
//   s = -1: (x/cosh x)^2 with x = u/2
// Integrals, with n = E/(1 - s E):
//   over T:    C theta n                      (equation 107: coth and tanh of the usual form)
//   over ln T: C [u n - s ln(1 - s E)]
// Differences between two temperatures are formed without subtracting close numbers. Terms go in pairs.
#ifndef KESTRUNE_SIBLINGS_PURE_EINSTEIN_HPP
#define KESTRUNE_SIBLINGS_PURE_EINSTEIN_HPP

#include "pure/elementary.hpp"
#include "pure/row.hpp"

namespace kestrune::pure {

enum class Over { t, ln_t };

struct VibrationTerms {
  Pair c, theta, s;
};

// C1 and the terms of equation 107 or 127; an unused term has c = 0 and a harmless theta.
struct VibrationSum {
  double constant;
  int n;  // pairs
  VibrationTerms terms[2];
};

inline VibrationSum vibration_sum(const Row& row) noexcept {
  const double* c = row.c;
  const bool is_107 = row.equation == 107;
  const double scale = is_107 ? 2.0 : 1.0;
  const Pair plus = {1.0, 1.0};
  const Pair mixed = {1.0, -1.0};
  VibrationSum sum;
  sum.constant = c[0];
  sum.n = is_107 ? 1 : 2;
  sum.terms[0] = {Pair{c[1], c[3]}, scale * Pair{c[2], c[4]}, is_107 ? mixed : plus};
  sum.terms[1] = {Pair{c[5], 0.0}, Pair{c[6], c[6]}, plus};
  return sum;
}

// 1 - s exp(-u).
inline Pair denominator(const Decay<Pair>& d, Pair s) noexcept {
  return s > 0.0 ? d.one_minus : 1.0 + d.e;
}

// Heat capacity at t, K.
inline double vibration_value(const VibrationSum& sum, double t) noexcept {
  double y = sum.constant;
  for (int i = 0; i < sum.n; ++i) {
    const VibrationTerms& v = sum.terms[i];
    const Pair u = v.theta / t;
    const Decay<Pair> d = decay(u);
    const Pair r = u / denominator(d, v.s);
    const Pair term = v.c * r * r * d.e;
    y += term[0] + term[1];
  }
  return y;
}

// Integrals of two terms from lo to hi, lo < hi, given w = (hi - lo)/(hi lo), 1/K.
template <Over over>
inline Pair term_integrals(const VibrationTerms& v, double inverse_hi, double w) noexcept {
  const Pair u_hi = v.theta * inverse_hi;
  const Pair d = v.theta * w;  // u_lo - u_hi
  const Decay<Pair> hi = decay(u_hi);
  const Decay<Pair> step = decay(d);
  const Pair e_step = hi.e * step.one_minus;  // E_hi - E_lo
  const Pair q_hi = denominator(hi, v.s);
  const Pair q_lo = q_hi + v.s * e_step;
  const Pair inverse = 1.0 / (q_hi * q_lo);
  const Pair n_step = e_step * inverse;  // n_hi - n_lo
  if constexpr (over == Over::t) return v.c * v.theta * n_step;
  const Pair n_hi = hi.e * q_lo * inverse;
  const Pair un_step = (u_hi + d) * n_step - d * n_hi;  // u_hi n_hi - u_lo n_lo
  return v.c * (un_step + v.s * log_ratio<Pair>(q_lo, q_hi, v.s * e_step));
}

// Integral of the heat capacity from a to t (K, any order): over T in J/kmol, over ln T in J/kmol/K.
template <Over over>
inline double vibration_integral(const VibrationSum& sum, double a, double t) noexcept {
  const double lo = a < t ? a : t;
  const double hi = a < t ? t : a;
  const double inverse = 1.0 / (lo * hi);
  const double w = (hi - lo) * inverse;
  double y = sum.constant * (over == Over::t ? hi - lo : log_ratio(hi, lo, hi - lo));
  for (int i = 0; i < sum.n; ++i) {
    const Pair part = term_integrals<over>(sum.terms[i], lo * inverse, w);
    y += part[0] + part[1];
  }
  return a < t ? y : -y;
}

}  // namespace kestrune::pure

#endif
