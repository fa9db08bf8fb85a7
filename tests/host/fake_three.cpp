// Flashes of three phases of the toy library: water keeps to a liquid of its own that takes a part of the other
// components along, these are flashed by themselves, and what is liquid of them parts in two when it is cold.
#include <algorithm>
#include <vector>

#include "fake_physics.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

struct Split {
  double* beta;
  double* V;
  double *xA, *xB, *y, *KLL, *KLV;
};

// The feed without its water, and how much of the feed is the aqueous liquid.
struct Parted {
  std::vector<double> dry, aqueous;
  double share = 0.0;
};

Parted parted(const double* z, const MixtureRecord* m) {
  const auto n = static_cast<std::size_t>(m->count);
  const double* table = m->table;
  Parted result{std::vector<double>(n), std::vector<double>(n)};
  double water = 0.0;
  for (std::size_t i = 0; i < n; ++i) {
    if (table[(KV_COL_FAMILY - 1) * n + i] == KV_FAMILY_WATER) water = z[i];
  }
  const double purity = (m->flags & FreeWaterFlag) != 0 ? 1.0 : fake::kPurity;
  for (std::size_t i = 0; i < n; ++i) {
    const bool is_water = table[(KV_COL_FAMILY - 1) * n + i] == KV_FAMILY_WATER;
    result.dry[i] = is_water ? 0.0 : z[i] / (1.0 - water);
    result.aqueous[i] = is_water ? purity : (1.0 - purity) * result.dry[i];
  }
  result.share = water / purity;
  return result;
}

// Vapour fraction V of the feed; x and y are those of the dry part.
void fill(const Parted& p, double T, double V, const std::vector<double>& x, const std::vector<double>& y,
          const Split& s) {
  const std::size_t n = x.size();
  const std::vector<double> none(n);
  const double liquid = std::max(0.0, 1.0 - p.share - V);
  const bool second = p.share > 0.0, cold = T < fake::kTwoLiquids && !second && n > 1;
  std::vector<double> A(x), B(second ? p.aqueous : x);
  *s.V = V;
  *s.beta = second ? liquid : 0.0;
  if (cold) {
    *s.beta = 0.25 * liquid;
    const double shift = 0.1 * std::min(x[0], x[1]);
    A[0] += 3.0 * shift, A[1] -= 3.0 * shift;
    B[0] -= shift, B[1] += shift;
  } else if (!second) {
    A = none;
    if (V == 0.0) std::swap(A, B), *s.beta = 1.0;  // the other way to return one liquid
  }
  std::copy(A.begin(), A.end(), s.xA);
  std::copy(B.begin(), B.end(), s.xB);
  std::copy(y.begin(), y.end(), s.y);
  std::fill_n(s.KLL, n, 1e15);
  std::fill_n(s.KLV, n, 1e15);
}

using PhaseValue = decltype(&GasMolarEnthalpy_PPR78);

// A temperature at which the phases have the value together; it rises with the temperature.
StatusCode at_energy(double wanted, double P, const double* z, MixtureRecord* m, PhaseValue of_liquid,
                     PhaseValue of_gas, double* T, const Split& s, double* A, double* B, double* vapour) {
  double low = 170.0, high = fake::kT0;
  for (int pass = 0; pass < 100; ++pass) {
    *T = 0.5 * (low + high);
    FlashLLVatTP(*T, P, z, m, nullptr, 0, s.beta, s.V, s.xA, s.xB, s.y, s.KLL, s.KLV);
    of_liquid(*T, P, s.xA, m, A);
    of_liquid(*T, P, s.xB, m, B);
    of_gas(*T, P, s.y, m, vapour);
    const double sum = *s.beta * *A + (1.0 - *s.beta - *s.V) * *B + *s.V * *vapour;
    (sum < wanted ? low : high) = *T;
  }
  return *T > 170.001 && *T < fake::kT0 - 0.001 ? KV_OK : KV_NOT_CONVERGED;
}

// The flash of the dry part at the vapour fraction that it has.
template <class Flash>
StatusCode at_fraction(double W, const double* z, const MixtureRecord* m, const double* T, const Split& s,
                       Flash&& flash) {
  const Parted p = parted(z, m);
  std::vector<double> x(p.dry.size()), y(x), K(x);
  if (W > 1.0 - p.share) return KV_NO_SATURATION;
  const StatusCode status = flash(W / (1.0 - p.share), p.dry.data(), x.data(), y.data(), K.data());
  if (status != KV_NO_SATURATION) fill(p, *T, W, x, y, s);
  return status;
}

}  // namespace

KV_API StatusCode KV_CALL FlashLLVatTP(double T, double P, const double* z, MixtureRecord* m,
                                       const ModelRoutines*, int32_t, double* beta, double* V, double* xA,
                                       double* xB, double* y, double* KLL, double* KLV) {
  if (T > 1500.0) return KV_NO_START;
  const Parted p = parted(z, m);
  std::vector<double> x(p.dry.size()), vapour(x), K(x);
  double part = 0.0;
  const StatusCode status =
      FlashLVatTP(T, P, p.dry.data(), m, nullptr, 1, &part, x.data(), vapour.data(), K.data());
  if (part == 0.0) std::fill(vapour.begin(), vapour.end(), 0.0);
  fill(p, T, part * (1.0 - p.share), x, vapour, {beta, V, xA, xB, y, KLL, KLV});
  return status;
}

KV_API StatusCode KV_CALL FlashLLVatHP(double H, double P, const double* z, MixtureRecord* m,
                                       const ModelRoutines*, int32_t, double* T, double* beta, double* V,
                                       double* xA, double* xB, double* y, double* KLL, double* KLV, double* HA,
                                       double* HB, double* HV) {
  return at_energy(H, P, z, m, LiquidMolarEnthalpy_PPR78, GasMolarEnthalpy_PPR78, T,
                   {beta, V, xA, xB, y, KLL, KLV}, HA, HB, HV);
}

KV_API StatusCode KV_CALL FlashLLVatSP(double S, double P, const double* z, MixtureRecord* m,
                                       const ModelRoutines*, int32_t, double* T, double* beta, double* V,
                                       double* xA, double* xB, double* y, double* KLL, double* KLV, double* SA,
                                       double* SB, double* SV) {
  return at_energy(S, P, z, m, LiquidMolarEntropy_PPR78, GasMolarEntropy_PPR78, T,
                   {beta, V, xA, xB, y, KLL, KLV}, SA, SB, SV);
}

KV_API StatusCode KV_CALL FlashLLVatWP(double W, double P, const double* z, MixtureRecord* m,
                                       const ModelRoutines*, int32_t, double* T, double* beta, double* xA,
                                       double* xB, double* y, double* KLL, double* KLV) {
  double V = W;
  return at_fraction(W, z, m, T, {beta, &V, xA, xB, y, KLL, KLV},
                     [&](double part, const double* dry, double* x, double* vapour, double* K) {
                       return FlashLVatWP(part, P, dry, m, nullptr, 1, T, x, vapour, K);
                     });
}

KV_API StatusCode KV_CALL FlashLLVatWT(double W, double T, const double* z, MixtureRecord* m,
                                       const ModelRoutines*, int32_t, double* P, double* beta, double* xA,
                                       double* xB, double* y, double* KLL, double* KLV) {
  double V = W;
  return at_fraction(W, z, m, &T, {beta, &V, xA, xB, y, KLL, KLV},
                     [&](double part, const double* dry, double* x, double* vapour, double* K) {
                       return FlashLVatWT(part, T, dry, m, nullptr, 1, P, x, vapour, K);
                     });
}
