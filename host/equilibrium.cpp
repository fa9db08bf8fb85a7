#include "equilibrium.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "equilibrium_parts.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

double molar_mass_of(const Mixture& mixture, const std::vector<double>& x) {
  double mass = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) mass += x[i] * mixture.components[i].molar_mass;
  return mass;
}

// The liquid, parted into what holds water up to its solubility s and free water:
// x_w = (1 - share) s + share, the other components stay in proportion.
void add_liquids(const Exports& library, const Mixture& mixture, Equilibrium& state) {
  const double fraction = 1.0 - state.beta;
  const MixtureRecord& record = mixture.record;
  const std::size_t w = water_of(mixture);
  const bool parted = (record.flags & FreeWaterFlag) != 0 && w < state.x.size();
  const double s = std::min(1.0, std::exp(record.solubility_a - record.solubility_b / state.T));
  if (!parted || state.x[w] <= s) {
    const bool alone = !(state.beta > 0.0) && !state.of_fraction();
    const PhaseKind kind = only_liquid_kind(library, mixture, state.T, state.x, alone);
    return add_phase(library, mixture, kind, fraction, state.x, state);
  }
  if (state.x[w] > kWaterRich)
    return add_phase(library, mixture, PhaseKind::free_water, fraction, state.x, state);
  const double share = (state.x[w] - s) / (1.0 - s);
  std::vector<double> liquid(state.x), water(state.x.size(), 0.0);
  for (double& x : liquid) x /= 1.0 - share;
  liquid[w] = s;
  water[w] = 1.0;
  add_phase(library, mixture, PhaseKind::liquid, fraction * (1.0 - share), liquid, state);
  add_phase(library, mixture, PhaseKind::free_water, fraction * share, water, state);
}

// A share of the whole with its properties.
struct Share {
  double fraction;
  PropertyValues properties;
};

// What the properties of the whole are summed over: the phases, or with free water the vapour and all liquid as
// one, as the library's flashes of two phases at enthalpy and entropy have it.
std::vector<Share> shares(const Exports& library, const Mixture& mixture, const Equilibrium& s) {
  std::vector<Share> result;
  const bool water = !s.three && s.phase(PhaseKind::free_water) != nullptr;
  for (const PhaseState& p : s.phases) {
    const bool parted = water && p.kind != PhaseKind::vapour;
    if (p.mole_fraction > 0.0 && !parted) result.push_back({p.mole_fraction, p.properties});
  }
  if (water && s.beta < 1.0) {
    result.push_back({1.0 - s.beta, phase_properties(library, mixture, PhaseKind::free_water, s.T, s.P, s.x,
                                                     molar_mass_of(mixture, s.x))});
  }
  return result;
}

// A sum over the shares; none where one of them has no such property.
void add_sum(Property property, const std::vector<Share>& all, PropertyValues& sums) {
  double sum = 0.0;
  StatusCode status = KV_OK;
  for (const Share& share : all) {
    status = combined(status, share.properties.status(property));
    sum += share.fraction * share.properties[property];
  }
  if (std::isfinite(sum) || !has_value(status)) sums.set(property, status, sum);
}

// The library's flash: temperature, pressure, vapour fraction and compositions of the state. At a vapour fraction it
// may go on from a start, whose compositions are in the state already.
void solve(const Exports& library, Mixture& mixture, Equilibrium& s, Trace trace,
           const Equilibrium* start = nullptr) {
  const TraceOfCall traced(mixture, trace);
  const std::int32_t cold_start = start == nullptr ? 1 : 0;
  const double *z = mixture.z.data(), first = s.values[0], second = s.values[1];
  double *x = s.x.data(), *y = s.y.data(), *K = s.K.data();
  MixtureRecord* record = &mixture.record;
  double T = start == nullptr ? 0.0 : start->T, atm = start == nullptr ? 0.0 : start->P / kAtmInPa;
  double of_liquid = 0.0, of_vapour = 0.0;
  switch (s.given) {
    case Given::TP:
      s.T = T = first;
      s.P = second;
      s.status = library.FlashLVatTP(T, s.P / kAtmInPa, z, record, nullptr, cold_start, &s.beta, x, y, K);
      break;
    case Given::HP:
    case Given::SP: {
      const auto at_energy = s.given == Given::HP ? library.FlashLVatHP : library.FlashLVatSP;
      s.P = second;
      s.status = at_energy(first / kCalInJ, s.P / kAtmInPa, z, record, nullptr, cold_start, &T, &s.beta, x, y,
                           K, &of_liquid, &of_vapour);
      if (s.answered()) s.T = T;
      break;
    }
    case Given::WP:
      s.beta = first;
      s.P = second;
      s.status = library.FlashLVatWP(first, s.P / kAtmInPa, z, record, nullptr, cold_start, &T, x, y, K);
      if (s.answered()) s.T = T;
      break;
    case Given::WT:
      s.beta = first;
      s.T = second;
      s.status = library.FlashLVatWT(first, s.T, z, record, nullptr, cold_start, &atm, x, y, K);
      if (s.answered()) s.P = atm * kAtmInPa;
      break;
  }
  s.last_T = T;
}

}  // namespace

void add_phase(const Exports& library, const Mixture& mixture, PhaseKind kind, double fraction,
               const std::vector<double>& x, Equilibrium& state) {
  PhaseState phase{kind, fraction, 0.0, x, molar_mass_of(mixture, x), {}, false};
  phase.mass_fraction = fraction * phase.molar_mass / mixture.molar_mass;
  phase.properties = phase_properties(library, mixture, kind, state.T, state.P, x, phase.molar_mass);
  phase.aqueous = !is_gas(kind) && is_aqueous(mixture, x);
  state.phases.push_back(phase);
}

void add_volume_fractions(Equilibrium& state) {
  double whole = 0.0;
  for (const PhaseState& p : state.phases)
    if (p.mole_fraction > 0.0) whole += p.mole_fraction * p.properties[Property::molar_volume];
  for (PhaseState& p : state.phases)
    p.volume_fraction =
        p.mole_fraction > 0.0 ? p.mole_fraction * p.properties[Property::molar_volume] / whole : 0.0 * whole;
  state.overall.volume_fraction = whole / whole;
}

void add_overall(const Exports& library, const Mixture& mixture, Equilibrium& state) {
  state.overall = {PhaseKind::overall, 1.0, 1.0, mixture.z, mixture.molar_mass, {}, false};
  PropertyValues& sums = state.overall.properties;
  const std::vector<Share> all = shares(library, mixture, state);
  if (all.size() == 1) {
    sums = all.front().properties;
    return add_volume_fractions(state);
  }
  for (const Property p :
       {Property::molar_volume, Property::enthalpy, Property::entropy, Property::free_enthalpy}) {
    add_sum(p, all, sums);
  }
  const double v = sums[Property::molar_volume];
  if (std::isfinite(v)) {
    sums.set(Property::density, sums.status(Property::molar_volume), 1e-3 * mixture.molar_mass / v);
  }
  add_volume_fractions(state);
}

bool has_one_root(const Exports& library, const Mixture& mixture, const PhaseState& phase, double T, double P) {
  const PhaseKind other = is_gas(phase.kind) ? PhaseKind::liquid : PhaseKind::vapour;
  const double here = phase.properties[Property::density];
  const double there =
      phase_properties(library, mixture, other, T, P, phase.x, phase.molar_mass)[Property::density];
  return std::fabs(there - here) <= 1e-9 * here;
}

std::array<Quantity, 2> quantities_of(Given given) {
  switch (given) {
    case Given::HP:
      return {Quantity::enthalpy, Quantity::pressure};
    case Given::SP:
      return {Quantity::entropy, Quantity::pressure};
    case Given::WP:
      return {Quantity::vapour_fraction, Quantity::pressure};
    case Given::WT:
      return {Quantity::vapour_fraction, Quantity::temperature};
    default:
      return {Quantity::temperature, Quantity::pressure};
  }
}

const PhaseState* Equilibrium::phase(PhaseKind kind) const {
  for (const PhaseState& p : phases) {
    if (p.kind == kind) return &p;
  }
  return nullptr;
}

bool Equilibrium::iterate_left() const {
  if (!flashed || answered() || of_fraction() || status >= KV_PURE_UNKNOWN || bound.found()) return false;
  return !three || has_entries(y) || has_entries(x) || has_entries(xA);
}

double Equilibrium::liquid_fraction(bool aqueous) const {
  double sum = 0.0;
  for (const PhaseState& p : phases) {
    if (!is_gas(p.kind) && p.aqueous == aqueous) sum += p.mole_fraction;
  }
  return sum;
}

double Equilibrium::liquid_volume() const {
  double sum = 0.0;
  for (const PhaseState& p : phases) {
    if (!is_gas(p.kind)) sum += p.volume_fraction;
  }
  return sum;
}

StatusCode Equilibrium::first_failure() const {
  StatusCode result = status;
  for (const PhaseState& p : phases) result = combined(result, p.properties.first_failure());
  return result;
}

bool Equilibrium::extrapolated() const {
  return std::any_of(phases.begin(), phases.end(),
                     [](const PhaseState& p) { return p.properties.extrapolated(); });
}

double ratio(const PhaseState& phase, const PhaseState& other, std::size_t component) {
  return other.x[component] > 0.0 ? phase.x[component] / other.x[component] : kNone;
}

std::string phases_in_words(const Equilibrium& state) {
  if (state.phases.empty()) return "-";
  if (!state.flashed) return fmt::format("{}, taken as given", phase_name(state.phases.front().kind));
  std::vector<std::string> present, incipient;
  for (const PhaseState& p : state.phases) {
    (p.mole_fraction > 0.0 ? present : incipient).emplace_back(phase_name(p.kind));
  }
  const std::string names = fmt::format("{}: {}", present.size(), joined(present, " + "));
  if (!incipient.empty()) return names + ", incipient " + joined(incipient, " + ");
  const bool both = present.size() == 2 && state.phases.front().kind == PhaseKind::vapour &&
                    state.phases.back().kind == PhaseKind::liquid;
  return both && !state.three && state.stable ? "two-phase" : names;
}

namespace {

// The phases of what the library has found.
Equilibrium with_phases(const Exports& library, const Mixture& mixture, Equilibrium s) {
  if (!s.answered()) return s;
  if (s.beta > 0.0 || s.of_fraction()) add_phase(library, mixture, PhaseKind::vapour, s.beta, s.y, s);
  if (s.beta < 1.0 || s.of_fraction()) add_liquids(library, mixture, s);
  add_overall(library, mixture, s);
  rename_packed_gas(library, mixture, s);
  return s;
}

}  // namespace

Equilibrium flash(const Exports& library, Mixture& mixture, Given given, double first, double second,
                  Trace trace) {
  const std::vector<double> none(mixture.z.size());
  Equilibrium s{given, {first, second}, kNone, kNone, true, KV_OK, 0.0, none, none, none, kNone, {}, {}};
  solve(library, mixture, s, trace);
  return with_phases(library, mixture, s);
}

Equilibrium flash_from(const Exports& library, Mixture& mixture, Given given, double first, double second,
                       const Equilibrium& start) {
  Equilibrium s{given,   {first, second}, kNone,   kNone, true, KV_OK, 0.0,
                start.x, start.y,         start.K, kNone, {},   {}};
  solve(library, mixture, s, Trace::asked_for, &start);
  return with_phases(library, mixture, s);
}

Equilibrium single_phase_at_TP(const Exports& library, const Mixture& mixture, PhaseKind kind, double T,
                               double P) {
  const double beta = kind == PhaseKind::vapour ? 1.0 : 0.0;
  Equilibrium s{Given::TP, {T, P}, T, P, false, KV_OK, beta, {}, {}, {}, T, {}, {}};
  add_phase(library, mixture, kind, 1.0, mixture.z, s);
  s.phases.front().volume_fraction = 1.0;
  const PhaseState& phase = s.phases.front();
  const bool packed = is_packed(mixture, phase.x, phase.properties[Property::molar_volume]);
  const bool gas = kind == PhaseKind::vapour;
  if (packed == gas && has_one_root(library, mixture, phase, T, P) &&
      !(gas && is_dense(library, mixture, mixture.z, T)))
    s.remark = fmt::format("the equation of state has no {} here: these are the properties of its {}",
                           gas ? "gas" : "liquid", gas ? "liquid" : "gas");
  return s;
}

}  // namespace kestrune::host
