// The judge must accept right answers and find planted errors. The right answers come from its own flash, which
// the judge does not use for two-phase and single-phase verdicts.
#include "judge.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "feeds.hpp"
#include "states.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune::sweep;

struct Case {
  Components components;
  Question question;

  Case(const Feed& feed, double T, double P) : components(read_components(KESTRUNE_DATA, feed.ids)) {
    question = {&components, feed.z, T, P, feed.free_water, feed.solubility_a, feed.solubility_b};
  }
  Case(const Case&) = delete;
};

Feed feed_named(const std::string& name) {
  for (const Feed& feed : all_feeds()) {
    if (feed.name == name) return feed;
  }
  throw std::runtime_error(name);
}

Answer solve(const Question& q) {
  const auto par = parameters_at<double>(*q.components, q.T);
  const Split split = flash(*q.components, par, q.P, q.z);
  Answer answer{0, split.beta, split.x, split.y, {}};
  if (!split.two_phase) {
    Phase<double> phase;
    evaluate(par, q.P, q.z.data(), Root::stable, false, phase);
    answer.beta = phase.Z * 82.057 * q.T / (q.P * phase.b) > vapour_volume_ratio ? 1 : 0;
  }
  return answer;
}

TEST(Judge, AcceptsRightAnswers) {
  for (const char* name : {"lean_gas", "rich_gas", "sour_gas", "acid_gas", "methane_propane", "aromatic"}) {
    const Feed feed = feed_named(name);
    const Components components = read_components(KESTRUNE_DATA, feed.ids);
    int two = 0;
    for (const State& state : make_states(feed, components, {60, 1, 8, 5})) {
      const Question question{&components, feed.z, state.T, state.P};
      const Answer answer = solve(question);
      const Verdict verdict = judge(question, answer);
      EXPECT_NE(verdict.outcome, Outcome::wrong)
          << name << " " << state.T << " K " << state.P << " atm " << state.kind << ": " << verdict.reason;
      two += verdict.outcome == Outcome::two_phase;
    }
    EXPECT_GT(two, 5) << name;
  }
}

TEST(Judge, FindsPlantedErrorsOfATwoPhaseAnswer) {
  const Case c(feed_named("rich_gas"), 230, 30);
  const Answer right = solve(c.question);
  ASSERT_EQ(judge(c.question, right).outcome, Outcome::two_phase);
  Answer wrong = right;
  wrong.x[3] *= 1 + 1e-7;  // no longer balanced
  EXPECT_EQ(judge(c.question, wrong).outcome, Outcome::wrong);

  wrong = right;  // another fraction, balance and sums kept
  wrong.beta *= 1 + 1e-6;
  double sum = 0;
  for (size_t i = 0; i < right.x.size(); ++i) {
    wrong.x[i] = (c.question.z[i] - wrong.beta * right.y[i]) / (1 - wrong.beta);
    sum += wrong.x[i];
  }
  EXPECT_NEAR(sum, 1, 1e-12);
  EXPECT_NE(judge(c.question, wrong).reason.find("fugacities"), std::string::npos);

  wrong = right;  // labels exchanged
  std::swap(wrong.x, wrong.y);
  wrong.beta = 1 - right.beta;
  EXPECT_NE(judge(c.question, wrong).reason.find("denser phase"), std::string::npos);

  wrong = right;  // only one phase
  wrong.beta = 1;
  wrong.x = wrong.y = c.question.z;
  EXPECT_NE(judge(c.question, wrong).reason.find("unstable"), std::string::npos);

  wrong.beta = 0.5;  // the trivial solution
  EXPECT_NE(judge(c.question, wrong).reason.find("identical"), std::string::npos);

  wrong = right;
  wrong.status = 112;
  EXPECT_EQ(judge(c.question, wrong).outcome, Outcome::failed);
  wrong = right;
  wrong.y[0] = std::nan("");
  EXPECT_EQ(judge(c.question, wrong).outcome, Outcome::wrong);
}

TEST(Judge, FindsTheWrongLabelOfASinglePhase) {
  const Case gas(feed_named("lean_gas"), 300, 20), liquid(feed_named("lean_gas"), 110, 200);
  for (const Case* c : {&gas, &liquid}) {
    Answer answer = solve(c->question);
    EXPECT_EQ(judge(c->question, answer).outcome, Outcome::single_phase);
    answer.beta = 1 - answer.beta;
    EXPECT_EQ(judge(c->question, answer).outcome, Outcome::wrong);
  }
}

// A search from far more starts must not find an instability that the regular starts miss.
TEST(Judge, RegularStartsMissNothing) {
  std::mt19937_64 random(5);
  std::exponential_distribution<double> draw(1);
  for (const char* name : {"rich_gas", "hydrogen_rich", "wide_boiling", "wet_oil"}) {
    const Feed feed = feed_named(name);
    const Components c = read_components(KESTRUNE_DATA, feed.ids);
    for (const State& state : make_states(feed, c, {60, 1, 8, 11})) {
      const auto par = parameters_at<double>(c, state.T);
      const Plane plane = plane_of(par, state.P, feed.z);
      const auto starts = starting_points(c, par, state.P, feed.z, plane);
      if (!search(par, state.P, plane, starts, -tpd_tolerance, false).unstable.empty()) continue;
      std::vector<Composition> more(150, Composition(c.n));
      for (size_t k = 0; k < more.size(); ++k) {
        double total = 0;
        for (double& w : more[k])
          total += w = std::pow(draw(random), 1.0 + 0.05 * static_cast<double>(k)) + 1e-30;
        for (double& w : more[k]) w /= total;
      }
      EXPECT_TRUE(search(par, state.P, plane, more, -tpd_tolerance, false).unstable.empty())
          << name << " " << state.T << " K " << state.P << " atm";
    }
  }
}

// A wet oil splits into a gas, an oil and water: of the two-phase answers only the lowest is right.
TEST(Judge, ThreePhaseStatesOweTheLowestSplit) {
  const Case c(feed_named("wet_oil"), 320, 20);
  const Answer best = solve(c.question);
  EXPECT_EQ(judge(c.question, best).outcome, Outcome::three_phase_state) << judge(c.question, best).reason;
  const auto par = parameters_at<double>(c.components, c.question.T);
  const Plane plane = plane_of(par, c.question.P, c.question.z);
  const auto starts = starting_points(c.components, par, c.question.P, c.question.z, plane);
  int higher = 0;
  for (const Trial& trial : search(par, c.question.P, plane, starts, -1e-10, true).unstable) {
    const Split split = split_from(par, c.question.P, c.question.z, trial.w);
    const double excess = split.gibbs - gibbs_of(par, c.question.P, best.beta, best.x, best.y);
    if (!split.two_phase || excess < 1e-6) continue;
    ++higher;
    EXPECT_EQ(judge(c.question, {0, split.beta, split.x, split.y, {}}).outcome, Outcome::wrong);
  }
  EXPECT_GT(higher, 0);
}

// Two phases by the rules of liquid water: dry gas saturated with water over liquid water.
TEST(Judge, FreeWater) {
  const Case c(feed_named("wet_gas_free_water"), 350, 30);
  const auto par = parameters_at<double>(c.components, c.question.T);
  const int n = c.components.n, iw = n - 1;
  Answer answer{0, 0.96, Composition(n, 0.0), c.question.z, {}};
  for (int k = 0; k < 200; ++k) {  // y_w phi_w P = Psat
    Phase<double> phase;
    evaluate(par, c.question.P, answer.y.data(), Root::largest, false, phase);
    const double yw = water_vapour_pressure(c.question.T) / c.question.P / std::exp(phase.ln_phi[iw]);
    answer.beta = (1 - c.question.z[iw]) / (1 - yw);
    for (int i = 0; i < n; ++i) answer.y[i] = i == iw ? yw : c.question.z[i] / answer.beta;
  }
  answer.x[iw] = 1;
  ASSERT_LT(answer.beta, 1);
  EXPECT_EQ(judge(c.question, answer).outcome, Outcome::two_phase) << judge(c.question, answer).reason;

  Answer wrong{0, 1, answer.x, c.question.z, {}};
  EXPECT_NE(judge(c.question, wrong).reason.find("supersaturated"), std::string::npos);
  wrong = answer;  // more water in the gas than belongs there
  wrong.beta += 1e-6;
  for (int i = 0; i < n; ++i) wrong.y[i] = (c.question.z[i] - (1 - wrong.beta) * wrong.x[i]) / wrong.beta;
  EXPECT_NE(judge(c.question, wrong).reason.find("fugacities"), std::string::npos);
}

}  // namespace
