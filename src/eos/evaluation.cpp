// The stages of the phase evaluation, one after the other. Kernels and sources: eos/phase.cpp.

#include "eos/evaluation.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace kestrune::eos {
namespace {

// dZ/dT and dZ/dP by the chain rule through A and B.
void root_derivatives(const Temperature& t, double P, const Root& r, bool with_T, PhaseValues& out) {
  const double Z = r.Z, A = out.A, B = out.B;
  const double D = 3.0 * Z * Z + 2.0 * Z * ((kU - 1.0) * B - 1.0) + (kW - kU) * B * B - kU * B + A;
  const double dZ_dA = (B - Z) / D;
  const double dZ_dB =
      (A + 2.0 * kW * B + 3.0 * kW * B * B - (kU - 1.0) * Z * Z - (2.0 * (kW - kU) * B - kU) * Z) / D;
  out.dZ_dP = (dZ_dA * A + dZ_dB * B) / P;
  if (with_T) {
    const double A_t = A * (out.da_dT / out.a - 2.0 / t.T);
    out.dZ_dT = dZ_dA * A_t - dZ_dB * B / t.T;
  }
}

void heat_capacities(const Temperature& t, const Root& r, PhaseValues& out) {
  const double chi = r.eta > 0.0 ? r.psi / r.eta : 1.0;
  const double eta_t = -r.eta * (1.0 / t.T + out.dZ_dT / r.Z);
  const double second = t.T * out.d2a_dT2 / out.b * r.phi;
  const double first = -(out.a - t.T * out.da_dT) / out.b * chi * eta_t;
  out.Cp_res = (second + first + kR * r.z_minus_1 + kR * t.T * out.dZ_dT) * kCalPerCm3Atm;
  out.Cv_res = second * kCalPerCm3Atm;
}

void fill_ln_phi(const Temperature& t, const Mixture& m, const Root& r, const double* s, double* row,
                 PhaseValues& out) {
  if (out.ln_phi == nullptr) return;
  ln_phi(t, m, r, s, row);
  std::copy_n(row, t.n, out.ln_phi);
}

// Slopes of ln phi, and the partial enthalpies by them. work begins with s.
void fill_slopes(const Temperature& t, const Mixture& m, const Root& r, double P, const double* x,
                 bool with_enthalpies, double* work, PhaseValues& out) {
  double *const s = work, *const s_t = work + t.ld, *const row = work + 2 * t.ld;
  const bool partial = with_enthalpies && out.h_partial != nullptr;
  if (!partial && out.dln_phi_dT == nullptr && out.dln_phi_dP == nullptr) return;
  const Mechanics k = mechanics(t, m, r);
  if (out.dln_phi_dP != nullptr) {
    p_dln_phi_dP(t, k, r, s, row);
    for (int i = 0; i < t.n; ++i) out.dln_phi_dP[i] = row[i] / P;
  }
  if (!partial && out.dln_phi_dT == nullptr) return;
  dln_phi_dT(t, m, r, k, x, s, s_t, row);
  if (out.dln_phi_dT != nullptr) std::copy_n(row, t.n, out.dln_phi_dT);
  if (!partial) return;
  for (int i = 0; i < t.n; ++i) out.h_partial[i] = -kR * t.T * t.T * row[i] * kCalPerCm3Atm;
}

}  // namespace

bool evaluate(const Temperature& t, CubicRoot bracub, double P, const double* x, int phase, int level,
              const double* molar_mass, double* work, PhaseValues& out) noexcept {
  double* const s = work;
  const Mixture m = mix(t, x, s);
  const double rt = kR * t.T;
  out.a = m.a;
  out.b = m.b;
  out.A = m.a * P / (rt * rt);
  out.B = m.b * P / rt;
  if (stage::runs(stage::kRoot, level)) {
    const int status = solve_root(bracub, out.A, out.B, phase, false, out.Z);
    if (status == KV_NOT_FINITE) return false;
    out.status = status;
    if (status == KV_NO_ROOT) return false;
  }
  out.v = out.Z * rt / P;
  if (molar_mass != nullptr) {
    double mass = 0.0;
    for (int i = 0; i < t.n; ++i) mass += x[i] * molar_mass[i];
    out.rho = mass / out.v;
  }
  Root r;
  reduce(t, m, P, out.Z, r);
  if (!stage::runs(stage::kRoot, level)) r.z_minus_1 = out.Z - 1.0;  // a Z that was given need not be a root
  const bool with_T = stage::runs(stage::kAlphaT, level);
  if (with_T) out.da_dT = quadratic(t, t.aij_t, x);
  if (stage::runs(stage::kRootDerivatives, level)) root_derivatives(t, P, r, with_T, out);
  if (stage::runs(stage::kLnPhi, level)) fill_ln_phi(t, m, r, s, work + t.ld, out);
  if (stage::runs(stage::kLnPhiDerivatives, level))
    fill_slopes(t, m, r, P, x, stage::runs(stage::kPartialEnthalpy, level), work, out);
  if (stage::runs(stage::kEnthalpy, level)) {
    out.H_res = residual_enthalpy(t.T, out.a, out.da_dT, out.b, r);
    out.S_res = residual_entropy(out.da_dT, out.b, r);
  }
  if (stage::runs(stage::kHeatCapacity, level)) {
    out.d2a_dT2 = quadratic(t, t.aij_tt, x);
    heat_capacities(t, r, out);
  }
  return std::fabs(out.v) <= DBL_MAX && std::fabs(r.log_z_minus_B) <= DBL_MAX;
}

}  // namespace kestrune::eos
