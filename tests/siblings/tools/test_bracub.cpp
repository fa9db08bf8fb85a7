// BRACUB against roots of 25 digits (tests/data/cubic_roots.csv, made by tools/make_cubic_reference.py).
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "common/csv.hpp"
#include "kestrune/kvtoolslite.h"

namespace {

struct Answer {
  std::int32_t status = 0;
  double Z = 0.0, bound = 0.0;
};

struct Row {
  double u, w, A, B;
  std::int32_t phase;
  Answer first, second;  // second.status -1: there is only one
};

std::vector<Row> read_rows() {
  std::vector<Row> result;
  for (const kestrune::tests::Row& row : kestrune::tests::rows("cubic_roots.csv")) {
    const auto value = [&](const char* column) { return kestrune::tests::number(row, column); };
    const auto whole = [&](const char* column) { return static_cast<std::int32_t>(value(column)); };
    result.push_back({value("u"),
                      value("w"),
                      value("A"),
                      value("B"),
                      whole("phase"),
                      {whole("status"), value("Z"), value("bound")},
                      {whole("status2"), value("Z2"), value("bound2")}});
  }
  return result;
}

struct Settings {
  double tolerance = 0.0;
  bool with_start = false;
  double start = -77.0;
  double factor = 1.0;  // of all four coefficients
};

Answer solve(const Row& r, const Settings& options = {}) {
  const double c0 = options.factor;
  const double c1 = options.factor * ((r.u - 1.0) * r.B - 1.0);
  const double c2 = options.factor * (r.A + (r.w - r.u) * r.B * r.B - r.u * r.B);
  const double c3 = options.factor * (-(r.A + r.w * r.B * (r.B + 1.0)) * r.B);
  const std::array<double, 8> settings{options.tolerance, options.with_start ? 1.0 : 0.0};
  Answer result{-1, options.start, 0.0};
  BRACUB(&c0, &c1, &c2, &c3, &result.Z, &result.status, &r.phase, &r.u, &r.w, &r.A, &r.B, settings.data());
  return result;
}

bool agrees(const Answer& found, const Answer& expected, double extra = 0.0) {
  return found.status == expected.status && std::fabs(found.Z - expected.Z) <= expected.bound + extra;
}

std::string describe(const Row& r, const Answer& a) {
  std::ostringstream text;
  text.precision(17);
  text << "u " << r.u << " w " << r.w << " A " << r.A << " B " << r.B << " phase " << r.phase << ": status "
       << a.status << " Z " << a.Z << ", expected " << r.first.status << " " << r.first.Z << " +- "
       << r.first.bound;
  return text.str();
}

TEST(Bracub, RootAndStatusOfEveryState) {
  const std::vector<Row> rows = read_rows();
  ASSERT_GT(rows.size(), 250u);
  for (const Row& r : rows) {
    const Answer a = solve(r);
    if (r.first.status == 51) {
      EXPECT_EQ(a.status, 51) << describe(r, a);
      EXPECT_EQ(a.Z, -77.0) << "Z is left alone";
      continue;
    }
    EXPECT_TRUE(agrees(a, r.first) || agrees(a, r.second)) << describe(r, a);
    EXPECT_GT(a.Z, r.B) << describe(r, a);
  }
}

// A factor common to the coefficients is no part of the problem; a power of two does not even round.
TEST(Bracub, LeadingCoefficientNeedNotBeOne) {
  for (const Row& r : read_rows()) {
    const Answer a = solve(r, {0.0, false, -77.0, 4.0}), one = solve(r);
    EXPECT_EQ(a.status, one.status) << describe(r, a);
    EXPECT_EQ(a.Z, one.Z) << describe(r, a);
  }
}

// A gas so thin that the cubic is Z^2 (Z - 1) to the last bit.
TEST(Bracub, AnIdealGas) {
  const double u = 2.0, w = -1.0, c0 = 1.0;
  const std::int32_t gas = 1;
  for (double B = 1e-12; B > 1e-300; B *= 0.7)
    for (const double q : {0.5, 3.0, 30.0}) {
      const double A = q * B, c1 = B - 1.0, c2 = A - 3.0 * B * B - 2.0 * B, c3 = -(A - B * (B + 1.0)) * B;
      double Z = -77.0;
      std::int32_t status = 0;
      BRACUB(&c0, &c1, &c2, &c3, &Z, &status, &gas, &u, &w, &A, &B, nullptr);
      EXPECT_NEAR(Z, 1.0, 1e-10) << "A/B " << q << ", B " << B;
      EXPECT_EQ(status, 0);
    }
}

TEST(Bracub, StartingValueChangesNothing) {
  constexpr double inf = std::numeric_limits<double>::infinity(),
                   nan = std::numeric_limits<double>::quiet_NaN();
  const std::vector<Row> rows = read_rows();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Row& r = rows[i];
    if (r.first.status == 51) continue;
    const Answer cold = solve(r);
    const Answer& answer = agrees(cold, r.first) ? r.first : r.second;
    const Row& partner = rows[i ^ 1];  // the other phase of the same state
    const double inflection = -((r.u - 1.0) * r.B - 1.0) / 3.0;
    for (const double start : {r.first.Z, r.first.Z * (1.0 + 1e-9), r.first.Z * 1.01, r.first.Z * 0.9,
                               partner.first.Z, partner.first.Z * (1.0 + 1e-12), r.second.Z, inflection, r.B,
                               0.5 * r.B, 0.0, -1.0, 1e-300, 1e300, inf, -inf, nan}) {
      const Answer warm = solve(r, {0.0, true, start, 1.0});
      EXPECT_EQ(warm.status, cold.status) << "start " << start << "; " << describe(r, warm);
      EXPECT_TRUE(agrees(warm, r.first) || agrees(warm, r.second))
          << "start " << start << "; " << describe(r, warm);
      EXPECT_LE(std::fabs(warm.Z - cold.Z), answer.bound) << "start " << start << "; " << describe(r, warm);
      EXPECT_GT(warm.Z, r.B) << "start " << start << "; " << describe(r, warm);
    }
  }
}

TEST(Bracub, LooseToleranceKeepsRootAndStatus) {
  for (const Row& r : read_rows()) {
    if (r.first.status == 51 || r.second.status != -1 || r.first.bound > 1e-12 * r.first.Z) continue;
    const Answer a = solve(r, {1e-6, false, -77.0, 1.0});
    EXPECT_TRUE(agrees(a, r.first, 1e-5 * r.first.Z)) << describe(r, a);
    EXPECT_GT(a.Z, r.B) << describe(r, a);
  }
}

// No cubic, no root: whatever stands where a number should, and a leading coefficient of 0.
TEST(Bracub, WhatIsNoCubicLeavesZAlone) {
  constexpr double inf = std::numeric_limits<double>::infinity(),
                   nan = std::numeric_limits<double>::quiet_NaN();
  const double good[] = {1.0, -0.9, 0.3, -0.02, 0.4, 0.1};  // c0 .. c3, A, B
  const double u = 2.0, w = -1.0, settings[8] = {};
  for (int place = 0; place < 6; ++place)
    for (const double bad : {nan, inf, -inf, 0.0})
      for (const std::int32_t phase : {1, 2}) {
        if (bad == 0.0 && place != 0) continue;
        double c[6];
        std::copy(good, good + 6, c);
        c[place] = bad;
        double Z = -77.0;
        std::int32_t status = -1;
        BRACUB(c, c + 1, c + 2, c + 3, &Z, &status, &phase, &u, &w, c + 4, c + 5, settings);
        EXPECT_EQ(status, 51) << place << ' ' << bad;
        EXPECT_EQ(Z, -77.0) << place << ' ' << bad;
      }
}

}  // namespace
