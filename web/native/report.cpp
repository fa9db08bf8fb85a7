// A state and the hydrate correlation as the command line speaks of them: names of phases, notes, warnings.
#include <nlohmann/json.hpp>

#include "hydrate_range.hpp"
#include "notes.hpp"
#include "session.hpp"
#include "web.h"

using namespace kestrune;
using arrays::guarded;
using nlohmann::ordered_json;

namespace {

ordered_json json_of(const host::PhaseState& phase) {
  return {{"name", host::phase_name(phase.kind)},
          {"fraction", phase.mole_fraction},
          {"x", phase.x},
          {"molar_mass", phase.molar_mass},
          {"values", phase.properties.values}};
}

std::vector<std::string> all_notes(const host::Mixture& mixture, const host::Equilibrium& state) {
  std::vector<std::string> notes = host::notes_of(mixture, {&state, 1});
  if (state.extrapolated()) notes.emplace_back(host::kExtrapolatedText);
  return notes;
}

}  // namespace

extern "C" int32_t kw_report(KaMixture* mixture, double T, double P, char* text, int32_t size) {
  return guarded(text, size, [&] {
    host::Mixture& m = mixture->mixture;
    const arrays::Turn turn(m, true);
    const host::Equilibrium state = host::flash_of_all(arrays::library(), m, host::Given::TP, T, P);
    ordered_json all = {{"status", state.answered() ? 0 : state.status}};
    all["phases"] = ordered_json::array();
    for (const host::PhaseState& phase : state.phases) all["phases"].push_back(json_of(phase));
    if (!state.phases.empty()) all["overall"] = json_of(state.overall);
    all["notes"] = all_notes(m, state);
    return arrays::copied(all.dump(), text, size);
  });
}

extern "C" int32_t kw_hydrate_range(const KaMixture* mixture, int32_t inhibitor, double percent, char* text,
                                    int32_t size) {
  return guarded(text, size, [&] {
    const ordered_json all = {{"T", {host::kHydrateLowestT, host::kHydrateHighestT}},
                              {"P", {host::kHydrateLowestP, host::kHydrateHighestP}},
                              {"warnings", host::hydrate_warnings(mixture->mixture, inhibitor, percent)}};
    return arrays::copied(all.dump(), text, size);
  });
}
