// Flashes at T and P close a bracket around the unknown: the gas is more the higher the temperature and the
// lower the pressure. Newton's method on the whole liquid, from the states at the ends of the bracket, finds
// the point, also where the unknown stands still while the gas grows (gas, one hydrocarbon liquid and water of
// two components); and the gate of these flashes has the last word.

#include "flash/wet/wet_quality.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/feed.hpp"
#include "flash/isothermal/isothermal.hpp"
#include "flash/quality/quality_state.hpp"
#include "flash/trace_flash.hpp"
#include "flash/wet/free_water.hpp"
#include "flash/wet/wet_flash.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kLowestT = 100.0, kHighestT = 1200.0, kLowestP = 1e-8, kHighestP = 1e4;  // K, atm: the range
constexpr double kFirstStep = 0.01, kLongestT = 0.05, kLongestP = 0.3, kLonger = 1.7;  // in ln of the unknown
constexpr double kAllGasT = 800.0, kAllGasP = 0.01;   // where that search begins
constexpr int kMostStates = 120, kMostHalvings = 60;  // outwards from Wilson's guess; of a bracket
constexpr double kNoWidth = 1e-8;  // of a bracket, in ln of the unknown: a fluid changes its name there
constexpr double kEvenT = 0.03, kEvenP = 0.2;  // steps of a search from the gas, in ln of the unknown
constexpr double kLeastPart = 0.1;             // of such a step
constexpr double kJumpWidth = 1e-6;            // in ln of the unknown
constexpr double kFarOff = 10.0;               // such steps from the point, as the gas changes: they are longer
constexpr double kNearFraction = 0.15;         // of gas, from which Newton's method is tried on the way
constexpr int kMostEnds = 8;                   // halvings of a step towards the end of two fluids

// A state of the flash at T and P. Arrays [ld].
struct WetPoint {
  double u = 0.0;  // ln of the unknown
  double beta = 0.0;
  double *x = nullptr, *y = nullptr, *K = nullptr;
  bool known = false;
};

struct WetSearch {
  explicit WetSearch(const QualityCall& c)
      : call(c), silent(c.context.silent()), settings(copy_settings(c.context)) {}
  const QualityCall& call;
  QualityLine line;
  LinePoint point, unstable;
  WetPoint little, much;  // the nearest states with too little and too much gas
  WetPoint here;
  eos::Context silent;  // of the flashes inside
  Settings settings;
  double W = 0.0;
  bool of_T = true, have_unstable = false;
  bool cut = false;   // here: a third phase is missing
  double jump = 0.0;  // ln of the unknown where one pair of phases gave way to another
  bool have_jump = false;
  StatusCode status = KV_OK;  // that ends the flash
  Counts counts;

  double T(double u) const { return of_T ? std::exp(u) : call.given; }
  double P(double u) const { return of_T ? call.given : std::exp(u); }
  int given() const { return of_T ? line.P_index() : line.T_index(); }
  int unknown() const { return of_T ? line.T_index() : line.P_index(); }
};

IsothermalCall call_at(WetSearch& q, double u, double& beta, double* x, double* y, double* K) {
  IsothermalCall c{{q.line.z, q.silent, q.call.routines, true}, q.T(u), q.P(u), &beta, x, y, K};
  c.counts = &q.counts;
  return c;
}

// Too much gas (above 0) or too little; at the ends a phase that is there at all decides.
double excess(const WetSearch& q, const WetPoint& p) {
  if (q.W == 0.0) return p.beta > 0.0 ? 1.0 : -1.0;
  if (q.W == 1.0) return p.beta < 1.0 ? -1.0 : 1.0;
  return p.beta - q.W;
}

void copy_state(const WetSearch& q, const WetPoint& from, WetPoint& to) {
  to.u = from.u;
  to.beta = from.beta;
  to.known = true;
  std::copy_n(from.x, q.line.ld, to.x);
  std::copy_n(from.y, q.line.ld, to.y);
  std::copy_n(from.K, q.line.ld, to.K);
}

// The state at u, into q.here and the side that it is on. False: there was no answer.
bool look_at(WetSearch& q, double u) {
  q.here.u = u;
  ThirdPhase third;
  IsothermalCall call = call_at(q, u, q.here.beta, q.here.x, q.here.y, q.here.K);
  call.third = &third;
  const StatusCode status = wet_flash(call);
  q.cut = third.found;
  q.line.m.counts.fugacities += q.counts.fugacities;
  q.here.known = status == KV_OK || status == KV_SINGLE_PHASE;
  if (!q.here.known) {
    if (status != KV_TRIVIAL && status != KV_NOT_FINITE && status != KV_NO_ROOT) q.status = status;
    return false;
  }
  WetPoint& side = excess(q, q.here) < 0.0 ? q.little : q.much;
  // Only what is nearer to the other side replaces what is known.
  const WetPoint& other = excess(q, q.here) < 0.0 ? q.much : q.little;
  if (side.known && other.known && std::fabs(u - other.u) >= std::fabs(side.u - other.u)) return true;
  copy_state(q, q.here, side);
  return true;
}

// The gate: the point that Newton's method has left.
bool accept(WetSearch& q) {
  LinePoint& p = q.point;
  double beta = q.W;
  bool good = false, third = false;
  // The amounts are what the feed and the larger phase say.
  const StatusCode status = check_wet(call_at(q, p.X[q.unknown()], beta, p.x, p.y, q.here.K), good, third);
  if (status != KV_OK) return false;
  if (third && !q.have_unstable) {
    copy_point(q.line, p, q.unstable);
    q.have_unstable = true;
  }
  return good;
}

// Newton's method from the coefficients K[n] at u.
bool solve_from(WetSearch& q, double u, const double* K) {
  LinePoint& p = q.point;
  for (int i = 0; i < q.line.n; ++i)
    p.X[i] = K[i] > 0.0 ? std::clamp(std::log(K[i]), -kLargestLogK, kLargestLogK) : 0.0;
  p.X[q.unknown()] = u;
  p.X[q.given()] = std::log(q.call.given);
  StatusCode status = KV_OK;
  q.line.stable_roots = false;
  const int limit = std::min(kNewtonLimit, q.settings.ITEMAX);
  return solve_point(q.line, p, q.given(), p.X[q.given()], limit, false, status, q.settings.CRIT) ==
             Solved::yes &&
         accept(q);
}

// From the coefficients of a state: of two phases its own.
bool solve_from(WetSearch& q, const WetPoint& p) {
  return p.known && solve_from(q, p.u, p.K);
}

// From the liquid of the one side and the gas of the other.
bool solve_between(WetSearch& q) {
  for (int i = 0; i < q.line.n; ++i) {
    const double x = q.little.x[i], y = q.much.y[i];
    q.here.K[i] = x > 0.0 && y > 0.0 ? y / x : x > 0.0 ? kSmallestK : kLargestK;
  }
  return solve_from(q, 0.5 * (q.little.u + q.much.u), q.here.K);
}

// ln of the unknown by Wilson's coefficients, water's by its vapour pressure.
double by_wilson(WetSearch& q) {
  double low = std::log(q.of_T ? kLowestT : kLowestP), high = std::log(q.of_T ? kHighestT : kHighestP);
  for (int k = 0; k < 40; ++k) {
    const double u = 0.5 * (low + high);
    wilson(q.T(u), q.P(u), *q.call.context.record, true, q.here.K, nullptr);
    double F = 0.0;
    for (int i = 0; i < q.line.n; ++i)
      F += q.line.z[i] * (q.here.K[i] - 1.0) / (1.0 + q.W * (q.here.K[i] - 1.0));
    ((F < 0.0) == q.of_T ? low : high) = u;
  }
  return 0.5 * (low + high);
}

double least(const WetSearch& q) {
  return std::log(q.of_T ? kLowestT : kLowestP);
}
double most(const WetSearch& q) {
  return std::log(q.of_T ? kHighestT : kHighestP);
}

// Outwards from u, in the direction in which the gas changes as it should, until both sides are known. True
// with the point where a state on the way led to it.
bool bracket(WetSearch& q, double u, bool& solved) {
  q.little.known = q.much.known = solved = false;
  double step = kFirstStep, side = look_at(q, u) ? excess(q, q.here) : -1.0;
  if (q.status != KV_OK) return false;
  solved = q.here.known && q.here.beta > 0.0 && q.here.beta < 1.0 && solve_from(q, q.here);
  for (int k = 0; k < kMostStates && !solved && !(q.little.known && q.much.known); ++k) {
    u += (side < 0.0) == q.of_T ? step : -step;
    if (!(u > least(q) && u < most(q))) return false;
    step = std::min(kLonger * step, q.of_T ? kLongestT : kLongestP);
    if (look_at(q, u)) side = excess(q, q.here);
    if (q.status != KV_OK) return false;
  }
  return solved || (q.little.known && q.much.known);
}

// Where two fluids end before u + step, without the other side: their gas may have grown to all or dwindled,
// and what is left then have its name. By halves towards that end; true when the other side was met.
bool end_of_two(WetSearch& q, double u, double step) {
  for (int k = 0; k < kMostEnds; ++k) {
    step *= 0.5;
    if (!look_at(q, u + step)) return false;
    if (q.little.known && q.much.known) return true;
    if (q.here.beta > 0.0 && q.here.beta < 1.0) u += step;
  }
  return false;
}

// From where all is gas towards the liquid: the first place with too much gas on one side and too little on the
// other, or the point itself. u is the state before. While the gas hardly changes and
// nothing is missing, the steps are longer.
bool first_crossing(WetSearch& q, double& u, bool& solved) {
  const double even = q.of_T ? -kEvenT : kEvenP;
  bool looked = false;  // q.here is the state at u
  double step = even, next = 0.0;
  for (; u > least(q) && u < most(q); u += step, step = next) {
    q.little.known = q.much.known = false;
    if (looked) {
      copy_state(q, q.here, excess(q, q.here) < 0.0 ? q.little : q.much);
    } else if (!look_at(q, u)) {
      if (q.status != KV_OK) return false;
      step = next = even;
      continue;
    }
    next = even;
    const double beta = q.here.beta;
    const bool two = beta > 0.0 && beta < 1.0;
    solved = two && std::fabs(q.here.beta - q.W) < kNearFraction && solve_from(q, q.here);
    if (solved) return true;
    // Where there is no state that far, nearer ones may know.
    double part = 1.0;
    while (!look_at(q, u + part * step) && q.status == KV_OK && part > kLeastPart) part *= 0.5;
    if (q.status != KV_OK) return false;
    if (q.little.known && q.much.known) return true;
    const bool still_two = q.here.known && q.here.beta > 0.0 && q.here.beta < 1.0;
    looked = q.here.known && part == 1.0 && two == still_two;
    const bool slow = std::fabs(q.here.beta - q.W) > kFarOff * std::fabs(q.here.beta - beta);
    if (looked && slow && !q.cut) next = kLonger * even;
    if (two != still_two && q.here.known && (two ? end_of_two(q, u, step) : end_of_two(q, u + step, -step)))
      return true;
    if (q.status != KV_OK) return false;
  }
  return false;
}

// Whether the sides are two pairs of phases, of which one gives way to the other within this width.
bool is_jump(const WetSearch& q, double width) {
  const WetPoint &a = q.little, &b = q.much;
  const bool two = a.beta > 0.0 && a.beta < 1.0 && b.beta > 0.0 && b.beta < 1.0;
  return two && width <= kJumpWidth && other_phases(q.line.n, a.x, a.y, b.x, b.y);
}

// Between the sides, with Newton's method from both at every halving.
bool close_in(WetSearch& q) {
  // Where it ended before without the point.
  if (q.have_jump && (q.jump - q.little.u) * (q.jump - q.much.u) < 0.0) return false;
  for (int k = 0; k < kMostHalvings; ++k) {
    const double width = std::fabs(q.much.u - q.little.u);
    if (is_jump(q, width)) {
      q.jump = 0.5 * (q.much.u + q.little.u);
      q.have_jump = true;
      return solve_between(q);
    }
    if (solve_from(q, q.W < 0.5 ? q.much : q.little) || solve_from(q, q.W < 0.5 ? q.little : q.much))
      return true;
    if (width <= kNoWidth || k % 8 == 7) {
      if (solve_between(q)) return true;
      if (width <= kNoWidth) return false;
    }
    // Where both have two phases, by their fractions; else, and now and then, the middle.
    const double a = q.little.beta - q.W, b = q.much.beta - q.W;
    double part = k % 3 == 2 || !(q.W > 0.0 && q.W < 1.0) ? 0.5 : a / (a - b);
    part = std::clamp(part, 0.02, 0.98);
    const double u = q.little.u + part * (q.much.u - q.little.u);
    if (u == q.little.u || u == q.much.u) return solve_between(q);
    if (!look_at(q, u) && (q.status != KV_OK || !look_at(q, 0.5 * (q.little.u + q.much.u)))) return false;
  }
  return false;
}

StatusCode write_point(WetSearch& q, const LinePoint& p, StatusCode status) {
  const QualityCall& c = q.call;
  *c.unknown = std::exp(p.X[q.unknown()]);
  write_split(q.line.n, p.x, p.y, c.x, c.y, c.K);
  return status;
}

bool usable_estimate(const WetSearch& q) {
  const QualityCall& c = q.call;
  return c.start != Start::cold && *c.unknown > 0.0 && *c.unknown <= 1e6 &&
         usable_compositions(q.line.n, c.x, c.y);
}

StatusCode solve(WetSearch& q, support::TraceWriter& trace) {
  const QualityCall& c = q.call;
  const double start = set_up_quality(c, q.W, q.settings, trace);
  if (usable_estimate(q)) {
    for (int i = 0; i < q.line.n; ++i)
      q.here.K[i] = c.x[i] > 0.0 && c.y[i] > 0.0 ? c.y[i] / c.x[i] : c.y[i] > 0.0 ? kLargestK : 1.0;
    if (solve_from(q, std::log(start), q.here.K)) return write_point(q, q.point, KV_OK);
  }
  // From Wilson's guess; then from all gas, past places where a fluid only changes its name.
  double u = by_wilson(q);
  bool solved = false;
  if (bracket(q, u, solved) && (solved || close_in(q))) return write_point(q, q.point, KV_OK);
  u = std::log(q.of_T ? kAllGasT : kAllGasP);
  while (q.status == KV_OK && first_crossing(q, u, solved)) {
    if (solved || close_in(q)) return write_point(q, q.point, KV_OK);
    u += q.of_T ? -kEvenT : kEvenP;
  }
  if (q.status != KV_OK) return q.status;
  return q.have_unstable ? write_point(q, q.unstable, KV_UNSTABLE_POINT) : StatusCode{KV_NO_SATURATION};
}

}  // namespace

StatusCode wet_quality(const QualityCall& call) {
  return support::with_arena<8, 160>(call.context.record->count, [&](support::Arena& arena) -> StatusCode {
    WetSearch q(call);
    support::TraceWriter trace(q.settings.trace, q.settings.trace_unit);
    q.W = std::clamp(call.W, 0.0, 1.0);
    q.of_T = call.find == Find::temperature;
    QualityLine& line = q.line;
    line.W = q.W;
    line.context = call.context;
    line.routines = call.routines;
    line.free_water = true;
    line.trace = &trace;
    open_line(arena, line);
    line.unknown = q.unknown();
    double* const z = arena.zeros(line.ld);
    if (!normalise_feed(line.n, call.z, z)) return KV_COMPOSITION;
    line.z = z;
    for (LinePoint* p : {&q.point, &q.unstable}) take_point(arena, line, *p);
    for (WetPoint* p : {&q.little, &q.much, &q.here})
      for (double** a : {&p->x, &p->y, &p->K}) *a = arena.zeros(line.ld);
    seal_line(line);
    const StatusCode status = solve(q, trace);
    if (call.counts != nullptr) {
      *call.counts = line.m.counts;
      call.counts->iterations = line.passes;
    }
    return status;
  });
}

}  // namespace kestrune::flash
