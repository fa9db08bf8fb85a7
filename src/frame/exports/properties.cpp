// Exports: properties of one phase. ln phi and its derivatives work; the cores of the others come with later
// versions: their outputs are zeroed and KV_NOT_AVAILABLE is returned.

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "eos/evaluation.hpp"
#include "frame/boundary.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using frame::guarded;

StatusCode check_state(double T, double P, const double* x, const MixtureRecord* mixture) {
  return frame::first_failure(
      {frame::check_temperature(T), frame::check_pressure(P), frame::check_feed(x, mixture)});
}

// Statuses of the cores that a host sees: warnings up to 50 and 201, 202 are none.
StatusCode mapped(StatusCode status) {
  return status <= 50 || status == 201 || status == 202 ? KV_OK : status;
}

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

// A property whose core is not in this build: outputs zeroed, arguments checked.
template <class... Outputs>
StatusCode not_available(double T, double P, const double* x, const MixtureRecord* mixture,
                         Outputs*... outputs) {
  ((outputs != nullptr ? void(*outputs = 0.0) : void()), ...);
  return guarded([&]() -> StatusCode {
    const StatusCode pointers = frame::check_pointers(outputs...);
    if (pointers != KV_OK) return pointers;
    const StatusCode status = check_state(T, P, x, mixture);
    return status != KV_OK ? status : KV_NOT_AVAILABLE;
  });
}

StatusCode derivatives_not_available(double T, double P, const double* x, const MixtureRecord* mixture,
                                     int mask, double* value, double* d_dT, double* d_dP, double* d_dn) {
  const StatusCode status = check_state(T, P, x, mixture);
  if (status == KV_OK && (mask & KV_DERIV_N) != 0 && d_dn != nullptr) std::fill_n(d_dn, mixture->count, 0.0);
  if ((mask & KV_DERIV_T) != 0 && d_dT != nullptr) *d_dT = 0.0;
  if ((mask & KV_DERIV_P) != 0 && d_dP != nullptr) *d_dP = 0.0;
  const bool missing = ((mask & KV_DERIV_T) && d_dT == nullptr) || ((mask & KV_DERIV_P) && d_dP == nullptr) ||
                       ((mask & KV_DERIV_N) && d_dn == nullptr);
  if (missing) {
    if (value != nullptr) *value = 0.0;
    return KV_NULL_ARGUMENT;
  }
  return not_available(T, P, x, mixture, value);
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

KV_ENTRY StatusCode KV_CALL GasN(double T, double P, const double* x, MixtureRecord* mixture, double* Z,
                                 double* Z_normal, double* density_normal, double* normal_volume) {
  return not_available(T, P, x, mixture, Z, Z_normal, density_normal, normal_volume);
}

#define KV_DENSITY(name)                                                                           \
  KV_ENTRY StatusCode KV_CALL name(double T, double P, const double* x, MixtureRecord* mixture,    \
                                   double* density, double* d_dT, double* d_dP, double* d2_dTdP) { \
    return not_available(T, P, x, mixture, density, d_dT, d_dP, d2_dTdP);                          \
  }
KV_DENSITY(LiquidDensity_PPR78)
KV_DENSITY(GasDensity_PPR78)

#define KV_VALUE(name)                                                                          \
  KV_ENTRY StatusCode KV_CALL name(double T, double P, const double* x, MixtureRecord* mixture, \
                                   double* value) {                                             \
    return not_available(T, P, x, mixture, value);                                              \
  }
KV_VALUE(LiquidMolarEnthalpy_PPR78)
KV_VALUE(GasMolarEnthalpy_PPR78)
KV_VALUE(LiquidMolarEntropy_PPR78)
KV_VALUE(GasMolarEntropy_PPR78)
KV_VALUE(LiquidMolarFreeEnthalpy_PPR78)
KV_VALUE(GasMolarFreeEnthalpy_PPR78)
KV_VALUE(GasDynamicViscosity_PPR78)
KV_VALUE(GasThermalConductivity_PPR78)

#define KV_VALUE_DERIVATIVES(name)                                                                            \
  KV_ENTRY StatusCode KV_CALL name(double T, double P, const double* x, MixtureRecord* mixture, int32_t mask, \
                                   double* value, double* d_dT, double* d_dP, double* d_dn) {                 \
    return derivatives_not_available(T, P, x, mixture, mask, value, d_dT, d_dP, d_dn);                        \
  }
KV_VALUE_DERIVATIVES(LiquidMolarEnthalpy_Derivatives_PPR78)
KV_VALUE_DERIVATIVES(GasMolarEnthalpy_Derivatives_PPR78)
KV_VALUE_DERIVATIVES(LiquidMolarEntropy_Derivatives_PPR78)
KV_VALUE_DERIVATIVES(GasMolarEntropy_Derivatives_PPR78)

KV_ENTRY StatusCode KV_CALL GasSpecificHeat_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                  double* Cp, double* Cv, double* speed_of_sound,
                                                  double* joule_thomson) {
  return not_available(T, P, x, mixture, Cp, Cv, speed_of_sound, joule_thomson);
}
