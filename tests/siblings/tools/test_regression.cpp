// REGLIN against lines that are known exactly.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "kestrune/kvtoolslite.h"

namespace {

struct Fit {
  double slope = -9.0, intercept = -9.0, correlation = -9.0;
  std::int32_t status = -1;
};

Fit fit(const std::vector<double>& x, const std::vector<double>& y) {
  Fit f;
  const auto n = static_cast<std::int32_t>(x.size());
  REGLIN(&n, x.data(), y.data(), &f.slope, &f.intercept, &f.correlation, &f.status);
  return f;
}

TEST(Regression, LineFarFromTheOriginIsFoundExactly) {
  for (const double offset : {0.0, 1e8, -1e12}) {
    std::vector<double> x, y;
    for (int i = 0; i < 9; ++i) {
      x.push_back(offset + i * i);
      y.push_back(2.5 * x.back() - 7.0);  // exact
    }
    const Fit f = fit(x, y);
    ASSERT_EQ(f.status, 0);
    EXPECT_EQ(f.slope, 2.5);
    EXPECT_EQ(f.intercept, -7.0);
    EXPECT_NEAR(f.correlation, 1.0, 1e-15);
  }
}

// Points off the line, by hand: x = 0 1 2 3 and y = 1 3 2 5 give Sxx = 5, Sxy = 5.5, Syy = 8.75; moving the
// origin of both axes changes the intercept only.
TEST(Regression, ScatteredPointsWithOffsets) {
  for (const double dx : {0.0, 1e8}) {
    for (const double dy : {0.0, -1e8}) {
      const Fit f = fit({dx, dx + 1, dx + 2, dx + 3}, {dy + 1, dy + 3, dy + 2, dy + 5});
      ASSERT_EQ(f.status, 0);
      EXPECT_NEAR(f.slope, 1.1, 3e-16);
      EXPECT_NEAR(f.intercept, dy + 2.75 - 1.1 * (dx + 1.5), 1e-15 * (1.0 + dx + std::fabs(dy)));
      EXPECT_NEAR(f.correlation, 5.5 / std::sqrt(5.0 * 8.75), 3e-16);
    }
  }
}

TEST(Regression, ExtremeUnits) {
  const Fit large = fit({1e300, 2e300, 3e300}, {-1e-300, -2e-300, -3e-300});
  ASSERT_EQ(large.status, 0);
  EXPECT_NEAR(large.correlation, -1.0, 1e-15);
  const Fit level = fit({1.0, 2.0, 4.0}, {0.1, 0.1, 0.1});
  ASSERT_EQ(level.status, 0);
  EXPECT_EQ(level.slope, 0.0);
  EXPECT_EQ(level.intercept, 0.1);
  EXPECT_EQ(level.correlation, 0.0);
}

TEST(Regression, NoLine) {
  EXPECT_EQ(fit({1.0}, {2.0}).status, 1);
  EXPECT_EQ(fit({}, {}).status, 1);
  const Fit upright = fit({0.1, 0.1, 0.1}, {1.0, 2.0, 3.0});
  EXPECT_EQ(upright.status, 1);
  EXPECT_EQ(upright.slope, -9.0) << "results are left alone";
  EXPECT_EQ(fit({0.0, std::numeric_limits<double>::quiet_NaN()}, {1.0, 2.0}).status, 1);
}

}  // namespace
