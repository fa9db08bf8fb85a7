// Exports: ln phi of one phase with its derivatives.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "eos/evaluation.hpp"
#include "frame/exports/context.hpp"
#include "frame/exports/property_frame.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using exports::check_state;
using exports::context_of;
using exports::mapped;

// [count] each, dn [count * count]; null for what is not asked for.
struct PhiOutputs {
  double *ln_phi, *dT, *dP, *dn;
};

void zero(std::size_t n, const PhiOutputs& out) {
  for (double* array : {out.ln_phi, out.dT, out.dP})
    if (array != nullptr) std::fill_n(array, n, 0.0);
  if (out.dn != nullptr) std::fill_n(out.dn, n * n, 0.0);
}

bool all_finite(std::size_t n, const PhiOutputs& out) {
  bool good = true;
  const auto look = [&](const double* array, std::size_t size) {
    for (std::size_t i = 0; array != nullptr && i < size; ++i) good &= std::fabs(array[i]) <= DBL_MAX;
  };
  for (const double* array : {out.ln_phi, out.dT, out.dP}) look(array, n);
  look(out.dn, n * n);
  return good;
}

StatusCode phi_core(double T, double P, const double* x, const eos::Context& context, int phase,
                    const PhiOutputs& out) {
  const int n = context.record->count;
  return support::with_arena<4, 60>(n, [&](support::Arena& arena) -> StatusCode {
    eos::Temperature t;
    const StatusCode status = eos::prepare(T, context, out.dT != nullptr ? 1 : 0, arena, t);
    if (status != KV_OK) return status;
    double* padded = arena.zeros(t.ld);
    std::copy_n(x, n, padded);
    double* s = arena.zeros(t.ld);
    double* row = arena.zeros(2 * t.ld);
    const eos::Mixture m = eos::mix(t, padded, s);
    const double rt = eos::kR * T;
    double Z = 0.0;
    const int root =
        eos::solve_root(context.tools->cubic_root(), m.a * P / (rt * rt), m.b * P / rt, phase, false, Z);
    if (!eos::has_root(root)) return root;
    eos::Root r;
    eos::reduce(t, m, P, Z, r);
    eos::ln_phi(t, m, r, s, row);
    std::copy_n(row, n, out.ln_phi);
    const eos::Mechanics k = eos::mechanics(t, m, r);
    if (out.dP != nullptr) {
      eos::p_dln_phi_dP(t, k, r, s, row);
      for (int i = 0; i < n; ++i) out.dP[i] = row[i] / P;
    }
    if (out.dT != nullptr) eos::dln_phi_dT(t, m, r, k, padded, s, row + t.ld, out.dT);
    if (out.dn != nullptr) eos::dln_phi_dn(t, m, r, k, s, out.dn, n, n, false);
    return all_finite(static_cast<std::size_t>(n), out) ? root : KV_NOT_FINITE;
  });
}

StatusCode phi_derivatives(double T, double P, const double* x, MixtureRecord* mixture, int phase, int mask,
                           PhiOutputs out) {
  const StatusCode readable = frame::check_record(mixture);
  if (readable != KV_OK) return readable;
  bool missing = out.ln_phi == nullptr;
  const auto asked = [&](int bit, double*& array) {
    if ((mask & bit) == 0) array = nullptr;
    missing = missing || ((mask & bit) != 0 && array == nullptr);
  };
  asked(KV_DERIV_T, out.dT);
  asked(KV_DERIV_P, out.dP);
  asked(KV_DERIV_N, out.dn);
  const auto n = static_cast<std::size_t>(mixture->count);
  zero(n, out);
  if (missing) return KV_NULL_ARGUMENT;
  StatusCode status = check_state(T, P, x, mixture);
  if (status == KV_OK) status = mapped(phi_core(T, P, x, context_of(mixture), phase, out));
  if (status != KV_OK) zero(n, out);
  return status;
}

}  // namespace

KV_ENTRY StatusCode KV_CALL LiquidPhi_Derivatives_PPR78(double T, double P, const double* x,
                                                        MixtureRecord* mixture, int32_t, int32_t mask,
                                                        double* ln_phi, double* d_dT, double* d_dP,
                                                        double* d_dn)
    KV_GUARDS(phi_derivatives(T, P, x, mixture, KV_PHASE_LIQUID, mask, {ln_phi, d_dT, d_dP, d_dn}));
KV_ENTRY StatusCode KV_CALL GasPhi_Derivatives_PPR78(double T, double P, const double* x,
                                                     MixtureRecord* mixture, int32_t, int32_t mask,
                                                     double* ln_phi, double* d_dT, double* d_dP, double* d_dn)
    KV_GUARDS(phi_derivatives(T, P, x, mixture, KV_PHASE_GAS, mask, {ln_phi, d_dT, d_dP, d_dn}));
