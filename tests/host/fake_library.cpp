// A calculation library with toy physics for the tests of the host: a flash with Wilson K-values, which does
// not converge from 1000 K on, and flashes at other conditions on top of it. The group conversion is the real
// one, for k_ij rests on it.
#include <cmath>

#include "fake_physics.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

double column(const MixtureRecord* m, int column, int i) {
  const double* table = m->table;
  return table[(column - 1) * m->count + i];
}

double wilson(const MixtureRecord* m, int i, double T, double P) {
  const double Tc = column(m, KV_COL_TC, i);
  return column(m, KV_COL_PC, i) / P * std::exp(5.373 * (1.0 + column(m, KV_COL_OMEGA, i)) * (1.0 - Tc / T));
}

// Where a function changes its sign between two values; it is positive at the first.
template <class Function>
double bisected(double low, double high, Function&& positive) {
  for (int pass = 0; pass < 100; ++pass) {
    const double middle = 0.5 * (low + high);
    (positive(middle) ? low : high) = middle;
  }
  return 0.5 * (low + high);
}

// Above 0 where there is more vapour than beta.
double excess(const MixtureRecord* m, const double* z, const double* K, double beta) {
  double sum = 0.0;
  for (int i = 0; i < m->count; ++i) sum += z[i] * (K[i] - 1.0) / (1.0 + beta * (K[i] - 1.0));
  return sum;
}

// Vapour fraction without an excess, or the end of 0 .. 1 next to it.
double vapour_fraction(const MixtureRecord* m, const double* z, const double* K) {
  const double beta = bisected(0.0, 1.0, [&](double b) { return excess(m, z, K, b) > 0.0; });
  return beta < 1e-12 ? 0.0 : (beta > 1.0 - 1e-12 ? 1.0 : beta);
}

void compositions(const MixtureRecord* m, const double* z, const double* K, double beta, double* x, double* y) {
  for (int i = 0; i < m->count; ++i) {
    x[i] = z[i] / (1.0 + beta * (K[i] - 1.0));
    y[i] = K[i] * x[i];
  }
}

}  // namespace

KV_API StatusCode KV_CALL FlashLVatTP(double T, double P, const double* z, MixtureRecord* m,
                                      const ModelRoutines*, int32_t, double* beta, double* x, double* y,
                                      double* K) {
  for (int i = 0; i < m->count; ++i) K[i] = wilson(m, i, T, P);
  *beta = vapour_fraction(m, z, K);
  compositions(m, z, K, *beta, x, y);
  for (int i = 0; i < m->count && *beta == 1.0; ++i) x[i] = y[i] = z[i];
  return T < 1000.0 ? KV_OK : KV_NOT_CONVERGED;
}

namespace {

using PhaseValue = decltype(&GasMolarEnthalpy_PPR78);

// Between 150 K and 298.15 K, where the values of the toy phases rise with the temperature.
StatusCode at_energy(double wanted, double P, const double* z, MixtureRecord* m, PhaseValue of_liquid,
                     PhaseValue of_gas, double* T, double* beta, double* x, double* y, double* K,
                     double* liquid, double* vapour) {
  *T = bisected(150.0, fake::kT0, [&](double trial) {
    FlashLVatTP(trial, P, z, m, nullptr, 1, beta, x, y, K);
    of_liquid(trial, P, x, m, liquid);
    of_gas(trial, P, y, m, vapour);
    return (1.0 - *beta) * *liquid + *beta * *vapour < wanted;
  });
  return *T > 150.001 && *T < fake::kT0 - 0.001 ? KV_OK : KV_NOT_CONVERGED;
}

// The unknown is left as it is where the toy fluid has no saturation.
StatusCode at_fraction(double W, double T, double P, const double* z, MixtureRecord* m, double* x, double* y,
                       double* K) {
  if (T > fake::kHighestSaturation_T || P > fake::kHighestSaturation_P) return KV_NO_SATURATION;
  for (int i = 0; i < m->count; ++i) K[i] = wilson(m, i, T, P);
  compositions(m, z, K, W, x, y);
  return P > fake::kUnstable ? KV_UNSTABLE_POINT : KV_OK;
}

double excess_at(const MixtureRecord* m, const double* z, double* K, double T, double P, double W) {
  for (int i = 0; i < m->count; ++i) K[i] = wilson(m, i, T, P);
  return excess(m, z, K, W);
}

}  // namespace

KV_API StatusCode KV_CALL FlashLVatHP(double H, double P, const double* z, MixtureRecord* m,
                                      const ModelRoutines*, int32_t, double* T, double* beta, double* x,
                                      double* y, double* K, double* HL, double* HV) {
  return at_energy(H, P, z, m, LiquidMolarEnthalpy_PPR78, GasMolarEnthalpy_PPR78, T, beta, x, y, K, HL, HV);
}

KV_API StatusCode KV_CALL FlashLVatSP(double S, double P, const double* z, MixtureRecord* m,
                                      const ModelRoutines*, int32_t, double* T, double* beta, double* x,
                                      double* y, double* K, double* SL, double* SV) {
  return at_energy(S, P, z, m, LiquidMolarEntropy_PPR78, GasMolarEntropy_PPR78, T, beta, x, y, K, SL, SV);
}

KV_API StatusCode KV_CALL FlashLVatWP(double W, double P, const double* z, MixtureRecord* m,
                                      const ModelRoutines*, int32_t, double* T, double* x, double* y,
                                      double* K) {
  const double found =
      bisected(100.0, 900.0, [&](double trial) { return excess_at(m, z, K, trial, P, W) < 0.0; });
  const StatusCode status = at_fraction(W, found, P, z, m, x, y, K);
  if (status != KV_NO_SATURATION) *T = found;
  return status;
}

KV_API StatusCode KV_CALL FlashLVatWT(double W, double T, const double* z, MixtureRecord* m,
                                      const ModelRoutines*, int32_t, double* P, double* x, double* y,
                                      double* K) {
  const double found = bisected(1e-6, 1e4, [&](double trial) { return excess_at(m, z, K, T, trial, W) > 0.0; });
  const StatusCode status = at_fraction(W, T, found, z, m, x, y, K);
  if (status != KV_NO_SATURATION) *P = found;
  return status;
}

KV_API void KV_CALL ConvertPPR78GroupData(int32_t nC, int32_t nG, const int32_t* counts, const double* A,
                                          const double* B, double* const* storage) {
  const auto at = [nG](int k, int l) { return k + nG * l; };
  for (int l = 0; l < nG; ++l) {
    for (int k = 0; k < l; ++k) {
      storage[1][at(k, l)] = storage[1][at(l, k)] = A[at(k, l)] * 1e6 / 101325;
      storage[2][at(k, l)] = storage[2][at(l, k)] = B[at(k, l)] * 1e6 / 101325;
      const bool none = A[at(k, l)] == 0.0;
      storage[4][at(k, l)] = storage[4][at(l, k)] = none ? 0.0 : B[at(k, l)] / A[at(k, l)];
    }
  }
  const auto total = [&](int i) {
    int sum = 0;
    for (int k = 0; k < nG; ++k) sum += counts[k + nG * i];
    return sum;
  };
  for (int i = 0; i < nC; ++i) {
    for (int k = 0; k < nG && total(i) > 0; ++k) storage[3][i + nC * k] = double(counts[k + nG * i]) / total(i);
  }
  for (int i = 0; i < nC; ++i) {
    for (int j = 0; j < nC; ++j) {
      for (int k = 0; k < nG && total(i) > 0 && total(j) > 0; ++k) {
        storage[5][k + nG * (j + nC * i)] = storage[3][j + nC * k] - storage[3][i + nC * k];
      }
    }
  }
}
