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

using FlashRoutine = StatusCode(KV_CALL*)(double, double, const double*, MixtureRecord*, const ModelRoutines*,
                                          int32_t, double*, double*, double*, double*);

FlashRoutine host_flash(const ThreePhaseCall& c, int entry) {
  return c.routines != nullptr ? reinterpret_cast<FlashRoutine>(c.routines->entry[entry - 1]) : nullptr;
}

// ---- the host's own flashes ----

/*
 * The host's liquid-vapour flash and its split of the liquid, or the library's where it has none, as the start.
 * True: there are two liquids and a vapour, in e.p; else it is an answer of one or two phases, in e.p.
 */
bool start_by_host(const ThreePhaseCall& c, Equilibrium& e, StatusCode& lv_status, StatusCode& status) {
  const int n = e.m.n;
  const FlashRoutine lv = host_flash(c, KV_ROUTINE_LV_FLASH), ll = host_flash(c, KV_ROUTINE_LL_FLASH);
  lv_status = status = KV_OK;
  const auto keep = [&](int j, const double* x, double amount) {
    std::copy_n(x, n, e.p.x[j]);
    e.p.amount[j] = amount;
  };
  if (lv != nullptr) {
    lv_status = lv(c.T, c.P, e.z, c.mixture, c.routines, 0, &e.beta, e.x, e.y, e.K);
    if (lv_status == KV_SINGLE_PHASE) lv_status = KV_OK;
    if (!(e.beta >= 0.0 && e.beta <= 1.0)) status = KV_NO_START;
  } else {
    status = find_equilibrium(e);
    if (status == KV_OK && e.p.count == kMostPhases) return false;  // complete as it is
    if (e.p.count == 2) e.beta = e.p.amount[1];
    if (e.p.count == 1) e.beta = e.gas ? 1.0 : 0.0;
  }
  if (status != KV_OK) return false;
  const double V = e.beta;
  const double* const liquid = V > 0.0 ? e.x : e.z;
  double share = 0.0;
  double *const xA = e.w.moles[0], *const xB = e.w.moles[1];
  if (V < 1.0) {
    status =
        ll != nullptr
            ? ll(c.T, c.P, liquid, c.mixture, c.routines, 0, &share, xB, xA, e.K)
            : liquid_liquid_flash({c.T, c.P, liquid, c.mixture, c.routines, false, false, &share, xB, xA, e.K});
    if (status != KV_OK) return false;
  }
  e.p.count = 0;
  if (share > 0.0 && share < 1.0) {
    keep(e.p.count++, xA, (1.0 - V) * share);
    keep(e.p.count++, xB, (1.0 - V) * (1.0 - share));
  } else if (V < 1.0) {
    keep(e.p.count++, liquid, 1.0 - V);
  }
  if (V > 0.0) keep(e.p.count++, V < 1.0 ? e.y : e.z, V);
  e.gas = V == 1.0;
  status = evaluate_phases(e.m, e.z, e.p, e.w, false);
  return e.p.count == kMostPhases && status == KV_OK;
}

StatusCode solve_with_host(const ThreePhaseCall& c, Equilibrium& e) {
  StatusCode lv_status = KV_OK, status = KV_OK;
  if (start_by_host(c, e, lv_status, status)) {
    e.how.index = 4;
    status = find_equilibrium_from(e);
  }
  if (status != KV_OK) return lv_status != KV_OK ? StatusCode{KV_NO_START} : status;
  status = write_phases(e, c.out);
  if (lv_status == KV_OK) return status;
  return status == KV_LV_ANSWER   ? KV_LV_ANSWER_DOUBTFUL
         : status == KV_LL_ANSWER ? KV_LL_ANSWER_DOUBTFUL
                                  : status;
}

// ---- free water ----

StatusCode solve_with_free_water(const ThreePhaseCall& c, support::Arena& arena) {
  const int n = c.mixture->count, ld = support::padded(n);
  double *const x = arena.zeros(ld), *const y = arena.zeros(ld), *const K = arena.zeros(ld);
  double V = 0.0;
  StatusCode status;
  if (const FlashRoutine lv = host_flash(c, KV_ROUTINE_LV_FLASH)) {
    status = lv(c.T, c.P, c.z, c.mixture, c.routines, 1, &V, x, y, K);
  } else {
    flash::IsothermalCall call;
    call.T = c.T;
    call.P = c.P;
    call.z = c.z;
    call.mixture = c.mixture;
    call.routines = c.routines;
    call.free_water = true;
    call.beta = &V;
    call.x = x;
    call.y = y;
    call.K = K;
    status = flash::isothermal_flash(call);
  }
  if (status != KV_OK && status != KV_SINGLE_PHASE) return status;
  const bool split = split_free_water({c.T, c.P, c.mixture, V, x, y}, c.out);
  if (!split) return KV_LV_ANSWER;
  return V > 0.0 ? KV_OK : KV_LL_ANSWER;
}

// The phases that were found, beside a status the last ones that were seen.
StatusCode write_found(Equilibrium& e, StatusCode status, const ThreePhaseResult& out) {
  const bool seen = status == KV_FOURTH_PHASE || status == KV_NOT_CONVERGED || status == KV_RELAXATION ||
                    status == KV_TRIVIAL;
  if (status != KV_OK && !(seen && e.p.count > 0)) return status;
  const StatusCode written = write_phases(e, out);
  return status != KV_OK ? status : written;
}

StatusCode solve(const ThreePhaseCall& c, support::Arena& arena) {
  if (c.free_water) return solve_with_free_water(c, arena);
  const flash::Settings settings = flash::copy_settings(*c.mixture);
  support::TraceWriter trace(settings.trace, settings.trace_unit);
  Equilibrium e;
  StatusCode status = open_equilibrium({c.T, c.P, c.z, c.mixture, c.routines}, 0, arena, trace, e);
  if (status != KV_OK) return status;
  if (host_flash(c, KV_ROUTINE_LV_FLASH) != nullptr || host_flash(c, KV_ROUTINE_LL_FLASH) != nullptr)
    return solve_with_host(c, e);
  const bool given = c.estimate && take_estimate(c.out, e);
  status = given ? find_equilibrium_from(e) : find_equilibrium(e);
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
    for (int i = 0; i < n; ++i) e.p.x[e.p.count][i] = e.z[i] > 0.0 ? std::max(compositions[j][i], 1e-300) : 0.0;
    e.p.amount[e.p.count++] = amounts[j];
  }
  return e.p.count >= 2;
}

StatusCode check_sum(const double* z, const MixtureRecord& mixture) noexcept {
  double sum = 0.0;
  for (int i = 0; i < mixture.count; ++i) sum += z[i];
  return std::fabs(sum - 1.0) <= flash::sum_tolerance(mixture) ? KV_OK : KV_FEED_SUM;
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

void move_marked_liquid(int n, const ThreePhaseResult& out) {
  if (!(*out.V > 0.0) || *out.beta != 1.0) return;
  *out.beta = 0.0;
  std::swap_ranges(out.xA, out.xA + n, out.xB);
}

StatusCode three_phase_flash(const ThreePhaseCall& c) {
  const int n = c.mixture->count;
  if (const StatusCode bad = check_sum(c.z, *c.mixture); bad != KV_OK) return bad;
  return support::with_arena<10, 80>(n, [&](support::Arena& arena) { return solve(c, arena); });
}

}  // namespace kestrune::flash3
