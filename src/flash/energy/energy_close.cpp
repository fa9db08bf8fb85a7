// The end of the bracket. Where no slope is known, or Newton's method finds nothing, isothermal flashes close
// the bracket until a state has the value or no width is left. What is left then is a jump: of one pair of
// phases whose vapour fraction grows at one temperature, and the state between the ends is the answer; or from
// one pair to another, and no temperature has the value; or none, because an end was the answer of a flash that
// missed a phase, which shows a little further out.

#include <algorithm>
#include <cmath>

#include "flash/energy/energy_state.hpp"
#include "flash/feed.hpp"
#include "flash/quality/quality_flash.hpp"
#include "flash/trace_flash.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMostToClose = 400;                             // flashes of the whole call
constexpr int kRounds = 4;                                    // of widening a bracket whose ends are no answers
constexpr double kReached = 1e-11;                            // of the scale of the value
constexpr double kNoWidth = 4e-16, kSameTemperature = 1e-13;  // relative
constexpr double kBeside[] = {0.0, 0.07, -0.07, 0.19, -0.19, 0.31, -0.31, 0.43, -0.43};  // of the width
constexpr double kFurther[] = {1e-11, 1e-9, 1e-7, 1e-5, 1e-3};                           // of T
constexpr int kStepsOut = 12;          // of three times the length each, the first 1e-4 of T
constexpr double kNewtonEvery = 1e-2;  // shrinking of the bracket between two attempts
// A jump: relative width of a bracket that is narrow enough to tell. The values at its ends are far off (kFarOff).
// Where the flashes do not give the pair of lower Gibbs energy the ends do not tell where that is, but their width does.
constexpr double kNarrow = 1e-9, kNoRoom = 1e-11;
constexpr double kAsideOfCrossing = 4.0;  // of the square of the relative width: how uncertain a crossing is
constexpr double kMostAside = 0.25;       // of the bracket
// The place itself: steps towards it, and how well it is known then; how far beside it the flashes are, closer together
// than a jump may be; how often it is looked for, since other pairs may be found there.
constexpr int kCrossingSteps = 8, kCrossings = 3;
constexpr double kCrossed = 1e-12, kBesideCrossing = 4e-10;

// A flash inside the bracket at T, or beside it where there is no answer. True: e.state.
bool look_inside(Energy& e, double T) {
  const double width = e.bracket.high - e.bracket.low;
  for (const double part : kBeside) {
    const double t = T + part * width;
    if (e.bracket.inside(t) && equilibrium_at(e, t, false, e.state)) return true;
    if (model_refuses(e)) return false;
  }
  return false;
}

/*
 * The phases part of the way from one end to the other. Between two single phases they are the feed as a liquid
 * and as a vapour, what evaporates more or less going by its coefficient.
 */
bool state_between(Energy& e, double part, EnergyState& s) {
  const EnergyState &a = e.low, &b = e.high;
  s.T = e.bracket.low + part * (e.bracket.high - e.bracket.low);
  double V = 0.0, L = 0.0;
  if (!a.two_phases() && !b.two_phases()) {
    if (!fugacities_of(e, s.T, e.z, e.z)) return false;
    for (int i = 0; i < e.n; ++i) {
      const double K =
          std::exp(std::clamp(e.liquid.ln_phi[i] - e.vapour.ln_phi[i], -kLargestLogK, kLargestLogK));
      e.in_vapour[i] = e.z[i] * part * K / (1.0 - part + part * K);
    }
  } else {
    for (int i = 0; i < e.n; ++i) e.in_vapour[i] = (1.0 - part) * a.beta * a.y[i] + part * b.beta * b.y[i];
  }
  for (int i = 0; i < e.n; ++i) {
    e.in_vapour[i] = std::min(e.in_vapour[i], e.z[i]);
    V += e.in_vapour[i];
    L += e.z[i] - e.in_vapour[i];
  }
  if (!(V > 0.0 && L > 0.0)) return false;
  s.beta = V / (V + L);
  for (int i = 0; i < e.n; ++i) {
    s.y[i] = e.in_vapour[i] / V;
    s.x[i] = (e.z[i] - e.in_vapour[i]) / L;
  }
  return true;
}

double part_of_value(const EnergyBracket& b) {
  return std::clamp(-b.f_low / (b.f_high - b.f_low), 0.0, 1.0);
}

// The vapour fraction as the unknown, each temperature by a flash of its own from the state between the ends.
bool solve_for_fraction(Energy& e, EnergyState& s) {
  double low = 0.0, high = 1.0, W = s.beta;
  for (int k = 0; k < 60; ++k) {
    QualityCall q;
    q.W = W;
    q.given = e.call.P;
    q.z = e.z;
    q.context = e.silent;
    q.routines = e.call.routines;
    q.free_water = e.call.free_water;
    q.start = Start::warm;
    double T = e.bracket.low;
    q.unknown = &T;
    q.x = s.x;
    q.y = s.y;
    q.K = e.K;
    if (quality_flash(q) != KV_OK || !e.bracket.about(T)) return false;
    s.T = T;
    s.beta = W;
    if (!evaluate_state(e, s)) return false;
    const double f = e.f(s);
    if (has_value(e, s)) return true;
    (f < 0.0 ? low : high) = W;
    double next = W - f / (s.vapour - s.liquid);
    if (!(next > low && next < high)) next = 0.5 * (low + high);
    if (next == W) return true;
    W = next;
  }
  return false;
}

// A state between the ends of the bracket. True: e.state, the answer.
bool solve_between(Energy& e) {
  EnergyState& s = e.spare;
  if (!state_between(e, part_of_value(e.bracket), s)) return false;
  if (e.model.analytic()) return solve_phases(e, s) == Local::converged;
  if (!accept(e, s, Found::between) && !(solve_for_fraction(e, s) && accept(e, s, Found::between)))
    return false;
  copy_state(e, s, e.state);
  return true;
}

// An end of the bracket that has the value as well as T can say.
bool take_end(Energy& e) {
  const bool low = e.bracket.f_high > -e.bracket.f_low;
  for (const bool other : {false, true}) {
    copy_state(e, low != other ? e.low : e.high, e.state);
    if (accept(e, e.state, Found::flash)) return true;
  }
  return false;
}

/*
 * Whether an end of the bracket was not what it seemed: further out the value is on the other side again. The
 * bracket begins there then, and ends where the sign changes.
 */
bool widen(Energy& e) {
  for (const bool upward : {true, false}) {
    const double end = upward ? e.bracket.high : e.bracket.low;
    for (const double part : kFurther) {
      if (!equilibrium_at(e, end * (upward ? 1.0 + part : 1.0 - part), false, e.state)) continue;
      if ((e.f(e.state) < 0.0) != upward) continue;
      double T = e.state.T;
      e.bracket = {};
      add_to_bracket(e);
      for (int k = 0; k < kStepsOut && !e.bracket.closed(); ++k) {
        T = upward ? T * (1.0 + 1e-4 * std::pow(3.0, k)) : T / (1.0 + 1e-4 * std::pow(3.0, k));
        if (!(T > kColdest && T < kHottest)) return false;
        if (equilibrium_at(e, T, false, e.state)) add_to_bracket(e);
      }
      return e.bracket.closed();
    }
  }
  return false;
}

// Whether one of the two phases of a is none of those of b.
bool other_pair(const Energy& e, const EnergyState& a, const EnergyState& b) {
  return a.two_phases() && b.two_phases() && other_phases(e.n, a.x, a.y, b.x, b.y);
}

/*
 * Where the Gibbs energies of two pairs of phases, as a rule those of the ends of the bracket, are the same by their
 * slopes in 1/T: there one gives way to the other. False: not within the bracket.
 */
bool crossing(const Energy& e, const EnergyState& a, const EnergyState& b, double& T) {
  T = crossing_of(a.gibbs, a.T, b.gibbs, b.T);
  return e.bracket.inside(T);
}

// The bracket holds the place where one pair gives way to another, and both are far from the value there.
bool is_jump(const Energy& e) {
  const EnergyBracket& b = e.bracket;
  double T = 0.0;
  return b.high - b.low <= kNarrow * b.high && std::min(-b.f_low, b.f_high) > kFarOff * e.value_scale(b.high) &&
         other_pair(e, e.low, e.high) &&
         (!e.model.analytic() || b.high - b.low <= kNoRoom * b.high || crossing(e, e.low, e.high, T));
}

/*
 * The next temperature within a bracket whose ends have different pairs of phases: where they change places, and
 * as far aside as that is uncertain, so that the longer side of the bracket goes. aside grows when it did not.
 */
bool beside_crossing(const Energy& e, double aside, double& T, bool& low) {
  const EnergyBracket& b = e.bracket;
  double there = 0.0;
  if (!e.model.analytic() || !other_pair(e, e.low, e.high) || !crossing(e, e.low, e.high, there)) return false;
  const double down = there - b.low, up = b.high - there;
  low = down > up;
  const double most = kMostAside * (b.high - b.low);
  const double off =
      std::min(std::max(aside * (down * down + up * up) / there, kSameTemperature * there), most);
  T = there + (low ? -off : off);
  return b.inside(T);
}

/*
 * The same place to the last digits: each pair is followed there by itself. What flashes see on both sides of it goes
 * into the bracket. True: one of them has the value.
 */
bool look_beside_crossing(Energy& e) {
  EnergyState &a = e.spare, &b = e.other;
  copy_state(e, e.low, a);
  copy_state(e, e.high, b);
  double T = 0.0, before = 0.0;
  int steps = 0;
  do {
    before = T;
    if (++steps > kCrossingSteps || !crossing(e, a, b, T)) return false;
    a.T = b.T = T;
    if (!equalise(e, a) || !evaluate_state(e, a) || !equalise(e, b) || !evaluate_state(e, b)) return false;
  } while (std::fabs(T - before) > kCrossed * T);
  for (const double side : {1.0 - kBesideCrossing, 1.0 + kBesideCrossing}) {
    if (!e.bracket.inside(side * T)) continue;
    if (!equilibrium_at(e, side * T, false, e.state)) return false;
    add_to_bracket(e);
    if (has_value(e, e.state) && accept(e, e.state, Found::flash)) return true;
  }
  return false;
}

// Newton's method from a pair of phases inside that is neither of those of the ends.
bool solve_inside(Energy& e) {
  if (!e.model.analytic() || !e.state.two_phases()) return false;
  if (!other_pair(e, e.state, e.low) || !other_pair(e, e.state, e.high)) return false;
  copy_state(e, e.state, e.spare);
  return solve_phases(e, e.spare) == Local::converged;
}

// Until an answer is found or no width is left. False: the latter, a jump or e.status.
bool narrow(Energy& e) {
  const EnergyBracket& b = e.bracket;
  int crossings = 0;
  double last_attempt = b.high - b.low, before = 2.0 * last_attempt, aside = kAsideOfCrossing;
  for (int pass = 0;; ++pass) {
    const double width = b.high - b.low;
    e.jump = is_jump(e);
    if (e.jump || width <= kNoWidth * b.high || e.flashes > kMostToClose) return false;
    if (crossings < kCrossings && pairs_cross(e)) {
      ++crossings;
      if (look_beside_crossing(e)) return true;
      if (b.high - b.low < width) continue;
    }
    if (width <= kNewtonEvery * last_attempt) {
      last_attempt = width;
      if (e.model.analytic() && solve_between(e)) return true;
    }
    // By halves where the secant did not close it by half.
    const double secant = b.secant(), middle = 0.5 * (b.low + b.high);
    double T = width <= 0.5 * before && b.inside(secant) ? secant : middle;
    before = width;
    bool low = false;
    const bool by_crossing = pass % 4 != 3 && beside_crossing(e, aside, T, low);
    if (!b.inside(T)) T = middle;
    if (!b.inside(T) || !look_inside(e, T)) return false;
    if (by_crossing && low != (e.f(e.state) < 0.0)) aside *= 8.0;
    if (solve_inside(e)) return true;
    trace_energy_pass(e.trace, e.call, e.state.T, e.state.beta, e.state.liquid, e.state.vapour);
    add_to_bracket(e);
    if (has_value(e, e.state) && accept(e, e.state, Found::flash)) return true;
  }
}

}  // namespace

bool has_value(const Energy& e, const EnergyState& s) {
  return std::fabs(e.f(s)) <= kReached * e.value_scale(s.T);
}

void add_to_bracket(Energy& e) {
  const double f = e.f(e.state), T = e.state.T;
  e.bracket.add(T, f);
  if (f < 0.0 && T == e.bracket.low) copy_state(e, e.state, e.low);
  if (f > 0.0 && T == e.bracket.high) copy_state(e, e.state, e.high);
}

bool pairs_cross(const Energy& e) {
  double T = 0.0;
  return e.model.analytic() && other_pair(e, e.low, e.high) && crossing(e, e.low, e.high, T);
}

StatusCode close_bracket(Energy& e) {
  for (int round = 0; round < kRounds; ++round) {
    if (narrow(e)) return KV_OK;
    if (!e.jump) {
      if (solve_between(e) || take_end(e)) return KV_OK;
      if (e.bracket.high - e.bracket.low > kSameTemperature * e.bracket.high) break;
    }
    if ((e.jump && e.model.analytic()) || !widen(e)) {
      e.jump = true;
      break;
    }
  }
  copy_state(e, e.low, e.state);
  return KV_NOT_CONVERGED;
}

}  // namespace kestrune::flash
