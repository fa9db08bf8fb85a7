#include "flash3/three_phase.hpp"

#include <algorithm>
#include <cmath>

#include "flash/feed.hpp"
#include "flash/settings.hpp"
#include "flash3/liquid_liquid.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash3 {
namespace {

using flash::kLargestK;
using flash::kSmallestK;

// Of a component that is present, in a phase that is given to start from.
constexpr double kLeastFraction = 1e-300;

using FlashRoutine = StatusCode(KV_CALL*)(double, double, const double*, MixtureRecord*, const ModelRoutines*,
                                          int32_t, double*, double*, double*, double*);

FlashRoutine host_flash(const ThreePhaseCall& c, int entry) {
  return flash::host_routine<FlashRoutine>(c.routines, entry);
}

// The phases that were found, beside a status the last ones that were seen.
StatusCode write_found(Equilibrium& e, StatusCode status, const ThreePhaseResult& out) {
  const bool seen = status == KV_FOURTH_PHASE || status == KV_NOT_CONVERGED || status == KV_RELAXATION ||
                    status == KV_TRIVIAL;
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
  bool failed = false;  // its status was not one to go on with
};

/*
 * A flash of the host for the feed z[n], as a cold start: nothing usable stands in its results. False: what it
 * left is no fraction with compositions of the phases that have a part in it.
 */
bool call_flash(FlashRoutine routine, const ThreePhaseCall& c, const double* z, HostSplit& s,
                StatusCode& status) {
  const int n = c.mixture->count;
  s.part = 0.0;
  for (double* a : {s.first, s.second, s.K}) std::fill_n(a, n, 0.0);
  status = routine(c.T, c.P, z, c.mixture, c.routines->record, 0, &s.part, s.first, s.second, s.K);
  s.failed = !flash::goes_on(status);
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

// The liquid-vapour flash of the feed, the host's or the library's.
StatusCode liquid_vapour(const ThreePhaseCall& c, Equilibrium& e, HostSplit& lv) {
  StatusCode status = KV_OK;
  if (const FlashRoutine routine = host_flash(c, KV_ROUTINE_LV_FLASH))
    return call_flash(routine, c, e.z, lv, status) ? KV_OK : KV_NO_START;
  flash::IsothermalCall call{c.T, c.P, e.z, c.mixture, c.routines, &lv.part, lv.first, lv.second, lv.K};
  call.model = &e.m;
  status = flash::isothermal_flash(call);
  return status == KV_SINGLE_PHASE ? StatusCode{KV_OK} : status;
}

// The split of the liquid, the host's or the library's; one that the library has not found is none.
StatusCode liquid_liquid(const ThreePhaseCall& c, const double* liquid, HostSplit& ll) {
  StatusCode status = KV_OK;
  if (const FlashRoutine routine = host_flash(c, KV_ROUTINE_LL_FLASH)) {
    const bool usable = call_flash(routine, c, liquid, ll, status);
    return ll.failed ? status : usable ? StatusCode{KV_OK} : StatusCode{KV_NO_START};
  }
  status = liquid_liquid_flash(
      {c.T, c.P, liquid, c.mixture, c.routines, false, false, &ll.part, ll.first, ll.second, ll.K});
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
  for (int i = 0; i < e.m.n; ++i) {
    const double x = V > 0.0 ? lv.first[i] : e.z[i];
    liquid[i] = x < kAbsent ? 0.0 : x;
  }
  if (V < 1.0 && (status = liquid_liquid(c, liquid, ll)) != KV_OK) {
    if (!ll.failed) return status;
    return lv.failed ? StatusCode{KV_NO_START} : flash::end_flash(*c.routines, status);
  }
  e.p.count = 0;
  const auto keep = [&](const double* x, double amount) {
    double* const phase = e.p.x[e.p.count];
    for (int i = 0; i < e.m.n; ++i) phase[i] = e.z[i] > 0.0 ? std::max(x[i], kLeastFraction) : 0.0;
    e.p.amount[e.p.count++] = amount;
  };
  if (ll.part > 0.0 && ll.part < 1.0) {
    keep(ll.second, (1.0 - V) * ll.part);
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

StatusCode solve_with_free_water(const ThreePhaseCall& c, support::Arena& arena) {
  const int n = c.mixture->count, ld = support::padded(n);
  HostSplit lv{0.0, arena.zeros(ld), arena.zeros(ld), arena.zeros(ld)};
  StatusCode status = KV_OK;
  flash::IsothermalCall call{c.T, c.P, c.z, c.mixture, c.routines, &lv.part, lv.first, lv.second, lv.K};
  call.free_water = true;
  if (const FlashRoutine routine = host_flash(c, KV_ROUTINE_LV_FLASH)) {
    if (!call_flash(routine, c, c.z, lv, status)) return KV_NO_START;
    call.start = flash::Start::warm;
  }
  flash::ThirdPhase third;
  call.third = &third;
  status = flash::isothermal_flash(call);
  if (status != KV_OK && status != KV_SINGLE_PHASE) return status;
  const bool split = split_free_water({c.T, c.P, c.mixture, lv.part, lv.first, lv.second}, c.out);
  // Hydrocarbons that would form two liquids, of which the rules of free water know one.
  if (third.found) return KV_FOURTH_PHASE;
  if (!split) return doubt(lv.failed, KV_LV_ANSWER);
  return lv.part > 0.0 ? StatusCode{KV_OK} : doubt(lv.failed, KV_LL_ANSWER);
}

StatusCode solve(const ThreePhaseCall& c, support::Arena& arena) {
  if (c.free_water) return solve_with_free_water(c, arena);
  const flash::Settings settings = flash::copy_settings(*c.mixture);
  support::TraceWriter trace(settings.trace, settings.trace_unit);
  Equilibrium e;
  StatusCode status = open_equilibrium({c.T, c.P, c.z, c.mixture, c.routines}, 0, arena, trace, e);
  if (status != KV_OK) return status;
  const bool given = c.estimate && take_estimate(c.out, e);
  const bool by_host =
      host_flash(c, KV_ROUTINE_LV_FLASH) != nullptr || host_flash(c, KV_ROUTINE_LL_FLASH) != nullptr;
  if (by_host && !given) return solve_with_host(c, e);
  status = given ? solve_from_phases(e) : find_equilibrium(e);
  return write_found(e, status, c.out);
}

// ---- names ----

// Mass density of a phase that is a liquid, by the host's routine or from its Z.
StatusCode liquid_density(const Equilibrium& e, int j, double& rho) {
  const MixtureRecord& r = *e.m.mixture;
  if (host_density(e.routines) != nullptr || !(e.p.Z[j] > 0.0))
    return density_of_liquid({e.m.T, e.m.P, e.p.x[j], e.m.mixture, e.routines}, rho);
  const double* M = r.table + static_cast<std::size_t>(KV_COL_MOLAR_MASS - 1) * r.count;
  double mass = 0.0;
  for (int i = 0; i < r.count; ++i) mass += e.p.x[j][i] * M[i];
  rho = mass * e.m.P / (e.p.Z[j] * eos::kR * e.m.T);
  return KV_OK;
}

// The least densely packed phase last.
void put_lightest_last(Equilibrium& e) {
  exchange_phases(e.p, lightest_phase(e), e.p.count - 1);
}

// The lighter of the first two phases before the denser one.
StatusCode order_liquids(Equilibrium& e) {
  double first = 0.0, second = 0.0;
  StatusCode status = liquid_density(e, 0, first);
  if (status == KV_OK) status = liquid_density(e, 1, second);
  if (status == KV_OK && second < first) exchange_phases(e.p, 0, 1);
  return status;
}

// Puts the vapour last when there is one, and the lighter liquid before the denser one. liquids: their number.
StatusCode order_phases(Equilibrium& e, int& liquids) {
  Phases& p = e.p;
  put_lightest_last(e);
  liquids = find_vapour(e) >= 0 ? p.count - 1 : p.count;
  return liquids < 2 ? StatusCode{KV_OK} : order_liquids(e);
}

// Ratios of two phases by composition, and where both hold next to nothing by their fugacity coefficients.
void ratios(const Equilibrium& e, int above, int below, double* K) {
  const Phases& p = e.p;
  for (int i = 0; i < e.m.n; ++i) {
    const double a = p.x[above][i], b = p.x[below][i];
    double k = support::fast_exp(p.ln_phi[below][i] - p.ln_phi[above][i]);
    if (e.z[i] > 0.0) k = b < kAbsent ? kLargestK : a < kAbsent ? kSmallestK : a / b;
    K[i] = std::clamp(k, kSmallestK, kLargestK);
  }
}

void write_composition(const Equilibrium& e, const double* x, double* out) {
  for (int i = 0; i < e.m.n; ++i) out[i] = x[i] < kAbsent ? 0.0 : x[i];
}

StatusCode write_vapour_and_liquid(Equilibrium& e, const ThreePhaseResult& out) {
  const int n = e.m.n;
  const Phases& p = e.p;
  *out.V = p.count == 1 ? 1.0 : p.amount[1];
  *out.beta = 1.0;
  // Of a gas alone the liquid is the incipient one.
  write_composition(e, p.count == 1 ? e.x : p.x[0], out.xA);
  write_composition(e, p.x[p.count - 1], out.y);
  std::fill_n(out.xB, n, 0.0);
  std::fill_n(out.KLL, n, 0.0);
  if (p.count == 1)
    std::fill_n(out.KLV, n, kLargestK);
  else
    ratios(e, 1, 0, out.KLV);
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
  ratios(e, 0, 1, out.KLL);
  return KV_LL_ANSWER;
}

}  // namespace

bool take_estimate(const ThreePhaseResult& given, Equilibrium& e) {
  const int n = e.m.n;
  const double amounts[] = {*given.beta, 1.0 - *given.beta - *given.V, *given.V};
  const double* const compositions[] = {given.xA, given.xB, given.y};
  e.p.count = 0;
  for (int j = 0; j < kMostPhases; ++j) {
    if (!(amounts[j] >= 0.0 && amounts[j] <= 1.0)) return false;
    if (amounts[j] == 0.0) continue;
    if (!flash::usable_compositions(n, compositions[j], compositions[j])) return false;
    for (int i = 0; i < n; ++i)
      e.p.x[e.p.count][i] = e.z[i] > 0.0 ? std::max(compositions[j][i], kLeastFraction) : 0.0;
    e.p.amount[e.p.count++] = amounts[j];
  }
  return e.p.count >= 2;
}

StatusCode write_phases(Equilibrium& e, const ThreePhaseResult& out) {
  int liquids = 0;
  const StatusCode status = order_phases(e, liquids);
  if (status != KV_OK) return status;
  const Phases& p = e.p;
  if (liquids == p.count) return write_liquids(e, out);
  if (liquids < 2) return write_vapour_and_liquid(e, out);
  *out.V = p.amount[kV];
  *out.beta = p.amount[kA];
  write_composition(e, p.x[kA], out.xA);
  write_composition(e, p.x[kB], out.xB);
  write_composition(e, p.x[kV], out.y);
  ratios(e, kA, kB, out.KLL);
  ratios(e, kV, kA, out.KLV);
  return KV_OK;
}

StatusCode write_quality_phases(Equilibrium& e, double W, const ThreePhaseResult& out) {
  Phases& p = e.p;
  const int n = e.m.n;
  put_lightest_last(e);  // the vapour, whatever it would be called alone
  const StatusCode status = p.count == kMostPhases ? order_liquids(e) : StatusCode{KV_OK};
  if (status != KV_OK) return status;
  const int vapour = p.count - 1;
  *out.V = W;
  write_composition(e, p.x[vapour], out.y);
  write_composition(e, p.x[0], out.xA);
  ratios(e, vapour, 0, out.KLV);
  if (p.count == 2) {
    *out.beta = 1.0;
    std::fill_n(out.xB, n, 0.0);
    std::fill_n(out.KLL, n, 0.0);
    return KV_LV_ANSWER;
  }
  *out.beta = p.amount[kA];
  write_composition(e, p.x[kB], out.xB);
  ratios(e, kA, kB, out.KLL);
  return KV_OK;
}

bool split_free_water(const LiquidVapour& a, const ThreePhaseResult& out) {
  constexpr double kAllWater = 0.9999;
  const int n = a.mixture->count, iw = eos::find_water_family(*a.mixture);
  const double s = eos::water_solubility(a.T, a.mixture->solubility_a, a.mixture->solubility_b).value;
  const double w = iw >= 0 ? a.x[iw] : 0.0;
  *out.V = a.V;
  std::copy_n(a.y, n, out.y);
  if (iw < 0 || w <= s || w > kAllWater || a.V == 1.0) {
    *out.beta = 1.0;
    std::copy_n(a.x, n, out.xA);
    std::fill_n(out.xB, n, 0.0);
    std::fill_n(out.KLL, n, 0.0);
    for (int i = 0; i < n; ++i)
      out.KLV[i] = a.V == 0.0   ? 0.0
                   : a.V == 1.0 ? kLargestK
                                : std::clamp(a.x[i] > 0.0 ? a.y[i] / a.x[i] : kLargestK, kSmallestK, kLargestK);
    return false;
  }
  const double r = (1.0 - w) / (1.0 - s);  // of the liquid that is A
  *out.beta = (1.0 - a.V) * r;
  for (int i = 0; i < n; ++i) {
    out.xB[i] = i == iw ? 1.0 : 0.0;
    out.xA[i] = i == iw ? s : a.x[i] / r;
    out.KLL[i] = i == iw ? s : kLargestK;
    out.KLV[i] = std::clamp(out.xA[i] == 0.0 ? kLargestK : out.y[i] / out.xA[i], kSmallestK, kLargestK);
  }
  if (a.V > 0.0) return true;
  std::fill_n(out.y, n, 0.0);
  std::fill_n(out.KLV, n, 0.0);
  return true;
}

void keep_incipient_vapour(int n, const double* y, const ThreePhaseResult& out) {
  const bool in_A = *out.beta > 0.0;
  for (int i = 0; i < n; ++i) {
    const double liquid = in_A ? out.xA[i] : out.xB[i];
    out.y[i] = y[i] < kAbsent ? 0.0 : y[i];
    out.KLV[i] = std::clamp(liquid < kAbsent ? kLargestK : y[i] / liquid, kSmallestK, kLargestK);
  }
}

bool move_marked_liquid(int n, const ThreePhaseResult& out) {
  if (!(*out.V > 0.0) || *out.beta != 1.0) return false;
  *out.beta = 0.0;
  for (int i = 0; i < n; ++i) std::swap(out.xA[i], out.xB[i]);
  return true;
}

StatusCode three_phase_flash(const ThreePhaseCall& c) {
  const int n = c.mixture->count;
  if (const StatusCode bad = flash::check_feed_sum(c.z, *c.mixture); bad != KV_OK) return bad;
  return support::with_arena<10, 80>(n, [&](support::Arena& arena) { return solve(c, arena); });
}

}  // namespace kestrune::flash3
