// Correlations of water for the option of free water.

#include "eos/liquid_water.hpp"

#include <cmath>

namespace kestrune::eos {
namespace {
constexpr double kCriticalTemperature = 647.096;
constexpr double kPaPerAtm = 101325.0;
// Above the critical temperature: ln(Psat/atm) = d0 - d1/T
constexpr double d0 = 12.778500904682147, d1 = 4789.269321502071;

// Heat of vaporisation: scale in cal/mol (52053000 J/kmol), exponent e0 + e1 Tr + e2 Tr^2.
constexpr double kVaporisationTc = 647.13;
constexpr double kVaporisationScale = 12440.965583173996;
constexpr double e0 = 0.3199, e1 = -0.212, e2 = 0.25795;
}  // namespace

WithSlope water_vapour_pressure(double T) noexcept {
  using namespace psat;
  if (T <= kCriticalTemperature) {
    const double p = std::exp(c0 - c1 / T - c2 * std::log(T) + c3 * T * T) / kPaPerAtm;
    return {p, (c1 / (T * T) - c2 / T + kTwiceC3 * T) * p};
  }
  const double p = std::exp(d0 - d1 / T);
  return {p, d1 / (T * T) * p};
}

WithSlope water_solubility(double T, double A, double B) noexcept {
  const double s = std::exp(A - B / T);
  if (!(s < 1.0)) return {1.0, 0.0};
  return {s, B / (T * T) * s};
}

WithSlope water_vaporisation_enthalpy(double T) noexcept {
  const double Tr = T / kVaporisationTc;
  if (!(Tr < 1.0)) return {0.0, 0.0};
  const double log_rest = std::log1p(-Tr);
  const double e = e0 + Tr * (e1 + Tr * e2);
  const double h = kVaporisationScale * std::exp(e * log_rest);
  return {h, h * ((e1 + 2.0 * e2 * Tr) * log_rest - e / (1.0 - Tr)) / kVaporisationTc};
}

int find_water_family(const MixtureRecord& mixture) noexcept {
  for (int i = 0; i < mixture.count; ++i)
    if (is_water_family(mixture, i)) return i;
  return -1;
}

}  // namespace kestrune::eos
