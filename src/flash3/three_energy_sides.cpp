// What stands between the two sides of a bracket: phases of both of them where temperature stands still while the
// value changes, or a jump from three of four phases to three others.

#include <algorithm>
#include <cmath>

#include "flash3/three_energy_state.hpp"

namespace kestrune::flash3 {
namespace {

constexpr double kReached = 1e-11;     // of the value's size
constexpr double kNarrow = 1e-3;       // relative width, and shrinking, at which an amount is the unknown
constexpr int kMostSecants = 8;        // for the amount of a phase
constexpr double kOtherAmount = 0.1;   // from the first amount to the second
constexpr double kNewtonEvery = 1e-2;  // shrinking of a bracket with a jump between two attempts
// Of a jump: relative width of a bracket that holds it, in which no phase comes as far as the value of its sides is
// off; relative distance from the place, and part of the bracket.
constexpr double kJumpWidth = 1e-7, kLeastAside = 4e-8, kMostAside = 0.25;

/*
 * The same without slopes of the value: an amount is the unknown, and equal fugacities say what temperature and
 * phases go with it. Along a line where temperature stands still the value is linear in the amount. The phase
 * is the last one, which is there on one side of the bracket only.
 */
bool solve_for_amount(EnergySearch& q, double T) {
  Specified& s = q.s;
  const Specify of_value = s.what;
  s.what = Specify::vapour;
  s.T = T;
  s.P = q.call.P;
  s.vapour = q.e.p.count - 1;
  double W = q.e.p.amount[s.vapour], last_W = W, last_off = 0.0;
  bool solved = false;
  for (int k = 0; k < kMostSecants && !solved; ++k) {
    s.wanted = W;
    const Found found = solve_specified(s, q.status);
    if (found == Found::no || found == Found::model) break;
    q.status = set_conditions(s.T, s.P, q.e);
    if (q.status != KV_OK || !evaluate(q)) break;
    solved = found == Found::yes && std::fabs(off(q)) <= kReached * size_of_value(q);
    const double slope = (off(q) - last_off) / (W - last_W);
    last_W = W;
    last_off = off(q);
    W = k == 0 ? W + (W < 0.5 ? kOtherAmount : -kOtherAmount) : std::clamp(W - off(q) / slope, -1.0, 2.0);
    if (!std::isfinite(W)) break;
  }
  s.what = of_value;
  s.wanted = q.call.wanted;
  return solved;
}

}  // namespace

bool solve_between_sides(EnergySearch& q) {
  if (!q.low.known || !q.high.known) return false;
  const double width = (q.bracket.high - q.bracket.low) / q.bracket.high;
  const bool analytic = q.caloric.analytic();
  // Between sides of four phases, too, an attempt is worth its work when the bracket has shrunk.
  const double shrunk = !analytic ? kNarrow : other_three(q) ? kNewtonEvery : 2.0;
  if (!(width <= shrunk * q.attempted)) return false;
  q.attempted = width;
  const double part = q.bracket.f_low / (q.bracket.f_low - q.bracket.f_high);
  if (!join_phases(q.e.m.n, q.e.m.ld, q.e.z, q.low.p, q.high.p, part, q.joined)) return false;
  const double T = 0.5 * (q.bracket.low + q.bracket.high);
  for (int without = q.joined.count == kRoom ? 0 : kMostPhases; without < kRoom; ++without) {
    copy_phases(q.joined, q.e.p, q.e.m.ld);
    if (without < q.joined.count) drop_phase(q.e.p, without);
    if ((analytic ? solve_at_phases(q, T) : solve_for_amount(q, T)) && confirm(q)) return true;
  }
  return false;
}

bool other_three(const EnergySearch& q) {
  constexpr double kOther = 1e-3;
  const Phases &a = q.low.p, &b = q.high.p;
  if (!(q.low.known && q.high.known && q.low.fourth && q.high.fourth)) return false;
  for (int j = 0; j < a.count; ++j) {
    double nearest = 1.0;
    for (int k = 0; k < b.count; ++k) {
      double apart = 0.0;
      for (int i = 0; i < q.e.m.n; ++i) apart = std::max(apart, std::fabs(a.x[j][i] - b.x[k][i]));
      nearest = std::min(nearest, apart);
    }
    if (nearest > kOther) return true;
  }
  return false;
}

bool beside_jump(const EnergySearch& q, double& T, bool& low) {
  if (!other_three(q) || !q.caloric.analytic()) return false;
  const KeptState &a = q.low, &b = q.high;
  const double there = flash::crossing_of(a.gibbs, a.T, b.gibbs, b.T);
  if (!q.bracket.inside(there)) return false;
  const double down = there - a.T, rest = b.T - there, most = kMostAside * (b.T - a.T);
  low = down > rest;
  const double aside =
      std::min(std::max(q.aside * (down * down + rest * rest) / there, kLeastAside * there), most);
  T = there + (low ? -aside : aside);
  return q.bracket.inside(T);
}

bool is_jump(const EnergySearch& q) {
  const flash::EnergyBracket& b = q.bracket;
  return other_three(q) && b.closed() && b.high - b.low <= kJumpWidth * b.high &&
         std::min(-b.f_low, b.f_high) > flash::kFarOff * size_of_value(q);
}

}  // namespace kestrune::flash3
