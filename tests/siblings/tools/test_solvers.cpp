// CNEWTON and GANEW on standard problems of the literature (More, Garbow and Hillstrom, TOMS 7 (1981) 17-41).
#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdint>
#include <vector>

#include "common/environment.hpp"
#include "kestrune/kvtoolslite.h"

namespace {

using Doubles = std::vector<double>;

// __stdcall on 32-bit Windows, as the solvers call it; user counts the evaluations.
#define PROBLEM(name) void KV_CALL name(const int32_t* n, const double* x, double* f, int32_t* flag, void* user)

void tally(void* user) {
  ++*static_cast<int*>(user);
}

PROBLEM(rosenbrock) {
  (void)n, (void)flag, tally(user);
  f[0] = 10.0 * (x[1] - x[0] * x[0]);
  f[1] = 1.0 - x[0];
}

PROBLEM(powell_singular) {
  (void)n, (void)flag, tally(user);
  f[0] = x[0] + 10.0 * x[1];
  f[1] = std::sqrt(5.0) * (x[2] - x[3]);
  f[2] = (x[1] - 2.0 * x[2]) * (x[1] - 2.0 * x[2]);
  f[3] = std::sqrt(10.0) * (x[0] - x[3]) * (x[0] - x[3]);
}

PROBLEM(broyden_tridiagonal) {
  (void)flag, tally(user);
  for (int32_t i = 0; i < *n; ++i) {
    const double left = i > 0 ? x[i - 1] : 0.0, right = i + 1 < *n ? x[i + 1] : 0.0;
    f[i] = (3.0 - 2.0 * x[i]) * x[i] - left - 2.0 * right + 1.0;
  }
}

// ln x = 2 and x y = 1: the full step from x = 30 leads to x < 0, where there is no logarithm.
PROBLEM(logarithm) {
  (void)n, tally(user);
  *flag = x[0] <= 0.0 ? 1 : 0;
  if (*flag != 0) return;
  f[0] = std::log(x[0]) - 2.0;
  f[1] = x[0] * x[1] - 1.0;
}

PROBLEM(badly_scaled) {  // Powell badly scaled: x near 1.1e-5 and 9.1
  (void)n, (void)flag, tally(user);
  f[0] = 1e4 * x[0] * x[1] - 1.0;
  f[1] = std::exp(-x[0]) + std::exp(-x[1]) - 1.0001;
}

PROBLEM(parallel) {  // two lines that never meet
  (void)n, (void)flag, tally(user);
  f[0] = x[0] + x[1] - 1.0;
  f[1] = x[0] + x[1] - 2.0;
}

PROBLEM(no_root) {
  (void)n, (void)flag, tally(user);
  f[0] = x[0] * x[0] + 1.0;
}

PROBLEM(jump) {  // no root either, and the slope is 1 everywhere
  (void)n, (void)flag, tally(user);
  f[0] = x[0] >= 0.0 ? x[0] + 1.0 : x[0] - 1.0;
}

PROBLEM(refuses) {
  (void)n, (void)x, (void)f, tally(user);
  *flag = 9;
}

struct Outcome {
  Doubles x, f;
  std::int32_t iterations = -1, status = -1;
  int evaluations = 0;
};

enum class Method { newton, broyden };

Outcome run(Method method, KvResidual residual, const Doubles& start, double tolerance = 1e-10,
            std::int32_t itemax = 100) {
  Outcome r{start, Doubles(start.size(), -1.0)};
  const auto n = static_cast<std::int32_t>(start.size());
  const std::int32_t units[7] = {}, none = 0;
  if (method == Method::newton) {
    CNEWTON(&n, r.x.data(), r.f.data(), residual, &r.evaluations, &tolerance, &itemax, units, &r.iterations,
            &r.status);
  } else {
    GANEW(&n, r.x.data(), r.f.data(), residual, &r.evaluations, &tolerance, &itemax, &none, &none,
          &r.iterations, &r.status);
  }
  return r;
}

class Solvers : public testing::TestWithParam<Method> {};

TEST_P(Solvers, Rosenbrock) {
  for (const Doubles& start : {Doubles{-1.2, 1.0}, Doubles{30.0, -40.0}, Doubles{0.0, 0.0}}) {
    const Outcome r = run(GetParam(), rosenbrock, start);
    EXPECT_EQ(r.status, 0);
    EXPECT_NEAR(r.x[0], 1.0, 1e-9);
    EXPECT_NEAR(r.x[1], 1.0, 1e-9);
  }
}

TEST_P(Solvers, PowellSingularConvergesLinearly) {
  const Outcome r = run(GetParam(), powell_singular, {3.0, -1.0, 0.0, 1.0}, 1e-12);
  EXPECT_EQ(r.status, 0);
  for (const double x : r.x) EXPECT_NEAR(x, 0.0, 1e-5);
}

TEST_P(Solvers, BroydenTridiagonalOfFifty) {
  const Outcome r = run(GetParam(), broyden_tridiagonal, Doubles(50, -1.0), 1e-12);
  EXPECT_EQ(r.status, 0);
  Doubles f(50);
  std::int32_t n = 50, flag = 0;
  int unused = 0;
  broyden_tridiagonal(&n, r.x.data(), f.data(), &flag, &unused);
  EXPECT_EQ(f, r.f) << "the residuals belong to the solution";
  for (const double value : f) EXPECT_LE(std::fabs(value), 1e-12);
  if (GetParam() == Method::broyden) {
    const Outcome newton = run(Method::newton, broyden_tridiagonal, Doubles(50, -1.0), 1e-12);
    EXPECT_LT(r.evaluations, newton.evaluations) << "updates spare Jacobians";
  }
}

TEST_P(Solvers, RegionWithoutFunctionValues) {
  const Outcome r = run(GetParam(), logarithm, {30.0, 1.0});
  EXPECT_EQ(r.status, 0);
  EXPECT_NEAR(r.x[0], std::exp(2.0), 1e-8);
  EXPECT_NEAR(r.x[1], std::exp(-2.0), 1e-9);
}

TEST_P(Solvers, UnknownsOfVeryDifferentSize) {
  const Outcome r = run(GetParam(), badly_scaled, {0.0, 1.0}, 1e-9, 500);
  EXPECT_EQ(r.status, 0);
  EXPECT_NEAR(r.x[0], 1.098159e-5, 1e-9);
  EXPECT_NEAR(r.x[1], 9.106146, 1e-3);
}

TEST_P(Solvers, NamedFailures) {
  EXPECT_EQ(run(GetParam(), parallel, {5.0, 5.0}).status, 2);
  EXPECT_EQ(run(GetParam(), no_root, {3.0}).status, 2) << "the slope is 0 where the function is least";
  EXPECT_EQ(run(GetParam(), jump, {3.0}).status, 3);
  const Outcome refused = run(GetParam(), refuses, {3.0});
  EXPECT_EQ(refused.status, 4);
  EXPECT_EQ(refused.evaluations, 1);
  const Outcome limited = run(GetParam(), broyden_tridiagonal, Doubles(50, -1.0), 1e-12, 2);
  EXPECT_EQ(limited.status, 1);
  EXPECT_EQ(limited.iterations, 2);
  EXPECT_EQ(run(GetParam(), rosenbrock, {1.0, 1.0}, 1e-10, 0).status, 0) << "the start is the solution";
}

TEST_P(Solvers, BadArguments) {
  EXPECT_EQ(run(GetParam(), rosenbrock, {}).status, 5);
  EXPECT_EQ(run(GetParam(), nullptr, {1.0, 2.0}).status, 5);
  EXPECT_EQ(run(GetParam(), rosenbrock, {1.0, 2.0}, -1.0).status, 5);
  EXPECT_EQ(run(GetParam(), rosenbrock, {1.0, 2.0}, std::nan("")).status, 5);
  EXPECT_EQ(run(GetParam(), rosenbrock, {1.0, HUGE_VAL}).status, 5);
  EXPECT_EQ(run(GetParam(), rosenbrock, {1.0, 2.0}, 1e-9, -1).status, 5);
}

INSTANTIATE_TEST_SUITE_P(Both, Solvers, testing::Values(Method::newton, Method::broyden));

#if defined(__SSE2__) && (defined(__GLIBC__) || defined(_WIN32))
// A host's rounding mode neither reaches the arithmetic nor is it lost.
TEST(Environment, HostRoundingModeIsSetAsideAndRestored) {
  const Outcome nearest = run(Method::newton, broyden_tridiagonal, Doubles(20, -1.0), 1e-12);
  std::fesetround(FE_UPWARD);
  const Outcome upward = run(Method::newton, broyden_tridiagonal, Doubles(20, -1.0), 1e-12);
  const int after = std::fegetround();
  std::fesetround(FE_TONEAREST);
  EXPECT_EQ(after, FE_UPWARD);
  EXPECT_EQ(upward.x, nearest.x);
}

// Its sticky flags are those of before, up or down.
TEST(Environment, WordsOfTheHostComeBackExactly) {
  using namespace kestrune::tests;
  for (const HostWords& h : kHosts) {
    default_words();
    set_words(h.control, h.mxcsr);
    volatile long double third = 1.0L;
    if ((h.control & 0x20) != 0) third = third / 3.0L;  // leaves the inexact flag
    const Words before = read_words();
    run(Method::newton, broyden_tridiagonal, Doubles(20, -1.0), 1e-12);
    const Words after = read_words();
    default_words();
    EXPECT_TRUE(before == after) << h.what;
  }
}
#endif

}  // namespace
