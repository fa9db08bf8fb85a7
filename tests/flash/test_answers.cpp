// Answers of FlashLVatTP against what must not matter: starts, scale, order, absent and repeated components;
// and against the conditions that a single phase and a free-water answer fulfil.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "common/flash_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

Mixture rich() {
  Mixture m = mixture_of(kRichGas);
  m.use();
  return m;
}

// States of the rich gas with two phases (the count is checked by their users).
std::vector<Condition> two_phase_states(Mixture& m) {
  std::vector<Condition> states;
  for (const Condition& c : kTwoPhases)
    if (flash(m, c.T, c.P, kRichGasFeed).two_phases()) states.push_back(c);
  EXPECT_GE(states.size(), 5u);
  return states;
}

TEST(Answers, StartsDoNotMatter) {
  Mixture m = rich();
  for (const Condition& c : two_phase_states(m)) {
    SCOPED_TRACE(testing::Message() << c.T << " K " << c.P << " atm");
    const FlashResult cold = flash(m, c.T, c.P, kRichGasFeed);
    ASSERT_EQ(cold.status, KV_OK);
    expect_same(flash(m, c.T, c.P, kRichGasFeed, 0, nullptr, cold), cold, 1e-10);
    // A neighbour's answer as estimate.
    expect_same(flash(m, c.T, c.P, kRichGasFeed, 0, nullptr, flash(m, c.T + 5, c.P + 1, kRichGasFeed)), cold,
                1e-9);
    // What is no estimate is a cold start, to the bit.
    FlashResult garbage[8] = {cold, cold, cold, cold, cold, cold, cold, {}};
    garbage[0].beta = NAN;
    garbage[1].beta = -0.1;
    garbage[2].x[0] = NAN;
    garbage[3].y[1] = -1e-3;
    garbage[4].x[0] += 0.01;
    garbage[5].y.assign(10, 0.0);
    garbage[6].beta = INFINITY;
    for (const FlashResult& g : garbage) EXPECT_TRUE(flash(m, c.T, c.P, kRichGasFeed, 0, nullptr, g) == cold);
    // An estimate that is wrong but usable.
    FlashResult wrong = cold;
    std::swap(wrong.x, wrong.y);
    expect_same(flash(m, c.T, c.P, kRichGasFeed, 0, nullptr, wrong), cold, 1e-9);
  }
}

TEST(Answers, ScaleAndOrderDoNotMatter) {
  Mixture m = rich();
  const std::vector<Condition> states = two_phase_states(m);
  std::vector<FlashResult> answers;
  for (const Condition& c : states) {
    answers.push_back(flash(m, c.T, c.P, kRichGasFeed));
    for (const double scale : {100.0, 1e-200, 1e300}) {
      std::vector<double> z = kRichGasFeed;
      for (double& v : z) v *= scale;
      expect_same(flash(m, c.T, c.P, z), answers.back(), 1e-10);
    }
  }
  // Third, sixth, ... the components in another order.
  const std::size_t order[] = {9, 4, 0, 7, 2, 5, 8, 1, 3, 6};
  std::vector<std::string> ids;
  std::vector<double> z;
  for (const std::size_t i : order) {
    ids.push_back(kRichGas[i]);
    z.push_back(kRichGasFeed[i]);
  }
  Mixture shuffled = mixture_of(ids);
  shuffled.use();
  for (std::size_t k = 0; k < states.size(); ++k) {
    const FlashResult r = flash(shuffled, states[k].T, states[k].P, z);
    FlashResult back = r;
    for (std::size_t i = 0; i < 10; ++i) {
      back.x[order[i]] = r.x[i];
      back.y[order[i]] = r.y[i];
      back.K[order[i]] = r.K[i];
    }
    expect_same(back, answers[k], 1e-10);
  }
}

// One component and a little of others close to its critical point, between the bubble and the dew temperature of the
// flash at a vapour fraction: compositions are as stable as anywhere there, and the two phases differ by their density.
TEST(Answers, TwoPhasesBetweenBubbleAndDewPoints) {
  const std::vector<std::string> others{"methane",        "ethane",   "propane", "nitrogen",
                                        "carbon_dioxide", "n_butane", "ethylene"};
  std::mt19937_64 random(20261123);
  const auto part = [&] { return std::uniform_real_distribution<double>(0.0, 1.0)(random); };
  int asked = 0;
  const auto ask = [&](Mixture& m, const std::vector<double>& z, double P, double at) {
    std::vector<double> x(z.size()), y(z.size()), K(z.size());
    double T[2] = {0.0, 0.0};
    for (const int W : {0, 1})
      if (FlashLVatWP(W, P, z.data(), &m.record, nullptr, 1, T + W, x.data(), y.data(), K.data()) != KV_OK)
        return;
    if (!(T[1] > T[0])) return;  // the line of a second liquid
    ++asked;
    if (flash(m, T[0] + at * (T[1] - T[0]), P, z).two_phases()) return;
    ADD_FAILURE() << P << " atm, " << T[0] << " to " << T[1] << " K, " << z[1] << " of " << z.size() - 1;
  };
  for (const char* solvent : {"carbon_dioxide", "methane", "ethane", "hydrogen_sulfide", "propane"})
    for (int k = 0; k < 40; ++k) {
      std::vector<std::string> ids{solvent};
      while (ids.size() < 2u + static_cast<unsigned>(k) % 3u) {
        const std::string& other = others[random() % others.size()];
        if (std::find(ids.begin(), ids.end(), other) == ids.end()) ids.push_back(other);
      }
      std::vector<double> z(ids.size(), 1.0);
      for (std::size_t i = 1; i < z.size(); ++i) z[0] -= z[i] = std::pow(10.0, -3.5 + 2.0 * part());
      Mixture m = mixture_of(ids);
      m.use();
      for (int q = 0; q < 10; ++q) ask(m, z, m.at(0, KV_COL_PC) * (0.6 + 0.4 * part()), 0.02 + 0.96 * part());
    }
  EXPECT_GT(asked, 1900);
  // The same of more of the other component.
  Mixture sulphur = mixture_of({"propane", "sulfur_dioxide"}),
          mercaptan = mixture_of({"methyl_mercaptan", "ammonia", "n_butane"});
  sulphur.use();
  EXPECT_NEAR(flash(sulphur, 381.0, 55.0, {0.2472, 0.7528}).beta, 0.35987, 1e-4);
  mercaptan.use();
  EXPECT_NEAR(flash(mercaptan, 419.4, 54.0, {0.0709, 0.4373, 0.4918}).beta, 0.88293, 1e-4);
}

TEST(Answers, RepeatedComponentsAddUp) {
  Mixture m = rich();
  const std::vector<Condition> states = two_phase_states(m);
  std::vector<FlashResult> answers;
  for (const Condition& c : states) answers.push_back(flash(m, c.T, c.P, kRichGasFeed));
  for (const std::size_t times : {4u, 10u}) {  // 40 and 100 components
    std::vector<std::string> ids;
    std::vector<double> z;
    for (std::size_t k = 0; k < times; ++k) {
      ids.insert(ids.end(), kRichGas.begin(), kRichGas.end());
      for (const double v : kRichGasFeed)
        z.push_back(v * 2 * static_cast<double>(k + 1) / static_cast<double>(times * (times + 1)));
    }
    Mixture many = mixture_of(ids);
    many.use();
    for (std::size_t k = 0; k < states.size(); ++k) {
      const FlashResult r = flash(many, states[k].T, states[k].P, z);
      FlashResult folded{r.status, r.beta, std::vector<double>(10), std::vector<double>(10),
                         std::vector<double>(10)};
      for (std::size_t i = 0; i < z.size(); ++i) {
        folded.x[i % 10] += r.x[i];
        folded.y[i % 10] += r.y[i];
        folded.K[i % 10] += r.K[i] / static_cast<double>(times);
      }
      expect_same(folded, answers[k], 1e-9);
    }
  }
}

TEST(Answers, AbsentComponents) {
  std::vector<std::string> ids = kRichGas;
  std::vector<double> z = kRichGasFeed;
  ids.insert(ids.begin() + 3, "benzene");
  ids.push_back("n_decane");
  z.insert(z.begin() + 3, 0.0);
  z.push_back(0.0);
  Mixture part = rich();
  const std::vector<Condition> states = two_phase_states(part);
  std::vector<FlashResult> answers;
  for (const Condition& c : states) answers.push_back(flash(part, c.T, c.P, kRichGasFeed));
  Mixture whole = mixture_of(ids);
  whole.use();
  for (std::size_t k = 0; k < states.size(); ++k) {
    const double T = states[k].T, P = states[k].P;
    FlashResult r = flash(whole, T, P, z);
    for (const std::size_t i : {std::size_t{11}, std::size_t{3}}) {
      EXPECT_EQ(r.x[i], 0.0);
      EXPECT_EQ(r.y[i], 0.0);
      EXPECT_EQ(r.K[i], 1e15);  // the liquid lacks it
      for (auto* array : {&r.x, &r.y, &r.K}) array->erase(array->begin() + static_cast<std::ptrdiff_t>(i));
    }
    expect_same(r, answers[k], 1e-10);
  }
}

// Of every flash, in answers of one phase too: ratios of the compositions beside them, within the bounds.
TEST(Answers, KIsTheRatioOfTheArraysReturned) {
  struct Case {
    std::vector<std::string> ids;
    std::vector<double> z;
    bool free_water;
  };
  int incipient = 0, absent = 0;
  for (const Case& c : {Case{kRichGas, kRichGasFeed, false},
                        Case{{"methane", "n_hexane", "n_butane", "water"}, {0.6, 0.2, 0.0, 0.2}, true},
                        Case{{"methane", "n_hexane", "water"}, {0.999, 0.0, 0.001}, true},
                        Case{{"propane", "n_butane"}, {1.0 - 1e-13, 1e-13}, false},
                        Case{{"n_dodecane", "water", "nitrogen"}, {1.0 - 4e-15, 1.5e-16, 3.8e-15}, false}}) {
    Mixture m = mixture_of(c.ids);
    m.use();
    m.record.flags = c.free_water ? FreeWaterFlag : 0;
    m.record.solubility_a = 11.2;
    m.record.solubility_b = 6290.0;
    const auto look = [&](const char* name, const FlashResult& r) {
      SCOPED_TRACE(testing::Message() << c.ids[1] << ' ' << name << " beta " << r.beta);
      if (r.status != KV_OK) return;
      for (const auto* w : {&r.x, &r.y}) EXPECT_NEAR(std::accumulate(w->begin(), w->end(), 0.0), 1.0, 1e-12);
      for (std::size_t i = 0; i < c.z.size(); ++i) {
        EXPECT_EQ(r.K[i], r.x[i] > 0.0 ? std::clamp(r.y[i] / r.x[i], 1e-15, 1e15) : 1e15) << i;
        absent += c.z[i] == 0.0;
      }
      incipient += !r.two_phases() && std::fabs(r.x[0] - r.y[0]) > 1e-3;
    };
    for (const double T : {200.0, 250.0, 300.0, 350.0, 450.0})
      for (const double P : {1.0, 20.0, 90.0}) {
        FlashResult r = flash(m, T, P, c.z);
        look("T,P", r);
        double u = T, L = 0.0, V = 0.0;
        r.status = FlashLVatHP(-1500.0, P, c.z.data(), &m.record, nullptr, 1, &u, &r.beta, r.x.data(),
                               r.y.data(), r.K.data(), &L, &V);
        look("H,P", r);
        for (const double W : {0.0, 0.5, 1.0}) {
          r.beta = W;
          r.status =
              FlashLVatWP(W, P, c.z.data(), &m.record, nullptr, 1, &u, r.x.data(), r.y.data(), r.K.data());
          look("W,P", r);
          r.status =
              FlashLVatWT(W, T, c.z.data(), &m.record, nullptr, 1, &u, r.x.data(), r.y.data(), r.K.data());
          look("W,T", r);
        }
      }
  }
  EXPECT_GT(incipient, 20);
  EXPECT_GT(absent, 20);
}

TEST(Answers, PureComponents) {
  Mixture m = mixture_of({"methane"});
  m.use();
  for (const double scale : {1.0, 7.0}) {
    const FlashResult gas = flash(m, 150.0, 5.0, {scale}), liquid = flash(m, 150.0, 20.0, {scale});
    for (const FlashResult& r : {gas, liquid}) {
      EXPECT_EQ(r.status, KV_OK);
      EXPECT_EQ(r.x[0], 1.0);
      EXPECT_EQ(r.y[0], 1.0);
    }
    EXPECT_EQ(gas.beta, 1.0);
    EXPECT_EQ(liquid.beta, 0.0);
  }
}

TEST(SinglePhase, LabelFollowsThePackingAndTheIncipientPhaseIsStationary) {
  Mixture m = rich();
  double b = 0;
  for (int i = 0; i < m.n; ++i)
    b += kRichGasFeed[static_cast<std::size_t>(i)] * 0.0778 * 82.057 * m.at(i, 5) / m.at(i, 6);
  int gases = 0, liquids = 0, incipient = 0;
  for (const double T : {120.0, 180.0, 240.0, 270.0, 300.0, 320.0, 340.0, 400.0, 500.0})
    for (const double P : {0.5, 10.0, 90.0, 130.0, 160.0, 400.0, 1500.0}) {
      SCOPED_TRACE(testing::Message() << T << " K " << P << " atm");
      const FlashResult r = flash(m, T, P, kRichGasFeed);
      ASSERT_EQ(r.status, KV_OK);
      if (r.two_phases()) continue;
      const PhaseState feed = phase_state(m, T, P, kRichGasFeed);
      const double v = feed.Z * 82.057 * T / P;
      EXPECT_EQ(r.beta, v > 3.9514 * b ? 1.0 : 0.0);
      (r.beta == 1.0 ? gases : liquids) += 1;
      const std::vector<double>&mine = r.beta == 1.0 ? r.y : r.x, &w = r.beta == 1.0 ? r.x : r.y;
      double away = 0.0;
      for (std::size_t i = 0; i < 10; ++i) {
        EXPECT_NEAR(mine[i], kRichGasFeed[i], 1e-15);
        away += std::fabs(w[i] - mine[i]);
      }
      if (away < 1e-6) continue;  // no second phase can be told apart
      ++incipient;
      EXPECT_NEAR(std::accumulate(w.begin(), w.end(), 0.0), 1.0, 1e-12);
      const PhaseState other = phase_state(m, T, P, w);
      double low = 1e300, high = -1e300;
      for (std::size_t i = 0; i < 10; ++i) {
        const double distance = std::log(w[i]) + other.ln_phi[i] - std::log(kRichGasFeed[i]) - feed.ln_phi[i];
        low = std::min(low, distance);
        high = std::max(high, distance);
      }
      EXPECT_NEAR(high, low, 1e-6);
      EXPECT_GT(low, -1e-9) << "the feed is not stable";
    }
  EXPECT_GE(gases, 5);
  EXPECT_GE(liquids, 5);
  EXPECT_GE(incipient, 4);
}

// Phases that only one start leads to: a liquid of a gas near its critical temperature, such a liquid instead of
// that gas beside a three-phase line, a liquid beside a vapour of almost its composition, a near-azeotrope, unlike
// molecules that attract each other strongly, a trace that is all but insoluble. Each state has two phases, and
// the composition given does not lower its Gibbs energy.
TEST(Answers, PhasesThatAreEasilyMissed) {
  struct Case {
    std::vector<std::string> ids;
    std::vector<double> z;
    double T, P;
    std::vector<double> w;
  };
  const std::vector<std::string> cold{"nitrogen", "methane", "ethane"};
  const Case cases[] = {
      {cold,
       {0.34689673914970137, 0.13635206970074257, 0.51675119114955603},
       122.70,
       26.0783698,
       {.86449, .088509, .047}},
      {cold,
       {0.37054448485863778, 0.17622456056095381, 0.45323095458040830},
       129.147,
       31.1637599,
       {.8286, .1198, .0516}},
      {cold, {0.3, 0.4, 0.3}, 60.85, 0.068, {0.98, 0.015, 0.005}},
      {{"carbon_dioxide", "n_decane"}, {0.7, 0.3}, 250.366, 17.6483, {0.9904, 0.0096}},
      {{"ethane", "n_heptane"}, {0.6, 0.4}, 113.234, 1.3832e-3, {0.995, 0.005}},
      {{"carbon_dioxide", "ethane"}, {0.67, 0.33}, 248.3004, 20.0, {0.67, 0.33}},
      {{"water", "ammonia"},
       {0.11067361527942, 0.88932638472058},
       260.4585075,
       0.2209931415,
       {0.11067, 0.88933}},
      {{"ammonia", "n_undecane"},
       {0.99863006831398, 0.00136993168602},
       348.743484927,
       31.313658978,
       {0.99863, 0.00137}},
      {{"ammonia", "n_hexadecane"}, {0.99985, 0.00015}, 401.03, 88.38, {0.972, 0.028}},
      // A trial that a substitution would take past its minimum, and one that comes close to the feed slowly.
      {{"ethane", "methyl_mercaptan"}, {0.925, 0.075}, 203.0, 0.2224, {0.294, 0.706}},
      {{"carbonyl_sulfide", "methyl_mercaptan"}, {0.7843, 0.2157}, 218.2804, 0.1182335, {0.195, 0.805}},
      {{"carbon_monoxide", "methyl_mercaptan"}, {0.9964, 0.0036}, 133.178, 45.4209, {0.8125, 0.1875}},
      {{"helium", "n_hexane"}, {0.52638807, 0.47361193}, 489.65632, 700.84975, {0.9607, 0.0393}},
      // A vapour whose trial begins as densely packed as a liquid.
      {{"hydrogen_sulfide", "water", "n_hexane"},
       {0.00013805497, 0.999188457, 0.00067348838},
       536.8672798,
       54.31923156,
       {1e-4, 0.07, 0.93}},
      // The vapour beside two liquids; the heaviest component beside water.
      {{"toluene", "water"}, {0.87084846, 0.12915154}, 387.01784755, 2.2211644, {0.4134, 0.5866}},
      {{"water", "carbon_dioxide", "n_hexane"},
       {0.0045478, 0.99304, 0.0024122},
       208.41692,
       9.748884,
       {1e-12, 0.35, 0.65}},
      {{"methyl_mercaptan", "ethane"}, {0.01, 0.99}, 165.0, 0.1254, {0.4, 0.6}},
      // Mostly water just above its critical temperature.
      {{"water", "n_eicosane", "carbon_monoxide"},
       {0.74317406730338431, 0.10844539255383505, 0.1483805401427806},
       647.11909281391354,
       675.15206068981047,
       {0.9, 0.01, 0.09}},
      // A split that began as two liquids, of which one has become a gas.
      {{"water", "n_butane", "sulfur_dioxide"},
       {0.069564812281585175, 0.063982412884698733, 0.86645277483371608},
       282.74472244083881,
       2.7777153474151177,
       {0.00162, 0.23918, 0.7592}},
      {{"nitrogen", "ethane"}, {0.5, 0.5}, 124.98624512117, 30.402680253585, {0.97738, 0.02262}},
      {{"nitrogen", "ethane"},
       {0.4363118908648675, 0.5636881091351325},
       127.9490018031923,
       34.7005327944391,
       {0.98372, 0.01628}},
      {{"nitrogen", "ethane"}, {0.8177076, 0.1822924}, 125.5198729, 31.4801101, {0.9777, 0.0223}},
      {{"methane", "hydrogen_sulfide"},
       {0.09472076326329418, 0.90527923673670582},
       195.23837530291317,
       45.41410543257576,
       {0.97234, 0.02766}},
      {{"methane", "n_hexane"},
       {0.7568958950248281, 0.2431041049751719},
       188.5620933907201,
       42.016118688873476,
       {0.99263, 0.00737}},
      {{"methane", "propane", "n_butane", "benzene"},
       {0.9, 0.09, 0.01, 1e-12},
       76.0,
       1.0,
       {1e-9, 1e-9, 1e-9, 1.0}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ids[0] + " " + std::to_string(c.T) + " K");
    Mixture m = mixture_of(c.ids);
    m.use();
    const FlashResult r = flash(m, c.T, c.P, c.z);
    ASSERT_EQ(r.status, KV_OK);
    EXPECT_TRUE(r.two_phases());
    const PhaseState x = phase_state(m, c.T, c.P, r.x), y = phase_state(m, c.T, c.P, r.y);
    for (const int root : {KV_PHASE_GAS, KV_PHASE_LIQUID}) {
      const PhaseState w = phase_state(m, c.T, c.P, c.w, root);
      double distance = 0.0;
      for (std::size_t i = 0; i < c.w.size(); ++i) {
        const double plane = r.y[i] > r.x[i] ? std::log(r.y[i]) + y.ln_phi[i] : std::log(r.x[i]) + x.ln_phi[i];
        distance += c.w[i] * (std::log(c.w[i]) + w.ln_phi[i] - plane);
      }
      EXPECT_GT(distance, -1e-8);
    }
  }
}

// Interactions continued to where their digits cancel: no several phases, but one is as good as elsewhere.
TEST(answers, have_one_phase_where_the_model_has_no_digits) {
  Mixture m = mixture_of({"hydrogen_sulfide", "methyl_mercaptan", "helium", "sulfur_dioxide", "hydrogen",
                          "n_heptadecane", "carbon_monoxide", "trans_14_dimethylcyclohexane"});
  m.use();
  std::vector<double> z{6e-9, 0.0, 3e-10, 9.6e-10, 3.9e-10, 1.15e-9, 1.9e-9, 5e-9};
  z[1] = 1.0 - std::accumulate(z.begin(), z.end(), 0.0);
  for (const double T : {1e20, 1e30}) EXPECT_EQ(flash(m, T, 7.1, z).status, KV_NOT_FINITE);
  EXPECT_EQ(flash(m, 1e5, 7.1, z).status, KV_OK);
}

}  // namespace
