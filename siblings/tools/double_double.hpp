// Sums, products and quotients in twice the working precision, as an unevaluated sum of two doubles [Dek71].
//
// [Dek71] Dekker, T. J.: A floating-point technique for extending the available precision.
//         Numer. Math. 18 (1971) 224-242.
#ifndef KESTRUNE_SIBLINGS_TOOLS_DOUBLE_DOUBLE_HPP
#define KESTRUNE_SIBLINGS_TOOLS_DOUBLE_DOUBLE_HPP

namespace kestrune::tools {

// hi + lo with |lo| at most half a unit in the last place of hi.
struct DoubleDouble {
  double hi = 0.0, lo = 0.0;
};

inline DoubleDouble quick_sum(double a, double b) noexcept {  // |a| >= |b|
  const double s = a + b;
  return {s, b - (s - a)};
}

inline DoubleDouble exact_sum(double a, double b) noexcept {
  const double s = a + b;
  const double t = s - a;
  return {s, (a - (s - t)) + (b - t)};
}

inline DoubleDouble exact_product(double a, double b) noexcept {
  constexpr double split = 134217729.0;  // 2^27 + 1
  const double ta = split * a, tb = split * b;
  const double ah = ta - (ta - a), al = a - ah;
  const double bh = tb - (tb - b), bl = b - bh;
  const double p = a * b;
  return {p, ((ah * bh - p) + ah * bl + al * bh) + al * bl};
}

inline DoubleDouble operator+(DoubleDouble a, DoubleDouble b) noexcept {
  DoubleDouble s = exact_sum(a.hi, b.hi);
  const DoubleDouble t = exact_sum(a.lo, b.lo);
  s = quick_sum(s.hi, s.lo + t.hi);
  return quick_sum(s.hi, s.lo + t.lo);
}

inline DoubleDouble operator-(DoubleDouble a) noexcept {
  return {-a.hi, -a.lo};
}
inline DoubleDouble operator-(DoubleDouble a, DoubleDouble b) noexcept {
  return a + (-b);
}

inline DoubleDouble operator*(DoubleDouble a, DoubleDouble b) noexcept {
  const DoubleDouble p = exact_product(a.hi, b.hi);
  return quick_sum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
}

inline DoubleDouble operator/(DoubleDouble a, DoubleDouble b) noexcept {
  const double q1 = a.hi / b.hi;
  DoubleDouble r = a - b * DoubleDouble{q1};
  const double q2 = r.hi / b.hi;
  r = r - b * DoubleDouble{q2};
  return quick_sum(q1, q2) + DoubleDouble{r.hi / b.hi};
}

}  // namespace kestrune::tools

#endif
