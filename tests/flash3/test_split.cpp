// The amounts of two to four phases from their fugacity coefficients: the conditions of the minimum, which
// hold nowhere else because the function is convex.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "flash3/solver.hpp"

using namespace kestrune;
using namespace kestrune::flash3;

namespace {

// p with its coefficients and z are the problem.
void expect_minimum(int n, const double* z, Phases& p, const PhasesWork& w) {
  for (int j = 0; j < p.count; ++j) p.amount[j] = 1.0 / p.count;
  ASSERT_TRUE(split_between(n, z, p, w));
  double slope[kRoom] = {1.0, 1.0, 1.0, 1.0}, sum = 0.0;
  for (int i = 0; i < n; ++i) {
    double E = 0.0, found = 0.0;
    for (int j = 0; j < p.count; ++j) {
      E += p.amount[j] * std::exp(-p.ln_phi[j][i]);
      found += p.amount[j] * p.x[j][i];
    }
    EXPECT_NEAR(found, z[i], 1e-8);
    for (int j = 0; j < p.count; ++j) slope[j] -= z[i] > 0.0 ? z[i] * std::exp(-p.ln_phi[j][i]) / E : 0.0;
  }
  for (int j = 0; j < p.count; ++j) {
    EXPECT_GE(p.amount[j], 0.0);
    EXPECT_GE(slope[j], -1e-9) << "phase " << j << " amount " << p.amount[j];
    EXPECT_NEAR(p.amount[j] * slope[j], 0.0, 1e-9) << "phase " << j;
    sum += p.amount[j];
  }
  EXPECT_NEAR(sum, 1.0, 1e-12);
}

TEST(Split, MinimumForRandomCoefficients) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (int k = 0; k < 3000; ++k) {
    SCOPED_TRACE(k);
    const int n = 1 + k % 7;
    support::with_arena<10, 80>(n, [&](support::Arena& arena) {
      const int ld = support::padded(n);
      Phases p;
      PhasesWork w;
      take_phases(arena, ld, p);
      take_work(arena, n, ld, kMostPhases, w);
      p.count = 2 + k % 3;
      double* const z = arena.zeros(ld);
      const double spread = std::pow(10.0, -3.0 + 4.5 * unit(random));
      double sum = 0.0;
      for (int i = 0; i < n; ++i) {
        if (i != 1 || k % 5 != 0) sum += z[i] = std::pow(unit(random), 1 + k % 9);
        for (int j = 0; j < p.count; ++j) p.ln_phi[j][i] = spread * (2.0 * unit(random) - 1.0);
      }
      for (int i = 0; i < n; ++i) z[i] /= sum;
      // The last phase a mixture of the others, or like the first one.
      const double part = k % 3 == 0 ? 1.0 : unit(random);
      for (int i = 0; k % 4 == 0 && i < n; ++i)
        p.ln_phi[p.count - 1][i] =
            -std::log(part * std::exp(-p.ln_phi[0][i]) + (1.0 - part) * std::exp(-p.ln_phi[1][i]));
      expect_minimum(n, z, p, w);
    });
  }
}

// Which of three phases are one: every K between them within CRIT^(1/3) of 1.
TEST(Alike, ByTheDistributionCoefficients) {
  double A[] = {0.3, 0.7, 0.0}, B[] = {0.3, 0.7, 0.0}, V[] = {0.3, 0.7, 0.0};
  const double z[] = {0.3, 0.7, 0.0};
  Phases p;
  p.count = kMostPhases;
  p.x[kA] = A;
  p.x[kB] = B;
  p.x[kV] = V;
  const struct {
    double KLL, KLV, CRIT;  // of the first component
    StatusCode status;
  } cases[] = {{1.0005, 2.0, 1e-9, KV_TRIVIAL},    {1.002, 2.0, 1e-9, KV_OK},
               {1.002, 2.0, 1e-8, KV_TRIVIAL},     {0.5, 0.9995, 1e-9, KV_TRIVIAL},
               {0.5, 2.0005, 1e-9, KV_TRIVIAL_LV}, {0.5, 2.003, 1e-9, KV_OK}};
  for (const auto& c : cases) {
    A[0] = B[0] * c.KLL;
    V[0] = A[0] * c.KLV;
    EXPECT_EQ(phases_alike(3, z, p, c.CRIT), c.status) << c.KLL << ' ' << c.KLV;
    EXPECT_EQ(phases_alike(1, z, p, c.CRIT), KV_OK);
  }
}

}  // namespace
