// Densities, enthalpies and entropies. The slopes are those of P = RT/(v - b) - a/(v^2 + 2bv - b^2) in the
// packing eta = b/v, so that nothing overflows or cancels in a dilute gas.

#include "eos/properties.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "eos/liquid_water.hpp"
#include "frame/cas.hpp"

namespace kestrune::eos {
namespace {

constexpr double kNormalTemperature = 273.15;
constexpr double kNoStep = 1e-9;  // cal/mol, of the enthalpy of mixing of water and ammonia

bool finite(double value) {
  return std::fabs(value) <= DBL_MAX;
}

bool all_finite(int n, const double* values) {
  bool good = true;
  for (int i = 0; i < n; ++i) good &= finite(values[i]);
  return good;
}

double* padded_copy(const Phase& p, support::Arena& arena) {
  double* x = arena.zeros(support::padded(p.context.record->count));
  std::copy_n(p.x, p.context.record->count, x);
  return x;
}

// Enthalpy of liquid water over the ideal gas.
WithSlope water_enthalpy(double T) {
  const WithSlope h = water_vaporisation_enthalpy(T);
  return {-h.value, -h.d_dT};
}

struct WaterAmmonia {
  int water, ammonia;  // indices, -1: not both present
  double Mw, Ma;
};
// absent: also where one or both are absent.
WaterAmmonia find_water_ammonia(const MixtureRecord& m, const double* x, bool absent = false) {
  const double below = absent ? -DBL_MAX : 0.0;
  WaterAmmonia pair{-1, -1, 0.0, 0.0};
  const int w = frame::find_cas(m.count, m.table, frame::WaterCas) - 1;
  if (w < 0 || !(x[w] > below)) return pair;
  if ((m.flags & FreeWaterFlag) != 0 && x[w] >= kSmallestFraction) return pair;
  const int a = frame::find_cas(m.count, m.table, frame::kAmmoniaCas) - 1;
  if (a < 0 || !(x[a] > below)) return pair;
  const double* M = m.table + static_cast<std::size_t>(KV_COL_MOLAR_MASS - 1) * m.count;
  return {w, a, M[w], M[a]};
}

// Index of the water that is liquid water in the phase, -1: none.
int liquid_water(const Phase& p) noexcept {
  const MixtureRecord& m = *p.context.record;
  if (p.kind != KV_PHASE_LIQUID || (m.flags & FreeWaterFlag) == 0) return -1;
  const double* family = m.table + static_cast<std::size_t>(KV_COL_FAMILY - 1) * m.count;
  for (int i = 0; i < m.count; ++i)
    if (family[i] == KV_FAMILY_WATER && p.x[i] >= kSmallestFraction) return i;
  return -1;
}

// Polynomial of the mixing enthalpy in y = 1 - 2 x_a, and its slope.
WithSlope mixing_polynomial(double y) {
  constexpr double c0 = 47.3943643, c1 = 12.15, c2 = -66.20761, c3 = -12.15, c4 = 18.813245700000003;
  return {c0 + y * (c1 + y * (c2 + y * (c3 + y * c4))), c1 + y * (2.0 * c2 + y * (3.0 * c3 + y * 4.0 * c4))};
}

Slopes slopes_at(const PhaseValues& v, double T) {
  return slopes(v.a / v.b, v.da_dT / v.b, v.b, T, v.B / v.Z);
}

}  // namespace

Seen as_seen(const Phase& p, double* y) noexcept {
  const int n = p.context.record->count, water = liquid_water(p);
  if (water < 0) {
    std::copy_n(p.x, n, y);
    return {y, 1.0, -1, 0.0};
  }
  // 1 - x_w; of a composition that sums to one by the sum of the others, which has the digits of traces.
  constexpr double kRounding = 1e-12;
  const double rest = 1.0 - p.x[water];
  double share = 0.0;
  for (int i = 0; i < n; ++i) share += i == water ? 0.0 : p.x[i];
  if (rest > 0.0 && std::fabs(share - rest) > kRounding) share = rest;
  for (int i = 0; i < n; ++i) y[i] = i == water || !(share > 0.0) ? 0.0 : p.x[i] / share;
  return {y, std::max(share, 0.0), water, p.x[water]};
}

StatusCode residual(const Phase& p, const Temperature& t, const double* y, int level, double* work,
                    PhaseValues& out) {
  if (evaluate(t, p.context.tools->cubic_root(), p.P, y, p.kind, level, nullptr, work, out)) return out.status;
  return out.status == KV_NO_ROOT ? KV_NO_ROOT : KV_NOT_FINITE;
}

WithSlope liquid_water_entropy(double T, double P) noexcept {
  const WithSlope h = water_vaporisation_enthalpy(T), psat = water_vapour_pressure(T);
  return {-h.value / T - kCalR * std::log(psat.value / P),
          (h.value / T - h.d_dT) / T - kCalR * psat.d_dT / psat.value};
}

StatusCode residual_at(const Phase& p, const double* y, int level, support::Arena& arena, PhaseValues& out) {
  Temperature t;
  const StatusCode prepared = prepare(p.T, p.context, order_of_level(level), arena, t);
  return prepared != KV_OK ? prepared : residual(p, t, y, level, arena.take(3 * t.ld), out);
}

StatusCode pure_residuals(const Phase& p, int water, support::Arena& arena, double* H, double* S) {
  Temperature t;
  const StatusCode prepared = prepare(p.T, p.context, 1, arena, t);
  if (prepared != KV_OK) return prepared;
  double* y = arena.zeros(t.ld);
  double* work = arena.take(3 * t.ld);
  for (int j = 0; j < t.n; ++j) {
    if (j == water) continue;
    y[j] = 1.0;
    PhaseValues v;
    const StatusCode root = residual(p, t, y, 7, work, v);
    y[j] = 0.0;
    if (!has_values(root)) return root;
    if (H != nullptr) H[j] = v.H_res;
    if (S != nullptr) S[j] = v.S_res;
  }
  return KV_OK;
}

bool water_ammonia_pair(const MixtureRecord& mixture, const double* x) noexcept {
  return find_water_ammonia(mixture, x).water >= 0;
}

StatusCode water_ammonia_enthalpy(const Phase& p, double& H) noexcept {
  const WaterAmmonia pair = find_water_ammonia(*p.context.record, p.x);
  H = 0.0;
  if (pair.water < 0) return KV_OK;
  for (const double M : {pair.Mw, pair.Ma})
    if (!(M > 0.0 && M <= DBL_MAX)) return KV_COMPONENT_DATA;
  const double xw = p.x[pair.water], xa = p.x[pair.ammonia];
  H = (xw * pair.Mw + xa * pair.Ma) * mixing_polynomial(1.0 - 2.0 * xa).value;
  return KV_OK;
}

StatusCode molar_mass(const Phase& p, double& M) noexcept {
  const int n = p.context.record->count;
  const double* mass = p.context.record->table + static_cast<std::size_t>(KV_COL_MOLAR_MASS - 1) * n;
  M = 0.0;
  for (int i = 0; i < n; ++i) {
    if (p.x[i] == 0.0) continue;
    if (!(mass[i] > 0.0 && mass[i] <= DBL_MAX)) return KV_COMPONENT_DATA;
    M += p.x[i] * mass[i];
  }
  return KV_OK;
}

Slopes slopes(double a_over_b, double da_dT_over_b, double b, double T, double eta) noexcept {
  const double q = a_over_b / (kR * T), tau = da_dT_over_b / kR;
  const double c = 1.0 / (1.0 - eta);
  const double chi = 1.0 / (1.0 + eta * (kU + kW * eta));
  const double fall = eta * (kU - 2.0 * kW * eta) * chi * chi;  // -v^2 d(eta chi/b)/dv
  Slopes s;
  s.K = c * c - q * fall;
  s.L = c - tau * eta * chi;
  s.K_T = c * c - tau * fall;
  s.N = 2.0 * c * c * c + q * eta * chi * chi * (2.0 - 8.0 * (1.0 + eta) * (1.0 + eta) * chi);
  s.shift = b * (c * c - chi * ((kU - 2.0 * kW * eta) * q * chi - tau)) / s.K;
  return s;
}

StatusCode volume(const Phase& p, PhaseValues& out) {
  return support::with_arena<2, 60>(p.context.record->count, [&](support::Arena& arena) -> StatusCode {
    return residual_at(p, padded_copy(p, arena), 1, arena, out);
  });
}

StatusCode density(const Phase& p, Density& out) {
  double M = 0.0;
  const StatusCode mass = molar_mass(p, M);
  if (mass != KV_OK) return mass;
  return support::with_arena<3, 60>(p.context.record->count, [&](support::Arena& arena) -> StatusCode {
    PhaseValues v;
    const StatusCode root = residual_at(p, padded_copy(p, arena), 3, arena, v);
    if (!has_values(root)) return root;
    const Slopes s = slopes_at(v, p.T);
    const double scale = M / (kR * p.T * s.K);
    const Density d{M / v.v, -M / v.v * s.L / (p.T * s.K), scale,
                    scale / (p.T * s.K) * (s.N * s.L / s.K - s.K_T - 2.0 * s.L)};
    if (!finite(d.rho) || !finite(d.d_dT) || !finite(d.d_dP) || !finite(d.d2_dTdP)) return KV_NOT_FINITE;
    out = d;
    return root;
  });
}

namespace {

StatusCode molar_enthalpy(const Phase& p, const IdealGas& ideal, const Seen& seen, const PhaseValues& v,
                          double& H) {
  double mixing = 0.0;
  const StatusCode known = water_ammonia_enthalpy(p, mixing);
  if (known != KV_OK) return known;
  H = ideal_enthalpy(p.context.record->count, p.x, ideal) + seen.share * v.H_res - mixing;
  if (seen.water >= 0) H += seen.x_water * water_enthalpy(p.T).value;
  return KV_OK;
}

double molar_entropy(const Phase& p, const IdealGas& ideal, const Seen& seen, const PhaseValues& v) {
  const double S = ideal_entropy(p.context.record->count, p.x, p.P, ideal) + seen.share * v.S_res;
  return seen.water >= 0 ? S + seen.x_water * liquid_water_entropy(p.T, p.P).value : S;
}

}  // namespace

StatusCode enthalpy_and_entropy(const Phase& p, bool want_H, bool want_S, Caloric& out) {
  const int n = p.context.record->count;
  return support::with_arena<3, 60>(n, [&](support::Arena& arena) -> StatusCode {
    IdealGas ideal;
    const unsigned parts = (want_H ? kIdealH : 0u) | (want_S ? kIdealS : 0u);
    const StatusCode status = ideal_gas(p.T, p.context, p.x, parts, arena, ideal);
    if (!has_values(status)) return status;
    const Seen seen = as_seen(p, arena.zeros(support::padded(n)));
    PhaseValues v;
    StatusCode root = KV_OK;
    if (seen.share > 0.0) root = residual_at(p, seen.y, 7, arena, v);
    if (!has_values(root)) return root;
    Caloric c;
    const StatusCode known = want_H ? molar_enthalpy(p, ideal, seen, v, c.H) : StatusCode{KV_OK};
    if (known != KV_OK) return known;
    if (want_S) c.S = molar_entropy(p, ideal, seen, v);
    if (!finite(c.H) || !finite(c.S)) return KV_NOT_FINITE;
    out = c;
    return graver(status, root);
  });
}

namespace {

// Derivatives of the ideal part and of the water-ammonia term with the mole numbers, added to dn[n].
void add_ideal_dn(const Phase& p, const IdealGas& ideal, double H_ideal, double* dn) {
  const int n = p.context.record->count;
  for (int i = 0; i < n; ++i) dn[i] += ideal.h[i] - H_ideal;
  const WaterAmmonia pair = find_water_ammonia(*p.context.record, p.x, true);
  if (pair.water < 0) return;
  const double xw = p.x[pair.water], xa = p.x[pair.ammonia];
  const WithSlope poly = mixing_polynomial(1.0 - 2.0 * xa);
  const double mass = xw * pair.Mw + xa * pair.Ma;
  // Of one that is absent the limit of a trace, where the term begins without a step.
  if (!(xw > 0.0 && xa > 0.0) && !(std::fabs(mass * poly.value) < kNoStep)) return;
  const double with_w = pair.Mw * poly.value;
  const double with_a = pair.Ma * poly.value - 2.0 * mass * poly.d_dT;  // slope: d/dy
  for (int i = 0; i < n; ++i) dn[i] -= with_w * ((i == pair.water) - xw) + with_a * ((i == pair.ammonia) - xa);
}

// What the enthalpy of a phase is made of beside the ideal gas.
struct EnthalpyParts {
  Seen seen;
  PhaseValues v;              // of what the equation of state sees, with partial enthalpies [n]
  double shift = 0.0;         // see Slopes
  WithSlope water{0.0, 0.0};  // liquid water over the ideal gas
  double excess() const { return seen.share * v.H_res + seen.x_water * water.value; }
};

// Beside water with nothing else the partial enthalpies are those of every component alone.
StatusCode enthalpy_parts(const Phase& p, bool with_T, bool with_n, support::Arena& arena, EnthalpyParts& e) {
  const int ld = support::padded(p.context.record->count);
  e.seen = as_seen(p, arena.zeros(ld));
  e.v.h_partial = arena.zeros(ld);
  if (e.seen.water >= 0) e.water = water_enthalpy(p.T);
  if (!(e.seen.share > 0.0))
    return with_n ? pure_residuals(p, e.seen.water, arena, e.v.h_partial, nullptr) : StatusCode{KV_OK};
  const StatusCode root = residual_at(p, e.seen.y, with_T ? 9 : 8, arena, e.v);
  if (has_values(root)) e.shift = slopes_at(e.v, p.T).shift;
  return root;
}

// dn[n] of a phase whose ideal part is H_ideal.
StatusCode enthalpy_dn(const Phase& p, const EnthalpyParts& e, const IdealGas& ideal, double H_ideal,
                       double* dn) {
  const int n = p.context.record->count;
  // A component that is absent has an ideal-gas enthalpy all the same; unknown ones keep 0.
  const IdealGas h_only{ideal.h, nullptr, nullptr};
  for (int i = 0; i < n; ++i) {
    if (p.x[i] >= kSmallestFraction) continue;
    if (!has_values(ideal_gas_of(p.T, p.context, i, h_only))) ideal.h[i] = 0.0;
  }
  const double excess = e.excess();
  for (int i = 0; i < n; ++i) dn[i] = (i == e.seen.water ? e.water.value : e.v.h_partial[i]) - excess;
  add_ideal_dn(p, ideal, H_ideal, dn);
  return all_finite(n, dn) ? KV_OK : KV_NOT_FINITE;
}

}  // namespace

StatusCode enthalpy_derivatives(const Phase& p, int mask, WithDerivatives& out) {
  const int n = p.context.record->count;
  const bool with_T = (mask & KV_DERIV_T) != 0, with_n = (mask & KV_DERIV_N) != 0;
  return support::with_arena<5, 80>(n, [&](support::Arena& arena) -> StatusCode {
    IdealGas ideal;
    const StatusCode status = ideal_gas(p.T, p.context, p.x, kIdealH | (with_T ? kIdealCp : 0u), arena, ideal);
    if (!has_values(status)) return status;
    EnthalpyParts e;
    const StatusCode root = enthalpy_parts(p, with_T, with_n, arena, e);
    if (!has_values(root)) return root;
    double mixing = 0.0;
    const StatusCode known = water_ammonia_enthalpy(p, mixing);
    if (known != KV_OK) return known;
    const Seen& seen = e.seen;
    const double H_ideal = ideal_enthalpy(n, p.x, ideal);
    WithDerivatives d;
    d.value = H_ideal + seen.share * e.v.H_res - mixing + seen.x_water * e.water.value;
    if (with_T)
      d.dT = ideal_heat_capacity(n, p.x, ideal) + seen.share * e.v.Cp_res + seen.x_water * e.water.d_dT;
    if ((mask & KV_DERIV_P) != 0) d.dP = seen.share * e.shift * kCalPerCm3Atm;
    if (!finite(d.value) || !finite(d.dT) || !finite(d.dP)) return KV_NOT_FINITE;
    d.dn = out.dn;
    const StatusCode of_dn = with_n ? enthalpy_dn(p, e, ideal, H_ideal, d.dn) : StatusCode{KV_OK};
    if (of_dn != KV_OK) return of_dn;
    out = d;
    return graver(status, root);
  });
}

namespace {

// cal/(mol K).
StatusCode ideal_Cp(const Phase& p, support::Arena& arena, double& Cp) {
  IdealGas ideal;
  const StatusCode status = ideal_gas(p.T, p.context, p.x, kIdealCp, arena, ideal);
  if (has_values(status)) Cp = ideal_heat_capacity(p.context.record->count, p.x, ideal);
  return status;
}

// m/s, from Cp/Cv, K of Slopes and the molar mass. KV_NOT_FINITE where it would be imaginary.
StatusCode sound_speed(double ratio, double K, double T, double M, double& speed) {
  const double square = 1.01325 * ratio * K * kR * T / M;
  if (!(square >= 0.0 && square <= DBL_MAX)) return KV_NOT_FINITE;
  speed = std::sqrt(square) * 10.0;
  return KV_OK;
}

}  // namespace

StatusCode specific_heat(const Phase& p, int selector, SpecificHeat& out) {
  const bool all = selector == -1, last = selector == 6;
  const auto wanted = [&](int k) { return all || (last ? k == 6 : k <= selector); };
  double M = 0.0;
  // What the speed of sound lacks is no reason to keep back the others.
  StatusCode sound = wanted(3) ? molar_mass(p, M) : StatusCode{KV_OK};
  return support::with_arena<4, 60>(p.context.record->count, [&](support::Arena& arena) -> StatusCode {
    double Cp_ideal = 0.0;
    const StatusCode status = wanted(1) ? ideal_Cp(p, arena, Cp_ideal) : StatusCode{KV_OK};
    if (!has_values(status)) return status;
    PhaseValues v;
    const StatusCode root = residual_at(p, padded_copy(p, arena), 9, arena, v);
    if (!has_values(root) || root == -1) return root;
    const Slopes s = slopes_at(v, p.T);
    // Cp - Cv = R L^2/K: taken off part by part, so that both stay exact where K vanishes.
    const double Cp = Cp_ideal + v.Cp_res, Cv = Cp_ideal - kResidualR + v.Cv_res;
    SpecificHeat c{v.Cp_res,         Cp, Cv, 0.0, -s.shift * kCalPerCm3Atm / Cp, v.v / (s.K * kR * p.T),
                   s.L / (v.Z * p.T)};
    double* const outputs[] = {&c.Cp_res,
                               &c.Cp,
                               &c.Cv,
                               &c.speed_of_sound,
                               &c.joule_thomson,
                               &c.compressibility,
                               &c.pressure_coefficient};
    if (wanted(3) && sound == KV_OK) sound = sound_speed(Cp / Cv, s.K, p.T, M, c.speed_of_sound);
    for (int k = 0; k < 7; ++k)
      if (!wanted(k)) *outputs[k] = 0.0;
    for (const double* value : outputs)
      if (!finite(*value)) return KV_NOT_FINITE;
    out = c;
    return sound != KV_OK ? sound : graver(status, root);
  });
}

StatusCode normal_state(const Phase& p, NormalState& out) {
  double M = 0.0;
  const StatusCode mass = molar_mass(p, M);
  Phase normal = p;
  normal.T = kNormalTemperature;
  normal.P = 1.0;
  PhaseValues here, there;
  const StatusCode status = volume(p, here), status_normal = volume(normal, there);
  if (!has_values(status)) return status;
  if (!has_values(status_normal)) return status_normal;
  const double v_normal = there.Z * kR * kNormalTemperature;  // cm3/mol at 1 atm
  const double density = mass == KV_OK ? 1000.0 * M / v_normal : 0.0;
  const NormalState s{here.Z, there.Z, density, v_normal * p.P / (here.Z * kR * p.T)};
  if (!finite(s.density_normal) || !finite(s.normal_volume)) return KV_NOT_FINITE;
  out = s;
  return mass != KV_OK ? mass : graver(status, status_normal);
}

}  // namespace kestrune::eos
