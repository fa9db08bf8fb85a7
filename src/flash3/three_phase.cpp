// The driver of three phases at temperature and pressure: estimate, the host's own flashes, free water; and
// the names and marks of the phases that are written out.

#include "flash3/three_phase.hpp"

#include <algorithm>
#include <cmath>

#include "flash/feed.hpp"
#include "flash/settings.hpp"
#include "flash/wet/free_water.hpp"
#include "flash3/liquid_liquid.hpp"
#include "flash3/trace_phases.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash3 {
namespace {

using flash::kLargestK;

// Part of the feed from which on a liquid of a split counts as one beside the other.
constexpr double kLeastLiquid = 1e-6;

// Of a component that is present, in a phase that is given to start from.
constexpr double kLeastFraction = 1e-300;

using FlashRoutine = StatusCode(KV_CALL*)(double, double, const double*, MixtureRecord*, const ModelRoutines*,
                                          int32_t, double*, double*, double*, double*);

FlashRoutine host_flash(const ThreePhaseCall& c, int entry) {
  return flash::host_routine<FlashRoutine>(c.routines, entry);
}

// Amounts of A, B and vapour that an estimate stands for: where beta is more than the vapour leaves, it is the
// part of the liquids that is A; the mark of one liquid is one of these.
struct Amounts {
  double of[kMostPhases];
  Amounts(double beta, double V)
      : of{beta + V >= 1.0 ? (1.0 - V) * beta : beta,
           beta + V >= 1.0 ? (1.0 - V) * (1.0 - beta) : 1.0 - beta - V, V} {}
};

// The phases that were found, beside a status the last ones that were seen.
StatusCode write_found(Equilibrium& e, StatusCode status, const ThreePhaseResult& out) {
  const bool seen = status == KV_FOURTH_PHASE || status == KV_NOT_CONVERGED || status == KV_RELAXATION ||
                    status == KV_TRIVIAL || status == KV_TRIVIAL_LV;
  if (status != KV_OK && !(seen && e.p.count > 0)) return status;
  const StatusCode written = write_phases(e, out);
  return status != KV_OK ? status : written;
}

// From the phases in e.p; a start that leads to no answer is as good as none.
StatusCode solve_from_phases(Equilibrium& e) {
  const StatusCode status = find_equilibrium_from(e);
  return status == KV_OK || status > KV_STATUS_CALL_BLOCK ? status : find_equilibrium(e);
}

// ---- the host's own flashes ----
// What they return is a start: the answer is the library's, tested like any other.

// A fraction of the second phase and two compositions [n].
struct HostSplit {
  double part = 0.0, *first = nullptr, *second = nullptr, *K = nullptr;
  bool failed = false;  // its status was not one to go on with; 95 says that there is one phase
};

/*
 * A flash of the host for the feed z[n], as a cold start: nothing usable stands in its results. False: what it
 * left is no fraction with compositions of the phases that have a part in it.
 */
bool call_flash(FlashRoutine routine, const ThreePhaseCall& c, const double* z, HostSplit& s) {
  const int n = c.context.record->count;
  s.part = 0.0;
  for (double* a : {s.first, s.second, s.K}) std::fill_n(a, n, 0.0);
  const StatusCode status =
      routine(c.T, c.P, z, c.context.record, c.routines->record, 0, &s.part, s.first, s.second, s.K);
  s.failed = !support::has_values(status) && status != KV_SINGLE_PHASE;
  if (s.part == 0.0 || s.part == 1.0) return true;
  return s.part > 0.0 && s.part < 1.0 && flash::usable_compositions(n, s.first, s.second);
}

// The answer, doubtful where the liquid-vapour flash of the host had a status.
StatusCode doubt(bool failed, StatusCode status) {
  if (!failed) return status;
  return status == KV_LV_ANSWER   ? KV_LV_ANSWER_DOUBTFUL
         : status == KV_LL_ANSWER ? KV_LL_ANSWER_DOUBTFUL
                                  : status;
}

// A liquid-vapour flash that failed by itself leaves nothing to start from; one phase is no failure.
StatusCode no_start(StatusCode status) {
  if (status == KV_SINGLE_PHASE) return KV_OK;
  return status == KV_NOT_CONVERGED || status == KV_RELAXATION || status == KV_TRIVIAL ? KV_NO_START : status;
}

// The liquid-vapour flash of the feed, the host's or the library's.
StatusCode liquid_vapour(const ThreePhaseCall& c, Equilibrium& e, HostSplit& lv) {
  if (const FlashRoutine routine = host_flash(c, KV_ROUTINE_LV_FLASH))
    return call_flash(routine, c, e.z, lv) ? KV_OK : KV_NO_START;
  flash::IsothermalCall call{{e.z, c.context, c.routines}, c.T, c.P, &lv.part, lv.first, lv.second, lv.K};
  call.model = &e.m;
  return no_start(flash::isothermal_flash(call));
}

// The split of the liquid, the host's or the library's; one that the library has not found is none, one that
// the host has not found is the end.
StatusCode liquid_liquid(const ThreePhaseCall& c, const double* liquid, double V, HostSplit& ll) {
  if (const FlashRoutine routine = host_flash(c, KV_ROUTINE_LL_FLASH)) {
    const bool usable = call_flash(routine, c, liquid, ll);
    const double beta = (1.0 - V) * ll.part;
    // One liquid: the composition of the other is not looked at.
    const bool one = (ll.part >= 0.0 && beta < kLeastLiquid) || (beta > 1.0 - kLeastLiquid && ll.part <= 1.0);
    if (one) ll.part = 0.0;
    return (usable || one) && !ll.failed ? KV_OK : KV_NO_START;
  }
  const StatusCode status =
      liquid_liquid_flash({{liquid, c.context, c.routines}, c.T, c.P, &ll.part, ll.first, ll.second, ll.K});
  if (status == flash::kHostStatus) return status;
  if (status != KV_OK) ll.part = 0.0;
  return KV_OK;
}

// One to three phases into e.p.
StatusCode start_by_host(const ThreePhaseCall& c, Equilibrium& e, HostSplit& lv) {
  HostSplit ll{0.0, e.w.moles[1], e.w.moles[0], e.w.moles[2]};
  StatusCode status = liquid_vapour(c, e, lv);
  if (status != KV_OK) return status;
  const double V = lv.part;
  // Traces at the bound of their distribution coefficient follow no fugacity and would make the liquid
  // unstable.
  double* const liquid = e.w.saved[0];
  std::copy_n(V > 0.0 ? lv.first : e.z, e.m.n, liquid);
  drop_traces(e.m.n, liquid);
  if (V < 1.0 && (status = liquid_liquid(c, liquid, V, ll)) != KV_OK) return status;
  e.p.count = 0;
  const auto keep = [&](const double* x, double amount) {
    double* const phase = e.p.x[e.p.count];
    for (int i = 0; i < e.m.n; ++i) phase[i] = e.z[i] > 0.0 ? std::max(x[i], kLeastFraction) : 0.0;
    e.p.amount[e.p.count++] = amount;
  };
  const double beta = (1.0 - V) * ll.part;
  const bool two_liquids = ll.part < 1.0 && beta >= kLeastLiquid && beta <= 1.0 - kLeastLiquid;
  if (two_liquids) {
    keep(ll.second, beta);
    keep(ll.first, (1.0 - V) * (1.0 - ll.part));
  } else if (V < 1.0) {
    keep(liquid, 1.0 - V);
  }
  if (V > 0.0) keep(V < 1.0 ? lv.second : e.z, V);
  return KV_OK;
}

StatusCode solve_with_host(const ThreePhaseCall& c, Equilibrium& e) {
  HostSplit lv{0.0, e.x, e.y, e.K};
  StatusCode status = start_by_host(c, e, lv);
  if (status != KV_OK) return status;
  status = solve_from_phases(e);
  return doubt(lv.failed, write_found(e, status, c.out));
}

// ---- free water ----

// An estimate as two phases, its liquids in one. False: it is unusable.
bool join_estimate(const ThreePhaseCall& c, HostSplit& lv) {
  const int n = c.context.record->count;
  const auto [A, B, V] = Amounts(*c.out.beta, *c.out.V).of;
  if (!(V > 0.0 && V < 1.0 && A >= 0.0 && B >= 0.0)) return false;
  lv.part = V;
  for (int i = 0; i < n; ++i) {
    lv.first[i] = ((A > 0.0 ? A * c.out.xA[i] : 0.0) + (B > 0.0 ? B * c.out.xB[i] : 0.0)) / (1.0 - V);
    lv.second[i] = c.out.y[i];
  }
  return flash::usable_compositions(n, lv.first, lv.second);
}

// The header of the three phases and the table of what they start from, which with free water is the answer.
void trace_free_water(const ThreePhaseCall& c, bool given) {
  Iteration how;
  how.settings = flash::copy_settings(c.context);
  how.index = given ? 0 : 4;
  support::TraceWriter trace(how.settings.trace, how.settings.trace_unit);
  Phases p;
  p.count = kMostPhases;
  p.amount[kA] = *c.out.beta;
  p.amount[kV] = *c.out.V;
  p.x[kA] = c.out.xA;
  p.x[kB] = c.out.xB;
  p.x[kV] = c.out.y;
  trace_start(trace, how, c.context.record->count, c.z, p);
}

StatusCode solve_with_free_water(const ThreePhaseCall& c, support::Arena& arena) {
  const int n = c.context.record->count, ld = support::padded(n);
  HostSplit lv{0.0, arena.zeros(ld), arena.zeros(ld), arena.zeros(ld)};
  double* const z = arena.zeros(ld);  // what a flash of the host's is to get
  if (!flash::normalise_feed(n, c.z, z)) return KV_COMPOSITION;
  flash::IsothermalCall call{c, c.T, c.P, &lv.part, lv.first, lv.second, lv.K};
  const bool given = c.start != flash::Start::cold && join_estimate(c, lv);
  const FlashRoutine routine = given ? nullptr : host_flash(c, KV_ROUTINE_LV_FLASH);
  if (routine != nullptr && !call_flash(routine, c, z, lv)) return KV_NO_START;
  if (given || routine != nullptr) {
    call.start = flash::Start::warm;
    call.index = 0;
  }
  flash::ThirdPhase third;
  call.third = &third;
  const StatusCode status = no_start(flash::isothermal_flash(call));
  if (status != KV_OK) return status;
  const bool split = split_free_water({c.T, c.P, c.context, lv.part, lv.first, lv.second}, c.out);
  trace_free_water(c, given);
  // Hydrocarbons that would form two liquids, of which the rules of free water know one.
  if (third.found) return KV_FOURTH_PHASE;
  if (!split) return doubt(lv.failed, KV_LV_ANSWER);
  return lv.part > 0.0 ? StatusCode{KV_OK} : doubt(lv.failed, KV_LL_ANSWER);
}

StatusCode solve(const ThreePhaseCall& c, support::Arena& arena) {
  if (c.free_water) return solve_with_free_water(c, arena);
  const flash::Settings settings = flash::copy_settings(c.context);
  support::TraceWriter trace(settings.trace, settings.trace_unit);
  Equilibrium e;
  StatusCode status = open_equilibrium(c, c.T, c.P, 0, arena, trace, e);
  if (status != KV_OK) return status;
  const bool given = c.start != flash::Start::cold && take_estimate(c.out, e);
  const bool by_host =
      host_flash(c, KV_ROUTINE_LV_FLASH) != nullptr || host_flash(c, KV_ROUTINE_LL_FLASH) != nullptr;
  if (by_host && !given) return solve_with_host(c, e);
  status = given ? solve_from_phases(e) : find_equilibrium(e);
  return write_found(e, e.started ? status : no_start(status), c.out);
}

// ---- names ----

// The least densely packed phase last.
void put_lightest_last(Equilibrium& e) {
  exchange_phases(e.p, lightest_phase(e), e.p.count - 1);
}

// The lighter of the first two phases before the denser one.
void order_liquids(Equilibrium& e) {
  const Phases& p = e.p;
  if (!denser_first({e.m.T, e.m.P, p.x[1], p.x[0], e.m.context, e.routines, p.Z[1], p.Z[0]}))
    exchange_phases(e.p, 0, 1);
}

// Puts the vapour last when there is one, and the lighter liquid before the denser one. Number of liquids.
int order_phases(Equilibrium& e) {
  put_lightest_last(e);
  const int liquids = find_vapour(e) >= 0 ? e.p.count - 1 : e.p.count;
  if (liquids == 2) order_liquids(e);
  return liquids;
}

void write_composition(const Equilibrium& e, const double* x, double* out) {
  std::copy_n(x, e.m.n, out);
  drop_traces(e.m.n, out);
}

StatusCode write_vapour_and_liquid(Equilibrium& e, const ThreePhaseResult& out) {
  const int n = e.m.n;
  const Phases& p = e.p;
  *out.V = p.count == 1 ? 1.0 : p.amount[1];
  *out.beta = 1.0;
  if (p.count == 1)
    std::fill_n(out.xA, n, 0.0);
  else
    write_composition(e, p.x[0], out.xA);
  write_composition(e, p.x[p.count - 1], out.y);
  std::fill_n(out.xB, n, 0.0);
  std::fill_n(out.KLL, n, 0.0);
  if (p.count == 1)
    std::fill_n(out.KLV, n, kLargestK);
  else
    flash::ratios_of(n, out.y, out.xA, out.KLV);
  return KV_LV_ANSWER;
}

StatusCode write_liquids(Equilibrium& e, const ThreePhaseResult& out) {
  const int n = e.m.n;
  const Phases& p = e.p;
  *out.V = 0.0;
  std::fill_n(out.y, n, 0.0);
  std::fill_n(out.KLV, n, 0.0);
  if (p.count == 1) {
    *out.beta = 0.0;
    std::fill_n(out.xA, n, 0.0);
    write_composition(e, p.x[0], out.xB);
    std::fill_n(out.KLL, n, kLargestK);
    return KV_LL_ANSWER;
  }
  *out.beta = p.amount[0];
  write_composition(e, p.x[0], out.xA);
  write_composition(e, p.x[1], out.xB);
  flash::ratios_of(n, out.xA, out.xB, out.KLL);
  return KV_LL_ANSWER;
}

}  // namespace

bool take_estimate(const ThreePhaseResult& given, Equilibrium& e) {
  const int n = e.m.n;
  const Amounts amounts(*given.beta, *given.V);
  const double* const compositions[] = {given.xA, given.xB, given.y};
  e.p.count = 0;
  for (int j = 0; j < kMostPhases; ++j) {
    const double amount = amounts.of[j];
    if (!(amount >= 0.0 && amount <= 1.0)) return false;
    if (amount == 0.0) continue;
    if (!flash::usable_compositions(n, compositions[j], compositions[j])) return false;
    for (int i = 0; i < n; ++i)
      e.p.x[e.p.count][i] = e.z[i] > 0.0 ? std::max(compositions[j][i], kLeastFraction) : 0.0;
    e.p.amount[e.p.count++] = amount;
  }
  return e.p.count >= 2;
}

StatusCode write_phases(Equilibrium& e, const ThreePhaseResult& out) {
  const int liquids = order_phases(e), n = e.m.n;
  const Phases& p = e.p;
  if (liquids == p.count) return write_liquids(e, out);
  if (liquids < 2) return write_vapour_and_liquid(e, out);
  *out.V = p.amount[kV];
  *out.beta = p.amount[kA];
  write_composition(e, p.x[kA], out.xA);
  write_composition(e, p.x[kB], out.xB);
  write_composition(e, p.x[kV], out.y);
  flash::ratios_of(n, out.xA, out.xB, out.KLL);
  flash::ratios_of(n, out.y, out.xA, out.KLV);
  return KV_OK;
}

StatusCode write_quality_phases(Equilibrium& e, double W, const ThreePhaseResult& out) {
  Phases& p = e.p;
  const int n = e.m.n;
  put_lightest_last(e);  // the vapour, whatever it would be called alone
  if (p.count == kMostPhases) order_liquids(e);
  const int vapour = p.count - 1;
  *out.V = W;
  write_composition(e, p.x[vapour], out.y);
  write_composition(e, p.x[0], out.xA);
  flash::ratios_of(n, out.y, out.xA, out.KLV);
  if (p.count == 2) {
    *out.beta = 1.0;
    std::fill_n(out.xB, n, 0.0);
    std::fill_n(out.KLL, n, 0.0);
    return KV_LV_ANSWER;
  }
  *out.beta = p.amount[kA];
  write_composition(e, p.x[kB], out.xB);
  flash::ratios_of(n, out.xA, out.xB, out.KLL);
  return KV_OK;
}

bool split_free_water(const LiquidVapour& a, const ThreePhaseResult& out) {
  const int n = a.context.record->count, iw = eos::find_water_family(*a.context.record);
  const bool may = iw >= 0 && a.free_water && !(a.x[iw] > flash::kWaterRich) && a.V != 1.0;
  const double r = may ? flash::oil_at_limit(*a.context.record, a.T, a.x, out.xA) : 1.0;
  *out.V = a.V;
  std::copy_n(a.y, n, out.y);
  drop_traces(n, out.y);
  if (r == 1.0) {
    *out.beta = 1.0;
    std::copy_n(a.x, n, out.xA);
    drop_traces(n, out.xA);
    if (!a.incipient && (a.V == 0.0 || a.V == 1.0))
      std::fill_n(out.KLV, n, a.V == 0.0 ? 0.0 : kLargestK);
    else
      flash::ratios_of(n, out.y, out.xA, out.KLV);
    if (!a.incipient && a.V == 0.0) std::fill_n(out.y, n, 0.0);
    if (!a.incipient && a.V == 1.0) std::fill_n(out.xA, n, 0.0);
    std::fill_n(out.xB, n, 0.0);
    std::fill_n(out.KLL, n, 0.0);
    return false;
  }
  *out.beta = (1.0 - a.V) * r;
  for (int i = 0; i < n; ++i) {
    out.xB[i] = i == iw ? 1.0 : 0.0;
    out.KLL[i] = i == iw ? std::max(out.xA[i], flash::kSmallestK) : kLargestK;
  }
  drop_traces(n, out.xA);
  flash::ratios_of(n, out.y, out.xA, out.KLV);
  if (a.V > 0.0) return true;
  std::fill_n(out.y, n, 0.0);
  std::fill_n(out.KLV, n, 0.0);
  return true;
}

void keep_incipient_vapour(int n, const double* y, const ThreePhaseResult& out) {
  std::copy_n(y, n, out.y);
  drop_traces(n, out.y);
  flash::ratios_of(n, out.y, *out.beta > 0.0 ? out.xA : out.xB, out.KLV);
}

bool move_marked_liquid(int n, const ThreePhaseResult& out) {
  if (!(*out.V > 0.0) || *out.beta != 1.0) return false;
  *out.beta = 0.0;
  for (int i = 0; i < n; ++i) std::swap(out.xA[i], out.xB[i]);
  return true;
}

StatusCode three_phase_flash(const ThreePhaseCall& c) {
  const int n = c.context.record->count;
  if (const StatusCode bad = flash::check_feed_sum(c.z, *c.context.record); bad != KV_OK) return bad;
  return support::with_arena<10, 80>(n, [&](support::Arena& arena) { return solve(c, arena); });
}

}  // namespace kestrune::flash3
