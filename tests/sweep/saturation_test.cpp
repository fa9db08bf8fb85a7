// The judges of saturation points and of caloric flashes must accept right answers and find planted errors. The
// right ones come from the judge's own flash: a phase of a split, taken as the feed, is at its dew or bubble
// point.
#include "saturation.hpp"

#include <gtest/gtest.h>

#include <cmath>

#include "caloric.hpp"
#include "split.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune::sweep;
using Result = SaturationVerdict::Result;

struct SaturationCase {
  Feed feed;
  Components components;
  Split split;  // of the original feed
  double T, P;

  SaturationCase(const std::string& name, double T_, double P_) : T(T_), P(P_) {
    for (const Feed& f : all_feeds()) {
      if (f.name == name) feed = f;
    }
    components = read_components(KESTRUNE_DATA, feed.ids);
    split = flash(components, parameters_at<double>(components, T), P, feed.z);
  }

  // A question whose answer is T or P; W 0 or 1 turns a phase into the feed.
  SaturationQuestion ask(Given given, double W) {
    if (W == 0) feed.z = split.x;
    if (W == 1) feed.z = split.y;
    return {given, W, given == Given::temperature ? T : P, false, ""};
  }

  SaturationAnswer right(Given given) const {
    SaturationAnswer answer{0, given == Given::temperature ? P : T, split.x, split.y, split.x, 0};
    for (size_t i = 0; i < split.x.size(); ++i) answer.K[i] = split.y[i] / split.x[i];
    return answer;
  }

  SaturationVerdict judge(const SaturationQuestion& question, const SaturationAnswer& answer) const {
    return judge_saturation(Sides(feed, components), components, question, answer);
  }
};

TEST(SaturationJudge, AcceptsRightAnswersAndFindsPlantedErrors) {
  for (double W : {0.0, 0.4, 1.0}) {
    for (Given given : {Given::temperature, Given::pressure}) {
      SaturationCase c("rich_gas", 230, 30);
      ASSERT_TRUE(c.split.two_phase);
      SaturationQuestion q = c.ask(given, W);
      if (W == 0.4) q.W = c.split.beta;
      const SaturationAnswer right = c.right(given);
      EXPECT_EQ(c.judge(q, right).result, Result::point) << W << " " << c.judge(q, right).reason;

      SaturationAnswer wrong = right;
      wrong.found *= 1 + 1e-5;
      EXPECT_EQ(c.judge(q, wrong).group, "fugacities") << W;
      wrong = right;
      wrong.x[2] *= 1 + 1e-8;
      EXPECT_EQ(c.judge(q, wrong).group, "compositions") << W;
      wrong = right;
      wrong.x = wrong.y = c.feed.z;
      for (double& k : wrong.K) k = 1;
      EXPECT_EQ(c.judge(q, wrong).group, "trivial") << W;
      wrong = right;
      wrong.status = 117;
      EXPECT_EQ(c.judge(q, wrong).group, "status 117 at a stable point") << W;
      wrong.status = 116;
      EXPECT_EQ(c.judge(q, wrong).group, "status 116, a point exists") << W;
    }
  }
}

TEST(SaturationJudge, FindsExchangedPhases) {
  SaturationCase c("rich_gas", 230, 30);
  for (double W : {0.0, c.split.beta, 1.0}) {
    SaturationCase swapped = c;
    std::swap(swapped.split.x, swapped.split.y);
    const SaturationQuestion q = swapped.ask(Given::temperature, W == c.split.beta ? 1 - W : W);
    if (W == c.split.beta) swapped.feed = c.feed;
    EXPECT_EQ(swapped.judge(q, swapped.right(Given::temperature)).group, "phases exchanged") << W;
  }
}

// Vapour of a state in the retrograde region: its dew point there is the upper one.
TEST(SaturationJudge, FindsTheUpperDewBranch) {
  SaturationCase c("rich_gas", 290, 100);
  ASSERT_TRUE(c.split.two_phase);
  const SaturationQuestion q = c.ask(Given::temperature, 1);
  Composition hint;
  const Sides sides(c.feed, c.components);
  ASSERT_TRUE(sides.split(c.T, 0.98 * c.P, hint));
  ASSERT_FALSE(sides.split(c.T, 1.02 * c.P, hint));
  EXPECT_EQ(c.judge(q, c.right(Given::temperature)).group, "another dew branch");
}

TEST(SaturationJudge, KnowsWhereNoPointExists) {
  SaturationCase c("rich_gas", 500, 30);
  SaturationAnswer none = c.right(Given::temperature);
  none.status = 116;
  for (double W : {0.0, 0.5, 1.0}) {
    EXPECT_EQ(c.judge({Given::temperature, W, 500, false, ""}, none).result, Result::none);
    const SaturationVerdict other = c.judge({Given::temperature, W, 240, false, ""}, none);
    EXPECT_EQ(other.group, "status 116, a point exists");
    EXPECT_GT(other.other, 0.1) << W;
  }
  SaturationCase pure("methane", 150, 10);
  EXPECT_EQ(pure.judge({Given::temperature, 0, 200, false, ""}, none).result, Result::none);
  EXPECT_EQ(pure.judge({Given::temperature, 0, 180, false, ""}, none).result, Result::wrong);
}

TEST(SaturationJudge, JudgesTheWayBack) {
  SaturationCase c("lean_gas", 200, 30);
  const SaturationQuestion q = c.ask(Given::pressure, 1);
  const SaturationAnswer right = c.right(Given::pressure);
  for (double shift : {1e-12, 1e-6}) {
    SaturationAnswer back = right;
    back.found = c.P * (1 + shift);
    SaturationVerdict verdict = c.judge(q, right);
    ASSERT_EQ(verdict.result, Result::point) << verdict.reason;
    judge_return(Sides(c.feed, c.components), c.components, q, right, back, verdict);
    EXPECT_EQ(verdict.group, shift < 1e-9 ? "" : "round trip");
  }
}

TEST(CaloricJudge, FindsPlantedErrors) {
  const SaturationCase c("rich_gas", 230, 30), gas("rich_gas", 400, 5);
  const double beta = c.split.beta;
  const CaloricQuestion q{
      Quantity::enthalpy, {&c.components, c.feed.z, c.T, c.P}, -3000 * (1 - beta) - 700 * beta, beta};
  const PhaseValues values{true, true, -3000, -700};
  const CaloricAnswer right{c.T, {0, beta, c.split.x, c.split.y, {}}, -3000, -700, 0};
  EXPECT_EQ(judge_caloric(q, right, values).group, "");
  CaloricAnswer wrong = right;
  wrong.T *= 1 + 1e-5;
  EXPECT_EQ(judge_caloric(q, wrong, values).group, "phases at the temperature returned");
  wrong = right;
  wrong.liquid = -3000.1;
  EXPECT_EQ(judge_caloric(q, wrong, values).group, "value of the liquid");
  CaloricQuestion other = q;
  other.value += 1e-2;
  EXPECT_EQ(judge_caloric(other, right, values).group, "energy balance");
  wrong = right;
  wrong.phases.status = 112;
  EXPECT_EQ(judge_caloric(q, wrong, values).group, "status 112");

  const CaloricQuestion single{Quantity::enthalpy, {&gas.components, gas.feed.z, gas.T, gas.P}, 900, 1};
  CaloricAnswer answer{gas.T, {0, 1, gas.feed.z, gas.feed.z, {}}, 0, 900, 0};
  EXPECT_EQ(judge_caloric(single, answer, {false, true, 0, 900}).group, "");
  answer.T += 2e-6;
  EXPECT_EQ(judge_caloric(single, answer, {false, true, 0, 900}).group, "temperature");
}

}  // namespace
