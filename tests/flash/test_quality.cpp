// FlashLVatWP and FlashLVatWT: bubble and dew points, branches, ends of the lines, trace.
#include <gtest/gtest.h>

#include "common/flash_call.hpp"
#include "common/scratch_folder.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Point {
  StatusCode status = -1;
  double T = 0.0, P = 0.0;
  std::vector<double> x, y, K;
};

// given: P for a temperature, T for a pressure; start: the estimate of the unknown and the phases.
Point find(Mixture& m, const std::vector<double>& z, char unknown, double W, double given, int options = 1,
           Point start = {}) {
  Point p = std::move(start);
  for (auto* array : {&p.x, &p.y, &p.K}) array->resize(z.size(), 0.0);
  (unknown == 'T' ? p.P : p.T) = given;
  p.status = (unknown == 'T' ? FlashLVatWP : FlashLVatWT)(W, given, z.data(), &m.record, nullptr, options,
                                                          unknown == 'T' ? &p.T : &p.P, p.x.data(), p.y.data(),
                                                          p.K.data());
  return p;
}

Mixture in_use(const std::vector<std::string>& ids) {
  Mixture m = mixture_of(ids);
  m.use();
  return m;
}

// Equal fugacities, material balance, and one phase of the feed on the stated side only.
void expect_point(Mixture& m, const std::vector<double>& z, double W, const Point& p) {
  SCOPED_TRACE(testing::Message() << "W " << W << " T " << p.T << " P " << p.P);
  ASSERT_EQ(p.status, KV_OK);
  const PhaseState x = phase_state(m, p.T, p.P, p.x), y = phase_state(m, p.T, p.P, p.y);
  double sum = 0.0;
  for (const double feed : z) sum += feed;
  for (std::size_t i = 0; i < z.size(); ++i) {
    EXPECT_NEAR((1.0 - W) * p.x[i] + W * p.y[i], z[i] / sum, 1e-12) << i;
    if (z[i] > 0.0) {
      EXPECT_NEAR(std::log(p.x[i]) + x.ln_phi[i], std::log(p.y[i]) + y.ln_phi[i], 1e-8) << i;
    }
  }
  EXPECT_GT(y.Z, x.Z);
}

TEST(QualityFlash, PointsOfAGasOverTheRange) {
  Mixture m = in_use(kRichGas);
  for (const double W : {1.0, 0.9, 0.7})
    for (const double P : {0.01, 0.3, 5.0, 30.0, 80.0, 105.0}) {
      if (W == 0.7 && P < 1.0) continue;  // three phases there
      const Point p = find(m, kRichGasFeed, 'T', W, P);
      expect_point(m, kRichGasFeed, W, p);
      const FlashResult there = flash(m, p.T, p.P, kRichGasFeed);
      if (W < 1.0) {
        EXPECT_NEAR(there.beta, W, 1e-7);
      }
      const Point back = find(m, kRichGasFeed, 'P', W, p.T, 0, p);
      EXPECT_NEAR(back.P / P, 1.0, 1e-8);
    }
  for (const double T : {150.0, 180.0, 220.0, 250.0}) {
    const Point p = find(m, kRichGasFeed, 'P', 0.0, T);
    expect_point(m, kRichGasFeed, 0.0, p);
    EXPECT_EQ(flash(m, T, p.P * (1.0 + 1e-6), kRichGasFeed).beta, 0.0) << T;
    EXPECT_TRUE(flash(m, T, p.P * (1.0 - 1e-6), kRichGasFeed).two_phases()) << T;
  }
}

struct Feed {
  std::vector<std::string> ids;
  std::vector<double> z;
};

// Bubble points and points of half vapour on the near side of a critical point, found from both sides.
TEST(QualityFlash, BesideACriticalPoint) {
  for (const Feed& f :
       {Feed{kRichGas, kRichGasFeed}, Feed{{"methane", "propane"}, {0.5, 0.5}},
        Feed{{"carbon_dioxide", "hydrogen_sulfide", "methane", "ethane"}, {0.55, 0.4, 0.04, 0.01}},
        Feed{{"methane", "n_hexane", "benzene", "o_xylene"}, {0.45, 0.2, 0.24, 0.11}}}) {
    Mixture m = in_use(f.ids);
    double Tc, Pc, Vc, Zc;
    ASSERT_EQ(CriticalPoint(f.z.data(), &m.record, 0, &Tc, &Pc, &Vc, &Zc), KV_OK);
    for (const double distance : {1e-2, 1e-3, 3e-4, 1e-4}) {
      SCOPED_TRACE(testing::Message() << f.ids[0] << " with " << f.ids[1] << ' ' << distance);
      const Point bubble = find(m, f.z, 'P', 0.0, Tc * (1.0 - distance));
      expect_point(m, f.z, 0.0, bubble);
      EXPECT_NEAR(bubble.P / Pc, 1.0, 20.0 * distance);
      const Point half = find(m, f.z, 'T', 0.5, Pc * (1.0 - distance));
      expect_point(m, f.z, 0.5, half);
      EXPECT_NEAR(half.T / Tc, 1.0, distance);
      const Point back = find(m, f.z, 'T', 0.0, bubble.P, 0, bubble);
      EXPECT_EQ(back.status, KV_OK);
      EXPECT_NEAR(back.T / bubble.T, 1.0, 1e-5);
      // Lines of half vapour turn back at the critical point.
      EXPECT_EQ(find(m, f.z, 'P', 0.5, Tc * (1.0 + distance)).status, KV_NO_SATURATION);
    }
  }
}

// Beside the spinodal of the feed two phases that all but are one meet every residual.
TEST(QualityFlash, TwoPhasesThatAreOneAreNoPoint) {
  Mixture m = in_use({"nitrogen", "carbon_dioxide", "methane", "ethane", "propane", "isobutane", "n_butane",
                      "isopentane", "n_pentane", "n_hexane", "n_heptane", "n_octane", "n_nonane", "n_decane",
                      "n_dodecane", "n_hexadecane", "n_eicosane"});
  const std::vector<double> z{0.6, 2.5, 73.2, 8.0, 4.1, 0.9, 1.8, 0.8, 0.9,
                              1.2, 1.6, 1.3,  0.9, 0.7, 0.9, 0.4, 0.2};
  for (const double T : {373.15, 400.0})  // above the critical temperature
    for (const double W : {0.0, 0.01, 0.5}) {
      EXPECT_EQ(find(m, z, 'P', W, T).status, KV_NO_SATURATION) << W << ' ' << T;
    }
}

// A second liquid of methane and nitrogen leaves the feed before it boils, 7e-4 RT below its tangent plane.
TEST(QualityFlash, AnotherPhaseSplitsOffBefore) {
  Mixture m = in_use({"nitrogen", "methane", "ethane"});
  EXPECT_EQ(find(m, {0.3, 0.4, 0.3}, 'T', 0.0, 2.047106398397005).status, KV_UNSTABLE_POINT);
}

TEST(QualityFlash, BranchesOfARetrogradeDewLine) {
  Mixture m = in_use(kRichGas);
  const double T = 285.0;
  const Point low = find(m, kRichGasFeed, 'P', 1.0, T);
  expect_point(m, kRichGasFeed, 1.0, low);
  EXPECT_EQ(flash(m, T, 0.5 * low.P, kRichGasFeed).beta, 1.0);
  // The upper one, from an estimate beside it: a flash just below it.
  double inside = low.P * 1.01, outside = 300.0;
  while (outside / inside > 1.001) {
    const double P = 0.5 * (inside + outside);
    (flash(m, T, P, kRichGasFeed).two_phases() ? inside : outside) = P;
  }
  const FlashResult beside = flash(m, T, inside, kRichGasFeed);
  const Point high = find(m, kRichGasFeed, 'P', 1.0, T, 0, {0, T, inside, beside.x, beside.y, beside.K});
  expect_point(m, kRichGasFeed, 1.0, high);
  EXPECT_NEAR(high.P / inside, 1.0, 2e-3);
  EXPECT_GT(high.P, 2.0 * low.P);
  // Between the critical point and the cricondenbar the dew line has two temperatures: the higher one.
  const Point hot = find(m, kRichGasFeed, 'T', 1.0, high.P);
  expect_point(m, kRichGasFeed, 1.0, hot);
  EXPECT_GE(hot.T, T - 1e-6);
}

// About the highest pressure of a line each one belongs to two temperatures, both within the reach of a start.
// Far below the bubble point water comes out of a liquid already: that is no dew point, the fluid beside it no vapour.
TEST(QualityFlash, DewPointsOfWetLiquids) {
  const struct {
    const char* oil;
    double water, P;
  } rows[] = {
      {"propane", 3e-4, 34.0}, {"propane", 3e-4, 40.0}, {"n_butane", 3e-3, 30.0}, {"n_butane", 3e-3, 37.0}};
  for (const auto& row : rows) {
    Mixture m = in_use({row.oil, "water"});
    const std::vector<double> z{1.0 - row.water, row.water};
    const Point bubble = find(m, z, 'T', 0.0, row.P), dew = find(m, z, 'T', 1.0, row.P);
    expect_point(m, z, 1.0, dew);
    EXPECT_GT(dew.T, bubble.T) << row.oil << ' ' << row.P;
    EXPECT_TRUE(flash(m, dew.T - 0.01 * (dew.T - bubble.T), row.P, z).two_phases());
  }
}

TEST(QualityFlash, WayBackBesideTheHighestPressure) {
  const auto there_and_back = [](Mixture& m, const std::vector<double>& z, double W, double T) {
    const Point p = find(m, z, 'P', W, T), back = find(m, z, 'T', W, p.P, 0, p);
    EXPECT_EQ(back.status, KV_OK);
    EXPECT_NEAR(back.T, T, 1e-5) << W;
  };
  Mixture helium = in_use({"helium", "nitrogen", "methane", "ethane", "propane"});
  for (const auto& [W, T] : {std::pair{0.25, 191.656}, {0.25, 192.484}, {0.29854, 192.082}, {0.22238, 191.212}})
    there_and_back(helium, {0.05, 0.2, 0.7, 0.04, 0.01}, W, T);
  Mixture carbon_dioxide = in_use({"carbon_dioxide", "nitrogen", "methane", "argon", "oxygen", "hydrogen"});
  there_and_back(carbon_dioxide, {0.95, 0.015, 0.02, 0.005, 0.005, 0.005}, 0.0, 199.8901);
}

TEST(QualityFlash, NoSuchPoint) {
  Mixture m = in_use(kRichGas);
  for (const double W : {0.0, 0.5, 1.0}) {
    Point p;
    p.T = 250.0;
    p = find(m, kRichGasFeed, 'T', W, 200.0, 1, p);
    EXPECT_EQ(p.status, KV_NO_SATURATION);
    EXPECT_EQ(p.T, 250.0);  // nothing invented
    EXPECT_EQ(p.x, std::vector<double>(10, 0.0));
    EXPECT_EQ(find(m, kRichGasFeed, 'P', W, 400.0).status, KV_NO_SATURATION);
  }
  Mixture propane = in_use({"propane"});
  EXPECT_EQ(find(propane, {1.0}, 'T', 0.0, 50.0).status, KV_NO_SATURATION);
  EXPECT_EQ(find(propane, {1.0}, 'P', 0.0, 380.0).status, KV_NO_SATURATION);
}

StatusCode KV_CALL refuse(double, double, const double*, MixtureRecord*, std::int32_t, std::int32_t,
                          std::int32_t, double*, double*, double*, double*) {
  return 77;
}

TEST(QualityFlash, WhatTheModelRefusesIsSaid) {
  Mixture m = in_use(kRichGas);
  ModelRoutines routines{};
  routines.entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(refuse);
  double T = 0.0, x[10], y[10], K[10];
  EXPECT_EQ(FlashLVatWP(1.0, 30.0, kRichGasFeed.data(), &m.record, &routines, 1, &T, x, y, K), 77);
  m.at(2, KV_COL_TC) = 0.0;
  EXPECT_EQ(find(m, kRichGasFeed, 'T', 1.0, 30.0).status, KV_COMPONENT_DATA);
}

TEST(QualityFlash, FractionsAndEstimatesOutsideTheirRange) {
  Mixture m = in_use(kRichGas);
  EXPECT_EQ(find(m, kRichGasFeed, 'T', -0.2, 30.0).T, find(m, kRichGasFeed, 'T', 0.0, 30.0).T);
  EXPECT_EQ(find(m, kRichGasFeed, 'T', 1.5, 30.0).T, find(m, kRichGasFeed, 'T', 1.0, 30.0).T);
  const double T = find(m, kRichGasFeed, 'T', 1.0, 30.0).T;
  for (const double start :
       {-5.0, 1e-3, 60.0, 298.15, 2000.0, static_cast<double>(NAN), static_cast<double>(INFINITY)}) {
    Point p;
    p.T = start;
    EXPECT_NEAR(find(m, kRichGasFeed, 'T', 1.0, 30.0, 1, p).T, T, 1e-8) << start;
    EXPECT_NEAR(find(m, kRichGasFeed, 'T', 1.0, 30.0, 0, p).T, T, 1e-8) << start;  // zeroed arrays, warm
    p.x.assign(10, 0.0);
    p.y = p.x;
    p.x[0] = p.y[7] = 1.0;  // methane beside hexane, the wrong way round
    EXPECT_NEAR(find(m, kRichGasFeed, 'T', 1.0, 30.0, 0, p).T, T, 1e-8) << start;
  }
  Mixture oil = in_use({"carbon_dioxide", "n_decane"});
  const Point at_T = find(oil, {0.3, 0.7}, 'P', 1.0, 352.55),
              at_P = find(oil, {0.875, 0.125}, 'T', 0.78, 6.165);
  for (const double start : {1e-300, 1e-20, 9000.0, 1e20, 1e300}) {
    Point p;
    p.T = p.P = start;
    EXPECT_NEAR(find(oil, {0.3, 0.7}, 'P', 1.0, 352.55, 1, p).P, at_T.P, 1e-8) << start;
    EXPECT_NEAR(find(oil, {0.875, 0.125}, 'T', 0.78, 6.165, 1, p).T, at_P.T, 1e-8) << start;
  }
}

TEST(QualityFlash, SingleComponents) {
  for (const char* id : {"methane", "propane", "carbon_dioxide", "n_decane", "water"}) {
    Mixture m = in_use({id});
    const double Tc = m.at(0, KV_COL_TC);
    for (const double Tr : {0.45, 0.6, 0.8, 0.95, 0.999, 0.9999}) {
      const Point p = find(m, {1.0}, 'P', 0.3, Tr * Tc);
      ASSERT_EQ(p.status, KV_OK) << id << ' ' << Tr;
      const PhaseState liquid = phase_state(m, p.T, p.P, {1.0}, KV_PHASE_LIQUID),
                       gas = phase_state(m, p.T, p.P, {1.0}, KV_PHASE_GAS);
      EXPECT_LT(liquid.Z, gas.Z);
      EXPECT_NEAR(liquid.ln_phi[0], gas.ln_phi[0], 1e-10);
      EXPECT_NEAR(find(m, {1.0}, 'T', 0.3, p.P).T / p.T, 1.0, 1e-9);
    }
  }
}

TEST(QualityFlash, TraceNamesTheCalculation) {
  Mixture m = in_use(kRichGas);
  const auto traced = [&](char unknown, double W, double given) {
    const ScratchFolder folder;
    m.record.trace_flag = 1;
    m.record.trace_unit = 17;
    find(m, kRichGasFeed, unknown, W, given);
    m.record.trace_flag = 0;
    return lines_of("fort.17");
  };
  const auto has = [](const std::vector<std::string>& lines, const std::string& start) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::string& l) { return l.rfind(start, 0) == 0; });
  };
  EXPECT_EQ(traced('T', -0.2, 30.0)[0], " FLASH W,P - TEMPERATURE DE BULLE");
  EXPECT_EQ(traced('T', 1.0, 30.0)[0], " FLASH W,P - TEMPERATURE DE ROSEE");
  EXPECT_EQ(traced('P', 0.0, 220.0)[0], " FLASH W,T - PRESSION DE BULLE");
  EXPECT_EQ(traced('P', 2.0, 220.0)[0], " FLASH W,T - PRESSION DE ROSEE");
  const auto lines = traced('P', 0.5, 240.0);
  EXPECT_EQ(lines[0], " FLASH W,T");
  for (const char* label :
       {"  I N I T I A L I S A T I O N ", " INDICE INITIALISATION :", " ITEMAX :", " NEW    :", " CRIT   :",
        " CLIM   :", " EPS    :", " PRESSION :", " ITERATION :", " CRITERE :", " FACTEUR DE RELAXATION :"})
    EXPECT_TRUE(has(lines, label)) << label;
}

}  // namespace
