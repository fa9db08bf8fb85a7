// Values and slopes of one phase at a prepared temperature, (11) of docs/method.md and the ideal gas; or by a
// host's routine and the rules of free water.

#include "flash/energy/caloric.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

using MolarRoutine = StatusCode(KV_CALL*)(double, double, const double*, MixtureRecord*, double*);

// The host's routine for the property of a phase, null without one.
MolarRoutine property_routine(const CaloricModel& c, int phase) {
  const bool gas = phase == KV_PHASE_GAS;
  const int entry = c.property == Property::enthalpy
                        ? (gas ? KV_ROUTINE_GAS_ENTHALPY : KV_ROUTINE_LIQUID_ENTHALPY)
                        : (gas ? KV_ROUTINE_GAS_ENTROPY : KV_ROUTINE_LIQUID_ENTROPY);
  return host_routine<MolarRoutine>(c.routines, entry);
}

// A root counts as the lower one from this difference of Gibbs energies over RT.
constexpr double kClearlyLower = 1e-7;

// The root of the kind, and where it is not clearly the lower one, still that of its name: of two phases that
// are nearly one composition, as at the boiling point of a component, the Gibbs energy cannot tell.
bool find_root(const CaloricModel& c, const eos::Mixture& m, Kind kind, double start, eos::Root& r) {
  const double rt = eos::kR * c.t.T, A = m.a * c.P / (rt * rt), B = m.b * c.P / rt;
  const eos::CubicRoot bracub = c.context.tools->cubic_root();
  if (kind == Kind::stable) return eos::has_root(eos::stable_root(c.t, bracub, m, c.P, start, r));
  const int phase = kind == Kind::liquid ? KV_PHASE_LIQUID : KV_PHASE_GAS;
  double Z = start;
  const int status = eos::solve_root(bracub, A, B, phase, start > 0.0, Z);
  if (!eos::has_root(status)) return false;
  eos::reduce(c.t, m, c.P, Z, r);
  if (status != 0 || !eos::may_have_three_roots(A, B)) return true;
  double other_Z = 0.0;
  const int other_phase = kind == Kind::liquid ? KV_PHASE_GAS : KV_PHASE_LIQUID;
  if (eos::solve_root(bracub, A, B, other_phase, false, other_Z) != 0) return true;
  eos::Root other;
  eos::reduce(c.t, m, c.P, other_Z, other);
  if (eos::residual_gibbs(m, other) < eos::residual_gibbs(m, r) - kClearlyLower) r = other;
  return true;
}

/*
 * The phase that a routine is asked for when a phase of x[n] goes by this name: the same rule by ln phi of
 * both, so that the second of two liquids, which goes by the name of a vapour, is asked for as what it is.
 */
StatusCode own_phase(const CaloricModel& c, double T, const double* x, int& phase) {
  const int n = c.context.record->count;
  return support::with_arena<2, 20>(n, [&](support::Arena& arena) -> StatusCode {
    Model m;
    StatusCode status = make_model(T, c.P, c.context, c.routines, false, 0, arena, m);
    double *const w = arena.zeros(m.ld), *const ln_phi = arena.zeros(m.ld);
    std::copy_n(x, n, w);
    double gibbs[2] = {}, Z[2] = {};
    for (const Kind kind : {Kind::gas, Kind::liquid}) {
      const int k = kind == Kind::gas ? 0 : 1;
      if (status == KV_OK) status = fugacity(m, w, kind, ln_phi, nullptr, Z[k]);
      for (int i = 0; i < n; ++i) gibbs[k] += w[i] * ln_phi[i];
    }
    if (status != KV_OK) return status;
    const double lower = phase == KV_PHASE_GAS ? gibbs[0] - gibbs[1] : gibbs[1] - gibbs[0];
    if (lower > kClearlyLower) phase = phase == KV_PHASE_GAS ? KV_PHASE_LIQUID : KV_PHASE_GAS;
    return KV_OK;
  });
}

}  // namespace

void Gibbs::add(int n, double amount, const double* x, const PhaseCaloric& phase) noexcept {
  for (int i = 0; i < n; ++i) {
    if (!(x[i] > 0.0)) continue;
    value += amount * x[i] * (support::fast_log(x[i]) + phase.ln_phi[i]);
    slope += amount * x[i] * phase.dln_phi_dT[i];
  }
}

double crossing_of(const Gibbs& a, double T_a, const Gibbs& b, double T_b) noexcept {
  const double slope_a = -T_a * T_a * a.slope, slope_b = -T_b * T_b * b.slope;
  const double up = (a.value - b.value + slope_b * (1.0 / T_b - 1.0 / T_a)) / (slope_b - slope_a);
  return 1.0 / (1.0 / T_a + up);
}

bool CaloricModel::analytic() const {
  if (free_water || eos::water_ammonia_pair(*context.record, z)) return false;
  return host_routine<KvFugacityRoutine>(routines, KV_ROUTINE_FUGACITY) == nullptr &&
         property_routine(*this, KV_PHASE_GAS) == nullptr &&
         property_routine(*this, KV_PHASE_LIQUID) == nullptr;
}

namespace {

// Traces of the feed below what counts as present are no trace in a phase that holds all of them. One without data is left
// out there as in the feed.
void add_traces(CaloricModel& c, double T) {
  for (int i = 0; i < c.context.record->count; ++i) {
    if (!(c.z[i] > 0.0 && c.z[i] < eos::kSmallestFraction)) continue;
    if (eos::has_values(eos::ideal_gas_of(T, c.context, i, c.ideal))) continue;
    for (double* part : {c.ideal.h, c.ideal.s, c.ideal.cp})
      if (part != nullptr) part[i] = 0.0;
  }
}

}  // namespace

void open_caloric(support::Arena& arena, CaloricModel& c) {
  const int ld = support::padded(c.context.record->count);
  c.arena = &arena;
  for (double** a : {&c.s, &c.s_t, &c.row}) *a = arena.zeros(ld);
}

StatusCode prepare_caloric(CaloricModel& c, double T) {
  if (T == c.prepared) return KV_OK;
  StatusCode status = spend(c.routines, kTemperatureWork);
  if (status != KV_OK) return status;
  c.arena->rewind(c.base);
  c.prepared = -1.0;
  const unsigned parts = (c.property == Property::enthalpy ? eos::kIdealH : eos::kIdealS) | eos::kIdealCp;
  status = eos::ideal_gas(T, c.context, c.z, parts, *c.arena, c.ideal);
  if (!eos::has_values(status)) return status;
  add_traces(c, T);
  status = eos::prepare(T, c.context, 2, *c.arena, c.t);
  if (status == KV_OK) c.prepared = T;
  return status;
}

bool phase_caloric(CaloricModel& c, const double* x, Kind kind, PhaseCaloric& out) {
  const eos::Temperature& t = c.t;
  const double T = t.T;
  if (spend(c.routines, matrix_work(t.n)) != KV_OK) return false;
  const eos::Mixture m = eos::mix(t, x, c.s);
  eos::Root r;
  if (!find_root(c, m, kind, out.Z, r)) return false;
  out.Z = r.Z;
  const eos::Mechanics k = eos::mechanics(t, m, r);
  eos::ln_phi(t, m, r, c.s, out.ln_phi);
  const double a_t = eos::dln_phi_dT(t, m, r, k, x, c.s, c.s_t, out.dln_phi_dT);
  if (out.dn != nullptr) eos::dln_phi_dn(t, m, r, k, c.s, out.dn, t.ld, t.ld, true);
  // Cp by way of Cv: Cp_res = Cv_res + R (L^2/K - 1).
  const double a_tt = eos::quadratic(t, t.aij_tt, x);
  const eos::Slopes slopes = eos::slopes(m.a / m.b, a_t / m.b, m.b, T, r.eta);
  const double Cp_res =
      (T * a_tt / m.b * r.phi) * eos::kCalPerCm3Atm + eos::kResidualR * (slopes.L * slopes.L / slopes.K - 1.0);
  out.Cp = eos::ideal_heat_capacity(t.n, x, c.ideal) + Cp_res;
  if (c.property == Property::enthalpy) {
    out.value = eos::ideal_enthalpy(t.n, x, c.ideal) + eos::residual_enthalpy(T, m.a, a_t, m.b, r);
    out.slope = out.Cp;
  } else {
    out.value = eos::ideal_entropy(t.n, x, c.P, c.ideal) + eos::residual_entropy(a_t, m.b, r);
    out.slope = out.Cp / T;
  }
  return std::fabs(out.value) <= DBL_MAX && std::fabs(out.slope) <= DBL_MAX;
}

StatusCode phase_value(const CaloricModel& c, double T, const double* x, int phase, double& value) {
  if (!c.free_water) {
    const StatusCode status = own_phase(c, T, x, phase);
    if (status != KV_OK) return status;
  }
  if (const MolarRoutine routine = property_routine(c, phase)) {
    if (!usable_state(T, c.P, c.context.record->count, x)) return KV_NOT_FINITE;
    value = std::numeric_limits<double>::quiet_NaN();
    const StatusCode status =
        call_host(*c.routines, [&] { return routine(T, c.P, x, c.context.record, &value); });
    if (status != KV_OK || std::isfinite(value)) return status;
    return end_flash(*c.routines, KV_NOT_FINITE);
  }
  const StatusCode spent = spend(c.routines, kTemperatureWork);
  if (spent != KV_OK) return spent;
  eos::Caloric both;
  const bool H = c.property == Property::enthalpy;
  const StatusCode status = eos::enthalpy_and_entropy({T, c.P, x, phase, c.context}, H, !H, both);
  value = H ? both.H : both.S;
  return eos::has_values(status) ? StatusCode{KV_OK} : status;
}

}  // namespace kestrune::flash
