// Factor and solve of symmetric positive-definite systems.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "support/arena.hpp"
#include "support/ldl.hpp"

using kestrune::support::ldl_factor;
using kestrune::support::ldl_solve;
using kestrune::support::padded;

namespace {

// M M^T + shift, with the upper triangle and the padding spoilt: only the lower triangle may be read.
std::vector<double> random_matrix(std::mt19937& random, int n, int ld, double shift) {
  std::normal_distribution<double> pick;
  std::vector<double> m(static_cast<std::size_t>(n * n)), a(static_cast<std::size_t>(ld * n), NAN);
  for (double& v : m) v = pick(random);
  for (int j = 0; j < n; ++j)
    for (int i = j; i < n; ++i) {
      double sum = i == j ? shift : 0.0;
      for (int k = 0; k < n; ++k)
        sum += m[static_cast<std::size_t>(i + k * n)] * m[static_cast<std::size_t>(j + k * n)];
      a[static_cast<std::size_t>(i + j * ld)] = sum;
    }
  return a;
}

TEST(Ldl, SolvesPositiveDefiniteSystems) {
  std::mt19937 random(4);
  for (const int n : {1, 2, 3, 7, 10, 33, 100}) {
    const int ld = padded(n) + 4 * (n % 2);
    const std::vector<double> a = random_matrix(random, n, ld, 0.1);
    const auto element = [&](int i, int j) {
      return a[static_cast<std::size_t>(i >= j ? i + j * ld : j + i * ld)];
    };
    std::vector<double> x(static_cast<std::size_t>(n)), b(x.size(), 0.0), factors = a;
    for (double& v : x) v = std::normal_distribution<double>()(random);
    double norm = 0.0;
    for (int i = 0; i < n; ++i)
      for (int j = 0; j < n; ++j) {
        b[static_cast<std::size_t>(i)] += element(i, j) * x[static_cast<std::size_t>(j)];
        norm = std::fmax(norm, std::fabs(element(i, j)));
      }
    const std::vector<double> right = b;
    ASSERT_TRUE(ldl_factor(n, ld, factors.data(), 1e-14)) << n;
    ldl_solve(n, ld, factors.data(), b.data());
    // A backward-stable solver leaves a residual of rounding size, however the matrix is conditioned.
    for (int i = 0; i < n; ++i) {
      double residual = right[static_cast<std::size_t>(i)];
      for (int j = 0; j < n; ++j) residual -= element(i, j) * b[static_cast<std::size_t>(j)];
      EXPECT_LT(std::fabs(residual), 1e-14 * n * n * norm) << n << ' ' << i;
    }
  }
}

TEST(Ldl, RefusesWhatIsNotPositiveDefinite) {
  std::mt19937 random(5);
  for (const int n : {2, 5, 20}) {
    const int ld = padded(n);
    std::vector<double> a = random_matrix(random, n, ld, 0.1);
    // All pivots are good but the last.
    a[static_cast<std::size_t>(n - 1 + (n - 1) * ld)] = -1.0;
    EXPECT_FALSE(ldl_factor(n, ld, a.data(), 1e-14)) << n;
  }
  double indefinite[8] = {1.0, 2.0, NAN, NAN, NAN, 1.0, NAN, NAN};
  double singular[8] = {1.0, 1.0, NAN, NAN, NAN, 1.0, NAN, NAN}, nan[4] = {NAN};
  EXPECT_FALSE(ldl_factor(2, 4, indefinite, 0.0));
  EXPECT_FALSE(ldl_factor(2, 4, singular, 1e-14));
  EXPECT_FALSE(ldl_factor(1, 4, nan, 0.0));
}

}  // namespace
