// States of up to three phases.
#include <algorithm>

#include "equilibrium_parts.hpp"

namespace kestrune::host {

namespace {

// A liquid of the library's answer.
struct Liquid {
  PhaseKind kind;
  double fraction;
  const std::vector<double>* x;
};

// Liquid A, the lighter one, and liquid B, as far as they are there; at a dew point the one that is about to
// form.
void add_two_liquids(const Exports& library, const Mixture& mixture, Equilibrium& s) {
  constexpr double rounding = 1e-14;  // of the share that is left for B
  const bool dew = s.of_fraction() && s.beta == 1.0;
  std::vector<Liquid> liquids;
  const auto take = [&](double fraction, const std::vector<double>& x) {
    if (fraction <= rounding && !(dew && has_entries(x))) return;
    const bool alone = liquids.empty() && !(s.beta > 0.0) && !s.of_fraction();
    liquids.push_back({liquid_kind(library, mixture, s.T, x, alone), std::max(fraction, 0.0), &x});
  };
  take(s.beta_A, s.xA);
  take(1.0 - s.beta_A - s.beta, s.x);
  if (liquids.size() == 2 && liquids[0].kind == liquids[1].kind) {
    liquids[0].kind = PhaseKind::light_liquid;
    liquids[1].kind = PhaseKind::heavy_liquid;
  }
  std::sort(liquids.begin(), liquids.end(), [](const Liquid& a, const Liquid& b) { return a.kind < b.kind; });
  for (const Liquid& l : liquids) add_phase(library, mixture, l.kind, l.fraction, *l.x, s);
}

// The library's flash: temperature, pressure, fractions and compositions of the state.
void solve_three(const Exports& library, Mixture& mixture, Equilibrium& s, Trace trace) {
  const TraceOfCall traced(mixture, trace);
  constexpr std::int32_t cold_start = 0;
  const double *z = mixture.z.data(), first = s.values[0], second = s.values[1];
  std::vector<double> ratios(2 * mixture.z.size());
  double *xA = s.xA.data(), *xB = s.x.data(), *y = s.y.data();
  double *KLL = ratios.data(), *KLV = KLL + mixture.z.size(), *A = &s.beta_A, *V = &s.beta;
  MixtureRecord* record = &mixture.record;
  double T = 0.0, atm = 0.0, of_A = 0.0, of_B = 0.0, of_vapour = 0.0;
  switch (s.given) {
    case Given::TP:
      s.T = T = first;
      s.P = second;
      s.status =
          library.FlashLLVatTP(T, s.P / kAtmInPa, z, record, nullptr, cold_start, A, V, xA, xB, y, KLL, KLV);
      break;
    case Given::HP:
    case Given::SP: {
      const auto at_energy = s.given == Given::HP ? library.FlashLLVatHP : library.FlashLLVatSP;
      s.P = second;
      s.status = at_energy(first / kCalInJ, s.P / kAtmInPa, z, record, nullptr, cold_start, &T, A, V, xA, xB, y,
                           KLL, KLV, &of_A, &of_B, &of_vapour);
      if (s.answered()) s.T = T;
      break;
    }
    case Given::WP:
      s.beta = first;
      s.P = second;
      s.status = library.FlashLLVatWP(first, s.P / kAtmInPa, z, record, nullptr, cold_start, &T, A, xA, xB, y,
                                      KLL, KLV);
      if (s.answered()) s.T = T;
      break;
    case Given::WT:
      s.beta = first;
      s.T = second;
      s.status = library.FlashLLVatWT(first, s.T, z, record, nullptr, cold_start, &atm, A, xA, xB, y, KLL, KLV);
      if (s.answered()) s.P = atm * kAtmInPa;
      break;
  }
  s.last_T = T;
}

// The lightest of three phases may be a liquid as well.
void settle_root(const Exports& library, const Mixture& mixture, Equilibrium& s) {
  // With free water the liquid exports take all water for liquid water: nothing to compare.
  if ((mixture.record.flags & FreeWaterFlag) != 0 || s.phases.size() < 3 || s.of_fraction()) return;
  if (s.phases.front().kind != PhaseKind::vapour) return;
  PhaseState& light = s.phases.front();
  const PropertyValues liquid =
      phase_properties(library, mixture, PhaseKind::liquid, s.T, s.P, light.x, light.molar_mass);
  if (!is_third_liquid(mixture, light.x, light.properties, liquid[Property::free_enthalpy])) return;
  light.kind = PhaseKind::liquid;
  light.properties = liquid;
  s.beta = 0.0;
  std::vector<PhaseKind*> kinds;
  std::vector<double> densities;
  for (PhaseState& p : s.phases) {
    if (p.kind == PhaseKind::aqueous_liquid) continue;
    kinds.push_back(&p.kind);
    densities.push_back(p.properties[Property::density]);
  }
  if (kinds.size() < 3) return;
  name_by_density(kinds, densities);
  std::stable_sort(s.phases.begin(), s.phases.end(),
                   [](const PhaseState& a, const PhaseState& b) { return a.kind < b.kind; });
}

}  // namespace

Equilibrium flash_of_three(const Exports& library, Mixture& mixture, Given given, double first, double second,
                           Trace trace) {
  const std::vector<double> none(mixture.z.size());
  Equilibrium s{given, {first, second}, kNone, kNone, true, KV_OK, 0.0, none, none, {}, kNone, {}, {}};
  s.three = true;
  s.xA = none;
  solve_three(library, mixture, s, trace);
  if (!s.answered()) return s;
  if (s.beta > 0.0 || (s.of_fraction() && has_entries(s.y)))
    add_phase(library, mixture, PhaseKind::vapour, s.beta, s.y, s);
  add_two_liquids(library, mixture, s);
  settle_root(library, mixture, s);
  add_overall(library, mixture, s);
  rename_packed_gas(library, mixture, s);
  return s;
}

}  // namespace kestrune::host
