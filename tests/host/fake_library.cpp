// A calculation library with toy physics for the tests of the host: a flash with Wilson K-values, which does
// not converge from 1000 K on. The group conversion is the real one, for k_ij rests on it.
#include <cmath>

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

// Vapour fraction at which sum z (K - 1) / (1 + beta (K - 1)) vanishes, or the end of 0 .. 1 next to it.
double vapour_fraction(const MixtureRecord* m, const double* z, const double* K) {
  double low = 0.0, high = 1.0;
  for (int pass = 0; pass < 60; ++pass) {
    const double beta = 0.5 * (low + high);
    double sum = 0.0;
    for (int i = 0; i < m->count; ++i) sum += z[i] * (K[i] - 1.0) / (1.0 + beta * (K[i] - 1.0));
    (sum > 0.0 ? low : high) = beta;
  }
  return high < 1e-12 ? 0.0 : (low > 1.0 - 1e-12 ? 1.0 : 0.5 * (low + high));
}

}  // namespace

KV_API StatusCode KV_CALL FlashLVatTP(double T, double P, const double* z, MixtureRecord* m,
                                      const ModelRoutines*, int32_t, double* beta, double* x, double* y,
                                      double* K) {
  for (int i = 0; i < m->count; ++i) K[i] = wilson(m, i, T, P);
  *beta = vapour_fraction(m, z, K);
  for (int i = 0; i < m->count; ++i) {
    x[i] = *beta == 1.0 ? z[i] : z[i] / (1.0 + *beta * (K[i] - 1.0));
    y[i] = *beta == 1.0 ? z[i] : K[i] * x[i];
  }
  return T < 1000.0 ? KV_OK : KV_NOT_CONVERGED;
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
