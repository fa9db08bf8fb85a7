// What users type: names, units, conditions, mixtures.
#include <gtest/gtest.h>

#include "composition.hpp"
#include "support.hpp"
#include "units.hpp"

using namespace kestrune::host;
using host_test::contains;
using host_test::error_of;

TEST(databank, finds_components_by_the_names_engineers_use) {
  const std::pair<const char*, const char*> cases[] = {{"n-butane", "n_butane"},
                                                       {"nC4", "n_butane"},
                                                       {"Normal Butane", "n_butane"},
                                                       {"C4", "n_butane"},
                                                       {"iC4", "isobutane"},
                                                       {"i-butane", "isobutane"},
                                                       {"C1", "methane"},
                                                       {"ch4", "methane"},
                                                       {"N2", "nitrogen"},
                                                       {"co2", "carbon_dioxide"},
                                                       {"CO", "carbon_monoxide"},
                                                       {"h2s", "hydrogen_sulfide"},
                                                       {"H2O", "water"},
                                                       {"7732-18-5", "water"},
                                                       {"7732185", "water"},
                                                       {"2,2-dimethylbutane", "22_dimethylbutane"},
                                                       {"MEG", "ethylene_glycol"},
                                                       {"nC20", "n_eicosane"},
                                                       {"1_butene", "1_butene"},
                                                       {"o-xylene", "o_xylene"},
                                                       {" Carbon dioxide ", "carbon_dioxide"}};
  for (const auto& [name, id] : cases) EXPECT_EQ(find_component(name).id, id) << name;
}

TEST(databank, no_id_name_alias_or_cas_stands_for_another_component) {
  for (const Component& c : all_components()) {
    EXPECT_EQ(find_component(c.id).number, c.number);
    EXPECT_EQ(find_component(c.name).number, c.number);
    EXPECT_EQ(find_component(c.cas).number, c.number);
    EXPECT_EQ(find_component(std::to_string(c.cas_number)).number, c.number);
    for (const auto alias : aliases_of(c)) {
      const std::string error = error_of([&] { EXPECT_EQ(find_component(alias).number, c.number); });
      EXPECT_TRUE(error.empty() || contains(error, "ambiguous")) << alias;
    }
  }
}

TEST(databank, unknown_and_ambiguous_names_are_said_with_candidates) {
  EXPECT_TRUE(contains(error_of([] { find_component("metahne"); }), "did you mean methane"));
  EXPECT_TRUE(contains(error_of([] { find_component("metan"); }), "methane"));
  EXPECT_TRUE(contains(error_of([] { find_component("unobtainium"); }), "unknown component \"unobtainium\""));
  EXPECT_TRUE(
      contains(error_of([] { find_component("C4H10"); }), "ambiguous: it may be n-butane or isobutane"));
  EXPECT_TRUE(contains(error_of([] { find_component("xylene"); }), "o-xylene or m-xylene or p-xylene"));
  EXPECT_TRUE(contains(error_of([] { find_component(" - "); }), "unknown component"));
}

// The embedded constants against the file they come from.
TEST(databank, holds_every_row_of_the_component_table) {
  std::size_t found = 0, quoted = 0;
  for (const auto& row : host_test::rows("components.csv")) {
    if (row.at("name").front() == '"' && ++quoted) continue;  // these have commas, which the reader splits
    const Component& c = find_component(row.at("cas"));
    EXPECT_EQ(c.id, row.at("id"));
    EXPECT_EQ(c.Tc, std::stod(row.at("Tc_K")));
    EXPECT_EQ(c.Pc, std::stod(row.at("Pc_Pa")));
    if (const std::string& omega = row.at("acentric_factor"); !omega.empty()) {
      EXPECT_EQ(c.omega, std::stod(omega));
    }
    EXPECT_EQ(c.molar_mass, std::stod(row.at("molar_mass_g_mol")));
    ++found;
  }
  EXPECT_EQ(found + quoted, all_components().size());
}

TEST(units, conversions_are_exact_and_return) {
  const auto pa = [](const char* text) {
    return parse_conditions(Quantity::pressure, text, unit(Quantity::pressure, "bar"))[0];
  };
  const auto k = [](const char* text) {
    return parse_conditions(Quantity::temperature, text, unit(Quantity::temperature, "C"))[0];
  };
  EXPECT_EQ(pa("1 atm"), 101325.0);
  EXPECT_EQ(pa("60"), 6e6);
  EXPECT_EQ(pa("60bara"), 6e6);
  EXPECT_DOUBLE_EQ(pa("60 BARG"), 6101325.0);
  EXPECT_DOUBLE_EQ(pa("2.5MPa"), 2.5e6);
  EXPECT_DOUBLE_EQ(pa("250 kPa"), 2.5e5);
  EXPECT_NEAR(pa("14.695948775513 psia"), 101325.0, 1e-8);
  EXPECT_DOUBLE_EQ(pa("0 psig"), 101325.0);
  EXPECT_EQ(k("25"), 298.15);
  EXPECT_EQ(k("300 K"), 300.0);
  EXPECT_DOUBLE_EQ(k("-40 F"), k("-40 C"));
  EXPECT_DOUBLE_EQ(k("491.67 R"), 273.15);
  for (const char* name : {"K", "C", "F", "R"}) {
    const Unit& u = unit(Quantity::temperature, name);
    EXPECT_NEAR(u.from_base(u.to_base(123.25)), 123.25, 1e-12) << name;
  }
}

// Published factors: calorie 4.184 J, Btu 1055.05585262 J, pound 0.45359237 kg, foot 0.3048 m, molar volume of ideal gas
// 0.022413970 and 0.023644830 m3/mol at 0 and 15 C and 1 atm, molar mass of water 18.01528 g/mol.
TEST(units, of_properties_have_the_published_factors) {
  using Q = Quantity;
  const struct {
    Q quantity;
    const char* name;
    double molar_mass, base;
  } cases[] = {{Q::enthalpy, "cal/mol", 0.0, 4.184},
               {Q::enthalpy, "Btu/lb", 1000.0, 2326.0},
               {Q::enthalpy, "BTU/lbmol", 0.0, 2.326},
               {Q::enthalpy, "kJ/kg", 18.0, 18.0},
               {Q::entropy, "Btu/(lb F)", 1000.0, 4186.8},
               {Q::entropy, "kj/kgK", 30.0, 30.0},
               {Q::density, "lb/ft3", 0.0, 16.01846337},
               {Q::molar_volume, "ft3/lbmol", 0.0, 6.242796057e-5},
               {Q::conductivity, "Btu/(h ft F)", 0.0, 1.730734666},
               {Q::joule_thomson, "F/psi", 0.0, 8.0576521e-5},
               {Q::pressure, "kg/cm2", 0.0, 98066.5},
               {Q::water_content, "mg/Nm3", 0.0, 0.022413970e-3 / 18.01528},
               {Q::water_content, "g/Nm3", 0.0, 0.022413970 / 18.01528},
               {Q::water_content, "mg/Sm3", 0.0, 0.023644830e-3 / 18.01528},
               {Q::water_content, "ppmw", 16.0425, 16.0425e-6 / 18.01528}};
  for (const auto& c : cases)
    EXPECT_NEAR(unit(c.quantity, c.name).to_base(1.0, c.molar_mass), c.base, 1e-7 * c.base) << c.name;
  // The unit of entropy is that of enthalpy, for a kelvin or for 5/9 of one.
  UnitSystem system = unit_system("field");
  for (const char* name : {"cal/mol", "J/mol", "kJ/mol", "kJ/kmol", "kJ/kg", "J/kg", "Btu/lbmol", "Btu/lb"}) {
    system.choose_energy(name);
    const double kelvin = contains(name, "Btu") ? 5.0 / 9.0 : 1.0;
    EXPECT_DOUBLE_EQ(system[Q::entropy].to_base(1.0, 30.0) * kelvin, system[Q::enthalpy].to_base(1.0, 30.0))
        << name;
  }
}

TEST(units, lists_and_ranges_expand) {
  const Unit& celsius = unit(Quantity::temperature, "C");
  const auto list = [&](const char* text) { return parse_conditions(Quantity::temperature, text, celsius); };
  EXPECT_EQ(list("200,220, 250 K"), (std::vector<double>{200, 220, 250}));
  EXPECT_EQ(list("200K,25").back(), 298.15);
  EXPECT_EQ(list("150:350:10 K").size(), 21u);
  EXPECT_EQ(list("150:350:10K").back(), 350.0);
  EXPECT_EQ(list("300:290:-5K"), (std::vector<double>{300, 295, 290}));
  EXPECT_EQ(list("0.1:0.7:0.1").size(), 7u);  // in spite of rounding
  EXPECT_EQ(list("1:2:0.6K").size(), 2u);
  EXPECT_EQ(list("1e2 K,2:4:1K").size(), 4u);
}

TEST(units, wrong_conditions_are_refused_with_the_reason) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "not understood"},      {"warm", "not understood"},    {"25 X", "unknown unit of temperature \"X\""},
      {"-300", "absolute zero"},   {"1:10", "not understood"},    {"10:1:1", "range"},
      {"1:10:0", "range"},         {"1:2:3:4", "not understood"}, {"25,,30", "not understood"},
      {"1e999", "not understood"}, {"0:1e9:1", "more than"}};
  for (const auto& [text, part] : cases) {
    const std::string error =
        error_of([&] { parse_conditions(Quantity::temperature, text, unit(Quantity::temperature, "C")); });
    EXPECT_TRUE(contains(error, part)) << text << ": " << error;
  }
  const auto huge = [] { parse_conditions(Quantity::pressure, "1e308", unit(Quantity::pressure, "bar")); };
  EXPECT_TRUE(contains(error_of(huge), "too large"));
  EXPECT_TRUE(contains(error_of([] { unit_system("imperial"); }), "field"));
  EXPECT_EQ(unit_system("K,atm")[Quantity::pressure].name, "atm");
}

TEST(composition, all_ways_of_writing_give_the_same_mixture) {
  Composition inline_form, lines, json, list;
  read_inline("methane=0.7, \"2,2-dimethylbutane\"=20%, carbon dioxide = 1e-1", inline_form, false);
  read_lines(
      "component;amount\r\nmethane;0.7;\r\n# comment 5\n\n2,2-dimethylbutane,20 %\ncarbon dioxide\t0.1 # rest "
      "2%\n",
      lines);
  read_json(R"({"methane": 0.7, "2,2-dimethylbutane": "20%", "carbon dioxide": 0.1})", json);
  read_json(R"({"name": "A", "basis": "mass", "components": [{"name": "methane", "amount": 0.7},
             {"name": "2,2-dimethylbutane", "fraction": 0.2}, {"name": "CO2", "z": 0.1}]})",
            list);
  for (const Composition* c : {&inline_form, &lines, &json, &list}) {
    ASSERT_EQ(c->components.size(), 3u);
    EXPECT_EQ(c->components[1].id, "22_dimethylbutane");
    EXPECT_EQ(c->components[2].id, "carbon_dioxide");
    EXPECT_EQ(c->amounts, (std::vector<double>{0.7, 0.2, 0.1}));
  }
  EXPECT_EQ(list.basis, Basis::mass);
  EXPECT_EQ(list.title, "A");
}

TEST(composition, wrong_input_is_refused_with_the_reason) {
  const auto by_inline = [](const char* text) {
    return error_of([&] {
      Composition c;
      read_inline(text, c, false);
    });
  };
  EXPECT_TRUE(contains(by_inline("methane=0.5,CH4=0.5"), "given twice"));
  EXPECT_TRUE(contains(by_inline("methane=-1"), "negative"));
  EXPECT_TRUE(contains(by_inline("methane"), "no amount"));
  EXPECT_TRUE(contains(by_inline("methane=much"), "not an amount"));
  EXPECT_TRUE(contains(by_inline("methane=nan"), "not an amount"));
  const auto by_json = [](const char* text) {
    return error_of([&] {
      Composition c;
      read_json(text, c);
    });
  };
  EXPECT_TRUE(contains(by_json("{\"methane\": 0.7"), "not valid JSON"));
  EXPECT_TRUE(contains(by_json("{\"components\": {\"methane\": 1}, \"bassis\": \"mass\"}"), "bassis"));
  EXPECT_TRUE(contains(by_json("{\"components\": [{\"name\": \"methane\"}]}"), "amount"));
  EXPECT_TRUE(contains(by_json("{\"methane\": null}"), "number"));
  EXPECT_TRUE(contains(error_of([] {
                         Composition c;
                         read_lines("methane 1\nethane\n", c);
                       }),
                       "line 2"));
  EXPECT_TRUE(contains(error_of([] {
                         Composition c;
                         read_composition_file("no such file", c);
                       }),
                       "cannot open"));
}
