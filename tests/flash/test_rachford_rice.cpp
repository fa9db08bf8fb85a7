// The phase fraction against a bisection in long double.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "flash/isothermal/rachford_rice.hpp"

using namespace kestrune::flash;

namespace {

// The root in (0, 1) as the smaller of the two fractions, to its last bits; negative: it is the liquid's.
long double bisected(const std::vector<double>& z, const std::vector<double>& K) {
  // falls with t in both cases
  const auto g = [&](long double t, bool liquid) {
    long double sum = 0.0L;
    for (std::size_t i = 0; i < z.size(); ++i) {
      const long double m = static_cast<long double>(K[i]) - 1.0L;
      sum += liquid ? -z[i] * m / (K[i] - t * m) : z[i] * m / (1.0L + t * m);
    }
    return sum;
  };
  const bool liquid = g(0.5L, false) > 0.0L;
  long double lo = 0.0L, hi = 0.5L;
  for (int k = 0; k < 400 && hi - lo > 1e-18L * hi; ++k) {
    const long double middle = lo > 0.0L ? std::sqrt(lo) * std::sqrt(hi) : hi * 0.0625L;
    (g(middle, liquid) > 0.0L ? lo : hi) = middle;
  }
  return liquid ? -hi : hi;
}

void expect_root(const std::vector<double>& z, const std::vector<double>& K, double tolerance) {
  const PhaseFraction f = rachford_rice(static_cast<int>(z.size()), z.data(), K.data(), 0.3);
  ASSERT_EQ(f.kind, Split::two_phase);
  const long double root = bisected(z, K);
  const double found = root > 0 ? f.beta : f.liquid, reference = static_cast<double>(std::fabs(root));
  EXPECT_NEAR(found / reference, 1.0, tolerance) << reference;
  EXPECT_EQ(f.beta + f.liquid, 1.0);
  EXPECT_LE(f.passes, 100);
}

TEST(RachfordRice, RandomSplitsToTheLastBits) {
  std::mt19937 random(6);
  int both = 0;
  for (int k = 0; k < 3000; ++k) {
    const auto n = static_cast<std::size_t>(2 + k % 12);
    std::vector<double> z(n), K(n);
    std::uniform_real_distribution<double> amount(0.0, 1.0), power(-15.0, 15.0);
    double sum = 0, at_0 = 0, at_1 = 0;
    for (double& v : z) sum += v = std::pow(amount(random), k % 3 ? 1 : 8);
    for (std::size_t i = 0; i < n; ++i) {
      z[i] /= sum;
      K[i] = std::pow(10.0, power(random) * (k % 2 ? 0.1 : 1.0));
      at_0 += z[i] * (K[i] - 1);
      at_1 += z[i] * (1 - 1 / K[i]);
    }
    if (!(at_0 > 1e-6 && at_1 < -1e-6)) continue;
    ++both;
    expect_root(z, K, 1e-10);
  }
  EXPECT_GT(both, 1000);
}

TEST(RachfordRice, FractionsBesideZeroAndOneKeepTheirDigits) {
  // Two components: beta = -(z1 m1 + z2 m2)/(m1 m2). The feed is moved off the bubble point by little.
  for (const double off : {1e-14, 1e-12, 1e-6}) {
    const std::vector<double> K{3.0, 0.5};
    std::vector<double> z{0.2 + off, 0.8 - off};
    expect_root(z, K, 1e-2 * 1e-14 / off + 1e-10);
    const std::vector<double> inverse{1 / 3.0, 2.0};
    expect_root(z, inverse, 5e-2 * 1e-14 / off + 1e-10);
  }
  expect_root({0.5, 0.5}, {1e15, 1e-15}, 2e-12);
  expect_root({1e-13, 1.0 - 1e-13}, {1e15, 1e-15}, 1e-12);
  expect_root({1.0 - 1e-13, 1e-13}, {1e15, 1e-15}, 1e-12);
  expect_root({0.3, 0.3, 0.4}, {1.0, 1.6, 0.7}, 1e-13);
}

TEST(RachfordRice, OneSidedCoefficientsAreOnePhase) {
  const double z[] = {0.2, 0.3, 0.5}, high[] = {1.1, 2.0, 1e15}, low[] = {0.9, 1e-15, 0.5},
               ones[] = {1.0, 1.0, 1.0};
  EXPECT_EQ(rachford_rice(3, z, high, 0.5).kind, Split::vapour);
  EXPECT_EQ(rachford_rice(3, z, high, 0.5).liquid, 0.0);
  EXPECT_EQ(rachford_rice(3, z, low, 0.5).kind, Split::liquid);
  EXPECT_EQ(rachford_rice(3, z, low, 0.5).beta, 0.0);
  EXPECT_NE(rachford_rice(3, z, ones, 0.5).kind, Split::two_phase);
  // Any guess, the same root.
  const double K[] = {4.0, 0.9, 0.2};
  const double root = rachford_rice(3, z, K, 0.5).beta;
  for (const double guess : {-1.0, 0.0, 1e-9, 0.999999, 1.0, 7.0, static_cast<double>(NAN)})
    EXPECT_NEAR(rachford_rice(3, z, K, guess).beta, root, 1e-14);
}

}  // namespace
