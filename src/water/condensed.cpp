// Liquid water and ice: vapour pressures, volumes, dissolved gases.

#include "water/condensed.hpp"

#include <cmath>

#include "eos/constants.hpp"
#include "support/status.hpp"

namespace kestrune::water {
namespace {

using frame::PureProperty;

constexpr std::int32_t kWater = 7732185, kCO2 = 124389, kH2S = 7783064;
constexpr double kPascalPerAtm = 101325.0;

// Isothermal compressibility of liquid water, 1/atm: within 10 % between 273 and 383 K [Kel75].
// [Kel75] G. S. Kell, J. Chem. Eng. Data 20 (1975) 97.
constexpr double kCompressibility = 4.6e-5;
// Molar volume of ice at the triple point, cm3/mol: 916.7 kg/m3 [Iap09]. [Iap09] IAPWS R10-06 (2009).
constexpr double kIceVolume = 19.652;
// Partial molar volumes at infinite dilution in water, cm3/mol, about 25 to 50 C: CO2 [Spy03], H2S [Bar82].
// [Spy03] N. Spycher, K. Pruess, J. Ennis-King, Geochim. Cosmochim. Acta 67 (2003) 3015.
// [Bar82] J. A. Barbero, L. G. Hepler, K. G. McCurdy, P. R. Tremaine, Can. J. Chem. 60 (1982) 1872.
constexpr double kVolumeCO2 = 32.6, kVolumeH2S = 34.9;

double supercooled(double T) noexcept {
  return std::exp(54.842763 - 6763.22 / T - 4.210 * std::log(T) + 0.000367 * T +
                  std::tanh(0.0415 * (T - 218.8)) *
                      (53.878 - 1331.22 / T - 9.44523 * std::log(T) + 0.014025 * T));
}

// A value also where the library has continued its correlation.
StatusCode pure(const eos::Tools& tools, PureProperty property, std::int32_t cas, double T,
                double& value) noexcept {
  StatusCode status = KV_OK;
  value = tools.pure_value(property, cas, T, 0.0, 0.0, status);
  return support::has_pure_value(status) ? StatusCode{KV_OK} : status;
}

// ln of the Henry constant in atm. The library's unit is Pa, which is none of the working units.
StatusCode log_henry(const eos::Tools& tools, std::int32_t cas, double T, double& value) noexcept {
  StatusCode status = KV_OK;
  char unit[frame::kUnitLength];
  double H = 0.0;
  tools.pure_by_choice(PureProperty::HenryConstant, &cas, &T, &T, &T, &H, unit, &status);
  if (!support::has_pure_value(status)) return status;
  value = std::log(H / kPascalPerAtm);
  return KV_OK;
}

}  // namespace

StatusCode liquid_vapour_pressure(const eos::Tools& tools, double T, double& P) noexcept {
  const StatusCode status = pure(tools, PureProperty::VaporPressure, kWater, T > kIcePoint ? T : kIcePoint, P);
  if (status != KV_OK) return status;
  if (T < kIcePoint) P *= supercooled(T) / supercooled(kIcePoint);
  return KV_OK;
}

StatusCode condensed_water(const eos::Tools& tools, double T, bool CO2, bool H2S, Condensed& c) noexcept {
  c = Condensed{};
  c.rt = eos::kR * T;
  StatusCode status = liquid_vapour_pressure(tools, T, c.liquid_P);
  if (status == KV_OK) status = pure(tools, PureProperty::LiquidMolarVolume, kWater, T, c.volume);
  if (status == KV_OK && T < kIcePoint)
    status = pure(tools, PureProperty::SublimationPressure, kWater, T, c.ice_P);
  if (status == KV_OK && CO2) status = log_henry(tools, kCO2, T, c.log_henry_CO2);
  if (status == KV_OK && H2S) status = log_henry(tools, kH2S, T, c.log_henry_H2S);
  c.log_liquid_P = std::log(c.liquid_P);
  if (c.ice_P > 0.0) c.log_ice_P = std::log(c.ice_P);
  return status;
}

Fugacity water_fugacity(const Condensed& c, double P, double f_CO2, double f_H2S) noexcept {
  const double above = P - c.liquid_P;
  // v = v0/(1 + kappa (P - Psat)): finite at every pressure.
  double liquid = c.log_liquid_P + c.log_phi_liquid +
                  c.volume / (c.rt * kCompressibility) * std::log1p(kCompressibility * above);
  double dissolved = 0.0;
  if (f_CO2 > 0.0) dissolved += f_CO2 * std::exp(-c.log_henry_CO2 - kVolumeCO2 * above / c.rt);
  if (f_H2S > 0.0) dissolved += f_H2S * std::exp(-c.log_henry_H2S - kVolumeH2S * above / c.rt);
  if (dissolved > 0.0) liquid -= std::log1p(dissolved);
  if (!(c.ice_P > 0.0)) return {liquid, false};
  const double ice = c.log_ice_P + c.log_phi_ice + kIceVolume * (P - c.ice_P) / c.rt;
  return ice < liquid ? Fugacity{ice, true} : Fugacity{liquid, false};
}

}  // namespace kestrune::water
