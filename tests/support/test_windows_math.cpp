// What 32-bit Windows has in place of its C library's exp, log, pow and the like, against long double. On other
// systems the test brings its source along, and the C library that it hands rare arguments on to.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

extern "C" {
double __wrap_exp(double x);
double __wrap_log(double x);
double __wrap_log10(double x);
double __wrap_pow(double x, double y);
double __wrap_cbrt(double x);
double __wrap_fmax(double x, double y);
double __wrap_fmin(double x, double y);

#ifndef _WIN32
double __real_exp(double x) {
  return std::exp(x);
}
double __real_log(double x) {
  return std::log(x);
}
double __real_log10(double x) {
  return std::log10(x);
}
double __real_pow(double x, double y) {
  return std::pow(x, y);
}
double __real_cbrt(double x) {
  return std::cbrt(x);
}
#endif
}

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity(),
                 kNaN = std::numeric_limits<double>::quiet_NaN();

double off_by(double value, long double reference) {
  const double rounded = std::fabs(static_cast<double>(reference));
  const double ulp = std::nextafter(rounded, kInf) - rounded;
  return static_cast<double>(std::fabs(static_cast<long double>(value) - reference) / ulp);
}

TEST(WindowsMath, AlmostAlwaysTheNearestDouble) {
  std::mt19937_64 random(1);
  const auto pick = [&](double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random);
  };
  double worst[5] = {};
  const auto note = [&](int k, double value, long double reference) {
    worst[k] = std::fmax(worst[k], off_by(value, reference));
  };
  for (int k = 0; k < 200000; ++k) {
    const double size = k % 2 == 0 ? 699.0 : 2.0, e = pick(-size, size);
    note(0, __wrap_exp(e), std::exp(static_cast<long double>(e)));
    const double x = k % 3 == 0   ? std::exp(pick(-600.0, 600.0))
                     : k % 3 == 1 ? pick(0.5, 2.0)
                                  : 1.0 + pick(-1e-6, 1e-6);
    if (x != 1.0) note(1, __wrap_log(x), std::log(static_cast<long double>(x)));
    if (x != 1.0) note(2, __wrap_log10(x), std::log10(static_cast<long double>(x)));
    note(3, __wrap_cbrt(x), std::cbrt(static_cast<long double>(x)));
    // Of a moderate size: long double then has the digits without a pow of its own, which is not always good.
    const double base = std::exp(pick(-4.0, 4.0)), y = pick(-5.0, 5.0);
    note(4, __wrap_pow(base, y), std::exp(y * std::log(static_cast<long double>(base))));
  }
  for (int k = 0; k < 5; ++k) EXPECT_LT(worst[k], 0.53) << k;
}

TEST(WindowsMath, ExactValuesAndWhatTheLibraryAnswers) {
  EXPECT_EQ(__wrap_exp(0.0), 1.0);
  EXPECT_EQ(__wrap_log(1.0), 0.0);
  EXPECT_EQ(__wrap_log10(1e22), 22.0);
  EXPECT_EQ(__wrap_pow(3.0, 4.0), 81.0);
  EXPECT_EQ(__wrap_cbrt(-27.0), -3.0);
  EXPECT_EQ(__wrap_pow(-2.0, 3.0), -8.0);
  EXPECT_EQ(__wrap_pow(0.0, 2.0), 0.0);
  EXPECT_EQ(__wrap_exp(-kInf), 0.0);
  EXPECT_EQ(__wrap_exp(kInf), kInf);
  EXPECT_EQ(__wrap_log(0.0), -kInf);
  EXPECT_TRUE(std::isnan(__wrap_log(-1.0)) && std::isnan(__wrap_exp(kNaN)) &&
              std::isnan(__wrap_pow(kNaN, 2.0)));
  EXPECT_LT(off_by(__wrap_log(5e-324), std::log(static_cast<long double>(5e-324))), 0.52);
  EXPECT_EQ(__wrap_fmax(kNaN, 2.0), 2.0);
  EXPECT_EQ(__wrap_fmax(2.0, kNaN), 2.0);
  EXPECT_EQ(__wrap_fmin(1.0, 2.0), 1.0);
}

}  // namespace
