// The property exports of the toy library: a gas with Z = 1 + slope P and a liquid whose volume is linear in T
// and P, both with constant heat capacities and consistent in themselves.
#include <cmath>

#include "fake_physics.hpp"
#include "kestrune/kvgasthermo.h"

namespace {

double molar_mass(const MixtureRecord* m, const double* x) {
  const double* table = m->table;
  double sum = 0.0;
  for (int i = 0; i < m->count; ++i) sum += x[i] * table[(KV_COL_MOLAR_MASS - 1) * m->count + i];
  return sum;
}

double liquid_volume(const MixtureRecord* m, const double* x) {
  double sum = 0.0;
  for (int i = 0; i < m->count; ++i) sum += x[i] * fake::liquid_volume(i);
  return sum;
}

StatusCode heat_status(double T) {
  return T < fake::kColdest ? KV_PURE_RANGE : KV_OK;
}

double gas_entropy(double T, double P) {
  return fake::kGasCp * std::log(T / fake::kT0) -
         fake::kR / fake::kCal * (std::log(P) + fake::kGasSlope * (P - 1.0));
}

double gas_enthalpy(double T) {
  return fake::kGasCp * (T - fake::kT0);
}

double liquid_enthalpy(double T, double P, double v0) {
  const double work =
      (1.0 - fake::kExpansion * fake::kT0) * (P - 1.0) - 0.5 * fake::kCompression * (P - 1.0) * (P - 1.0);
  return fake::kLiquidCp * (T - fake::kT0) + v0 * work / fake::kCal;
}

double liquid_entropy(double T, double P, double v0) {
  return fake::kLiquidCp * std::log(T / fake::kT0) - v0 * fake::kExpansion * (P - 1.0) / fake::kCal;
}

}  // namespace

KV_API StatusCode KV_CALL GasDensity_PPR78(double T, double P, const double* x, MixtureRecord* m,
                                           double* density, double* d_dT, double* d_dP, double* d2_dTdP) {
  const double Z = 1.0 + fake::kGasSlope * P, per_atm = molar_mass(m, x) / (fake::kR * T);
  *density = per_atm * P / Z;
  *d_dT = -*density / T;
  *d_dP = per_atm / (Z * Z);
  *d2_dTdP = -*d_dP / T;
  return KV_OK;
}

KV_API StatusCode KV_CALL LiquidDensity_PPR78(double T, double P, const double* x, MixtureRecord* m,
                                              double* density, double* d_dT, double* d_dP, double* d2_dTdP) {
  const double shape = 1.0 + fake::kExpansion * (T - fake::kT0) - fake::kCompression * (P - 1.0);
  *density = molar_mass(m, x) / (liquid_volume(m, x) * shape);
  *d_dT = -*density * fake::kExpansion / shape;
  *d_dP = *density * fake::kCompression / shape;
  *d2_dTdP = -2.0 * *d_dP * fake::kExpansion / shape;
  return KV_OK;
}

KV_API StatusCode KV_CALL GasMolarEnthalpy_PPR78(double T, double, const double*, MixtureRecord*,
                                                 double* value) {
  *value = gas_enthalpy(T);
  return heat_status(T);
}

KV_API StatusCode KV_CALL GasMolarEntropy_PPR78(double T, double P, const double*, MixtureRecord*,
                                                double* value) {
  *value = gas_entropy(T, P);
  return heat_status(T);
}

KV_API StatusCode KV_CALL GasMolarFreeEnthalpy_PPR78(double T, double P, const double*, MixtureRecord*,
                                                     double* value) {
  *value = gas_enthalpy(T) - T * gas_entropy(T, P);
  return heat_status(T);
}

KV_API StatusCode KV_CALL LiquidMolarEnthalpy_PPR78(double T, double P, const double* x, MixtureRecord* m,
                                                    double* value) {
  *value = liquid_enthalpy(T, P, liquid_volume(m, x));
  return P > fake::kHighest ? KV_PURE_NO_CORRELATION : heat_status(T);
}

KV_API StatusCode KV_CALL LiquidMolarEntropy_PPR78(double T, double P, const double* x, MixtureRecord* m,
                                                   double* value) {
  *value = liquid_entropy(T, P, liquid_volume(m, x));
  return heat_status(T);
}

KV_API StatusCode KV_CALL LiquidMolarFreeEnthalpy_PPR78(double T, double P, const double* x, MixtureRecord* m,
                                                        double* value) {
  const double v0 = liquid_volume(m, x);
  *value = liquid_enthalpy(T, P, v0) - T * liquid_entropy(T, P, v0);
  return heat_status(T);
}

KV_API StatusCode KV_CALL LiquidMolarEnthalpy_Derivatives_PPR78(double T, double P, const double* x,
                                                                MixtureRecord* m, int32_t mask, double* value,
                                                                double* d_dT, double* d_dP, double*) {
  const double v0 = liquid_volume(m, x);
  *value = liquid_enthalpy(T, P, v0);
  if ((mask & KV_DERIV_T) != 0) *d_dT = fake::kLiquidCp;
  if ((mask & KV_DERIV_P) != 0) {
    *d_dP = v0 * (1.0 - fake::kExpansion * fake::kT0 - fake::kCompression * (P - 1.0)) / fake::kCal;
  }
  return heat_status(T);
}

KV_API StatusCode KV_CALL GasSpecificHeat_PPR78(double T, double, const double*, MixtureRecord*, double* Cp,
                                                double* Cv, double* speed_of_sound, double* joule_thomson) {
  *Cp = fake::kGasCp;
  *Cv = fake::kGasCv;
  *speed_of_sound = T;
  *joule_thomson = 0.5;
  return heat_status(T);
}

KV_API StatusCode KV_CALL GasDynamicViscosity_PPR78(double, double P, const double*, MixtureRecord*,
                                                    double* viscosity) {
  *viscosity = 0.011;
  return P > fake::kHighest ? KV_PURE_NO_CORRELATION : KV_OK;
}

KV_API StatusCode KV_CALL GasThermalConductivity_PPR78(double, double, const double*, MixtureRecord*,
                                                       double* conductivity) {
  *conductivity = 0.031;
  return KV_OK;
}

KV_API StatusCode KV_CALL GasN(double T, double P, const double* x, MixtureRecord* m, double* Z,
                               double* Z_normal, double* density_normal, double* normal_volume) {
  *Z = 1.0 + fake::kGasSlope * P;
  *Z_normal = 1.0 + fake::kGasSlope;
  *density_normal = 1000.0 * molar_mass(m, x) / (*Z_normal * fake::kR * 273.15);
  *normal_volume = P * 273.15 * *Z_normal / (T * *Z);
  return KV_OK;
}
