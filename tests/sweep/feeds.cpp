#include "feeds.hpp"

#include <algorithm>

namespace kestrune::sweep {
namespace {

struct Part {
  const char* id;
  double amount;
};

Feed feed(const char* name, double T_low, double T_high, const std::vector<Part>& parts) {
  Feed result{name, {}, {}, T_low, T_high};
  double total = 0;
  for (const Part& part : parts) total += part.amount;
  for (const Part& part : parts) {
    result.ids.emplace_back(part.id);
    result.z.push_back(part.amount / total);
  }
  return result;
}

std::vector<Part> condensate() {
  return {{"nitrogen", 1.2},     {"carbon_dioxide", 2.4}, {"methane", 72.0},   {"ethane", 8.1},
          {"propane", 4.2},      {"isobutane", 0.9},      {"n_butane", 1.6},   {"isopentane", 0.7},
          {"n_pentane", 0.8},    {"n_hexane", 1.1},       {"n_heptane", 1.6},  {"n_octane", 1.4},
          {"n_nonane", 0.9},     {"n_decane", 0.8},       {"n_dodecane", 0.9}, {"n_tetradecane", 0.5},
          {"n_hexadecane", 0.4}, {"n_octadecane", 0.3},   {"n_eicosane", 0.2}};
}

Feed with_free_water(Feed wet) {
  wet.name += "_free_water";
  wet.free_water = true;
  wet.T_high = std::min(wet.T_high, 450.0);
  wet.solubility_a = 11.2;  // s = 5e-5 at 298 K
  wet.solubility_b = 6290.0;
  return wet;
}

}  // namespace

std::vector<Feed> all_feeds() {
  const Feed wet = feed("wet_gas", 230, 480,
                        {{"methane", 80},
                         {"ethane", 6},
                         {"propane", 4},
                         {"n_butane", 2},
                         {"n_hexane", 1},
                         {"carbon_dioxide", 2},
                         {"water", 5}});
  const Feed wet_oil =
      feed("wet_oil", 250, 550,
           {{"methane", 30}, {"propane", 10}, {"n_hexane", 20}, {"n_decane", 20}, {"water", 20}});
  return {
      feed("lean_gas", 100, 260,
           {{"methane", 94.30},
            {"ethane", 2.70},
            {"propane", 0.74},
            {"n_butane", 0.49},
            {"n_pentane", 0.27},
            {"n_hexane", 0.10},
            {"nitrogen", 1.40}}),
      feed("rich_gas", 120, 320,
           {{"methane", 70},
            {"ethane", 9},
            {"propane", 6},
            {"isobutane", 1.5},
            {"n_butane", 2.5},
            {"isopentane", 1},
            {"n_pentane", 1},
            {"n_hexane", 1},
            {"nitrogen", 3},
            {"carbon_dioxide", 5}}),
      feed("gas_condensate", 200, 620, condensate()),
      feed("sour_gas", 150, 320,
           {{"methane", 68},
            {"ethane", 4},
            {"propane", 2},
            {"n_butane", 1},
            {"carbon_dioxide", 8},
            {"hydrogen_sulfide", 15},
            {"nitrogen", 2}}),
      feed("acid_gas", 200, 360,
           {{"carbon_dioxide", 55}, {"hydrogen_sulfide", 40}, {"methane", 4}, {"ethane", 1}}),
      feed("carbon_dioxide_rich", 180, 310,
           {{"carbon_dioxide", 95},
            {"nitrogen", 1.5},
            {"methane", 2},
            {"argon", 0.5},
            {"oxygen", 0.5},
            {"hydrogen", 0.5}}),
      feed("hydrogen_rich", 100, 350,
           {{"hydrogen", 75},
            {"methane", 12},
            {"ethane", 4},
            {"propane", 3},
            {"n_butane", 2},
            {"nitrogen", 2},
            {"carbon_monoxide", 2}}),
      feed("aromatic", 200, 620,
           {{"methane", 45},
            {"n_hexane", 10},
            {"cyclohexane", 10},
            {"benzene", 12},
            {"toluene", 12},
            {"o_xylene", 6},
            {"ethylbenzene", 5}}),
      feed("wide_boiling", 150, 690,
           {{"hydrogen", 10},
            {"nitrogen", 10},
            {"methane", 30},
            {"ethane", 10},
            {"n_butane", 10},
            {"n_heptane", 10},
            {"n_dodecane", 10},
            {"n_eicosane", 10}}),
      feed("methane_propane", 150, 340, {{"methane", 50}, {"propane", 50}}),
      feed("ethane_heptane", 250, 520, {{"ethane", 60}, {"n_heptane", 40}}),
      feed("nitrogen_methane_ethane", 100, 250, {{"nitrogen", 30}, {"methane", 40}, {"ethane", 30}}),
      feed("helium_gas", 100, 260,
           {{"helium", 5}, {"nitrogen", 20}, {"methane", 70}, {"ethane", 4}, {"propane", 1}}),
      feed("traces", 100, 280,
           {{"methane", 90},
            {"ethane", 0},
            {"propane", 9},
            {"n_butane", 1},
            {"n_octane", 1e-7},
            {"helium", 1e-4},
            {"benzene", 1e-10}}),
      feed("nearly_pure_methane", 100, 200, {{"methane", 999999}, {"ethane", 0.6}, {"nitrogen", 0.4}}),
      feed("methane", 100, 200, {{"methane", 1}}),
      feed("carbon_dioxide", 200, 310, {{"carbon_dioxide", 1}}),
      feed("n_decane", 300, 630, {{"n_decane", 1}}),
      wet,
      wet_oil,
      with_free_water(wet),
      with_free_water(wet_oil),
  };
}

std::vector<Feed> value_feeds() {
  return {
      feed("light_gas", 100, 400,
           {{"methane", 70},
            {"ethane", 10},
            {"propane", 7},
            {"n_butane", 4},
            {"n_pentane", 2},
            {"n_hexane", 2},
            {"nitrogen", 2},
            {"carbon_dioxide", 3}}),
      feed("carbon_dioxide_decane", 100, 600, {{"carbon_dioxide", 70}, {"n_decane", 30}}),
      feed("sour_oil", 100, 500,
           {{"methane", 35}, {"ethane", 10}, {"hydrogen_sulfide", 30}, {"n_butane", 15}, {"n_hexane", 10}}),
      feed("azeotrope", 150, 310, {{"carbon_dioxide", 67}, {"ethane", 33}}),
      feed("methane_water", 150, 600, {{"methane", 50}, {"n_hexane", 30}, {"water", 20}}),
      feed("almost_propane", 150, 400, {{"propane", 1}, {"n_butane", 1e-8}}),
  };
}

}  // namespace kestrune::sweep
