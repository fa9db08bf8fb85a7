// Mixture constants and petroleum characterisation against their definitions.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>

#include "kestrune/kvtoolslite.h"

namespace {

struct Mix {
  double Tc = -1, Pc = -1, Vc = -1, Zc = -1, M = -1;
};

// Methane, ethane, carbon dioxide: K, atm, cm3/mol, -, g/mol.
constexpr std::array<double, 3> kTc{190.56, 305.32, 304.13}, kPc{45.39, 48.08, 72.81}, kVc{98.6, 145.5, 94.0},
    kZc{0.286, 0.279, 0.274}, kM{16.043, 30.07, 44.01};

Mix kay(const std::array<double, 3>& x, const std::array<double, 3>& Vc = kVc,
        const std::array<double, 3>& Zc = kZc) {
  Mix m;
  const std::int32_t nc = 3;
  CalcKayMR(&nc, x.data(), kTc.data(), kPc.data(), Vc.data(), Zc.data(), kM.data(), &m.Tc, &m.Pc, &m.Vc, &m.Zc,
            &m.M);
  return m;
}

TEST(Petroleum, KayOfAPureComponent) {
  const Mix m = kay({0.0, 1.0, 0.0});
  EXPECT_EQ(m.Tc, kTc[1]);
  EXPECT_EQ(m.Vc, kVc[1]);
  EXPECT_EQ(m.Zc, kZc[1]);
  EXPECT_EQ(m.M, kM[1]);
  EXPECT_NEAR(m.Pc, 82.057366 * kZc[1] * kTc[1] / kVc[1], 1e-5);
  EXPECT_NEAR(m.Pc, kPc[1], 0.005 * kPc[1]) << "the constants fit each other, so the unit of R is right";
}

TEST(Petroleum, KaySumsAndPressureRules) {
  const std::array<double, 3> x{0.7, 0.2, 0.1};
  const Mix m = kay(x);
  EXPECT_NEAR(m.Tc, 0.7 * 190.56 + 0.2 * 305.32 + 0.1 * 304.13, 1e-12);
  EXPECT_NEAR(m.Vc, 0.7 * 98.6 + 0.2 * 145.5 + 0.1 * 94.0, 1e-12);
  EXPECT_NEAR(m.Pc * m.Vc / (m.Zc * m.Tc), 82.057366, 1e-6);
  const double sum = 0.7 * 45.39 + 0.2 * 48.08 + 0.1 * 72.81;
  EXPECT_NEAR(kay(x, {98.6, 0.0, 94.0}).Pc, sum, 1e-12) << "a critical volume is not known";
  EXPECT_NEAR(kay(x, kVc, {0.286, 0.279, 0.0}).Pc, sum, 1e-12);
  EXPECT_EQ(kay({0.7, 0.3, 0.0}, {98.6, 145.5, 0.0}).Pc, kay({0.7, 0.3, 0.0}).Pc) << "an absent component";
}

TEST(Petroleum, WatsonFactorAndItsInverse) {
  const double Tb = 371.58, SG = 0.6882;  // n-heptane: 12.7 by the literature
  double K = 0.0, back = 0.0;
  std::int32_t status = -1;
  CalcKUOP(&Tb, &SG, &K, &status);
  ASSERT_EQ(status, 0);
  EXPECT_NEAR(K, 12.7, 0.05);
  CalcSG(&Tb, &K, &back, &status);
  ASSERT_EQ(status, 0);
  EXPECT_NEAR(back, SG, 1e-15);
  const double none = 0.0;
  CalcKUOP(&Tb, &none, &K, &status);
  EXPECT_EQ(status, 1);
  CalcSG(&none, &K, &back, &status);
  EXPECT_EQ(status, 1);
  EXPECT_NEAR(back, SG, 1e-15) << "left alone";
}

// Two cuts at whole cube roots of the Fahrenheit boiling points: 343 F = 7^3 and 729 F = 9^3. Equal volumes
// give a cubic average of 8^3 = 512 F.
TEST(Petroleum, MeanAverageBoilingPoint) {
  const std::array<double, 2> Tb{(343.0 + 459.67) / 1.8, (729.0 + 459.67) / 1.8}, x{0.75, 0.25}, SG{0.8, 0.9};
  const std::array<double, 2> w{0.8 / 1.7, 0.9 / 1.7};
  const std::int32_t n = 2, one = 1, none = 0;
  double result = 0.0;
  std::int32_t status = -1;
  MeABP(&n, Tb.data(), x.data(), w.data(), SG.data(), &result, &status);
  ASSERT_EQ(status, 0);
  const double molal = 0.75 * 343.0 + 0.25 * 729.0;
  EXPECT_NEAR(1.8 * result - 459.67, 0.5 * (molal + 512.0), 1e-10);
  MeABP(&one, &Tb[1], x.data(), w.data(), SG.data(), &result, &status);
  ASSERT_EQ(status, 0);
  EXPECT_NEAR(result, Tb[1], 1e-12) << "one cut is its own mean";
  MeABP(&none, Tb.data(), x.data(), w.data(), SG.data(), &result, &status);
  EXPECT_EQ(status, 1);
}

}  // namespace
