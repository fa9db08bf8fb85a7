// The loops for two and for four doubles at a time give the same digits, and what their plain formulas give.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "support/arena.hpp"
#include "support/lanes.hpp"

using namespace kestrune::support;

namespace {

using Values = std::vector<double>;

struct Results {
  std::vector<Values> all;
  bool operator==(const Results& other) const {
    for (std::size_t k = 0; k < all.size(); ++k)
      if (std::memcmp(all[k].data(), other.all[k].data(), all[k].size() * sizeof(double)) != 0) return false;
    return all.size() == other.all.size();
  }
};

// Everything that a width computes for n components and m groups.
Results run(const Lanes& lanes, int n, int m, unsigned seed) {
  const int ld = padded(n);
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> pick(0.1, 1.0);
  const auto vector = [&](int filled, int size) {
    Values v(size, 0.0);
    for (int i = 0; i < filled; ++i) v[i] = pick(random);
    return v;
  };
  const auto matrix = [&] {
    Values v(static_cast<std::size_t>(ld) * n, 0.0);
    for (int j = 0; j < n; ++j)
      for (int i = j; i < n; ++i) v[j * ld + i] = v[i * ld + j] = pick(random) + (i == j ? n : 0.0);
    return v;
  };
  const Values a = matrix(), x = vector(n, ld), b = vector(n, ld), e = vector(n, ld),
               f = vector(ld * m, ld * m);
  Values A(m * m, 0.3), s(ld), out(ld), pairs(ld * n), lower(ld * n), tight(n * n),
      log_w = vector(n, ld), w(ld), powers(n), scaled(ld * n), factors = a, half(ld * m), d(ld), sums(ld * n);
  const PairTerms p{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9};
  const Sums two = lanes.combine(n, ld, a.data(), x.data(), b.data(), s.data());
  lanes.linear(ld, 0.1, 0.2, b.data(), 0.3, s.data(), out.data());
  lanes.pairs(p, n, ld, a.data(), b.data(), s.data(), pairs.data(), ld, ld, false);
  lanes.pairs(p, n, ld, a.data(), b.data(), s.data(), lower.data(), ld, ld, true);
  lanes.pairs(p, n, ld, a.data(), b.data(), s.data(), tight.data(), n, n, false);
  const double sum = lanes.shares(n, ld, 0.9, log_w.data(), w.data());
  lanes.powers(n, a.data(), b.data(), -3.0, powers.data());
  lanes.scale(n, ld, x.data(), a.data(), scaled.data());
  const bool positive = lanes.ldl_factor(n, ld, factors.data(), 0.0);
  lanes.group_sums(n, ld, m, f.data(), A.data(), e.data(), b.data(), half.data(), d.data(), sums.data());

  // Against plain formulas, entry by entry.
  double xs = 0.0, whole = 0.0;
  EXPECT_TRUE(positive);
  for (int i = 0; i < n; ++i) {
    double si = 0.0;
    for (int j = 0; j < n; ++j) si += a[j * ld + i] * x[j];
    EXPECT_NEAR(s[i], si, 1e-13 * si);
    xs += x[i] * si;
    whole += w[i];
    EXPECT_NEAR(w[i] * sum, std::exp(std::min(log_w[i], 0.9)), 1e-15 * n);
    EXPECT_NEAR(powers[i], a[i] * std::exp(-3.0 * b[i]), 1e-14 * n);
    for (int j = 0; j <= i; ++j) {
      const double li = p.h_b * b[i] + p.h_s * s[i], lj = p.h_b * b[j] + p.h_s * s[j];
      const double value = p.unit + p.g_b * (b[i] + b[j]) + p.g_bb * b[i] * b[j] +
                           p.g_bs * (b[i] * s[j] + s[i] * b[j]) + p.g_a * a[j * ld + i] + p.e * (li + lj) -
                           p.inv_k * li * lj;
      EXPECT_NEAR(pairs[j * ld + i], value, 1e-13 * n * n * n);
      EXPECT_EQ(pairs[j * ld + i], lower[j * ld + i]);
      EXPECT_EQ(pairs[j * ld + i], tight[j * n + i]);
      // L D L^T
      double back = 0.0;
      for (int k = 0; k <= j; ++k)
        back +=
            (k == i ? 1.0 : factors[k * ld + i]) / factors[k * ld + k] * (k == j ? 1.0 : factors[k * ld + j]);
      EXPECT_NEAR(back, a[j * ld + i], 1e-13 * n);
      double g[3] = {};  // (f A f^T) of ij, ii, jj
      for (int k = 0; k < m; ++k)
        for (int l = 0; l < m; ++l) {
          g[0] += f[k * ld + i] * A[k * m + l] * f[l * ld + j];
          g[1] += f[k * ld + i] * A[k * m + l] * f[l * ld + i];
          g[2] += f[k * ld + j] * A[k * m + l] * f[l * ld + j];
        }
      const double pair = 0.5 * b[i] * b[j] * (e[i] + e[j] + 0.5 * (g[1] + g[2]) - g[0]);
      EXPECT_NEAR(sums[j * ld + i], pair, 1e-13 * m * m);
    }
  }
  EXPECT_NEAR(two.first, xs, 1e-13 * xs);
  EXPECT_NEAR(whole, 1.0, 1e-14);
  return {{s, out, pairs, w, powers, scaled, factors, sums, {two.first, two.second, sum}}};
}

TEST(Lanes, BothWidthsGiveTheSameDigits) {
  for (const int n : {1, 2, 3, 4, 5, 7, 8, 10, 13, 40}) {
    [[maybe_unused]] const Results two = run(kTwoLanes, n, 1 + n / 2, 10u + n);
#ifdef KESTRUNE_WIDE
    if (lanes == &kFourLanes) {
      EXPECT_TRUE(run(kFourLanes, n, 1 + n / 2, 10u + n) == two) << n;
    }
#endif
  }
}

}  // namespace
