// What is to be said of states beside their numbers.
#include "notes.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "table.hpp"

namespace kestrune::host {

namespace {

constexpr double kSameWater = 0.01;  // amounts of water that differ by less are taken for the same

// Far beyond these the equation of state still gives numbers.
constexpr double kMostP = 2000e5, kLeastT = 60.0, kMostT = 2000.0;  // Pa, K
constexpr const char* kPressureText =
    "a pressure above 2000 bar: far outside what the equation of state was made for";
constexpr const char* kTemperatureText =
    "a temperature outside 60 to 2000 K: far outside what the equation of state was made for";

double water_in(const Mixture& mixture, const PhaseState& p) {
  const std::size_t w = water_of(mixture);
  return w < p.x.size() ? p.x[w] : 0.0;
}

// Adds a sentence that is not there yet.
void add_once(std::vector<std::string>& notes, const std::string& note) {
  if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
}

// Whether a hydrocarbon liquid stands beside an aqueous one, below 100 C.
bool has_water_in_oil(const Mixture& mixture, const Equilibrium& s) {
  constexpr double hot = 373.15;  // K
  bool aqueous = false, oil = false;
  for (const PhaseState& p : s.phases) {
    aqueous = aqueous || p.kind == PhaseKind::aqueous_liquid;
    oil = oil ||
          (p.kind == PhaseKind::hydrocarbon_liquid && water_in(mixture, p) > 0.0 && std::isnan(p.saturation));
  }
  return aqueous && oil && s.T < hot;
}

}  // namespace

std::vector<std::string> notes_of(const Mixture& mixture, std::span<const Equilibrium> states) {
  std::vector<std::string> notes, limits;
  bool saturation = false, of_CO2 = false, in_oil = false;
  for (const Equilibrium& s : states) {
    if (!s.remark.empty()) add_once(notes, s.remark);
    if (s.P > kMostP) add_once(notes, kPressureText);
    if (s.T < kLeastT || s.T > kMostT) add_once(notes, kTemperatureText);
    in_oil = in_oil || has_water_in_oil(mixture, s);
    for (const PhaseState& p : s.phases) {
      for (const auto limit : model_limits(mixture, p, s.T)) add_once(limits, std::string(limit));
      const double water = water_in(mixture, p);
      if (std::fabs(p.saturation / water - 1.0) <= kSameWater || std::isnan(p.saturation)) continue;
      if (s.by_saturation && is_gas(p.kind)) continue;
      if (states.size() == 1)
        notes.push_back(fmt::format("water of the {}: {} by the flash, {} at saturation by the command water",
                                    phase_name(p.kind), shown_fraction(water), shown_digits(p.saturation, 4)));
      (is_gas(p.kind) ? saturation : of_CO2) = true;
    }
  }
  if (saturation) notes.emplace_back(kSaturationText);
  if (of_CO2) notes.emplace_back(kLiquidCO2Text);
  if (in_oil) notes.emplace_back(kOilText);
  notes.insert(notes.end(), limits.begin(), limits.end());
  return notes;
}

}  // namespace kestrune::host
