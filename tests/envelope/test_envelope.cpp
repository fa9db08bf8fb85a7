// PhaseEnvelope: points against the flashes, extremes, evenly spaced points, ends, absurd input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "common/flash_call.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

struct Envelope {
  StatusCode status = -1;
  std::vector<double> T, P, kind;
  std::int32_t criticals = -1;
  double therm_T, therm_P, bar_T, bar_P;
};

struct Ask {
  double first_P = 0.0, max_P = 0.0, min_T = 0.0, fraction = 1.0, accuracy = 0.0;
  int points = 0, capacity = 1000;
};

Envelope envelope(Mixture& m, const std::vector<double>& z, const Ask& ask = {}) {
  constexpr double kMark = -7.25;
  m.use();
  Envelope e;
  std::int32_t count = -1;
  for (auto* v : {&e.T, &e.P, &e.kind})
    v->assign(static_cast<std::size_t>(std::max(ask.capacity, 0)) + 1, kMark);
  e.status = PhaseEnvelope(z.data(), &m.record, nullptr, 0, ask.first_P, ask.max_P, ask.min_T, ask.points,
                           ask.capacity, ask.fraction, ask.accuracy, e.T.data(), e.P.data(), e.kind.data(),
                           &count, &e.criticals, &e.therm_T, &e.therm_P, &e.bar_T, &e.bar_P);
  for (auto* v : {&e.T, &e.P, &e.kind}) {
    EXPECT_EQ(v->back(), kMark);
    v->resize(static_cast<std::size_t>(count));
  }
  return e;
}

// The pressure of the bubble or dew point at T next to an estimate from inside, by the flash.
double boundary(Mixture& m, const std::vector<double>& z, double T, double inside, double outside) {
  while (std::fabs(outside / inside - 1.0) > 1e-9) {
    const double P = 0.5 * (inside + outside);
    (flash(m, T, P, z).two_phases() ? inside : outside) = P;
  }
  return inside;
}

TEST(PhaseEnvelope, EveryPointIsTheEdgeOfTwoPhases) {
  Mixture m = mixture_of(kLeanGas);
  const Envelope e = envelope(m, kLeanGasFeed);
  ASSERT_EQ(e.status, KV_OK);
  EXPECT_EQ(e.criticals, 1);
  EXPECT_NEAR(e.P.front(), 1.0, 1e-12);
  EXPECT_NEAR(e.P.back(), 1.0, 1e-12);
  EXPECT_EQ(e.kind.front(), 1.0);
  EXPECT_EQ(e.kind.back(), 0.0);
  for (std::size_t k = 0; k < e.T.size(); ++k) {
    SCOPED_TRACE(testing::Message() << e.T[k] << ' ' << e.P[k] << ' ' << e.kind[k]);
    if (e.kind[k] == 0.5) continue;
    // Inwards are lower temperatures on the hot side, lower pressures on the upper side.
    const bool hot = e.T[k] > e.bar_T || (e.kind[k] == 1.0 && e.P[k] < e.therm_P);
    // Beside the critical point both phases are the same to all digits a little further inside.
    const double step = std::fabs(e.T[k] - 202.91) < 0.5 ? 1e-4 : 1e-6;
    const double in_T = hot ? 1.0 - step : 1.0, in_P = hot ? 1.0 : 1.0 - step;
    EXPECT_TRUE(flash(m, e.T[k] * in_T, e.P[k] * in_P, kLeanGasFeed).two_phases());
    EXPECT_FALSE(flash(m, e.T[k] / in_T, e.P[k] / in_P, kLeanGasFeed).two_phases());
  }
}

TEST(PhaseEnvelope, ExtremesByBracketing) {
  Mixture m = mixture_of(kRichGas);
  const Envelope e = envelope(m, kRichGasFeed);
  const auto top = [&](double T) { return boundary(m, kRichGasFeed, T, 100.0, 140.0); };
  // Of three pressures across the cricondenbar the parabola's top.
  const double h = 2.0, low = top(e.bar_T - h), middle = top(e.bar_T), high = top(e.bar_T + h);
  EXPECT_NEAR(middle / e.bar_P, 1.0, 1e-8);
  EXPECT_NEAR(0.5 * h * (low - high) / (low - 2.0 * middle + high), 0.0, 0.02);
  // One phase at all pressures above the cricondentherm, two just below it.
  EXPECT_TRUE(flash(m, e.therm_T * (1.0 - 1e-7), e.therm_P, kRichGasFeed).two_phases());
  for (const double part : {0.9, 0.99, 0.999, 1.0, 1.001, 1.01, 1.1})
    EXPECT_FALSE(flash(m, e.therm_T * (1.0 + 1e-7), part * e.therm_P, kRichGasFeed).two_phases()) << part;
}

TEST(PhaseEnvelope, EvenlySpacedPoints) {
  Mixture m = mixture_of(kLeanGas);
  const Envelope traced = envelope(m, kLeanGasFeed);
  for (const int points : {1, 2, 3, 5, 7, 50, 150}) {
    Ask ask;
    ask.points = points;
    const Envelope e = envelope(m, kLeanGasFeed, ask);
    EXPECT_EQ(e.status, KV_OK);
    ASSERT_EQ(e.T.size(), static_cast<std::size_t>(points));
    EXPECT_NE(std::find(e.kind.begin(), e.kind.end(), 0.5), e.kind.end());
    EXPECT_EQ(e.therm_T, traced.therm_T);
    if (points < 50) continue;
    EXPECT_NE(std::find(e.T.begin(), e.T.end(), e.therm_T), e.T.end());
    EXPECT_NE(std::find(e.P.begin(), e.P.end(), e.bar_P), e.P.end());
    const auto [cold, hot] = std::minmax_element(e.T.begin(), e.T.end());
    const auto [low, high] = std::minmax_element(e.P.begin(), e.P.end());
    double least = 1e9, most = 0.0;
    for (std::size_t k = 1; k < e.T.size(); ++k) {
      const double step = std::hypot(std::log(e.T[k] / e.T[k - 1]) / std::log(*hot / *cold),
                                     std::log(e.P[k] / e.P[k - 1]) / std::log(*high / *low));
      least = std::min(least, step);
      most = std::max(most, step);
    }
    EXPECT_LT(most / least, 1.4);
  }
}

TEST(PhaseEnvelope, QualityLineAgainstTheFlash) {
  Mixture m = mixture_of(kRichGas);
  Ask ask;
  ask.fraction = 0.9;
  const Envelope e = envelope(m, kRichGasFeed, ask);
  ASSERT_EQ(e.status, KV_OK);
  ASSERT_EQ(e.kind.back(), 0.5);
  for (std::size_t k = 0; k + 3 < e.T.size(); ++k) {
    EXPECT_EQ(e.kind[k], 0.9);
    EXPECT_NEAR(flash(m, e.T[k], e.P[k], kRichGasFeed).beta, 0.9, 1e-6) << e.T[k];
  }
}

TEST(PhaseEnvelope, SecondLiquidAtTheColdEnd) {
  Mixture m = mixture_of(kRichGas);
  const Envelope e = envelope(m, kRichGasFeed);
  EXPECT_EQ(e.status, KV_ENVELOPE_LIQUIDS);
  const auto first = std::find(e.kind.begin(), e.kind.end(), 4.0);
  ASSERT_NE(first, e.kind.end());
  for (std::size_t k = static_cast<std::size_t>(first - e.kind.begin()); k < e.T.size(); ++k) {
    EXPECT_TRUE(flash(m, e.T[k] - 0.1, e.P[k], kRichGasFeed).two_phases());
    EXPECT_FALSE(flash(m, e.T[k] + 0.1, e.P[k], kRichGasFeed).two_phases());
  }
}

TEST(PhaseEnvelope, LimitsAndCapacity) {
  Mixture m = mixture_of(kLeanGas);
  Ask ask;
  ask.max_P = 40.0;
  Envelope e = envelope(m, kLeanGasFeed, ask);
  EXPECT_EQ(e.status, KV_OK);  // as asked
  EXPECT_NEAR(*std::max_element(e.P.begin(), e.P.end()), 40.0, 1e-9);
  EXPECT_EQ(std::count_if(e.P.begin(), e.P.end(), [](double P) { return std::fabs(P - 40.0) < 1e-9; }), 2);
  EXPECT_EQ(e.bar_P, 0.0);
  ask = {};
  ask.min_T = 150.0;
  e = envelope(m, kLeanGasFeed, ask);
  EXPECT_EQ(e.status, KV_OK);
  EXPECT_NEAR(e.T.back(), 150.0, 1e-9);
  ask = {};
  ask.first_P = 100.0;
  EXPECT_EQ(envelope(m, kLeanGasFeed, ask).status, KV_NO_SATURATION);
  for (const int capacity : {0, 1, 10}) {
    for (const int points : {0, 20}) {
      ask = {};
      ask.capacity = capacity;
      ask.points = points;
      e = envelope(m, kLeanGasFeed, ask);
      EXPECT_EQ(e.status, KV_ENVELOPE_FULL);
      EXPECT_EQ(e.T.size(), static_cast<std::size_t>(capacity));
      EXPECT_GT(e.therm_T, 250.0);
    }
  }
}

// What holds for every answer: numbers, limits, kinds, neighbours.
void expect_sound(const Envelope& e, const Ask& ask) {
  const double low = ask.first_P > 0.0 ? ask.first_P : 1.0, high = ask.max_P > 0.0 ? ask.max_P : 2000.0,
               cold = ask.min_T > 0.0 ? ask.min_T : 50.0, tight = 1e-9;
  const std::vector<double> kinds{1.0, 0.0, 0.5, 4.0, 2.0, 3.0, 6.0};
  EXPECT_LE(e.T.size(), static_cast<std::size_t>(ask.capacity));
  int apart = 0;
  for (std::size_t k = 0; k < e.T.size(); ++k) {
    SCOPED_TRACE(testing::Message() << k << ": " << e.T[k] << " K, " << e.P[k] << " atm");
    EXPECT_TRUE(e.T[k] > cold * (1.0 - tight) && e.T[k] < 3000.0);
    EXPECT_TRUE(e.P[k] > low * (1.0 - tight) && e.P[k] < high * (1.0 + tight));
    EXPECT_NE(std::find(kinds.begin(), kinds.end(), e.kind[k]), kinds.end());
    if (e.kind[k] == 4.0 && e.bar_P > 0.0) continue;
    if (e.bar_P > 0.0) {
      EXPECT_LT(e.P[k], 1.5 * e.bar_P);
    }
    if (k > 0) apart += std::fabs(std::log(e.T[k] / e.T[k - 1])) > 0.2;
  }
  if (e.status != KV_ENVELOPE_FULL) {
    EXPECT_EQ(std::count(e.kind.begin(), e.kind.end(), 0.5), e.criticals);
  }
  if (ask.points == 0 && ask.capacity > 100) {
    EXPECT_LE(apart, 1);  // where the second part begins
  }
}

TEST(PhaseEnvelope, HostileFeedsAndArguments) {
  struct Feed {
    std::vector<std::string> ids;
    std::vector<double> z;
    StatusCode status;
  };
  std::vector<Feed> feeds{
      {{"methane", "methane"}, {0.3, 0.7}, KV_OK},
      {{"methane", "propane", "n_decane"}, {0.7, 0.3, 1e-12}, KV_OK},
      {{"methane", "n_decane", "water"}, {0.9, 0.1, 1e-12}, KV_ENVELOPE_LIQUIDS},
      {{"hydrogen", "methane", "n_hexane"}, {0.5, 0.4, 0.1}, KV_ENVELOPE_OPEN},
      {{"helium", "nitrogen", "methane"}, {0.3, 0.4, 0.3}, KV_ENVELOPE_OPEN},
      {{"water", "methane", "ethane", "propane"}, {0.02, 0.9, 0.05, 0.03}, KV_ENVELOPE_OPEN},
      {{"carbon_dioxide", "hydrogen_sulfide"}, {0.5, 0.5}, KV_OK},
      {{"methane", "n_eicosane"}, {0.7, 0.3}, KV_ENVELOPE_LIQUIDS},
      // Boiling close together, with small ln K everywhere; with an azeotrope on the way.
      {{"ethane", "ethylene"}, {0.5, 0.5}, KV_OK},
      {{"n_butane", "isobutane"}, {0.5, 0.5}, KV_OK},
      {{"n_pentadecane", "n_hexadecane"}, {0.5, 0.5}, KV_OK},
      {{"carbon_dioxide", "ethylene"}, {0.5, 0.5}, KV_OK},
      {{"carbon_dioxide", "ethane"}, {0.7, 0.3}, KV_ENVELOPE_LIQUIDS}};
  Feed many{{"nitrogen",     "carbon_dioxide", "hydrogen_sulfide", "methane",       "ethane",
             "propane",      "isobutane",      "n_butane",         "isopentane",    "n_pentane",
             "n_hexane",     "n_heptane",      "n_octane",         "n_nonane",      "n_decane",
             "n_undecane",   "n_dodecane",     "n_tridecane",      "n_tetradecane", "n_pentadecane",
             "n_hexadecane", "n_heptadecane",  "n_octadecane",     "n_nonadecane",  "n_eicosane",
             "benzene",      "toluene",        "cyclohexane",      "cyclopentane",  "methylcyclohexane"},
            {},
            KV_ENVELOPE_LIQUIDS};
  for (int i = 0; i < 30; ++i) many.z.push_back(i == 3 ? 0.85 : 0.04 * std::pow(0.8, i));
  feeds.push_back(many);
  std::vector<Ask> asks(6);
  asks[1].points = 1;
  asks[2].points = 2;
  asks[3].points = asks[3].capacity = 3000;
  asks[4].capacity = 3;
  asks[5].first_P = 20.0, asks[5].max_P = 60.0, asks[5].min_T = 220.0;
  for (std::size_t f = 0; f < feeds.size(); ++f) {
    Mixture m = mixture_of(feeds[f].ids);
    for (std::size_t a = 0; a < asks.size(); ++a) {
      SCOPED_TRACE(testing::Message() << "feed " << f << ", arguments " << a);
      const Envelope e = envelope(m, feeds[f].z, asks[a]);
      expect_sound(e, asks[a]);
      if (a < 4) {
        EXPECT_EQ(e.status, feeds[f].status);
      }
      if (a == 1 || a == 2) {
        EXPECT_EQ(e.T.size(), a);
      }
      if (a == 3) {
        EXPECT_GT(e.T.size(), 2970u);
      }
      if (a == 4) {
        EXPECT_EQ(e.status, KV_ENVELOPE_FULL);
      }
      if (a != 0) continue;
      m.record.flags |= FreeWaterFlag;
      EXPECT_EQ(envelope(m, feeds[f].z).T, e.T);
      m.record.flags = 0;
    }
  }
}

TEST(PhaseEnvelope, AbsurdArguments) {
  Mixture m = mixture_of(kLeanGas);
  std::vector<Ask> all(12);
  all[0].first_P = 100.0, all[0].max_P = 50.0;  // the wrong way round
  all[1].first_P = 50.0, all[1].max_P = 50.0;
  all[2].first_P = NAN;
  all[3].max_P = -1.0;
  all[4].min_T = INFINITY;
  all[5].fraction = 1.5;
  all[6].fraction = -0.1;
  all[7].fraction = NAN;
  all[8].points = -1;
  all[9].capacity = -1;
  all[10].accuracy = -1e-8;
  all[11].accuracy = 1e-16;
  for (std::size_t k = 0; k < all.size(); ++k)
    EXPECT_EQ(envelope(m, kLeanGasFeed, all[k]).status, KV_SPECIFICATION) << k;
}

TEST(PhaseEnvelope, SingleComponent) {
  Mixture m = mixture_of({"propane"});
  for (const int points : {0, 2, 30}) {
    Ask ask;
    ask.points = points;
    const Envelope e = envelope(m, {1.0}, ask);
    ASSERT_EQ(e.status, KV_OK);
    EXPECT_EQ(e.criticals, 1);
    EXPECT_EQ(e.T.back(), m.at(0, KV_COL_TC));
    EXPECT_EQ(e.P.back(), m.at(0, KV_COL_PC));
    EXPECT_EQ(e.bar_P, e.P.back());
    for (std::size_t k = 0; k + 1 < e.T.size(); ++k) {
      double P = 0.0, x[1], y[1], K[1];
      EXPECT_EQ(FlashLVatWT(1.0, e.T[k], std::vector<double>{1.0}.data(), &m.record, nullptr, 1, &P, x, y, K),
                KV_OK);
      EXPECT_NEAR(e.P[k] / P, 1.0, 1e-9);
    }
  }
}

// A host's fugacity routine is asked, and what it refuses is said.
StatusCode KV_CALL refuse(double, double, const double*, MixtureRecord*, std::int32_t, std::int32_t,
                          std::int32_t, double*, double*, double*, double*) {
  return 77;
}
TEST(PhaseEnvelope, HostRoutineAndZeroFractions) {
  Mixture m = mixture_of(kLeanGas);
  m.use();
  ModelRoutines routines{};
  routines.entry[KV_ROUTINE_FUGACITY - 1] = reinterpret_cast<void*>(refuse);
  double T[10], P[10], kind[10], e[4];
  std::int32_t count, criticals;
  EXPECT_EQ(PhaseEnvelope(kLeanGasFeed.data(), &m.record, &routines, 0, 0, 0, 0, 0, 10, 1.0, 0, T, P, kind,
                          &count, &criticals, e, e + 1, e + 2, e + 3),
            77);
  Mixture with = mixture_of({"methane", "n_decane", "propane", "n_butane"}),
          without = mixture_of({"methane", "propane", "n_butane"});
  const Envelope a = envelope(with, {0.7, 0.0, 0.2, 0.1}), b = envelope(without, {0.7, 0.2, 0.1});
  EXPECT_EQ(a.status, b.status);
  EXPECT_NEAR(a.therm_T / b.therm_T, 1.0, 1e-9);
  EXPECT_NEAR(a.bar_P / b.bar_P, 1.0, 1e-9);
}

}  // namespace
