#include "flash/water.hpp"

#include <cmath>

#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {
constexpr double kWaterTc = 647.096;
constexpr double kPaPerAtm = 101325.0;
// ln(Psat/Pa) = c0 - c1/T - c2 ln T + c3 T^2
constexpr double c0 = 73.649, c1 = 7258.2, c2 = 7.3037, c3 = 4.1653e-6;
constexpr double kSlopeOfLogDoubled = 8.3306e-6;
// Above the critical temperature: ln(Psat/atm) = d0 - d1/T
constexpr double d0 = 12.778500904682147, d1 = 4789.269321502071;

constexpr double kWilson = 5.37;
constexpr double kExponentLimit = 34.5;
constexpr double kSmallestK = 1e-15, kLargestK = 1e15;
}  // namespace

WithSlope water_vapour_pressure(double T) noexcept {
  if (T <= kWaterTc) {
    const double p = std::exp(c0 - c1 / T - c2 * std::log(T) + c3 * T * T) / kPaPerAtm;
    return {p, (c1 / (T * T) - c2 / T + kSlopeOfLogDoubled * T) * p};
  }
  const double p = std::exp(d0 - d1 / T);
  return {p, d1 / (T * T) * p};
}

WithSlope water_solubility(double T, double A, double B) noexcept {
  const double s = std::exp(A - B / T);
  if (!(s < 1.0)) return {1.0, 0.0};
  return {s, B / (T * T) * s};
}

int find_water_family(const MixtureRecord& mixture) noexcept {
  const double* family = mixture.table + static_cast<std::size_t>(KV_COL_FAMILY - 1) * mixture.count;
  for (int i = 0; i < mixture.count; ++i)
    if (family[i] == KV_FAMILY_WATER) return i;
  return -1;
}

void wilson(double T, double P, const MixtureRecord& mixture, bool free_water, double* K,
            double* dK_dT) noexcept {
  const int n = mixture.count;
  const auto column = [&](int k) { return mixture.table + static_cast<std::size_t>(k - 1) * n; };
  const double *Tc = column(KV_COL_TC), *Pc = column(KV_COL_PC), *w = column(KV_COL_OMEGA);
  const double invT = 1.0 / T, invP = 1.0 / P;
  for (int i = 0; i < n; ++i) {
    double e = kWilson * (1.0 + w[i]) * (1.0 - Tc[i] * invT);
    e = e > -kExponentLimit ? e : -kExponentLimit;
    e = e < kExponentLimit ? e : kExponentLimit;
    double k = Pc[i] * invP * support::fast_exp(e);
    k = k > kSmallestK ? k : kSmallestK;
    K[i] = k < kLargestK ? k : kLargestK;
  }
  if (dK_dT != nullptr)
    for (int i = 0; i < n; ++i) dK_dT[i] = K[i] * kWilson * (1.0 + w[i]) * Tc[i] * invT * invT;
  if (!free_water) return;
  const int iw = find_water_family(mixture);
  if (iw < 0) return;
  const WithSlope psat = water_vapour_pressure(T);
  const double k = psat.value * invP;
  K[iw] = k < kLargestK ? (k > kSmallestK ? k : kSmallestK) : kLargestK;
  if (dK_dT != nullptr) dK_dT[iw] = (c1 / (T * T) - c2 / T + kSlopeOfLogDoubled * T) * psat.value * invP;
}

}  // namespace kestrune::flash
