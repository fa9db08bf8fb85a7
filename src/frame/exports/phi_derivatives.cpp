// Exports: ln phi of one phase with its derivatives.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "eos/evaluation.hpp"
#include "frame/exports/property_frame.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using frame::guarded;

using exports::check_state;
using exports::mapped;

struct PhiOutputs {
  double *ln_phi, *dT, *dP, *dn;
};

StatusCode phi_core(double T, double P, const double* x, MixtureRecord& mixture, int phase, int mask,
                    const PhiOutputs& out) {
  const int n = mixture.count;
  return support::with_arena<4, 60>(n, [&](support::Arena& arena) -> StatusCode {
    eos::Temperature t;
    const bool with_T = (mask & KV_DERIV_T) != 0;
    const StatusCode status = eos::prepare(T, mixture, frame::state().group_data, with_T ? 1 : 0, arena, t);
    if (status != KV_OK) return status;
    double* padded = arena.zeros(t.ld);
    std::copy_n(x, n, padded);
    double* s = arena.zeros(t.ld);
    double* row = arena.zeros(2 * t.ld);
    const eos::Mixture m = eos::mix(t, padded, s);
    const double rt = eos::kR * T;
    double Z = 0.0;
    const int root =
        eos::solve_root(frame::tools::bracub(), m.a * P / (rt * rt), m.b * P / rt, phase, false, Z);
    if (root > 50) return root;
    eos::Root r;
    eos::reduce(t, m, P, Z, r);
    eos::ln_phi(t, m, r, s, row);
    std::copy_n(row, n, out.ln_phi);
    const eos::Mechanics k = eos::mechanics(t, m, r);
    if ((mask & KV_DERIV_P) != 0) {
      eos::p_dln_phi_dP(t, k, r, s, row);
      for (int i = 0; i < n; ++i) out.dP[i] = row[i] / P;
    }
    if (with_T) eos::dln_phi_dT(t, m, r, k, padded, s, row + t.ld, out.dT);
    if ((mask & KV_DERIV_N) != 0) eos::dln_phi_dn(t, m, r, k, s, out.dn, n, n, false);
    for (int i = 0; i < n; ++i)
      if (!(std::fabs(out.ln_phi[i]) <= DBL_MAX)) return KV_NOT_FINITE;
    return root;
  });
}

StatusCode phi_derivatives(double T, double P, const double* x, MixtureRecord* mixture, int phase, int mask,
                           const PhiOutputs& out) {
  return guarded([&]() -> StatusCode {
    const StatusCode status = check_state(T, P, x, mixture);
    if (status != KV_OK) return status;
    const bool missing = out.ln_phi == nullptr || ((mask & KV_DERIV_T) && out.dT == nullptr) ||
                         ((mask & KV_DERIV_P) && out.dP == nullptr) ||
                         ((mask & KV_DERIV_N) && out.dn == nullptr);
    if (missing) return KV_NULL_ARGUMENT;
    const auto n = static_cast<std::size_t>(mixture->count);
    std::fill_n(out.ln_phi, n, 0.0);
    if (mask & KV_DERIV_T) std::fill_n(out.dT, n, 0.0);
    if (mask & KV_DERIV_P) std::fill_n(out.dP, n, 0.0);
    if (mask & KV_DERIV_N) std::fill_n(out.dn, n * n, 0.0);
    return mapped(phi_core(T, P, x, *mixture, phase, mask, out));
  });
}

}  // namespace

KV_ENTRY StatusCode KV_CALL LiquidPhi_Derivatives_PPR78(double T, double P, const double* x,
                                                        MixtureRecord* mixture, int32_t, int32_t mask,
                                                        double* ln_phi, double* d_dT, double* d_dP,
                                                        double* d_dn) {
  return phi_derivatives(T, P, x, mixture, KV_PHASE_LIQUID, mask, {ln_phi, d_dT, d_dP, d_dn});
}
KV_ENTRY StatusCode KV_CALL GasPhi_Derivatives_PPR78(double T, double P, const double* x,
                                                     MixtureRecord* mixture, int32_t, int32_t mask,
                                                     double* ln_phi, double* d_dT, double* d_dP, double* d_dn) {
  return phi_derivatives(T, P, x, mixture, KV_PHASE_GAS, mask, {ln_phi, d_dT, d_dP, d_dn});
}
