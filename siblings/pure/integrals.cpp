// Integrals in closed form where there is one, by quadrature where there is none.

#include "pure/integrals.hpp"

#include <algorithm>
#include <cmath>

#include "pure/equations.hpp"

namespace kestrune::pure {
namespace {

double log_ratio(double t, double a) noexcept {
  return pure::log_ratio(t, a, t - a);
}

// Equation 100. With D_k = (t^k - a^k)/(t - a), D_1 = 1, D_{k+1} = t D_k + a^k:
// over T sum C_k (t - a) D_k/k, over ln T C_1 ln(t/a) + sum C_{k+1} (t - a) D_k/k.
double polynomial_integral(Over over, const double* c, double a, double t) noexcept {
  const double* coefficient = over == Over::t ? c : c + 1;
  const int n = over == Over::t ? 7 : 6;
  double quotient = 1.0;
  double power = 1.0;
  double y = 0.0;
  for (int k = 1; k <= n; ++k) {
    y += coefficient[k - 1] * quotient / k;
    power *= a;
    quotient = t * quotient + power;
  }
  y *= t - a;
  return over == Over::t ? y : y + c[0] * log_ratio(t, a);
}

// Equation 114 in x = 1 - T/Tc: C1^2/x + sum_{k=0..5} p_k x^k, dT = -Tc dx.
// Over T every power is integrated. Over ln T, Cp dT/T = -Cp dx/(1 - x), with
//   1/(x (1 - x)) = 1/x + 1/(1 - x),  x^k/(1 - x) = 1/(1 - x) - (1 + x + .. + x^(k-1)).
double near_critical_integral(Over over, const double* c, double a, double t) noexcept {
  const double tc = c[5];
  const double head = c[0] * c[0];
  const double p[6] = {
      c[1], -2.0 * c[0] * c[2], -c[0] * c[3], -c[2] * c[2] / 3.0, -c[2] * c[3] / 2.0, -c[3] * c[3] / 5.0};
  const double xa = 1.0 - a / tc;
  const double xt = 1.0 - t / tc;
  const double step = (t - a) / tc;  // xa - xt
  double power_step[7];              // (xa^k - xt^k)/k
  double quotient = 1.0;
  double power = 1.0;
  for (int k = 1; k <= 6; ++k) {
    power_step[k] = step * quotient / k;
    power *= xt;
    quotient = xa * quotient + power;
  }
  const double log_x = std::log1p(step / xt);  // ln(xa/xt)
  if (over == Over::t) {
    double y = head * log_x;
    for (int k = 0; k < 6; ++k) y += p[k] * power_step[k + 1];
    return tc * y;
  }
  double total = head;  // of all coefficients: the weight of 1/(1 - x)
  double y = head * log_x;
  double partial = 0.0;
  for (int k = 0; k < 6; ++k) {
    total += p[k];
    y -= p[k] * partial;
    partial += power_step[k + 1];
  }
  return y + total * log_ratio(t, a);
}

struct Node {
  double x, w;
};

// Gauss-Legendre rule with 20 points on [-1, 1], upper half.
constexpr Node gauss_20[] = {
    {0.993128599185094925, 0.0176140071391521183}, {0.963971927277913791, 0.0406014298003869413},
    {0.912234428251325906, 0.0626720483341090636}, {0.839116971822218823, 0.0832767415767047487},
    {0.746331906460150793, 0.101930119817240435},  {0.636053680726515025, 0.118194531961518417},
    {0.510867001950827098, 0.131688638449176627},  {0.373706088715419561, 0.142096109318382051},
    {0.227785851141645078, 0.149172986472603747},  {0.0765265211334973338, 0.152753387130725851}};

// Integral of the exponential part of equation 16 by panels of equal width.
double exponential_panels(Over over, const double* c, double a, double t, int panels) noexcept {
  const double half = (t - a) / (2.0 * panels);
  double y = 0.0;
  for (int i = 0; i < panels; ++i) {
    const double mid = a + (2 * i + 1) * half;
    for (const Node& node : gauss_20) {
      for (const double x : {mid - half * node.x, mid + half * node.x}) {
        const double f = std::exp(c[1] / x + c[2] + x * (c[3] + x * c[4]));
        y += node.w * (over == Over::t ? f : f / x);
      }
    }
  }
  return y * half;
}

// Equation 16 has no closed integral: the constant is integrated exactly, the exponential by panels that are
// doubled until the sum stands still to 1e-13.
double exponential_integral(Over over, const double* c, double a, double t) noexcept {
  constexpr double tolerance = 1e-13;
  constexpr int most_panels = 64;
  const double constant = c[0] * (over == Over::t ? t - a : log_ratio(t, a));
  double y = exponential_panels(over, c, a, t, 1);
  for (int panels = 2; panels <= most_panels; panels *= 2) {
    const double finer = exponential_panels(over, c, a, t, panels);
    const double change = std::fabs(finer - y);
    y = finer;
    if (change <= tolerance * std::fabs(constant + y)) break;
  }
  return constant + y;
}

// Integral with both bounds inside the range of the row.
double integral_inside(Over over, const Row& row, double a, double t) noexcept {
  switch (row.equation) {
    case 16:
      return exponential_integral(over, row.c, a, t);
    case 114:
      return near_critical_integral(over, row.c, a, t);
    default:
      return polynomial_integral(over, row.c, a, t);
  }
}

double constant_integral(Over over, double cp, double a, double t) noexcept {
  return cp * (over == Over::t ? t - a : log_ratio(t, a));
}

// Below and above its range the heat capacity keeps the value of the range end.
double integral_with_ends(Over over, const Row& row, double a, double t) noexcept {
  const double t0 = row.t_min;
  const double t1 = row.t_max;
  double y = 0.0;
  const double a_in = std::clamp(a, t0, t1);
  const double t_in = std::clamp(t, t0, t1);
  if (a_in != t_in) y += integral_inside(over, row, a_in, t_in);
  if (a < t0 || t < t0) y += constant_integral(over, equation_value(row, t0), std::min(a, t0), std::min(t, t0));
  if (a > t1 || t > t1) y += constant_integral(over, equation_value(row, t1), std::max(a, t1), std::max(t, t1));
  return y;
}

}  // namespace

double heat_capacity_integral(Over over, const Row& row, double a, double t) noexcept {
  if (!is_unbounded(row)) return integral_with_ends(over, row, a, t);
  const VibrationSum sum = vibration_sum(row);
  return over == Over::t ? vibration_integral<Over::t>(sum, a, t) : vibration_integral<Over::ln_t>(sum, a, t);
}

}  // namespace kestrune::pure
