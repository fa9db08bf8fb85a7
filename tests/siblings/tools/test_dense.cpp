// Linear systems with known solutions, inverses, singular matrices.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include "kestrune/kvtoolslite.h"

namespace {

using Doubles = std::vector<double>;
constexpr double kEps = std::numeric_limits<double>::epsilon();

struct Matrix {
  std::int32_t n, lda;
  Doubles a;
  Matrix(std::int32_t n_in, std::int32_t lda_in)
      : n(n_in), lda(lda_in), a(static_cast<std::size_t>(lda_in) * static_cast<std::size_t>(n_in), -999.0) {}
  double& at(std::int32_t i, std::int32_t j) { return a[static_cast<std::size_t>(i + lda * j)]; }
  double at(std::int32_t i, std::int32_t j) const { return a[static_cast<std::size_t>(i + lda * j)]; }
};

Matrix random_matrix(std::int32_t n, std::int32_t lda, unsigned seed) {
  std::mt19937_64 draw(seed);
  std::uniform_real_distribution<double> uniform(-1.0, 1.0);
  Matrix m(n, lda);
  for (std::int32_t j = 0; j < n; ++j) {
    for (std::int32_t i = 0; i < n; ++i) m.at(i, j) = uniform(draw);
  }
  return m;
}

// Hilbert matrix times the least common multiple of its denominators: all elements are exact.
Matrix whole_hilbert(std::int32_t n) {
  double multiple = 1.0;
  for (int k = 2; k < 2 * n; ++k) multiple = multiple * k / std::gcd(static_cast<long>(multiple), long{k});
  Matrix m(n, n);
  for (std::int32_t j = 0; j < n; ++j) {
    for (std::int32_t i = 0; i < n; ++i) m.at(i, j) = multiple / (i + j + 1);
  }
  return m;
}

// Largest |b - a x| over |a| |x| + |b|, row by row: the backward error of x by rows.
double backward_error(const Matrix& m, const double* x, const double* b, bool transposed = false) {
  double worst = 0.0;
  for (std::int32_t i = 0; i < m.n; ++i) {
    long double residual = b[i], size = std::fabs(b[i]);
    for (std::int32_t j = 0; j < m.n; ++j) {
      const double value = transposed ? m.at(j, i) : m.at(i, j);
      residual -= static_cast<long double>(value) * x[j];
      size += std::fabs(static_cast<long double>(value) * x[j]);
    }
    if (size > 0.0L) worst = std::max(worst, static_cast<double>(std::fabs(residual) / size));
  }
  return worst;
}

Doubles product(const Matrix& m, const Doubles& x) {
  Doubles b(x.size());
  for (std::int32_t i = 0; i < m.n; ++i) {
    long double sum = 0.0L;
    for (std::int32_t j = 0; j < m.n; ++j)
      sum += static_cast<long double>(m.at(i, j)) * x[static_cast<std::size_t>(j)];
    b[static_cast<std::size_t>(i)] = static_cast<double>(sum);
  }
  return b;
}

std::int32_t solve_one(Matrix m, Doubles& b) {
  std::int32_t status = -1;
  MRSL01(&m.n, &m.lda, m.a.data(), b.data(), &status);
  return status;
}

TEST(Dense, HilbertSystemsWithWholeSolutions) {
  for (std::int32_t n = 1; n <= 9; ++n) {
    const Matrix m = whole_hilbert(n);
    Doubles x(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<double>(i + 1);
    Doubles b = product(m, x);  // sums of whole numbers below 2^53: exact
    ASSERT_EQ(solve_one(m, b), 0);
    const double condition = std::exp(3.5 * n);
    for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(b[i], x[i], 4 * kEps * condition * n) << n;
  }
}

TEST(Dense, SolutionsDoNotDependOnUnitsOfRowsOrColumns) {
  for (const std::int32_t n : {2, 7, 30, 64, 65, 120}) {
    Matrix m = random_matrix(n, n + 3, 7u + static_cast<unsigned>(n));
    for (std::int32_t j = 0; j < n; ++j) {
      for (std::int32_t i = 0; i < n; ++i) {
        m.at(i, j) *= std::pow(10.0, (i * 37 % 41) * 6 - 120) * std::pow(10.0, (j * 17 % 13) * 4 - 24);
      }
    }
    Doubles b(static_cast<std::size_t>(n));
    for (std::int32_t i = 0; i < n; ++i) b[static_cast<std::size_t>(i)] = m.at(i, i % 2) * 3.0;
    Doubles x = b;
    ASSERT_EQ(solve_one(m, x), 0);
    EXPECT_LT(backward_error(m, x.data(), b.data()), 8 * kEps) << n;
  }
}

TEST(Dense, ManyRightHandSidesKeepTheirLeadingDimension) {
  const std::int32_t n = 5, m = 3, ldb = 8;
  const Matrix original = random_matrix(n, 6, 3);
  Matrix work = original;
  Doubles b(static_cast<std::size_t>(ldb * m));
  for (std::size_t i = 0; i < b.size(); ++i) b[i] = static_cast<double>(i) - 7.5;
  Doubles x = b;
  std::int32_t status = -1;
  MRSL02(&n, &work.lda, work.a.data(), &m, &ldb, x.data(), &status);
  ASSERT_EQ(status, 0);
  for (std::int32_t k = 0; k < m; ++k) {
    EXPECT_LT(backward_error(original, x.data() + ldb * k, b.data() + ldb * k), 4 * kEps);
    for (std::int32_t i = n; i < ldb; ++i)
      EXPECT_EQ(x[static_cast<std::size_t>(i + ldb * k)], i + ldb * k - 7.5);
  }
  for (std::int32_t j = 0; j < n; ++j) EXPECT_EQ(work.at(5, j), -999.0) << "rows beyond n are not touched";
}

TEST(Dense, InverseTimesMatrixIsIdentity) {
  for (const std::int32_t n : {1, 4, 20, 70}) {
    const Matrix m = random_matrix(n, n + 1, 11u + static_cast<unsigned>(n));
    Matrix inverse = m;
    std::int32_t status = -1;
    MRINV(&n, &m.lda, inverse.a.data(), &status);
    ASSERT_EQ(status, 0);
    for (std::int32_t j = 0; j < n; ++j) {
      Doubles unit(static_cast<std::size_t>(n), 0.0);
      unit[static_cast<std::size_t>(j)] = 1.0;
      EXPECT_LT(backward_error(m, &inverse.a[static_cast<std::size_t>(m.lda * j)], unit.data()), 2 * n * kEps)
          << n;
    }
  }
  Matrix hilbert = whole_hilbert(3);  // 60 / (i + j + 1): the inverse is known
  std::int32_t status = -1;
  MRINV(&hilbert.n, &hilbert.lda, hilbert.a.data(), &status);
  const double exact[] = {9, -36, 30, -36, 192, -180, 30, -180, 180};
  for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(hilbert.a[i], exact[i] / 60.0, 500 * kEps * 3);
}

TEST(Dense, ClassicFactorsSolveBothWays) {
  for (const std::int32_t n : {1, 2, 9, 40}) {
    const Matrix m = random_matrix(n, n + 2, 23u + static_cast<unsigned>(n));
    Matrix factors = m;
    std::vector<std::int32_t> ipvt(static_cast<std::size_t>(n));
    std::int32_t info = -1;
    DGEFA(factors.a.data(), &m.lda, &n, ipvt.data(), &info);
    ASSERT_EQ(info, 0);
    for (std::int32_t k = 0; k < n; ++k) {
      EXPECT_GE(ipvt[static_cast<std::size_t>(k)], k + 1);
      EXPECT_LE(ipvt[static_cast<std::size_t>(k)], n);
      for (std::int32_t i = k + 1; i < n; ++i)
        EXPECT_LE(std::fabs(factors.at(i, k)), 1.0) << "partial pivoting";
    }
    Doubles b(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < b.size(); ++i) b[i] = std::cos(static_cast<double>(i));
    for (const std::int32_t job : {0, 1, 7}) {
      Doubles x = b;
      DGESL(factors.a.data(), &m.lda, &n, ipvt.data(), x.data(), &job);
      EXPECT_LT(backward_error(m, x.data(), b.data(), job != 0), 3 * n * kEps) << n << " job " << job;
    }
  }
  Matrix singular(3, 3);  // second and third column equal
  singular.a = {1, 2, 3, 4, 5, 7, 4, 5, 7};
  std::int32_t ipvt[3], info = 0;
  DGEFA(singular.a.data(), &singular.lda, &singular.n, ipvt, &info);
  EXPECT_EQ(info, 3);
}

// Whole numbers with one row a combination of the others: exactly singular, though not to an elimination that
// rounds, and in whatever units the rows and columns are.
TEST(Dense, SingularInEveryUnit) {
  std::mt19937_64 draw(5);
  const auto whole = [&draw](int size) { return static_cast<double>(draw() % (2u * size + 1u)) - size; };
  for (int trial = 0; trial < 2000; ++trial) {
    const std::int32_t n = 2 + trial % 30, last = trial % n;
    Matrix m(n, n);
    for (double& value : m.a) value = whole(99);
    for (std::int32_t j = 0; j < n; ++j) m.at(last, j) = 0.0;
    for (std::int32_t i = 0; i < n; ++i) {
      const double factor = i == last ? 0.0 : whole(3);
      for (std::int32_t j = 0; j < n; ++j) m.at(last, j) += factor * m.at(i, j);
    }
    const int unit = (trial % 3 - 1) * 600;
    for (std::int32_t j = 0; j < n; ++j) {
      for (std::int32_t i = 0; i < n; ++i) {
        m.at(i, j) = std::ldexp(m.at(i, j), unit + (i * 7 % 5) * 20 - (j * 3 % 4) * 20);
      }
    }
    Doubles b(static_cast<std::size_t>(n), 2.5);
    ASSERT_EQ(solve_one(m, b), 1) << n << " trial " << trial;
    EXPECT_EQ(b, Doubles(static_cast<std::size_t>(n), 2.5)) << "left alone";
    Matrix kept = m;
    std::int32_t status = -1;
    MRINV(&m.n, &m.lda, m.a.data(), &status);
    EXPECT_EQ(status, 1);
    EXPECT_EQ(m.a, kept.a) << "left alone";
  }
}

TEST(Dense, SmallOrNearlySingularIsNotSingular) {
  Matrix tiny(2, 2);  // regular, however small
  tiny.a = {1e-290, 0, 0, 1e-300};
  Doubles b{3e-290, 5e-300};
  EXPECT_EQ(solve_one(tiny, b), 0);
  EXPECT_DOUBLE_EQ(b[0], 3.0);
  EXPECT_DOUBLE_EQ(b[1], 5.0);
  Matrix close(2, 2);
  close.a = {1.0, 1.0, 1.0, 1.0 + 1e-14};
  b = {2.0, 2.0};
  EXPECT_EQ(solve_one(close, b), 0);
}

TEST(Dense, BadArguments) {
  Matrix m = random_matrix(3, 3, 1);
  Doubles b{1, 2, 3};
  std::int32_t status = -1;
  for (const std::int32_t n : {0, -4, 4}) {  // 4 > lda
    MRSL01(&n, &m.lda, m.a.data(), b.data(), &status);
    EXPECT_EQ(status, 2) << n;
    MRINV(&n, &m.lda, m.a.data(), &status);
    EXPECT_EQ(status, 2) << n;
  }
  MRINV(&m.n, &m.lda, nullptr, &status);
  EXPECT_EQ(status, 2);
  const std::int32_t columns = 1, short_ldb = 2;
  MRSL02(&m.n, &m.lda, m.a.data(), &columns, &short_ldb, b.data(), &status);
  EXPECT_EQ(status, 2);
  b[1] = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(solve_one(m, b), 2);
  m.at(1, 2) = std::numeric_limits<double>::infinity();
  b[1] = 0.0;
  EXPECT_EQ(solve_one(m, b), 2);
}

}  // namespace
