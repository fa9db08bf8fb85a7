// Wilson's coefficients, bounded, and water's own.

#include "flash/wilson.hpp"

#include "flash/fugacity.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {
constexpr double kWilson = 5.37;
constexpr double kExponentLimit = 34.5;
}  // namespace

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
  const int iw = eos::find_water_family(mixture);
  if (iw < 0) return;
  const WithSlope psat = eos::water_vapour_pressure(T);
  const double k = psat.value * invP;
  K[iw] = k < kLargestK ? (k > kSmallestK ? k : kSmallestK) : kLargestK;
  if (dK_dT != nullptr)
    dK_dT[iw] = (eos::psat::c1 / (T * T) - eos::psat::c2 / T + eos::psat::kTwiceC3 * T) * psat.value * invP;
}

}  // namespace kestrune::flash
