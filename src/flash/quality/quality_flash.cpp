// The way to a point of given vapour fraction, section 8 of docs/method.md. First the estimate, where there
// is one; then Wilson's coefficients, by bisection, one or two substitutions and Newton's method. Where that
// ends nowhere, on an unstable point or on a branch that is not the first one, the unknown is bisected with
// the coefficients of the equation of state; a dew point is tried from water about to condense; and at last
// the line is followed from low pressure. Whatever is found leaves through accept().

#include "flash/quality/quality_flash.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "flash/feed.hpp"
#include "flash/pure/pure_saturation.hpp"
#include "flash/quality/quality_state.hpp"
#include "flash/trace_flash.hpp"
#include "flash/wet/free_water.hpp"
#include "flash/wet/wet_quality.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

constexpr double kDefaultPressure = 1.0;
constexpr double kWilsonTolerance = 1e-4, kEquationTolerance = 1e-12;  // on F^2
constexpr double kNoBracketHigh = 10000.0;                             // K or atm, before there is a bracket
// Successive substitutions before Newton's method; further starts where what was found is not accepted.
constexpr int kSubstitutions = 2, kRestarts = 3;
constexpr double kNotInWater = 9.0;  // ln K of what water hardly dissolves, to start with
// How far an estimate may be from the answer of its branch: changes of ln T and ln P.
constexpr double kNearT = 0.1, kNearP = 0.5;
// Of a start that has taken the place of the estimate.
constexpr double kNearReplaced = 0.02;
constexpr double kCriticalNear = 0.02;  // either, beside a critical point
// Pressures at which the line is begun, in parts of the pressure that is asked for.
constexpr double kStartParts[] = {0.3, 0.03, 1e-3};

constexpr double kColdest = 1.0, kHottest = 9000.0, kThinnest = 1e-40, kDensest = 1e5;
bool within_range(bool of_T, double value) {
  return of_T ? value > kColdest && value < kHottest : value > kThinnest && value < kDensest;
}

double F_of(const Quality& q, const double* K) {
  double F = 0.0;
  for (int i = 0; i < q.line.n; ++i) F += q.line.z[i] * (1.0 - K[i]) / (1.0 + q.line.W * (K[i] - 1.0));
  return F;
}

// Values of the unknown between which F changes its sign, and the next one to look at.
struct Bracket {
  double low = 0.0, high = kNoBracketHigh, last = 0.0, last_F = 0.0;
  bool closed = false, any = false;

  // F > 0: the K-values are too small (T too low, P too high).
  double next(double value, double F, bool of_T) {
    if (any && !closed && (F > 0.0) != (last_F > 0.0)) {
      closed = true;
      low = std::min(last, value);
      high = std::max(last, value);
    } else if (closed) {
      ((F > 0.0) == of_T ? low : high) = value;
    }
    any = true;
    last = value;
    last_F = F;
    if (closed) return 0.5 * (low + high);
    const double step = of_T ? 1.15 : 3.0;
    return (F > 0.0) == of_T ? value * step : value / step;
  }
};

// First stage: Wilson's coefficients.
bool wilson_stage(Quality& q, double& value) {
  Bracket b;
  value = q.start;
  while (q.count++ <= q.settings.ITEMAX) {
    const double T = q.of_T() ? value : q.call.given, P = q.of_T() ? q.call.given : value;
    wilson(T, P, *q.call.context.record, q.line.free_water, q.wilson_k, nullptr);
    const double F = F_of(q, q.wilson_k);
    if (F * F < kWilsonTolerance) return true;
    const double next = b.next(value, F, q.of_T());
    // Wilson's K go with 1/P: a bubble or dew pressure is one step away.
    const bool exact = !q.of_T() && q.boundary() && !b.closed;
    value = !exact ? next : q.line.W == 0.0 ? value * (1.0 - F) : value / (1.0 + F);
    if (!within_range(q.of_T(), value) || (b.closed && b.high - b.low < 1e-12 * b.high)) break;
  }
  value = std::clamp(value, q.of_T() ? 20.0 : 1e-12, q.of_T() ? 3000.0 : 1000.0);
  return false;
}

// Second stage: the equation of state, compositions following the temperature.
bool equation_stage(Quality& q, double& value) {
  Bracket b;
  QualityLine& line = q.line;
  LinePoint& p = q.point;
  line.stable_roots = false;
  while (q.count++ <= q.settings.ITEMAX) {
    p.X[q.unknown] = std::log(value);
    if (!compositions(line, p, DBL_MAX)) return false;
    q.status = line_model(line, temperature(line, p), pressure(line, p));
    if (q.status != KV_OK) return false;
    q.status = k_values(line.m, p.x, p.y, q.spare, {}, line.d_x);
    if (q.status != KV_OK) return false;
    for (int i = 0; i < line.n; ++i)
      p.X[i] = std::clamp(support::fast_log(q.spare[i]), -kLargestLogK, kLargestLogK);
    const double F = F_of(q, q.spare);
    p.Zx = p.Zy = 0.0;
    if (one_phase(line, p)) return false;
    if (F * F < kEquationTolerance) return true;
    value = b.next(value, F, q.of_T());
    if (!within_range(q.of_T(), value)) return false;
    if (b.closed && b.high - b.low < 1e-10 * b.high) return true;
  }
  return true;
}

void start_from_wilson(Quality& q, double value) {
  const double T = q.of_T() ? value : q.call.given, P = q.of_T() ? q.call.given : value;
  wilson(T, P, *q.call.context.record, q.line.free_water, q.wilson_k, nullptr);
  for (int i = 0; i < q.line.n; ++i) q.point.X[i] = support::fast_log(q.wilson_k[i]);
  q.point.X[q.unknown] = std::log(value);
}

/*
 * Whether the two phases begin where they do first: at a pressure the dew point with one phase above it and
 * the bubble point with one phase below it in temperature, at a temperature the other way round in pressure.
 * Told by the slope of the feed's tangent-plane distance to the incipient phase at the point, (29) of
 * docs/method.md.
 */
bool is_regular(const Quality& q) {
  if (!q.boundary()) {
    if (close_phases(q)) return false;  // rounding beside a critical point
    const double slope = slope_with_fraction(q.line, q.point, q.unknown);
    return q.of_T() ? slope > 0.0 : slope < 0.0;
  }
  const bool dew = q.line.W == 1.0;
  const double* incipient = dew ? q.point.x : q.point.y;
  const double* of_x = q.of_T() ? q.line.t_x : q.line.p_x;
  const double* of_y = q.of_T() ? q.line.t_y : q.line.p_y;
  double slope = 0.0;
  for (int i = 0; i < q.line.n; ++i) slope += incipient[i] * (of_x[i] - of_y[i]);
  return q.of_T() ? slope > 0.0 : slope < 0.0;
}

// Newton from q.point, after some substitutions. True: converged.
bool solve_from_point(Quality& q, int substitutions, bool stable_roots) {
  QualityLine& line = q.line;
  q.point.X[q.given] = std::log(q.call.given);
  line.stable_roots = false;
  for (int k = 0; k < substitutions; ++k)
    if (!substitute(line, q.point, q.unknown, q.status)) return false;
  line.stable_roots = stable_roots;
  const int limit = std::min(kNewtonLimit, q.settings.ITEMAX);
  const Solved solved =
      solve_point(line, q.point, q.given, std::log(q.call.given), limit, false, q.status, q.settings.CRIT);
  q.regular = solved == Solved::yes && is_regular(q);
  q.walked = false;
  return solved == Solved::yes;
}

// Whether the line still rises in P with T here: the branch that is reached first from low pressure.
bool rising(const Quality& q) {
  return q.point.slope[q.line.T_index()] * q.point.slope[q.line.P_index()] > 0.0;
}

// Through the gate, and on from what splits off where the feed is not stable.
bool settle(Quality& q, bool solved) {
  for (int k = 0; k < kRestarts && solved; ++k) {
    const Verdict verdict = accept(q);
    if (verdict == Verdict::good) return true;
    if (verdict != Verdict::unstable) return false;
    const double sign = q.line.W == 0.0 ? 1.0 : -1.0;
    if (!q.have_unstable) copy_point(q.line, q.point, q.unstable);
    q.have_unstable = true;
    if (!q.boundary()) return false;
    for (int i = 0; i < q.line.n; ++i)
      q.point.X[i] = std::clamp(sign * q.trial[i], -kLargestLogK, kLargestLogK);
    solved = solve_from_point(q, k == 0 ? 0 : kSubstitutions, true);
  }
  return false;
}

// For where nothing better is found.
bool keep_other(Quality& q) {
  copy_point(q.line, q.point, q.other);
  q.have_other = true;
  return false;
}

// A settled point on the branch that is reached first, or any one near. One on another branch is kept.
bool settle_on_branch(Quality& q, bool solved, bool near) {
  if (!settle(q, solved)) return false;
  return near || (q.regular && !q.dense) || keep_other(q);
}

// A point of the line at a low pressure, below what is given unless that lies behind a critical point or is
// looked for there only: its temperature by Wilson's coefficients.
bool solve_at_low_pressure(Quality& q, double P, bool exchanged) {
  QualityLine& line = q.line;
  QualityCall low = q.call;
  low.find = Find::temperature;
  low.given = P;
  Quality at_low(low, line, q.settings, q.trace);
  at_low.point = q.point;
  at_low.wilson_k = q.wilson_k;
  at_low.start = kDefaultTemperature;
  double value = 0.0;
  wilson_stage(at_low, value);
  start_from_wilson(at_low, value);
  const bool solved = solve_from_point(at_low, kSubstitutions + 2, false);
  q.point = at_low.point;
  const bool below = q.of_T() || exchanged || q.only_near || q.point.X[line.T_index()] < std::log(q.call.given);
  return solved && below;
}

// A point that a walk has met, as one of the line that is asked for.
bool take_met_point(void* who, const LinePoint& met) {
  Quality& q = *static_cast<Quality*>(who);
  QualityLine& line = q.line;
  const double W = line.W;
  if (q.only_near && std::fabs(met.X[q.unknown] - q.estimate) > kCriticalNear) return false;
  copy_point(line, met, q.point);
  if (q.exchanged) exchange_phases(line, q.point);
  q.walked = true;
  const bool good = settle(q, true) && (!q.dense || keep_other(q));
  q.walked = false;
  line.W = W;
  line.stable_roots = true;
  return good;
}

// From a point of low pressure along the line; or along that of 1 - W and over the critical point.
bool follow_from_low_pressure(Quality& q, double value, bool beyond) {
  QualityLine& line = q.line;
  const double W = line.W;
  // Well below what is asked for, by Wilson's coefficients where that is a temperature.
  const double P = q.of_T() ? q.call.given : value;
  bool found = false;
  for (const double part : kStartParts) {
    line.W = beyond ? 1.0 - W : W;
    if (!solve_at_low_pressure(q, part * P, beyond) || !rising(q) || close_phases(q)) continue;
    q.exchanged = beyond;
    copy_point(line, q.point, q.walker);
    found = follow_line(line, q.walker, q.given, std::log(q.call.given), beyond, {take_met_point, &q},
                        q.status) == Solved::yes;
    break;
  }
  line.W = W;
  return found;
}

bool walk_for_point(Quality& q, double value) {
  return follow_from_low_pressure(q, value, false) || follow_from_low_pressure(q, value, true);
}

StatusCode write_point(Quality& q, StatusCode status) {
  const QualityCall& c = q.call;
  *c.unknown = std::exp(q.point.X[q.unknown]);
  write_split(q.line.n, q.point.x, q.point.y, c.x, c.y, c.K);
  return status;
}

StatusCode solve_pure(Quality& q, int j) {
  q.point.X[q.given] = std::log(q.call.given);
  const StatusCode status = pure_saturation(q.line, q.point, j, q.unknown);
  if (status != KV_OK) return status;
  std::copy_n(q.line.z, q.line.n, q.point.x);
  std::copy_n(q.line.z, q.line.n, q.point.y);
  const Verdict verdict = accept_pure(q, j);
  if (verdict == Verdict::model) return q.status;
  return verdict == Verdict::good ? write_point(q, KV_OK) : StatusCode{KV_NO_SATURATION};
}

// Water about to condense alone: where its vapour pressure is its partial pressure. False without water.
bool start_from_water(Quality& q) {
  const MixtureRecord& m = *q.call.context.record;
  const int w = eos::find_water_family(m);
  if (w < 0 || !(q.line.z[w] > 0.0)) return false;
  double T = q.call.given, P = q.call.given;
  if (q.of_T()) {
    double low = 150.0, high = 1000.0;
    for (int k = 0; k < 40; ++k) {
      T = 0.5 * (low + high);
      (eos::water_vapour_pressure(T).value < q.line.z[w] * P ? low : high) = T;
    }
  } else {
    P = eos::water_vapour_pressure(T).value / q.line.z[w];
  }
  for (int i = 0; i < q.line.n; ++i) q.point.X[i] = kNotInWater;
  q.point.X[w] = support::fast_log(q.line.z[w]);
  q.point.X[q.unknown] = std::log(q.of_T() ? T : P);
  return true;
}

bool usable_estimate(const Quality& q) {
  const QualityCall& c = q.call;
  if (c.start == Start::cold || !(*c.unknown > 0.0 && within_range(q.of_T(), *c.unknown))) return false;
  double difference = 0.0;
  for (int i = 0; i < q.line.n; ++i) difference = std::max(difference, std::fabs(c.x[i] - c.y[i]));
  return usable_compositions(q.line.n, c.x, c.y) && difference > 1e-6;
}

void start_from_estimate(Quality& q, double start) {
  const QualityCall& c = q.call;
  start_from_wilson(q, start);
  for (int i = 0; i < q.line.n; ++i)
    if (c.x[i] > 0.0 && c.y[i] > 0.0)
      q.point.X[i] = std::clamp(support::fast_log(c.y[i] / c.x[i]), -kLargestLogK, kLargestLogK);
}

// Whether the ln K of the point are about those of the estimate: of two temperatures that a pressure belongs
// to, as about the highest one of a line, only one has them.
bool like_estimate(const Quality& q) {
  constexpr double kMoved = 0.2;  // in parts of the largest
  const QualityCall& c = q.call;
  double moved = 0.0, largest = 0.0;
  for (int i = 0; i < q.line.n; ++i) {
    if (!(c.x[i] > 0.0 && c.y[i] > 0.0)) continue;
    const double log_k = support::fast_log(c.y[i] / c.x[i]);
    moved = std::max(moved, std::fabs(q.point.X[i] - log_k));
    largest = std::max(largest, std::fabs(log_k));
  }
  return moved <= kMoved * largest;
}

/*
 * From the phases of the estimate and a start of the unknown, on its branch: its point, or from the estimate's
 * own unknown the one that is reached first when it leads elsewhere. An estimate beside a critical point, where
 * Newton's method may not come to its end, is looked for along the line.
 */
bool from_estimate(Quality& q, double start) {
  start_from_estimate(q, start);
  q.estimate = std::log(*q.call.unknown);
  q.point.Zx = q.point.Zy = 0.0;
  const bool critical = close_phases(q);
  const bool solved = solve_from_point(q, 0, true);
  const bool own = start == *q.call.unknown;
  const double moved = std::fabs(q.point.X[q.unknown] - q.estimate);
  const bool near = own ? moved < (q.of_T() ? kNearT : kNearP) : moved < kNearReplaced && like_estimate(q);
  if (settle_on_branch(q, solved && (near || own), near)) return true;
  if (!critical || !own) return false;
  q.only_near = true;
  const bool found = walk_for_point(q, start);
  q.only_near = false;
  return found;
}

StatusCode solve(Quality& q) {
  q.start = set_up_quality(q.call, q.line.W, q.settings, q.trace);
  const int j = single_component_of_feed(q.line.n, q.call.z, pure_tolerance(*q.call.context.record));
  if (j >= 0) {
    // With a wide tolerance there may be enough of the others to make two compositions of it.
    const StatusCode status = solve_pure(q, j);
    if (status != KV_NO_SATURATION || q.line.z[j] == 1.0) return status;
  }
  if (usable_estimate(q)) {
    // A temperature that was replaced is the start; where it leads away from the estimate, that one itself is.
    const double given = *q.call.unknown;
    if (from_estimate(q, q.start) || (q.start != given && from_estimate(q, given)))
      return write_point(q, KV_OK);
  }
  double value = 0.0;
  wilson_stage(q, value);
  const double by_wilson = value;
  const bool had_other = q.have_other;
  start_from_wilson(q, value);
  if (settle_on_branch(q, solve_from_point(q, q.line.W < 0.5 ? kSubstitutions : 1, false), false))
    return write_point(q, KV_OK);
  if (q.have_other == had_other) {
    start_from_wilson(q, value);
    const bool started = equation_stage(q, value);
    if (settle_on_branch(q, started && solve_from_point(q, 0, true), false)) return write_point(q, KV_OK);
  }
  if (q.line.W > 0.5 && start_from_water(q) &&
      settle_on_branch(q, solve_from_point(q, kSubstitutions + 1, true), false))
    return write_point(q, KV_OK);
  if (q.call.walks && walk_for_point(q, by_wilson)) return write_point(q, KV_OK);
  if (q.have_other) {
    copy_point(q.line, q.other, q.point);
    return write_point(q, KV_OK);
  }
  // A search that left the range of the model found nothing; what the model refuses everywhere is said.
  const bool refused = q.status != KV_OK && q.status != KV_NOT_FINITE && q.status != KV_NO_ROOT;
  if (!q.have_unstable) return refused ? q.status : StatusCode{KV_NO_SATURATION};
  copy_point(q.line, q.unstable, q.point);
  return write_point(q, KV_UNSTABLE_POINT);
}

StatusCode set_up(const QualityCall& call, support::Arena& arena) {
  Settings settings = copy_settings(call.context);
  support::TraceWriter trace(settings.trace, settings.trace_unit);
  QualityLine line;
  line.W = std::clamp(call.W, 0.0, 1.0);
  line.context = call.context;
  line.routines = call.routines;
  line.free_water = call.free_water;
  line.trace = &trace;
  open_line(arena, line);
  Quality q(call, line, settings, trace);
  line.unknown = q.unknown;
  double* z = arena.zeros(line.ld);
  if (!normalise_feed(line.n, call.z, z)) return KV_COMPOSITION;
  line.z = z;
  for (LinePoint* p : {&q.point, &q.other, &q.unstable, &q.walker}) take_point(arena, line, *p);
  for (double** a : {&q.wilson_k, &q.trial, &q.spare}) *a = arena.zeros(line.ld);
  seal_line(line);
  const StatusCode status = solve(q);
  if (call.counts != nullptr) {
    *call.counts = line.m.counts;
    call.counts->iterations = line.passes;
  }
  return status;
}

// The start with its phases: the estimate, or those of Wilson's coefficients.
void trace_start(const QualityCall& c, double W, double start, support::TraceWriter& trace) {
  const bool of_T = c.find == Find::temperature;
  const int n = c.context.record->count;
  if (c.start != Start::cold && usable_compositions(n, c.x, c.y))
    return trace_quality_start(trace, of_T, start, n, c.x, c.y);
  support::with_arena<0, 6>(n, [&](support::Arena& arena) {
    const std::size_t ld = support::padded(n);
    double *const z = arena.zeros(ld), *const x = arena.zeros(ld), *const y = arena.zeros(ld);
    normalise_feed(n, c.z, z);
    wilson(of_T ? start : c.given, of_T ? c.given : start, *c.context.record, c.free_water, y, nullptr);
    for (int i = 0; i < n; ++i) {
      x[i] = z[i] / (1.0 + W * (y[i] - 1.0));
      y[i] *= x[i];
    }
    trace_quality_start(trace, of_T, start, n, x, y);
    return KV_OK;
  });
}

}  // namespace

double set_up_quality(const QualityCall& c, double W, Settings& settings, support::TraceWriter& trace) {
  const bool of_T = c.find == Find::temperature;
  double start = *c.unknown;
  if (!within_range(of_T, start)) start = of_T ? kDefaultTemperature : kDefaultPressure;
  if (of_T) start = starting_temperature(kModelOptions, *c.context.record, c.z, start);
  const bool cold = c.start == Start::cold;
  apply_quality_settings(kModelOptions, W, cold, settings);
  trace_quality_header(trace, of_T, W, cold ? 1 : 0, settings);
  if (trace) trace_start(c, W, start, trace);
  return start;
}

StatusCode quality_flash(const QualityCall& call) {
  if (call.free_water && has_free_water(*call.context.record, call.z) &&
      single_component_of_feed(call.context.record->count, call.z, pure_tolerance(*call.context.record)) < 0)
    return wet_quality(call);
  return support::with_arena<8, 160>(call.context.record->count,
                                     [&](support::Arena& arena) { return set_up(call, arena); });
}

}  // namespace kestrune::flash
