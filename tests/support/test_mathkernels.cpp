// The kernels against long double (64 bits of mantissa on x86), in units of the last place.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <random>

#include "support/mathkernels.hpp"

using namespace kestrune::support;

namespace {

double ulps(double value, long double reference) {
  const double rounded = static_cast<double>(reference);
  const double ulp = std::nextafter(std::fabs(rounded), INFINITY) - std::fabs(rounded);
  return static_cast<double>(std::fabs(static_cast<long double>(value) - reference) / ulp);
}

constexpr int kSamples = 400000;

TEST(MathKernels, ExponentialOverItsRange) {
  std::mt19937_64 random(1);
  double worst = 0.0;
  for (const double half : {708.0, 1.0, 1e-6}) {
    std::uniform_real_distribution<double> pick(-half, half);
    for (int k = 0; k < kSamples; ++k) {
      const double x = pick(random);
      worst = std::max(worst, ulps(fast_exp(x), std::exp(static_cast<long double>(x))));
    }
  }
  EXPECT_LT(worst, 1.1);
  EXPECT_EQ(fast_exp(0.0), 1.0);
  EXPECT_EQ(fast_exp(1e300), fast_exp(709.0));
  EXPECT_EQ(fast_exp(-INFINITY), fast_exp(-708.0));
  EXPECT_LE(fast_exp(INFINITY), DBL_MAX);
}

TEST(MathKernels, LogarithmOverItsRangeAndBesideOne) {
  std::mt19937_64 random(2);
  std::uniform_real_distribution<double> decade(-307.6, 308.2), near_one(0.6, 1.6), tiny(-1e-7, 1e-7);
  double worst = 0.0;
  for (int k = 0; k < kSamples; ++k)
    for (const double x : {std::pow(10.0, decade(random)), near_one(random), 1.0 + tiny(random)})
      if (x != 1.0) worst = std::max(worst, ulps(fast_log(x), std::log(static_cast<long double>(x))));
  EXPECT_LT(worst, 1.5);
  EXPECT_EQ(fast_log(1.0), 0.0);
  EXPECT_NEAR(fast_log(0.0), -708.4, 0.1);
  EXPECT_EQ(fast_log(5e-324), fast_log(0.0));
  EXPECT_NEAR(fast_log(DBL_MAX), 709.782712893384, 1e-12);
}

TEST(MathKernels, InverseHyperbolicTangentOverItsRange) {
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> exponent(-18.0, std::log10(0.1716));
  double worst = 0.0;
  for (int k = 0; k < kSamples; ++k) {
    const double x = (k & 1 ? -1.0 : 1.0) * std::pow(10.0, exponent(random));
    worst = std::max(worst, ulps(small_atanh(x), std::atanh(static_cast<long double>(x))));
  }
  EXPECT_LT(worst, 1.5);
  EXPECT_EQ(small_atanh(0.0), 0.0);
}

// The logarithm beside it has the digits that it has alone; that of the ratio is as good for the smallest parts.
TEST(MathKernels, TwoLogarithmsSideBySide) {
  std::mt19937_64 random(4);
  std::uniform_real_distribution<double> decade(-307.6, 308.2), exponent(-18.0, 0.99), size(0.01, 100.0);
  double worst = 0.0;
  for (int k = 0; k < kSamples; ++k) {
    const double x = std::pow(10.0, decade(random)), whole = size(random);
    const double part = whole * std::pow(10.0, exponent(random));
    const TwoLogs logs = two_logs(x, part, whole);
    if (logs.of_x != fast_log(x)) FAIL() << x;
    worst = std::max(worst, ulps(logs.of_ratio, std::log1p(static_cast<long double>(part) / whole)));
  }
  EXPECT_LT(worst, 2.3);
  EXPECT_EQ(two_logs(0.0, 0.0, 1.0).of_ratio, 0.0);
  EXPECT_EQ(two_logs(0.0, 0.0, 1.0).of_x, fast_log(0.0));
}

}  // namespace
