// As many phases as there are, and what is said where a flash of two has missed one.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cas.hpp"
#include "equilibrium_parts.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr double kMostlyCO2 = 0.8;
constexpr double kSameG = 1e-6 * 8.314462618;  // J/(mol K): free enthalpies apart by less are the same

double free_enthalpy(const Equilibrium& s) {
  return s.overall.properties[Property::free_enthalpy];
}

std::vector<std::string> names_of(const Equilibrium& s) {
  std::vector<std::string> names;
  for (const PhaseState& p : s.phases)
    if (p.mole_fraction > 0.0) names.emplace_back(phase_name(p.kind));
  return names;
}

// Holds a flash of two phases against that of three at its temperature and pressure. With free water the two go by
// different rules and are not compared.
void hold_against_three(const Exports& library, Mixture& mixture, Equilibrium& s) {
  if (!has_value(s.status) || (mixture.record.flags & FreeWaterFlag) != 0) return;
  const Equilibrium three = flash_of_three(library, mixture, Given::TP, s.T, s.P);
  if (three.status == KV_FOURTH_PHASE) {
    s.stable = false;
    s.remark = "not stable: there are four phases, which no flash returns";
    return;
  }
  if (!three.answered()) {
    s.remark = fmt::format("not confirmed: the flash of three phases ended with status {}", three.status);
    return;
  }
  const auto names = names_of(three);
  const double gap = free_enthalpy(s) - free_enthalpy(three);
  const bool more = names.size() > 2, lower = gap > kSameG * s.T;
  if (!lower && !(more && std::isnan(gap))) return;
  s.stable = false;
  s.remark = fmt::format("not stable{}: --phases 3 finds {}", more ? ", a third phase is missing" : "",
                         joined(names, " + "));
}

// The coldest and the hottest state tried at this pressure; where the flash has no answer, the next one.
Bound bound_at(const Exports& library, Mixture& mixture, const Equilibrium& s, bool cold) {
  const Property property = s.given == Given::HP ? Property::enthalpy : Property::entropy;
  for (double T = cold ? kColdest : kHottest; T >= kColdest && T <= kHottest; T *= cold ? 1.1 : 0.9) {
    const Equilibrium at = flash(library, mixture, Given::TP, T, s.P);
    if (at.answered() && std::isfinite(at.overall.properties[property]))
      return {T, at.overall.properties[property]};
  }
  return {};
}

// An answer that lies where there is no state any more is none.
void refuse_beyond_bounds(Equilibrium& s) {
  if (!s.answered() || (s.T >= kColdest && s.T <= kHottest)) return;
  const std::vector<double> none(s.y.size());
  Equilibrium empty{s.given, s.values, kNone, s.P, true, KV_NOT_CONVERGED, 0.0, none, none, {}, kNone, {}, {}};
  empty.three = true;
  empty.xA = none;
  empty.remark =
      fmt::format("the only answer found is at {:.4g} K, outside {:g} to {:g} K", s.T, kColdest, kHottest);
  s = empty;
}

void look_for_bounds(const Exports& library, Mixture& mixture, Equilibrium& s) {
  if (s.given != Given::HP && s.given != Given::SP) return;
  refuse_beyond_bounds(s);
  if (s.status != KV_NOT_CONVERGED) return;
  const Bound cold = bound_at(library, mixture, s, true), hot = bound_at(library, mixture, s, false);
  if (s.values[0] < cold.value)
    s.bound = cold;
  else if (s.values[0] > hot.value)
    s.bound = hot;
  if (s.bound.found()) s.remark.clear();
}

bool is_liquid_CO2(const Mixture& mixture, const PhaseState& p) {
  return share_of(mixture, p.x, cas::kCO2) > kMostlyCO2;
}

// The balance of saturation takes the gas where the equation of state has one. With this water there is none, and its
// answer is that of the liquid.
bool is_liquid_at(const Exports& library, const Mixture& mixture, const PhaseState& p, double y,
                  const Equilibrium& s) {
  const std::size_t w = water_of(mixture);
  PhaseState wet{PhaseKind::vapour, 1.0, 1.0, p.x, p.molar_mass, {}, false};
  for (std::size_t i = 0; i < wet.x.size(); ++i) wet.x[i] = i == w ? y : p.x[i] * (1.0 - y) / (1.0 - p.x[w]);
  wet.molar_mass +=
      (y - p.x[w]) * (mixture.components[w].molar_mass -
                      (p.molar_mass - p.x[w] * mixture.components[w].molar_mass) / (1.0 - p.x[w]));
  wet.properties = phase_properties(library, mixture, wet.kind, s.T, s.P, wet.x, wet.molar_mass);
  return std::isfinite(y) && is_packed(mixture, wet.x, wet.properties[Property::molar_volume]);
}

// What a gas beside an aqueous liquid, or one with more water than it can hold, has at saturation.
void note_saturation(const Exports& library, Mixture& mixture, Equilibrium& s) {
  const std::size_t w = water_of(mixture);
  if (!s.answered() || w == mixture.z.size()) return;
  const auto watery = [](const PhaseState& p) { return p.aqueous || p.kind == PhaseKind::free_water; };
  // The balance is one with water alone: beside glycol or methanol a gas holds less.
  const auto mixed = [&](const PhaseState& p) { return watery(p) && p.x[w] <= kPureEnough; };
  if (std::any_of(s.phases.begin(), s.phases.end(), mixed)) return;
  const bool aqueous = std::any_of(s.phases.begin(), s.phases.end(), watery);
  for (PhaseState& p : s.phases) {
    if (!(p.x[w] > 0.0) || !(is_gas(p.kind) || is_liquid_CO2(mixture, p))) continue;
    const double y = saturated_water(library, mixture, s.T, s.P, p.x);
    if (!is_gas(p.kind) && !is_liquid_at(library, mixture, p, y, s)) continue;
    if (aqueous || p.x[w] > y) p.saturation = y;
  }
}

}  // namespace

double saturated_water(const Exports& library, Mixture& mixture, double T, double P,
                       const std::vector<double>& gas) {
  constexpr std::int32_t balance = 1;
  double fraction = 0.0, content = 0.0;
  const StatusCode status =
      library.Humidity(T, P / kAtmInPa, balance, gas.data(), &mixture.record, &fraction, &content);
  return status == KV_OK && fraction > 0.0 && fraction < 1.0 ? fraction : kNone;
}

Equilibrium flash_of_two(const Exports& library, Mixture& mixture, Given given, double first, double second) {
  Equilibrium s = flash(library, mixture, given, first, second, Trace::asked_for);
  hold_against_three(library, mixture, s);
  look_for_bounds(library, mixture, s);
  note_saturation(library, mixture, s);
  return s;
}

Equilibrium flash_of_up_to_three(const Exports& library, Mixture& mixture, Given given, double first,
                                 double second) {
  Equilibrium s = flash_of_three(library, mixture, given, first, second, Trace::asked_for);
  look_for_bounds(library, mixture, s);
  note_saturation(library, mixture, s);
  return s;
}

Equilibrium flash_of_all(const Exports& library, Mixture& mixture, Given given, double first, double second) {
  Equilibrium s = flash_of_three(library, mixture, given, first, second, Trace::asked_for);
  if (!s.answered() && s.status != KV_FOURTH_PHASE) {
    Equilibrium two = flash(library, mixture, given, first, second, Trace::asked_for);
    hold_against_three(library, mixture, two);
    if (two.answered() && two.stable) s = two;
  } else if (s.answered() && given == Given::TP && (mixture.record.flags & FreeWaterFlag) == 0) {
    // A state of three phases that lies above one of two is none.
    const Equilibrium two = flash(library, mixture, given, first, second);
    if (has_value(two.status) && free_enthalpy(two) < free_enthalpy(s) - kSameG * s.T) s = two;
  }
  look_for_bounds(library, mixture, s);
  note_saturation(library, mixture, s);
  return s;
}

}  // namespace kestrune::host
