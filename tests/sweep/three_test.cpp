// The judge of three phases must accept right answers and find planted errors. The right answers come from a
// slow flash that the judge has no use for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "split.hpp"
#include "tables.hpp"
#include "three_given.hpp"
#include "three_reference.hpp"
#include "three_states.hpp"

namespace {

using namespace kestrune::sweep;

const System& system_named(const std::string& name) {
  static const std::vector<System> systems = three_phase_systems();
  for (const System& system : systems) {
    if (system.feed.name == name) return system;
  }
  throw std::runtime_error(name);
}

struct ThreeCase {
  Components components;
  Question question;

  ThreeCase(const char* name, double T, double P)
      : components(read_components(KESTRUNE_DATA, system_named(name).feed.ids)) {
    question = {&components, system_named(name).feed.z, T, P};
  }
  ThreeCase(const ThreeCase&) = delete;
};

// A search from many more starts finds nothing that the judge missed.
bool nothing_more(const Question& q, const ThreeAnswer& answer) {
  static std::mt19937_64 random(5);
  std::exponential_distribution<double> draw(1);
  const Reduced r(q);
  std::vector<Composition> more(40, Composition(r.components.n));
  for (size_t k = 0; k < more.size(); ++k) {
    double total = 0;
    for (double& w : more[k]) total += w = std::pow(draw(random), 1.0 + 0.2 * static_cast<double>(k)) + 1e-30;
    for (double& w : more[k]) w /= total;
  }
  const Plane plane = common_plane(r, present_phases(q, r, answer));
  return search(r.par, q.P, plane, more, -tpd_tolerance, false).unstable.empty();
}

// The first draws of every system, those with a trace left out.
TEST(JudgeThree, AcceptsRightAnswers) {
  int kinds[4] = {}, slow = 0;
  for (const System& system : three_phase_systems()) {
    const Components components = read_components(KESTRUNE_DATA, system.feed.ids);
    for (const ThreeState& state : draw_states(system, 40, 3)) {
      const Question q{&components, state.z, state.T, state.P};
      if (*std::min_element(state.z.begin(), state.z.end()) < 1e-4) continue;
      const ThreeAnswer answer = slow_flash(q);
      slow += answer.status != 0;
      if (answer.status != 0) continue;
      const ThreeVerdict verdict = judge_three(q, answer, false);
      EXPECT_EQ(verdict.group, "") << system.feed.name << " " << state.T << " K " << state.P << " atm "
                                   << verdict.reason;
      ++kinds[phase_count(layout_of(answer))];
      EXPECT_TRUE(nothing_more(q, answer)) << system.feed.name << " " << state.T << " K " << state.P << " atm";
    }
  }
  EXPECT_GT(kinds[1], 50);
  EXPECT_GT(kinds[2], 50);
  EXPECT_GT(kinds[3], 30);
  EXPECT_LT(slow, 20);
  std::printf("%d one, %d two, %d three, %d too slow\n", kinds[1], kinds[2], kinds[3], slow);
}

// A third of every number of phases, states on both sides of boundaries, and the same ones for any number of
// threads.
TEST(ThreeStates, Sample) {
  const System& system = system_named("methane_butane_water");
  const Components components = read_components(KESTRUNE_DATA, system.feed.ids);
  const Ask ask = [&](double T, double P, const Composition& z) {
    const Question q{&components, z, T, P};
    return *std::min_element(z.begin(), z.end()) > 1e-4 ? slow_flash(q) : ThreeAnswer{};
  };
  const Sample one = sample_states(system, {80, 1, 9}, ask), two = sample_states(system, {80, 2, 9}, ask);
  ASSERT_EQ(one.states.size(), 80u);
  ASSERT_EQ(two.states.size(), 80u);
  int kinds[4] = {}, boundary = 0, across = 0;
  for (size_t k = 0; k < 80; ++k) {
    const ThreeState& state = one.states[k];
    EXPECT_EQ(state.T, two.states[k].T);
    EXPECT_EQ(state.P, two.states[k].P);
    ++kinds[phase_count(layout_of(state.answer))];
    if (state.kind[0] != 'b') continue;
    ++boundary;
    across += boundary % 2 == 0 && layout_of(state.answer) != layout_of(one.states[k - 1].answer);
  }
  for (int number : {1, 2, 3}) EXPECT_GE(kinds[number], 20) << number;
  EXPECT_EQ(boundary, 20);
  EXPECT_GE(across, 7);
}

class PlantedErrors : public testing::Test {
 protected:
  const ThreeCase c{"methane_butane_water", 320, 15};
  const ThreeAnswer right = slow_flash(c.question);

  std::string found(const ThreeAnswer& answer) const { return judge_three(c.question, answer).group; }
};

TEST_F(PlantedErrors, OfThreePhases) {
  ASSERT_EQ(layout_of(right), Layout::three);
  ASSERT_EQ(found(right), "");
  ThreeAnswer wrong = right;
  wrong.status = 112;
  EXPECT_EQ(found(wrong), "status 112");
  wrong = right;
  wrong.V = -1e-3;
  EXPECT_EQ(found(wrong), "shares");
  wrong = right;
  wrong.y[0] = std::nan("");
  EXPECT_EQ(found(wrong), "fractions");
  wrong = right;
  wrong.a[1] += 1e-9;
  EXPECT_EQ(found(wrong), "sum of a phase");
  wrong = right;
  wrong.beta += 1e-8;  // taken from liquid B
  EXPECT_EQ(found(wrong), "material balance");
  wrong = right;
  wrong.kll[2] *= 1 + 1e-6;
  EXPECT_EQ(found(wrong), "K values");
}

TEST_F(PlantedErrors, NamesAndFugacities) {
  ThreeAnswer wrong = right;  // liquids exchanged
  std::swap(wrong.a, wrong.b);
  wrong.beta = right.rest();
  EXPECT_EQ(found(wrong), "order");
  wrong = right;  // vapour and light liquid exchanged
  std::swap(wrong.a, wrong.y);
  std::swap(wrong.beta, wrong.V);
  EXPECT_EQ(found(wrong), "order");

  wrong = right;  // a little of the vapour moved into liquid A, balance and sums kept
  const double moved = 1e-6;
  wrong.beta += moved;
  wrong.V -= moved;
  for (size_t i = 0; i < right.a.size(); ++i)
    wrong.a[i] = (right.beta * right.a[i] + moved * right.y[i]) / wrong.beta;
  EXPECT_EQ(found(wrong), "fugacities");

  wrong = right;  // water forgotten in liquid A
  wrong.a[2] = 1e-20;
  for (int i : {0, 1}) wrong.a[i] = right.a[i] / (1 - right.a[2]);
  const double moved_water = right.beta * right.a[2], rest = right.rest();
  wrong.beta = right.beta * (1 - right.a[2]);
  for (int i : {0, 1, 2}) wrong.b[i] = (rest * right.b[i] + (i == 2) * moved_water) / wrong.rest();
  EXPECT_EQ(found(wrong), "fugacities");
}

// Too few phases, and a third one that is the copy of another.
TEST_F(PlantedErrors, NumberOfPhases) {
  const Reduced r(c.question);
  const Split split = flash(r.components, r.par, c.question.P, r.z);
  EXPECT_EQ(found(named_phases({split.x, split.y}, {1 - split.beta, split.beta}, c.question)),
            "unstable, 2 phases reported");
  ThreeAnswer one{0, 1, 0, c.question.z, c.question.z, c.question.z, c.question.z, c.question.z};
  EXPECT_EQ(found(one), "unstable, 1 phases reported");
  ThreeAnswer twice = right;  // all of the vapour in two pieces
  const ThreeCase dry("methane_butane_water", 440, 40);
  const ThreeAnswer two = slow_flash(dry.question);
  ASSERT_EQ(layout_of(two), Layout::liquid_vapour);
  ASSERT_EQ(judge_three(dry.question, two).group, "");
  twice = two;
  twice.a = two.y;
  twice.beta = twice.V = two.V / 2;
  EXPECT_EQ(judge_three(dry.question, twice).group, "identical phases");
  ThreeAnswer renamed = two;  // the liquid of a liquid-vapour answer is B
  renamed.a = two.b;
  renamed.beta = 1 - two.V;
  EXPECT_EQ(judge_three(dry.question, renamed).group, renamed.rest() > 0 ? "order" : "shares");
}

// At enthalpy, with made-up values of the phases.
TEST_F(PlantedErrors, AtEnthalpy) {
  const double T = c.question.T;
  const ThreeValues values{{true, true, true}, {-9000, -11000, 150}};
  const ThreeCaloricAnswer answer{T, right, {-9000, -11000, 150}};
  const double value = right.beta * -9000 + right.rest() * -11000 + right.V * 150;
  const ThreeCaloricQuestion asked{c.question, value, T, T};
  EXPECT_EQ(judge_three_caloric(asked, answer, values).group, "");
  ThreeCaloricAnswer wrong = answer;
  wrong.values[1] += 1e-3;
  EXPECT_EQ(judge_three_caloric(asked, wrong, values).group, "value of liquid B");
  ThreeCaloricQuestion other = asked;
  other.value *= 1 + 1e-6;
  EXPECT_EQ(judge_three_caloric(other, answer, values).group, "energy balance");
  other = asked;
  other.T_low = other.T_high = T + 2e-3;
  EXPECT_EQ(judge_three_caloric(other, answer, values).group, "temperature");
  wrong = answer;
  wrong.T = T + 1e-3;
  EXPECT_EQ(judge_three_caloric(asked, wrong, values).group, "fugacities");
}

// The liquids of a three-phase state are at their bubble point, its vapour is at its dew point.
TEST_F(PlantedErrors, AtVapourFraction) {
  const double P = c.question.P, rest = 1 - right.V;
  EXPECT_EQ(judge_three_point(c.question, right.V, {P, right}).group, "");
  EXPECT_NE(judge_three_point(c.question, right.V + 1e-6, {P, right}).group, "");
  EXPECT_EQ(judge_three_point(c.question, right.V, {0, right}).group, "not a temperature or pressure");

  Question liquids = c.question, vapour = c.question;
  vapour.z = right.y;
  for (size_t i = 0; i < right.y.size(); ++i) liquids.z[i] = (liquids.z[i] - right.V * right.y[i]) / rest;
  ThreePoint bubble{P, right}, dew{P, right};
  bubble.phases.beta = right.beta / rest;
  dew.phases.beta = 0;
  EXPECT_EQ(judge_three_point(liquids, 0, bubble).group, "");
  EXPECT_EQ(judge_three_point(vapour, 1, dew).group, "");
  dew.phases.b = right.a;  // either liquid may be the one that appears
  EXPECT_EQ(judge_three_point(vapour, 1, dew).group, "");

  ThreePoint wrong = bubble;
  wrong.phases.y[0] *= 1 + 1e-6;
  wrong.phases.y[1] -= 1e-6 * right.y[0];
  EXPECT_EQ(judge_three_point(liquids, 0, wrong).group, "incipient phase: fugacities");
  wrong.phases.y = right.a;
  EXPECT_EQ(judge_three_point(liquids, 0, wrong).group, "incipient phase: no other one");
  dew.phases.a = dew.phases.b = right.y;
  EXPECT_EQ(judge_three_point(vapour, 1, dew).group, "incipient phase: no other one");
  liquids.P *= 0.99;
  EXPECT_NE(judge_three_point(liquids, 0, bubble).group, "");
}

}  // namespace
