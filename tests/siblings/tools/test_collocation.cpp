// Collocation matrices and weights are exact on polynomials of the full degree.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "kestrune/kvtoolslite.h"

namespace {

using Doubles = std::vector<double>;

struct Rule {
  std::int32_t nt = 0, status = -1;
  Doubles x, a, b, w;
};

Rule rule(std::int32_t n, std::int32_t n0, std::int32_t n1, double alpha, double beta) {
  Rule r;
  r.nt = n + n0 + n1;
  const auto size = static_cast<std::size_t>(r.nt > 0 ? r.nt : 1);
  r.x.assign(size, -5.0);
  r.a.assign(size * size, 0.0);
  r.b.assign(size * size, 0.0);
  r.w.assign(size, 0.0);
  MCOLT7(&n, &n0, &n1, &alpha, &beta, r.x.data(), r.a.data(), r.b.data(), r.w.data(), &r.status);
  return r;
}

// Chebyshev polynomial of degree k on [0, 1] with its first two derivatives: a basis that does not lose digits.
struct Chebyshev {
  double value = 1.0, first = 0.0, second = 0.0;
};

Chebyshev chebyshev(int k, double x) {
  const double s = 2.0 * x - 1.0;
  Chebyshev p0, p1{s, 1.0, 0.0};
  if (k == 0) return p0;
  for (int i = 1; i < k; ++i) {
    const Chebyshev next{2 * s * p1.value - p0.value, 2 * p1.value + 2 * s * p1.first - p0.first,
                         4 * p1.first + 2 * s * p1.second - p0.second};
    p0 = p1;
    p1 = next;
  }
  return {p1.value, 2.0 * p1.first, 4.0 * p1.second};
}

double chebyshev_integral(int k) {
  return k % 2 == 1 ? 0.0 : 1.0 / (1.0 - static_cast<double>(k) * k);
}

double quadrature(const Rule& r, int k) {
  double sum = 0.0;
  for (std::int32_t i = 0; i < r.nt; ++i) {
    sum += r.w[static_cast<std::size_t>(i)] * chebyshev(k, r.x[static_cast<std::size_t>(i)]).value;
  }
  return sum;
}

void expect_exact(const Rule& r, const char* what) {
  const double n2 = static_cast<double>(r.nt) * r.nt;
  for (int k = 0; k < r.nt; ++k) {
    for (std::int32_t i = 0; i < r.nt; ++i) {
      double first = 0.0, second = 0.0;
      for (std::int32_t j = 0; j < r.nt; ++j) {
        const std::size_t at = static_cast<std::size_t>(i + r.nt * j);
        const double value = chebyshev(k, r.x[static_cast<std::size_t>(j)]).value;
        first += r.a[at] * value;
        second += r.b[at] * value;
      }
      const Chebyshev exact = chebyshev(k, r.x[static_cast<std::size_t>(i)]);
      EXPECT_NEAR(first, exact.first, 2e-14 * n2 * n2) << what << " nt " << r.nt << " degree " << k;
      EXPECT_NEAR(second, exact.second, 2e-14 * n2 * n2 * n2) << what << " nt " << r.nt << " degree " << k;
    }
    EXPECT_NEAR(quadrature(r, k), chebyshev_integral(k), 1e-13) << what << " nt " << r.nt << " degree " << k;
  }
}

TEST(Collocation, MatricesAndWeightsAreExact) {
  for (const std::int32_t n : {1, 2, 5, 12, 25}) {
    for (const std::int32_t n0 : {0, 1}) {
      for (const std::int32_t n1 : {0, 1}) {
        expect_exact(rule(n, n0, n1, 0.0, 0.0), "Legendre");
        expect_exact(rule(n, n0, n1, 1.0, 1.0), "Jacobi 1 1");
        expect_exact(rule(n, n0, n1, 1.0, 0.0), "Jacobi 1 0");
        expect_exact(rule(n, n0, n1, -0.5, 0.5), "Jacobi -1/2 1/2");
      }
    }
  }
  expect_exact(rule(0, 1, 1, 0.0, 0.0), "end points only");
}

// With alpha = n1 and beta = n0 the nodes are those of Gauss, Radau and Lobatto: degree 2 n + n0 + n1 - 1.
TEST(Collocation, GaussRadauLobattoDegree) {
  for (const std::int32_t n : {1, 3, 8, 20, 60}) {
    for (const std::int32_t n0 : {0, 1}) {
      for (const std::int32_t n1 : {0, 1}) {
        const Rule r = rule(n, n0, n1, n1, n0);
        ASSERT_EQ(r.status, 0);
        for (int k = 0; k < 2 * n + n0 + n1; ++k) {
          EXPECT_NEAR(quadrature(r, k), chebyshev_integral(k), 2e-13) << n << n0 << n1 << " degree " << k;
        }
        for (const double w : r.w) EXPECT_GT(w, 0.0);
      }
    }
  }
}

TEST(Collocation, NodesOfKnownPolynomials) {
  constexpr double pi = 3.14159265358979323846;
  const std::int32_t n = 40;
  const Rule chebyshev_rule = rule(n, 0, 0, -0.5, -0.5);
  for (std::int32_t i = 0; i < n; ++i) {
    const double half = std::sin(pi * (2 * i + 1) / (4.0 * n));
    EXPECT_NEAR(chebyshev_rule.x[static_cast<std::size_t>(i)], half * half, 4e-16);
  }
  const Rule gauss = rule(3, 1, 1, 0.0, 0.0);
  EXPECT_EQ(gauss.x.front(), 0.0);
  EXPECT_EQ(gauss.x.back(), 1.0);
  EXPECT_NEAR(gauss.x[1], 0.5 - 0.5 * std::sqrt(0.6), 2e-16);
  EXPECT_NEAR(gauss.x[2], 0.5, 2e-16);
  // n = 1: the zero of the linear polynomial is the mean (beta + 1) / (alpha + beta + 2) of the weight.
  EXPECT_NEAR(rule(1, 0, 0, 2.5, 1.5).x[0], 2.5 / 6.0, 2e-16);
}

TEST(Collocation, LargeOrdersStayFinite) {
  const Rule r = rule(300, 1, 1, 1.0, 1.0);
  ASSERT_EQ(r.status, 0);
  for (std::size_t i = 1; i < r.x.size(); ++i) ASSERT_LT(r.x[i - 1], r.x[i]);
  EXPECT_NEAR(quadrature(r, 0), 1.0, 1e-12);
  EXPECT_NEAR(quadrature(r, 500), chebyshev_integral(500), 1e-11);
}

TEST(Collocation, BadArguments) {
  EXPECT_EQ(rule(-1, 1, 1, 0.0, 0.0).status, 1);
  EXPECT_EQ(rule(0, 0, 0, 0.0, 0.0).status, 1);
  EXPECT_EQ(rule(3, 2, 0, 0.0, 0.0).status, 1);
  EXPECT_EQ(rule(3, 0, -1, 0.0, 0.0).status, 1);
  EXPECT_EQ(rule(3, 0, 0, -1.0, 0.0).status, 1);
  EXPECT_EQ(rule(3, 0, 0, 0.0, std::nan("")).status, 1);
}

}  // namespace
