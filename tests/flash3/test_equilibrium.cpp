// FlashLLVatTP: over grids of conditions an equilibrium of lowest Gibbs energy, with every component balanced
// and every phase in its place; and feeds and settings that are hard to live with.
#include <gtest/gtest.h>

#include <limits>

#include "flash3/three_phase_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Grid {
  std::vector<std::string> ids;
  std::vector<Vector> feeds;
  Vector T, P;
};

// Dry feeds with water in all amounts beside them.
std::vector<Vector> watered(const std::vector<Vector>& dry) {
  std::vector<Vector> feeds;
  for (const Vector& base : dry)
    for (const double water : {1e-9, 1e-5, 1e-3, 0.03, 0.3, 0.9, 0.999}) {
      Vector z = base;
      for (double& v : z) v *= 1.0 - water;
      z.push_back(water);
      feeds.push_back(z);
    }
  return feeds;
}

const Grid kGrids[] = {
    {{"methane", "n_butane", "water"},
     watered({{0.5, 0.5}, {0.95, 0.05}}),
     {275, 320, 390, 450},
     {1, 12, 60, 150}},
    {{"methane", "propane", "n_heptane", "carbon_dioxide", "water"},
     watered({{0.6, 0.2, 0.15, 0.05}, {0.1, 0.1, 0.8, 0.0}}),
     {280, 350, 430},
     {2, 20, 90}},
    {{"benzene", "methane", "water"}, watered({{0.5, 0.5}}), {290, 360, 440, 500}, {1, 10, 50}},
    {{"nitrogen", "methane", "ethane"},
     {{0.4, 0.2, 0.4}, {0.6, 0.05, 0.35}, {0.3, 0.3, 0.4}},
     {110, 118, 125, 132, 140},
     {8, 15, 22, 27, 32, 40, 60}},
    {{"methane", "ethane", "propane", "carbon_dioxide", "hydrogen_sulfide"},
     {{0.5, 0.1, 0.05, 0.05, 0.3}, {0.7, 0.02, 0.01, 0.02, 0.25}},
     {165, 175, 185, 195, 205},
     {10, 20, 30, 40, 55}},
    // A little of an aqueous phase that takes ammonia out of the others.
    {{"carbon_dioxide", "methane", "n_butane", "water", "ammonia"},
     {{0.7805, 0.0502, 0.1532, 0.0002, 0.0159}},
     {210, 220, 230, 240},
     {3.25}},
    // What is missing lies between two phases, or is found from a component mixed with one of them.
    {{"cyclohexane", "argon", "n_hexadecane"},
     {{0.43126384362063036, 0.27505427507607438, 0.29368188130329526}},
     {143.27032289987511},
     {56.101485825135612}},
    {{"propane", "toluene", "nitrogen", "oxygen"},
     {{0.24385708789041849, 0.60970574223347629, 0.078265798023525721, 0.068171371852579501}},
     {125.94810226480831},
     {21.683548964485738}},
    // Two liquids are found first, and the gas that cuts them takes the place of one.
    {{"methane", "hydrogen_sulfide"},
     {{0.050050779650810118, 0.94994922034918983}},
     {172.97001744605569},
     {22.977477490049722}}};

TEST(ThreePhase, EquilibriumOfLowestGibbsEnergyOverGrids) {
  int count[4] = {};
  for (const Grid& g : kGrids) {
    Mixture m = mixture_of(g.ids), back = mixture_of({g.ids.rbegin(), g.ids.rend()});
    for (const Vector& z : g.feeds)
      for (const double T : g.T)
        for (const double P : g.P) {
          m.use();
          m.record.ITEMAX = KV_DEFAULT_ITEMAX;
          const Answer a = flash3(m, T, P, z);
          expect_equilibrium(m, T, P, z, a);
          if (a.status != KV_OK) continue;
          ++count[a.phases().size()];
          const FlashResult lv = flash(m, T, P, z);
          const double G = gibbs(m, T, P, {{lv.beta, &lv.y}, {1 - lv.beta, &lv.x}});
          EXPECT_LE(gibbs(m, T, P, a.phases()), lv.status == KV_OK ? G + 1e-11 : 1e300);
          m.record.ITEMAX = 1;  // an answer or a status
          const Answer hasty = flash3(m, T, P, z);
          if (hasty.status == KV_OK) expect_same(hasty, a, 1e-7);
          // The order in which a host lists its components means nothing.
          back.use();
          Answer other = flash3(back, T, P, {z.rbegin(), z.rend()});
          for (Vector* x : {&other.xA, &other.xB, &other.y}) std::reverse(x->begin(), x->end());
          expect_same(other, a, 1e-7);
        }
  }
  for (const int phases : {1, 2, 3}) EXPECT_GE(count[phases], 60);
}

TEST(ThreePhase, FeedsOfHardlyAnythingButOneComponent) {
  Mixture m = mixture_of({"methane", "n_butane", "water"}), pure = mixture_of({"water"});
  const Vector feeds[] = {{0, 0, 1},     {1, 0, 0},     {1e-15, 0, 1 - 1e-15}, {1e-12, 1e-9, 1 - 1e-12 - 1e-9},
                          {0.5, 0.5, 0}, {0.3, 0, 0.7}, {1 - 1e-13, 1e-13, 0}, {0, 1e-300, 1}};
  for (const double T : {100.0, 300.0, 373.0, 374.0, 700.0})
    for (const double P : {1e-3, 1.0, 30.0, 400.0}) {
      m.use();
      for (const Vector& z : feeds) expect_equilibrium(m, T, P, z, flash3(m, T, P, z));
      pure.use();
      expect_equilibrium(pure, T, P, {1.0}, flash3(pure, T, P, {1.0}));
    }
}

TEST(ThreePhase, SumOfTheFeed) {
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  for (const double off : {-2e-6, -5e-7, 5e-7, 2e-6, 1.0})
    for (const double tolerance : {0.0, 1e-6, 1.5}) {
      const Vector feed{0.4 * (1 + off), 0.4 * (1 + off), 0.2 * (1 + off)};
      m.record.sum_tolerance = tolerance;
      const Answer a = flash3(m, 300, 20, feed);
      if (std::fabs(off) > tolerance) {
        EXPECT_EQ(a.status, KV_FEED_SUM);
      } else {
        expect_equilibrium(m, 300, 20, feed, a);
      }
    }
}

TEST(ThreePhase, BesideAFourthPhaseTheThreeAreReturned) {
  const struct {
    std::vector<std::string> ids;
    double T, P;
    Vector z;
  } cases[] = {
      {{"methane", "n_eicosane", "carbon_dioxide", "water"}, 276.1, 47.4, {0.1, 0.015, 0.625, 0.26}},
      // Two of the four are so much alike that only Newton's method with four phases comes to an end.
      {{"methane", "ethane", "propane", "carbon_dioxide", "hydrogen_sulfide"},
       161.0745092343509,
       3.6562299852429865,
       {0.20657503934548382, 0.0056528991136063503, 0.01660875553104172, 0.35428489966094007,
        0.41687840634892809}},
      // The fourth is a liquid of almost methane alone just above its critical temperature.
      {{"methane", "ethane", "propane", "n_hexane", "n_decane", "toluene", "hydrogen_sulfide", "water"},
       191.70830744256952,
       39.690113578158559,
       {0.78983029224949997, 0.065702773083542804, 0.0069001299709956715, 0.04582374200506098,
        0.033603035301371618, 0.010309287876644532, 0.032046429928235746, 0.015784309584648729}}};
  for (const auto& [ids, T, P, z] : cases) {
    Mixture m = mixture_of(ids);
    m.use();
    const Answer a = flash3(m, T, P, z);
    ASSERT_EQ(a.status, KV_FOURTH_PHASE);
    ASSERT_EQ(a.phases().size(), 3u);
    for (std::size_t i = 0; i < z.size(); ++i)
      EXPECT_NEAR(a.beta * a.xA[i] + (1 - a.beta - a.V) * a.xB[i] + a.V * a.y[i], z[i], 1e-10);
    expect_conventions(m, T, P, a);
  }
}

TEST(ThreePhase, EstimatesHelpOrAreIgnored) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Mixture m = mixture_of({"methane", "n_butane", "water"});
  m.use();
  const Vector z{0.4, 0.4, 0.2};
  // A line through all kinds of states, each answer the estimate of the next one.
  Answer last;
  std::size_t most = 0, least = 3;
  for (double T = 270; T < 480; T += 7) {
    const Answer cold = flash3(m, T, 30, z), warm = flash3(m, T, 30, z, 1, nullptr, last);
    expect_same(warm, cold, 1e-9);
    expect_same(flash3(m, T, 30, z, 1, nullptr, cold), cold, 1e-9);
    most = std::max(most, cold.phases().size());
    least = std::min(least, cold.phases().size());
    last = cold;
  }
  EXPECT_EQ(most, 3u);
  EXPECT_EQ(least, 1u);
  const Answer good = flash3(m, 300, 20, z);
  ASSERT_EQ(good.phases().size(), 3u);
  for (const double bad : {nan, -0.3, 1.7, std::numeric_limits<double>::infinity(), 0.0, 1.0})
    for (int what = 0; what < 6; ++what) {
      SCOPED_TRACE(testing::Message() << bad << " as " << what);
      Answer start = good;
      double* const wrong[] = {&start.beta, &start.V, &start.xA[1], &start.xB[0], &start.y[2]};
      if (what < 5) *wrong[what] = bad;
      if (what == 5) start.xA = start.xB = start.y = Vector{bad, bad, 1 - 2 * bad};
      expect_same(flash3(m, 300, 20, z, 1, nullptr, start), good, 1e-8);
    }
}

}  // namespace
