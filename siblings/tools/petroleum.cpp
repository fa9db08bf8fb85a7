// Kay's sums, the Watson factor, boiling points of fractions.

#include "petroleum.hpp"

#include <cmath>

namespace kestrune::tools {
namespace {

constexpr double kGasConstant = 82.057366080960;  // atm cm3 / (mol K), from 8.31446261815324 J/(mol K)

bool positive(double value) noexcept {
  return value > 0.0 && std::isfinite(value);
}

bool fraction(double value) noexcept {
  return value >= 0.0 && std::isfinite(value);
}

double known_mean(std::int32_t n, const double* x, const double* value) noexcept {
  double sum = 0.0;
  for (std::int32_t i = 0; i < n; ++i) {
    if (x[i] == 0.0) continue;
    if (!positive(value[i])) return 0.0;
    sum += x[i] * value[i];
  }
  return sum;
}

double fahrenheit(double kelvin) noexcept {
  return 1.8 * kelvin - 459.67;
}

}  // namespace

PseudoCritical kay_mixture(std::int32_t nc, const double* x, const double* Tc, const double* Pc,
                           const double* Vc, const double* Zc, const double* M) noexcept {
  PseudoCritical mix{known_mean(nc, x, Tc), known_mean(nc, x, Pc), known_mean(nc, x, Vc), known_mean(nc, x, Zc),
                     known_mean(nc, x, M)};
  if (mix.Tc > 0.0 && mix.Vc > 0.0 && mix.Zc > 0.0) mix.Pc = kGasConstant * mix.Zc * mix.Tc / mix.Vc;
  return mix;
}

bool watson(double Tb, double divisor, double* result) noexcept {
  if (!positive(Tb) || !positive(divisor)) return false;
  *result = std::cbrt(1.8 * Tb) / divisor;
  return true;
}

bool mean_average_boiling_point(std::int32_t n, const double* Tb, const double* x, const double* w,
                                const double* SG, double* result) noexcept {
  if (n < 1) return false;
  double moles = 0.0, molal = 0.0, volume = 0.0, root = 0.0;
  for (std::int32_t i = 0; i < n; ++i) {
    if (!positive(Tb[i]) || !fraction(x[i]) || !fraction(w[i]) || (w[i] > 0.0 && !positive(SG[i])))
      return false;
    moles += x[i];
    molal += x[i] * Tb[i];
    const double v = w[i] > 0.0 ? w[i] / SG[i] : 0.0;
    volume += v;
    root += v * std::cbrt(fahrenheit(Tb[i]));
  }
  if (!positive(moles) || !positive(volume)) return false;
  root /= volume;
  const double cubic = (root * root * root + 459.67) / 1.8;
  *result = 0.5 * (molal / moles + cubic);
  return true;
}

}  // namespace kestrune::tools
