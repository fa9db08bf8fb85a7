// Free water from the host's side: a feed without water, a gas below and above saturation, hydrocarbons beside
// water, points at vapour fractions, and liquids that water splits off.
#include <cstring>

#include "common/flash_call.hpp"

using namespace kestrune::tests;

namespace {

const std::vector<std::string> kOil{"methane", "n_butane", "n_hexane", "water"};

Mixture wet(const std::vector<std::string>& ids, double A = 11.2, double B = 6290.0) {
  Mixture m = mixture_of(ids);
  m.record.flags = FreeWaterFlag;
  m.record.solubility_a = A;
  m.record.solubility_b = B;
  m.use();
  return m;
}

double psat(double T) {
  return std::exp(73.649 - 7258.2 / T - 7.3037 * std::log(T) + 4.1653e-6 * T * T) / 101325.0;
}
double limit(const Mixture& m, double T) {
  return std::min(1.0, std::exp(m.record.solubility_a - m.record.solubility_b / T));
}

// The rules, from the answer alone: the hydrocarbons at their limit beside the gas, and the water in it.
void expect_rules(Mixture& m, double T, double P, const FlashResult& r, bool liquid, bool gas) {
  const std::size_t n = r.x.size(), w = n - 1;
  const double s = limit(m, T);
  std::vector<double> oil = r.x;
  double rest = 0.0;
  for (std::size_t i = 0; i < w; ++i) rest += r.x[i];
  for (std::size_t i = 0; i < n && r.x[w] > s; ++i) oil[i] = i == w ? s : r.x[i] * (1 - s) / rest;
  const PhaseState y = gas ? phase_state(m, T, P, r.y, KV_PHASE_GAS) : PhaseState{};
  const double water = gas ? r.y[w] * std::exp(y.ln_phi[w]) * P : 0.0;
  EXPECT_LE(water, psat(T) * (1 + 1e-8));
  if (!gas || !liquid) return;
  EXPECT_NEAR(water / (psat(T) * std::min(1.0, r.x[w] / s)), 1.0, 1e-8);
  if (rest < 1e-12) return;
  const PhaseState x = phase_state(m, T, P, oil, KV_PHASE_LIQUID);
  for (std::size_t i = 0; i < w; ++i)
    EXPECT_NEAR(std::log(oil[i]) + x.ln_phi[i], std::log(r.y[i]) + y.ln_phi[i], 1e-8) << i;
}

// With next to no water, or without a component that is water, the flag changes nothing, to the last bit.
TEST(FreeWater, FeedWithoutWaterIsAsWithTheFlagClear) {
  const auto all = [](Mixture& m, const std::vector<double>& z) {
    std::vector<double> values;
    const auto keep = [&](const FlashResult& r) {
      values.insert(values.end(), {double(r.status), r.beta});
      for (const auto* a : {&r.x, &r.y, &r.K}) values.insert(values.end(), a->begin(), a->end());
    };
    for (const double T : {250.0, 300.0, 380.0}) {
      for (const double P : {1.0, 20.0, 60.0, 150.0}) {
        keep(flash(m, T, P, z));
        double u = 0.0, L = 0.0, V = 0.0;
        FlashResult r = flash(m, T, P, z);
        r.status = FlashLVatHP(-1500.0, P, z.data(), &m.record, nullptr, 1, &u, &r.beta, r.x.data(), r.y.data(),
                               r.K.data(), &L, &V);
        keep(r);
        for (const double W : {0.0, 0.5, 1.0}) {
          u = 0.0;
          r.status = FlashLVatWT(W, T, z.data(), &m.record, nullptr, 1, &u, r.x.data(), r.y.data(), r.K.data());
          keep(r);
        }
        values.insert(values.end(), {u, L, V});
      }
    }
    return values;
  };
  for (const double water : {0.0, 1e-300, 1e-20, 9e-16}) {
    Mixture m = wet({"propane", "n_heptane", "carbon_dioxide", "water"});
    const std::vector<double> z{0.3, 0.6, 0.1, water};
    const std::vector<double> with = all(m, z);
    EXPECT_EQ(m.record.flags, FreeWaterFlag);
    m.record.flags = 0;
    const std::vector<double> without = all(m, z);
    ASSERT_EQ(with.size(), without.size());
    EXPECT_EQ(std::memcmp(with.data(), without.data(), with.size() * sizeof(double)), 0) << water;
  }
  // One of the two marks of water alone is none.
  for (const int column : {KV_COL_FAMILY, KV_COL_CAS}) {
    Mixture m = wet({"methane", "n_hexane", "water"});
    m.at(2, column) = 0.0;
    const FlashResult with = flash(m, 300.0, 20.0, {0.5, 0.3, 0.2});
    m.record.flags = 0;
    EXPECT_TRUE(with == flash(m, 300.0, 20.0, {0.5, 0.3, 0.2})) << column;
  }
}

struct State {
  const char* what;
  double T, P;
  std::vector<double> z;
  double A, B;
  int phases;  // 1 gas, 2 liquid, 3 both
  bool water;  // free water among it
};

TEST(FreeWater, StatesByTheRulesColdAndWarm) {
  const State states[] = {
      {"undersaturated gas", 400, 150, {0.93, 0.04, 0.02, 0.01}, 11.2, 6290, 1, false},
      {"gas beside water", 320, 50, {0.90, 0.04, 0.01, 0.05}, 11.2, 6290, 3, true},
      {"gas, oil and water", 320, 30, {0.40, 0.20, 0.20, 0.20}, 11.2, 6290, 3, true},
      {"gas and oil with dissolved water", 400, 60, {0.50, 0.20, 0.298, 0.002}, 11.2, 6290, 3, false},
      {"oil with dissolved water", 400, 150, {0.10, 0.20, 0.699, 0.001}, 11.2, 6290, 2, false},
      {"oil and water", 300, 150, {0.05, 0.75, 0.10, 0.10}, 11.2, 6290, 2, true},
      {"steam", 500, 1, {0.01, 0.01, 0.01, 0.97}, 11.2, 6290, 1, false},
      {"water that the equation takes for a gas",
       503.4,
       155.6,
       {0.0035, 0.0005, 0.006, 0.99},
       11.2,
       6290,
       2,
       true},
      {"water with a little gas in it", 310, 180, {2e-4, 4e-5, 5e-4, 0.99926}, 8.0, 5000, 2, true},
  };
  FlashResult before;
  for (const State& s : states) {
    SCOPED_TRACE(s.what);
    Mixture m = wet(kOil, s.A, s.B);
    const FlashResult r = flash(m, s.T, s.P, s.z);
    ASSERT_EQ(r.status, KV_OK);
    EXPECT_EQ((r.beta > 0 ? 1 : 0) + (r.beta < 1 ? 2 : 0), s.phases);
    EXPECT_EQ(r.beta < 1 && r.x[3] > limit(m, s.T) * (1 + 1e-9), s.water);
    for (std::size_t i = 0; i < 4; ++i) EXPECT_NEAR(r.beta * r.y[i] + (1 - r.beta) * r.x[i], s.z[i], 1e-12);
    expect_rules(m, s.T, s.P, r, r.beta<1, r.beta> 0);
    if (before.x.empty()) before = r;
    const FlashResult warm = flash(m, s.T, s.P, s.z, 0, nullptr, before);
    EXPECT_NEAR(warm.beta, r.beta, 1e-9);
    before = r;
  }
}

// Beside the critical point of the hydrocarbons the rules have no state, wherever the search for one begins.
TEST(FreeWater, NoStateColdAndWarm) {
  Mixture m = wet({"methane", "n_butane", "water"}, 12.5, 6000);
  const std::vector<double> z{0.2546, 0.3454, 0.4};
  const double T = 364.779, P = 80.636;
  const FlashResult cold = flash(m, T, P, z), warm = flash(m, T, P, z, 0, nullptr, flash(m, 300, 60, z));
  EXPECT_EQ(cold.status, KV_TRIVIAL);
  EXPECT_EQ(warm.status, KV_TRIVIAL);
  EXPECT_EQ(warm.beta, cold.beta);
  EXPECT_EQ(warm.x, cold.x);
  EXPECT_EQ(warm.y, cold.y);
  // A limit of 1, as of a record that was only cleared, has no hydrocarbon liquid: decane is no vapour all the same.
  Mixture cleared = wet({"methane", "n_decane", "water"}, 0, 0);
  EXPECT_EQ(flash(cleared, 300, 30, {0.8, 0.1, 0.1}).status, KV_TRIVIAL);
  EXPECT_EQ(flash(cleared, 300, 30, {0.9, 1e-7, 0.1}).status, KV_OK);
}

struct Hard {
  const char* what;
  std::vector<std::string> ids;
  double A, B, T, P;
  std::vector<double> z;
  double least, most;  // water of the liquid
};

// Where a phase, or the state as a whole, is easily missed.
TEST(FreeWater, StatesThatAreHardToFind) {
  const std::vector<std::string> carbonic{"carbon_dioxide", "n_decane", "water"};
  const Hard states[] = {
      {"oil of a few millionths beside water",
       {"propane", "n_heptane", "water"},
       12.5,
       6000,
       318.36891589371163,
       4.0367327273631224,
       {0.0028302195098447004, 0.00016978049015530202, 0.997},
       0.9999,
       0.9999999},
      {"gas beside hot water that the equation takes for a gas as well",
       {"methane", "ethane", "propane", "n_butane", "n_hexane", "carbon_dioxide", "water"},
       11.2,
       6290,
       412.3393632214474,
       70.085793652887645,
       {1.183938982873186e-4, 1.0074725641309151e-3, 1.1808514971081759e-3, 1.5982237716609464e-4,
        4.6256741370177796e-4, 7.0892249605720504e-5, 0.997},
       1,
       1},
      {"two hydrocarbon liquids beside water",
       carbonic,
       12.5,
       6000,
       241.67578694309313,
       25.022459538431889,
       {0.64740510928079842, 0.25259489071920166, 0.1},
       0.2,
       0.3},
      {"two hydrocarbon liquids, where a gas would have a second one",
       carbonic,
       12.5,
       6000,
       242.24200403565118,
       13.747698391806461,
       {0.36802148711165561, 0.23197851288834437, 0.4},
       0.9,
       0.92},
      {"carbon dioxide as a liquid and an oil, almost dry",
       carbonic,
       12.5,
       6000,
       256.72935171420488,
       23.530437153344529,
       {0.94645216578156355, 0.053547834217436502, 1e-12},
       0,
       1e-11},
      {"water that dissolves in all proportions, below its boiling",
       {"methane", "carbon_dioxide", "n_octane", "water"},
       12.5,
       6000,
       562,
       100,
       {0.002, 0.007, 0.001, 0.99},
       0.999,
       0.9999},
      {"the same at a pressure where the hydrocarbons are as dense",
       {"methane", "carbon_dioxide", "n_octane", "water"},
       12.5,
       6000,
       500,
       300,
       {0.0005, 0.001, 0.0085, 0.99},
       0.998,
       0.999},
  };
  for (const Hard& s : states) {
    SCOPED_TRACE(s.what);
    Mixture m = wet(s.ids, s.A, s.B);
    const FlashResult r = flash(m, s.T, s.P, s.z);
    ASSERT_EQ(r.status, KV_OK);
    EXPECT_TRUE(r.two_phases());
    EXPECT_GE(r.x.back(), s.least);
    EXPECT_LE(r.x.back(), s.most);
    expect_rules(m, s.T, s.P, r, true, true);
  }
}

// The state at a vapour fraction is one that the flash at its temperature and pressure knows as well.
TEST(FreeWater, VapourFractions) {
  const std::vector<double> z{0.5, 0.15, 0.15, 0.2};
  for (const double W : {0.0, 0.1, 0.3, 0.5, 0.9, 1.0}) {
    for (const bool of_T : {true, false}) {
      SCOPED_TRACE(W);
      Mixture m = wet(kOil);
      FlashResult r = flash(m, 320.0, 20.0, z);
      double T = of_T ? 0.0 : 330.0, P = of_T ? 25.0 : 0.0;
      auto* const routine = of_T ? FlashLVatWP : FlashLVatWT;
      ASSERT_EQ(routine(W, of_T ? P : T, z.data(), &m.record, nullptr, 1, of_T ? &T : &P, r.x.data(),
                        r.y.data(), r.K.data()),
                KV_OK);
      expect_rules(m, T, P, r, true, true);
      const double more = (of_T ? T : P) * (of_T ? 1 + 1e-6 : 1 - 1e-6),
                   less = (of_T ? T : P) * (of_T ? 1 - 1e-6 : 1 + 1e-6);
      EXPECT_GE(flash(m, of_T ? more : T, of_T ? P : more, z).beta, W - 1e-9);
      EXPECT_LE(flash(m, of_T ? less : T, of_T ? P : less, z).beta, W + 1e-9);
    }
  }
  // Beside pressures where the rules have no state; and where next to no oil is left beside the water.
  struct WetPoint {
    std::vector<std::string> ids;
    double A, B, W, T, P;
    std::vector<double> z;
  };
  const WetPoint points[] = {{{"methane", "carbon_dioxide", "hydrogen_sulfide", "n_butane", "water"},
                              8,
                              5000,
                              0.9,
                              391.09956499605926,
                              0,
                              {0.095826762185685491, 0.13414668888452014, 0.21632612423376862,
                               0.54870042469602587, 0.0050000000000000001}},
                             {{"methane", "n_butane", "water"},
                              11.2,
                              6290,
                              0.1,
                              0,
                              1.1039006667734783,
                              {0.081328819423093807, 0.018671180576906171, 0.9}}};
  for (const WetPoint& p : points) {
    Mixture m = wet(p.ids, p.A, p.B);
    FlashResult r = flash(m, 320.0, 20.0, p.z);
    double T = p.T, P = p.P;
    const bool of_T = p.T == 0.0;
    auto* const routine = of_T ? FlashLVatWP : FlashLVatWT;
    ASSERT_EQ(routine(p.W, of_T ? P : T, p.z.data(), &m.record, nullptr, 1, of_T ? &T : &P, r.x.data(),
                      r.y.data(), r.K.data()),
              KV_OK);
    expect_rules(m, T, P, r, true, true);
    EXPECT_NEAR(flash(m, T, P, p.z).beta, p.W, 1e-6);
  }
  // Gas, one hydrocarbon liquid and water of two components: the temperature stands still while the gas grows.
  Mixture m = wet({"propane", "water"});
  double first = 0.0;
  for (const double W : {0.2, 0.4, 0.6}) {
    double T = 0.0;
    FlashResult r = flash(m, 300.0, 5.0, {0.7, 0.3});
    ASSERT_EQ(FlashLVatWP(W, 5.0, std::vector<double>{0.7, 0.3}.data(), &m.record, nullptr, 1, &T, r.x.data(),
                          r.y.data(), r.K.data()),
              KV_OK);
    expect_rules(m, T, 5.0, r, true, true);
    if (first == 0.0) first = T;
    EXPECT_NEAR(T, first, 1e-6);
  }
}

// Values of the enthalpy, also where there is much oil and little water.
TEST(FreeWater, Enthalpies) {
  Mixture m = wet({"methane", "n_hexane", "water"});
  for (const std::vector<double>& z : {std::vector<double>{0.05, 0.949, 0.001}, {0.4, 0.4, 0.2}}) {
    double before = 0.0;
    for (const double H : {-6500.0, -5600.0, -4863.87, -4000.0, -2000.0, 500.0}) {
      FlashResult r = flash(m, 300.0, 30.0, z);
      double T = 0.0, L = 0.0, V = 0.0, value = 0.0;
      ASSERT_EQ(FlashLVatHP(H, 30.0, z.data(), &m.record, nullptr, 1, &T, &r.beta, r.x.data(), r.y.data(),
                            r.K.data(), &L, &V),
                KV_OK)
          << H;
      if (r.beta < 1) {
        LiquidMolarEnthalpy_PPR78(T, 30.0, r.x.data(), &m.record, &value);
        EXPECT_NEAR(L, value, 1e-9 * std::fabs(value));
      }
      EXPECT_NEAR((1 - r.beta) * L + r.beta * V, H, 1e-8 * std::fabs(H));
      EXPECT_GT(T, before);
      before = T;
      expect_rules(m, T, 30.0, r, r.beta<1, r.beta> 0);
    }
  }
}

// Liquids: what is beyond the limit of the hydrocarbons splits off.
FlashResult two_liquids(Mixture& m, double T, double P, const std::vector<double>& z) {
  FlashResult r = flash(m, T, P, z);
  r.status = FlashLLatTP(T, P, z.data(), &m.record, nullptr, 0, &r.beta, r.x.data(), r.y.data(), r.K.data());
  return r;
}

TEST(FreeWater, LiquidLiquid) {
  Mixture m = wet({"methane", "n_butane", "water"});
  const double s = limit(m, 300.0);
  for (const double water : {0.2, 0.6, 0.5 * s}) {
    const std::vector<double> z{0.05 * (1 - water), 0.95 * (1 - water), water};
    const FlashResult r = two_liquids(m, 300.0, 150.0, z);
    ASSERT_EQ(r.status, KV_OK);
    if (water < s) {
      EXPECT_EQ(r.beta, 0.0);
      EXPECT_EQ(r.x, z);
      continue;
    }
    // Liquid 1 is the denser one, water; beta the share of liquid 2.
    EXPECT_EQ(r.x, (std::vector<double>{0, 0, 1}));
    EXPECT_NEAR(r.y[2], s, 1e-15);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR((1 - r.beta) * r.x[i] + r.beta * r.y[i], z[i], 1e-14);
    EXPECT_EQ(r.K[0], 1e15);
    EXPECT_NEAR(r.K[2], s, 1e-15);
  }
  // Below the limit, close to where the hydrocarbons have no liquid any more.
  const std::vector<double> hot{0.0355641373, 0.9615464216, 0.0028894411};
  const FlashResult one = two_liquids(m, 375.06621742, 40.998355504, hot);
  ASSERT_EQ(one.status, KV_OK);
  EXPECT_EQ(one.beta, 0.0);
  // Water alone, in a feed that does not sum to one, has nothing to split from.
  const std::vector<double> nothing_else{0.0, 0.0, 0.6};
  const FlashResult alone = two_liquids(m, 300.0, 150.0, nothing_else);
  ASSERT_EQ(alone.status, KV_OK);
  EXPECT_EQ(alone.x, (std::vector<double>{0, 0, 1}));
  EXPECT_EQ(alone.y, (std::vector<double>{0, 0, 0}));
  // Below the limit two hydrocarbon liquids hold the same water.
  Mixture two = wet({"carbon_dioxide", "n_decane", "water"});
  int split = 0;
  for (double T = 228.0; T < 250.0; T += 1.5) {
    for (const double P : {30.0, 60.0, 150.0}) {
      for (const double part : {0.3, 0.6, 0.75, 0.9}) {
        for (const double wet_part : {1e-6, 0.1, 0.999}) {
          const double water = wet_part * limit(two, T);
          const std::vector<double> z{part * (1 - water), (1 - part) * (1 - water), water};
          SCOPED_TRACE(testing::Message() << T << " K " << P << " atm, " << part << ", water " << wet_part);
          const FlashResult r = two_liquids(two, T, P, z);
          ASSERT_EQ(r.status, KV_OK);
          if (!r.two_phases()) continue;
          ++split;
          const PhaseState a = phase_state(two, T, P, r.x, KV_PHASE_LIQUID),
                           b = phase_state(two, T, P, r.y, KV_PHASE_LIQUID);
          EXPECT_NEAR(r.x[2], r.y[2], 1e-8 * water);
          for (std::size_t i = 0; i < 2; ++i)
            EXPECT_NEAR(std::log(r.x[i]) + a.ln_phi[i], std::log(r.y[i]) + b.ln_phi[i], 1e-8) << i;
        }
      }
    }
  }
  EXPECT_GT(split, 100);
}

}  // namespace
