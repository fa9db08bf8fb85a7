// Exports: densities, enthalpies, entropies, heat capacities and transport properties of one phase. Outputs are
// zeroed, arguments checked, the core called; what it returns without values leaves the zeros.

#include "eos/properties.hpp"

#include <algorithm>
#include <cmath>

#include "eos/transport.hpp"
#include "frame/exports/context.hpp"
#include "frame/exports/property_frame.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

using namespace kestrune;
using eos::Phase;
using exports::context_of;

// Zeroes the outputs, checks the call and runs core(phase).
template <class Core, class... Outputs>
StatusCode property(const Phase& p, Core&& core, Outputs*... outputs) {
  ((outputs != nullptr ? void(*outputs = 0.0) : void()), ...);
  const StatusCode pointers = frame::check_pointers(outputs...);
  if (pointers != KV_OK) return pointers;
  const StatusCode status = exports::check_state(p.T, p.P, p.x, p.context.record);
  return status != KV_OK ? status : exports::mapped(core());
}

StatusCode density(const Phase& p, double* rho, double* d_dT, double* d_dP, double* d2_dTdP) {
  return property(
      p,
      [&] {
        eos::Density d{};
        const StatusCode status = eos::density(p, d);
        *rho = d.rho;
        *d_dT = d.d_dT;
        *d_dP = d.d_dP;
        *d2_dTdP = d.d2_dTdP;
        return status;
      },
      rho, d_dT, d_dP, d2_dTdP);
}

enum class Wanted { H, S, G };

StatusCode molar_value(const Phase& p, Wanted wanted, double* value) {
  return property(
      p,
      [&] {
        eos::Caloric c;
        const StatusCode status = eos::enthalpy_and_entropy(p, wanted != Wanted::S, wanted != Wanted::H, c);
        const double v = wanted == Wanted::H ? c.H : wanted == Wanted::S ? c.S : c.H - p.T * c.S;
        if (!std::isfinite(v)) return eos::has_values(status) ? StatusCode{KV_NOT_FINITE} : status;
        *value = v;
        return status;
      },
      value);
}

using DerivativeCore = StatusCode (*)(const Phase&, int, eos::WithDerivatives&);

// Outputs of a derivative whose bit is clear are not touched.
StatusCode with_derivatives(const Phase& p, DerivativeCore core, int mask, double* value, double* d_dT,
                            double* d_dP, double* d_dn) {
  double unused_dT = 0.0, unused_dP = 0.0;
  if ((mask & KV_DERIV_T) == 0) d_dT = &unused_dT;
  if ((mask & KV_DERIV_P) == 0) d_dP = &unused_dP;
  const bool asked_n = (mask & KV_DERIV_N) != 0;
  const bool with_n = asked_n && d_dn != nullptr && frame::check_record(p.context.record) == KV_OK;
  if (with_n) std::fill_n(d_dn, p.context.record->count, 0.0);
  return property(
      p,
      [&] {
        if (asked_n && d_dn == nullptr) return StatusCode{KV_NULL_ARGUMENT};
        eos::WithDerivatives d;
        d.dn = d_dn;
        const StatusCode status = core(p, mask, d);
        if (!eos::has_values(status)) {
          if (with_n) std::fill_n(d_dn, p.context.record->count, 0.0);
          return status;
        }
        *value = d.value;
        *d_dT = d.dT;
        *d_dP = d.dP;
        return status;
      },
      value, d_dT, d_dP);
}

StatusCode normal_state(const Phase& p, double* Z, double* Z_normal, double* density_normal,
                        double* normal_volume) {
  return property(
      p,
      [&] {
        eos::NormalState s{};
        const StatusCode status = eos::normal_state(p, s);
        *Z = s.Z;
        *Z_normal = s.Z_normal;
        *density_normal = s.density_normal;
        *normal_volume = s.normal_volume;
        return status;
      },
      Z, Z_normal, density_normal, normal_volume);
}

StatusCode specific_heat(const Phase& p, double* Cp, double* Cv, double* speed_of_sound,
                         double* joule_thomson) {
  return property(
      p,
      [&] {
        eos::SpecificHeat c;
        const StatusCode status = eos::specific_heat(p, -1, c);
        *Cp = c.Cp;
        *Cv = c.Cv;
        *speed_of_sound = c.speed_of_sound;
        *joule_thomson = c.joule_thomson;
        return status;
      },
      Cp, Cv, speed_of_sound, joule_thomson);
}

using TransportCore = StatusCode (*)(const Phase&, double&);

StatusCode transport(const Phase& p, TransportCore core, double* value) {
  return property(
      p, [&] { return core(p, *value); }, value);
}

}  // namespace

KV_ENTRY StatusCode KV_CALL GasN(double T, double P, const double* x, MixtureRecord* mixture, double* Z,
                                 double* Z_normal, double* density_normal, double* normal_volume)
    KV_GUARDS(normal_state({T, P, x, KV_PHASE_GAS, context_of(mixture)}, Z, Z_normal, density_normal,
                           normal_volume));

#define KV_DENSITY(name, phase)                                                                              \
  KV_ENTRY StatusCode KV_CALL name(double T, double P, const double* x, MixtureRecord* mixture, double* rho, \
                                   double* d_dT, double* d_dP, double* d2_dTdP)                              \
      KV_GUARDS(density({T, P, x, phase, context_of(mixture)}, rho, d_dT, d_dP, d2_dTdP))
KV_DENSITY(LiquidDensity_PPR78, KV_PHASE_LIQUID);
KV_DENSITY(GasDensity_PPR78, KV_PHASE_GAS);

#define KV_VALUE(name, phase, wanted)                                                                          \
  KV_ENTRY StatusCode KV_CALL name(double T, double P, const double* x, MixtureRecord* mixture, double* value) \
      KV_GUARDS(molar_value({T, P, x, phase, context_of(mixture)}, Wanted::wanted, value))
KV_VALUE(LiquidMolarEnthalpy_PPR78, KV_PHASE_LIQUID, H);
KV_VALUE(GasMolarEnthalpy_PPR78, KV_PHASE_GAS, H);
KV_VALUE(LiquidMolarEntropy_PPR78, KV_PHASE_LIQUID, S);
KV_VALUE(GasMolarEntropy_PPR78, KV_PHASE_GAS, S);
KV_VALUE(LiquidMolarFreeEnthalpy_PPR78, KV_PHASE_LIQUID, G);
KV_VALUE(GasMolarFreeEnthalpy_PPR78, KV_PHASE_GAS, G);

#define KV_VALUE_DERIVATIVES(name, phase, core)                                                               \
  KV_ENTRY StatusCode KV_CALL name(double T, double P, const double* x, MixtureRecord* mixture, int32_t mask, \
                                   double* value, double* d_dT, double* d_dP, double* d_dn)                   \
      KV_GUARDS(                                                                                              \
          with_derivatives({T, P, x, phase, context_of(mixture)}, eos::core, mask, value, d_dT, d_dP, d_dn))
KV_VALUE_DERIVATIVES(LiquidMolarEnthalpy_Derivatives_PPR78, KV_PHASE_LIQUID, enthalpy_derivatives);
KV_VALUE_DERIVATIVES(GasMolarEnthalpy_Derivatives_PPR78, KV_PHASE_GAS, enthalpy_derivatives);
KV_VALUE_DERIVATIVES(LiquidMolarEntropy_Derivatives_PPR78, KV_PHASE_LIQUID, entropy_derivatives);
KV_VALUE_DERIVATIVES(GasMolarEntropy_Derivatives_PPR78, KV_PHASE_GAS, entropy_derivatives);

KV_ENTRY StatusCode KV_CALL GasSpecificHeat_PPR78(double T, double P, const double* x, MixtureRecord* mixture,
                                                  double* Cp, double* Cv, double* speed_of_sound,
                                                  double* joule_thomson)
    KV_GUARDS(specific_heat({T, P, x, KV_PHASE_GAS, context_of(mixture)}, Cp, Cv, speed_of_sound,
                            joule_thomson));

KV_ENTRY StatusCode KV_CALL GasDynamicViscosity_PPR78(double T, double P, const double* x,
                                                      MixtureRecord* mixture, double* viscosity)
    KV_GUARDS(transport({T, P, x, KV_PHASE_GAS, context_of(mixture)}, eos::gas_viscosity, viscosity));

KV_ENTRY StatusCode KV_CALL GasThermalConductivity_PPR78(double T, double P, const double* x,
                                                         MixtureRecord* mixture, double* conductivity)
    KV_GUARDS(transport({T, P, x, KV_PHASE_GAS, context_of(mixture)}, eos::gas_conductivity, conductivity));
