// Fugacity evaluation of the flashes: the host's routine, the free-water rules, or the built-in equation of
// state.

#include "flash/fugacity.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "flash/wet/free_water.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash {
namespace {

// One phase by the host's routine. What it writes is looked at before it is used; composition derivatives that
// it leaves alone are those of an ideal mixture.
StatusCode host_phase(Model& m, const double* x, int phase, double* ln_phi, const Derivatives& d, double& Z) {
  constexpr double kUnwritten = std::numeric_limits<double>::quiet_NaN();
  const int n = m.n;
  // The pressure derivatives are always asked for: Z = 1 + P sum x_i d ln phi_i/dP tells gas from liquid.
  double* const dP = d.dP != nullptr ? d.dP : m.row;
  double* const dn = d.dn != nullptr ? m.square : nullptr;
  const std::size_t entries = dn != nullptr ? static_cast<std::size_t>(n) * n : 0;
  const int mask = (d.dT != nullptr ? KV_DERIV_T : 0) | KV_DERIV_P | (dn != nullptr ? KV_DERIV_N : 0);
  if (!usable_state(m.T, m.P, n, x)) return KV_NOT_FINITE;
  std::fill_n(ln_phi, n, kUnwritten);
  std::fill_n(dP, n, kUnwritten);
  if (d.dT != nullptr) std::fill_n(d.dT, n, kUnwritten);
  std::fill_n(m.square, entries, 0.0);
  m.counts.evaluated();
  if (dn != nullptr) ++m.counts.matrices;
  StatusCode status = spend(m.host, dn != nullptr ? matrix_work(n) : 1);
  if (status == KV_OK)
    status = call_host(*m.host, [&] {
      return m.routine(m.T, m.P, x, m.context.record, phase, 2, mask, ln_phi, d.dT, dP, dn);
    });
  if (status != KV_OK) return status;
  if (!all_finite(n, ln_phi) || !all_finite(n, dP) || (d.dT != nullptr && !all_finite(n, d.dT)) ||
      !all_finite(static_cast<int>(entries), m.square))
    return end_flash(*m.host, KV_NOT_FINITE);
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += x[i] * dP[i];
  Z = 1.0 + m.P * sum;
  for (int j = 0; dn != nullptr && j < n; ++j) {
    double* const column = d.dn + static_cast<std::size_t>(j) * m.ld;
    std::copy_n(dn + static_cast<std::size_t>(j) * n, n, column);
    std::fill(column + n, column + m.ld, 0.0);
  }
  for (int i = n; i < m.ld; ++i) ln_phi[i] = 0.0;
  return KV_OK;
}

// Both phases, and the one of lower Gibbs energy: two calls, three for a liquid with derivatives.
StatusCode host_stable(Model& m, const double* x, double* ln_phi, const Derivatives& d, double& Z) {
  double zl = 0.0, gas = 0.0, liquid = 0.0;
  StatusCode status = host_phase(m, x, KV_PHASE_LIQUID, m.compared, {}, zl);
  if (status == KV_OK) status = host_phase(m, x, KV_PHASE_GAS, ln_phi, d, Z);
  if (status != KV_OK) return status;
  for (int i = 0; i < m.n; ++i) gas += x[i] * ln_phi[i];
  for (int i = 0; i < m.n; ++i) liquid += x[i] * m.compared[i];
  if (gas <= liquid) return KV_OK;
  if (d.dT != nullptr || d.dP != nullptr || d.dn != nullptr)
    return host_phase(m, x, KV_PHASE_LIQUID, ln_phi, d, Z);
  std::copy_n(m.compared, m.ld, ln_phi);
  Z = zl;
  return KV_OK;
}

}  // namespace

double covolume(const MixtureRecord& mixture, const double* x) noexcept {
  const double* Tc = mixture.table + static_cast<std::size_t>(KV_COL_TC - 1) * mixture.count;
  const double* Pc = mixture.table + static_cast<std::size_t>(KV_COL_PC - 1) * mixture.count;
  double b = 0.0;
  for (int i = 0; i < mixture.count; ++i) b += x[i] * eos::kOmegaB_R * Tc[i] / Pc[i];
  return b;
}

bool lighter(const MixtureRecord& mixture, const double* x, double Zx, const double* y, double Zy) noexcept {
  return covolume(mixture, x) * Zy < covolume(mixture, y) * Zx;
}

bool loosely_packed(const MixtureRecord& mixture, double T, double P, const double* x, double Z) noexcept {
  return eos::loosely_packed(covolume(mixture, x), T, P, Z);
}

double pseudo_critical_temperature(const MixtureRecord& mixture, const double* x) noexcept {
  const double* Tc = mixture.table + static_cast<std::size_t>(KV_COL_TC - 1) * mixture.count;
  double sum = 0.0;
  for (int i = 0; i < mixture.count; ++i) sum += x[i] * Tc[i];
  return sum;
}

bool passes_for_vapour(const MixtureRecord& mixture, double T, double P, const double* x, double Z,
                       bool beside_water) noexcept {
  constexpr double kBesideWater = 1.25;
  return loosely_packed(mixture, T, P, x, Z) ||
         T > (beside_water ? kBesideWater : 1.0) * pseudo_critical_temperature(mixture, x);
}

StatusCode make_model(double T, double P, const eos::Context& context, HostRoutines* routines, bool free_water,
                      int order, support::Arena& arena, Model& m) {
  m.T = T;
  m.P = P;
  const MixtureRecord& r = *context.record;
  m.context = context;
  m.n = r.count;
  m.ld = support::padded(m.n);
  m.host = routines;
  m.routine = host_routine<KvFugacityRoutine>(routines, KV_ROUTINE_FUGACITY);
  m.s = arena.zeros(m.ld);
  m.row = arena.zeros(m.ld);
  m.water = free_water ? eos::find_water_family(r) : -1;
  m.free_water = m.water >= 0;
  if (m.free_water) {
    m.modified = arena.zeros(m.ld);
    if (order > 0) m.limit_dn = arena.take(static_cast<std::size_t>(m.ld) * m.n);
    m.psat = eos::water_vapour_pressure(T);
    m.solubility = eos::water_solubility(T, r.solubility_a, r.solubility_b);
    if (!(m.solubility.value >= kSmallestK)) m.solubility.value = kSmallestK;
  }
  if (m.routine != nullptr) {
    m.square = arena.take(static_cast<std::size_t>(m.n) * m.n);
    m.compared = arena.zeros(m.ld);
    return KV_OK;
  }
  m.bracub = context.tools->cubic_root();
  const StatusCode spent = spend(routines, kTemperatureWork);
  if (spent != KV_OK) return spent;
  return eos::prepare(T, context, order, arena, m.t);
}

StatusCode built_in_fugacity(Model& m, const double* x, Kind kind, double* ln_phi, const Derivatives& d,
                             bool lower, double& Z, Evaluated* keep) noexcept {
  const eos::Temperature& t = m.t;
  double* const s = keep != nullptr ? keep->s : m.s;
  m.counts.evaluated();
  const StatusCode spent = spend(m.host, d.dn != nullptr ? matrix_work(m.n) : 1);
  if (spent != KV_OK) return spent;
  const eos::Mixture mixed = eos::mix(t, x, s);
  eos::Root r;
  if (kind == Kind::stable) {
    const int status = eos::stable_root(t, m.bracub, mixed, m.P, Z, r);
    if (!eos::has_root(status)) return status;
    Z = r.Z;
  } else {
    const double rt = eos::kR * t.T;
    const int phase = kind == Kind::liquid ? KV_PHASE_LIQUID : KV_PHASE_GAS;
    const int status =
        eos::solve_root(m.bracub, mixed.a * m.P / (rt * rt), mixed.b * m.P / rt, phase, Z > 0.0, Z);
    if (!eos::has_root(status)) return status;
    eos::reduce(t, mixed, m.P, Z, r);
  }
  eos::ln_phi(t, mixed, r, s, ln_phi);
  if (keep != nullptr) {
    keep->mixed = mixed;
    keep->root = r;
  }
  if (d.dn == nullptr && d.dP == nullptr && d.dT == nullptr)
    return std::fabs(ln_phi[0]) < 1e300 ? KV_OK : KV_NOT_FINITE;
  const eos::Mechanics k = eos::mechanics(t, mixed, r);
  if (d.dn != nullptr) {
    ++m.counts.matrices;
    eos::dln_phi_dn(t, mixed, r, k, s, d.dn, m.ld, m.ld, lower);
  }
  if (d.dP != nullptr) {
    eos::p_dln_phi_dP(t, k, r, s, m.row);
    for (int i = 0; i < m.n; ++i) d.dP[i] = m.row[i] / m.P;
  }
  if (d.dT != nullptr) {
    if (t.order < 1) return KV_INTERNAL;
    eos::dln_phi_dT(t, mixed, r, k, x, s, m.row, d.dT);
  }
  return std::fabs(ln_phi[0]) < 1e300 ? KV_OK : KV_NOT_FINITE;
}

StatusCode composition_derivatives(Model& m, const Evaluated& at, double* dn) noexcept {
  ++m.counts.matrices;
  const StatusCode spent = spend(m.host, matrix_work(m.n) - 1);
  if (spent != KV_OK) return spent;
  eos::dln_phi_dn(m.t, at.mixed, at.root, eos::mechanics(m.t, at.mixed, at.root), at.s, dn, m.ld, m.ld, true);
  return KV_OK;
}

StatusCode plain_fugacity(Model& m, const double* x, Kind kind, double* ln_phi, const Derivatives& d,
                          double& Z) {
  if (m.routine == nullptr) return built_in_fugacity(m, x, kind, ln_phi, d, false, Z);
  if (kind == Kind::stable) return host_stable(m, x, ln_phi, d, Z);
  return host_phase(m, x, kind == Kind::gas ? KV_PHASE_GAS : KV_PHASE_LIQUID, ln_phi, d, Z);
}

StatusCode water_aware_fugacity(Model& m, const double* x, Kind kind, double* ln_phi, const Derivatives& d,
                                double& Z) noexcept {
  if (!m.free_water) return plain_fugacity(m, x, kind, ln_phi, d, Z);
  if (kind == Kind::gas) return plain_fugacity(m, x, kind, ln_phi, d, Z);
  // A phase asked for by Gibbs energy is a liquid here: only a liquid follows the water rules.
  return wet_liquid_fugacity(m, x, ln_phi, d, Z);
}

StatusCode k_values(Model& m, const double* x, const double* y, double* K, const KDerivatives& d,
                    double* work) {
  double *const lx = work, *const ly = lx + m.ld, *const tx = ly + m.ld, *const ty = tx + m.ld,
                *const px = ty + m.ld, *const py = px + m.ld;
  double Z = 0.0;
  StatusCode status =
      water_aware_fugacity(m, y, Kind::gas, ly, {d.dT ? ty : nullptr, d.dP ? py : nullptr, d.dy}, Z);
  if (status != KV_OK) return status;
  Z = 0.0;
  status = water_aware_fugacity(m, x, Kind::liquid, lx, {d.dT ? tx : nullptr, d.dP ? px : nullptr, d.dx}, Z);
  if (status != KV_OK) return status;
  for (int i = 0; i < m.n; ++i) {
    const double e = std::clamp(lx[i] - ly[i], -kLargestLogK, kLargestLogK);
    K[i] = support::fast_exp(e);
    if (d.dT != nullptr) d.dT[i] = (tx[i] - ty[i]) * K[i];
    if (d.dP != nullptr) d.dP[i] = (px[i] - py[i]) * K[i];
  }
  for (int j = 0; j < m.n; ++j) {
    for (int i = 0; i < m.n; ++i) {
      const std::size_t at = static_cast<std::size_t>(j) * m.ld + i;
      if (d.dx != nullptr) d.dx[at] *= K[i];
      if (d.dy != nullptr) d.dy[at] *= -K[i];
    }
  }
  return KV_OK;
}

}  // namespace kestrune::flash
