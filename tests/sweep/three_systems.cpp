// Systems with two liquids and a vapour.
#include "three_states.hpp"

namespace kestrune::sweep {
namespace {

struct Part {
  const char* id;
  double amount;
};

System system_of(const char* name, double T_low, double T_high, double P_low, double P_high,
                 const std::vector<Part>& parts) {
  System result{{name, {}, {}, T_low, T_high}, P_low, P_high};
  double total = 0;
  for (const Part& part : parts) total += part.amount;
  for (const Part& part : parts) {
    result.feed.ids.emplace_back(part.id);
    result.feed.z.push_back(part.amount / total);
  }
  return result;
}

}  // namespace

std::vector<System> three_phase_systems() {
  return {
      system_of("methane_butane_water", 270, 450, 1, 300, {{"methane", 40}, {"n_butane", 30}, {"water", 30}}),
      system_of("heptane_water", 270, 450, 1, 300,
                {{"methane", 30}, {"propane", 25}, {"n_heptane", 25}, {"water", 20}}),
      system_of("condensate_water", 270, 450, 1, 300,
                {{"carbon_dioxide", 6},
                 {"methane", 50},
                 {"ethane", 8},
                 {"propane", 5},
                 {"n_butane", 4},
                 {"n_pentane", 3},
                 {"n_hexane", 3},
                 {"n_heptane", 6},
                 {"water", 15}}),
      system_of(
          "sour_gas", 150, 230, 1, 120,
          {{"methane", 40}, {"ethane", 5}, {"propane", 3}, {"carbon_dioxide", 12}, {"hydrogen_sulfide", 40}}),
      system_of("nitrogen_methane_ethane", 100, 160, 0.5, 60,
                {{"nitrogen", 55}, {"methane", 15}, {"ethane", 30}}),
      system_of("methane_hydrogen_sulfide", 150, 230, 1, 150, {{"methane", 60}, {"hydrogen_sulfide", 40}}),
      system_of("carbon_dioxide_decane", 220, 350, 1, 150, {{"carbon_dioxide", 85}, {"n_decane", 15}}),
      system_of("carbon_dioxide_hexadecane", 220, 350, 1, 200,
                {{"carbon_dioxide", 80}, {"methane", 8}, {"n_hexadecane", 12}}),
      system_of("methane_propane_octane", 180, 230, 20, 90,
                {{"methane", 80}, {"propane", 8}, {"n_octane", 12}}),
      system_of("benzene_water", 270, 450, 1, 300, {{"methane", 35}, {"benzene", 35}, {"water", 30}}),
      system_of(
          "wet_gas", 270, 450, 1, 300,
          {{"nitrogen", 4}, {"methane", 60}, {"ethane", 10}, {"propane", 8}, {"n_butane", 8}, {"water", 10}}),
      system_of("wet_condensate", 250, 450, 1, 300,
                {{"methane", 45},
                 {"ethane", 8},
                 {"propane", 8},
                 {"n_hexane", 8},
                 {"n_decane", 8},
                 {"toluene", 4},
                 {"hydrogen_sulfide", 4},
                 {"water", 15}}),
  };
}

}  // namespace kestrune::sweep
