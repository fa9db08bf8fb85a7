// Flashes of up to three phases, from the options to the reports.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "fake_physics.hpp"
#include "support.hpp"

using namespace kestrune::host;
using host_test::contains;
using host_test::run;
using nlohmann::json;

namespace {

const char* const kDry = "methane=0.7,n-butane=0.3";
const char* const kWet = "methane=0.5,n-butane=0.31,water=0.19";  // a fifth is the aqueous liquid of the toy

host_test::Run flash(const char* mixture, std::vector<std::string> more) {
  more.insert(more.begin(), {"flash", "--phases", "3", "--z", mixture});
  return run(more);
}

json state(const char* mixture, std::vector<std::string> more) {
  more.insert(more.end(), {"--format", "json"});
  const auto r = flash(mixture, more);
  EXPECT_EQ(r.err, "");
  return json::parse(r.out)["states"][0];
}

std::string phases(const json& state) {
  std::vector<std::string> names;
  for (const json& p : state["phases"]) names.push_back(p["phase"]);
  return joined(names, ", ");
}

}  // namespace

TEST(three_phases, close_the_balances_and_sum_to_the_whole) {
  const auto r = flash(kWet, {"-T", "250 K", "-P", "20 atm", "--format", "json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json document = json::parse(r.out), s = document["states"][0];
  ASSERT_EQ(phases(s), "vapour, hydrocarbon liquid, aqueous liquid");
  const auto sum = [&](const auto& of_phase) {
    double total = 0.0;
    for (const json& p : s["phases"])
      total += p["mole_fraction"].get<double>() * of_phase(p).template get<double>();
    return total;
  };
  for (const auto& [name, z] : document["mixture"]["mole_fractions"].items()) {
    EXPECT_NEAR(sum([&](const json& p) { return p["composition"][name]; }), z.get<double>(), 1e-12) << name;
  }
  for (const char* key : {"enthalpy_J_mol", "entropy_J_mol_K", "molar_volume_m3_mol", "molar_mass_g_mol"}) {
    const double whole = s["overall"][key];
    EXPECT_NEAR(sum([&](const json& p) { return p[key]; }), whole, 1e-12 * std::abs(whole)) << key;
  }
  EXPECT_NEAR(s["aqueous_liquid_fraction"], 0.19 / fake::kPurity, 1e-12);
  EXPECT_EQ(s["hydrocarbon_liquid_fraction"], s["phases"][1]["mole_fraction"]);
  EXPECT_FALSE(s["phases"][2]["density_kg_m3"].is_null());
  const json &K = s["K"]["vapour/aqueous liquid"], &y = s["phases"][0]["composition"];
  EXPECT_DOUBLE_EQ(K["methane"].get<double>() * s["phases"][2]["composition"]["methane"].get<double>(),
                   y["methane"]);
  EXPECT_TRUE(s["K"]["vapour/hydrocarbon liquid"]["water"].is_null());
}

TEST(three_phases, temperature_returns_from_enthalpy_and_entropy) {
  for (const char* water : {"--free-water", "--details"}) {
    const json at = state(kWet, {"-T", "250 K", "-P", "20 atm", water});
    for (const bool enthalpy : {true, false}) {
      const std::string value = at["overall"][enthalpy ? "enthalpy_J_mol" : "entropy_J_mol_K"].dump();
      const json back = state(
          kWet, {enthalpy ? "-H" : "-S", value + (enthalpy ? " J/mol" : " J/molK"), "-P", "20 atm", water});
      EXPECT_NEAR(back["temperature_K"], 250.0, 1e-6);
      EXPECT_NEAR(back["vapour_fraction"], at["vapour_fraction"].get<double>(), 1e-9);
    }
  }
}

TEST(three_phases, are_named_by_what_they_are) {
  const auto at = [](const char* mixture, const char* T, const char* P) {
    return phases(state(mixture, {"-T", T, "-P", P}));
  };
  EXPECT_EQ(at(kDry, "298 K", "1 atm"), "vapour");
  EXPECT_EQ(at(kDry, "250 K", "20 atm"), "vapour, hydrocarbon liquid");
  EXPECT_EQ(at(kDry, "200 K", "400 atm"), "hydrocarbon liquid");
  EXPECT_EQ(at(kDry, "120 K", "400 atm"), "light liquid, heavy liquid");
  EXPECT_EQ(at("methane=0.01,water=0.99", "298 K", "1 atm"), "aqueous liquid");
  const json cold = state(kDry, {"-T", "120 K", "-P", "400 atm"});
  EXPECT_LT(cold["phases"][0]["density_kg_m3"], cold["phases"][1]["density_kg_m3"]);
  EXPECT_TRUE(cold["K"].contains("light liquid/heavy liquid"));
  // Water that keeps to itself does not follow the equation of state.
  const json wet = state(kWet, {"-T", "250 K", "-P", "20 atm", "--free-water"});
  EXPECT_EQ(phases(wet), "vapour, hydrocarbon liquid, free water");
  EXPECT_NEAR(wet["aqueous_liquid_fraction"], 0.19, 1e-12);
  EXPECT_FALSE(wet["phases"][2]["enthalpy_J_mol"].is_null());
  EXPECT_TRUE(wet["phases"][2]["density_kg_m3"].is_null());
  EXPECT_TRUE(wet["overall"]["density_kg_m3"].is_null());
}

TEST(three_phases, incipient_ones_are_shown_at_bubble_and_dew_points) {
  const json bubble = state(kWet, {"--bubble", "-P", "20 atm"});
  EXPECT_EQ(phases(bubble), "vapour, hydrocarbon liquid, aqueous liquid");
  EXPECT_EQ(bubble["phases"][0]["mole_fraction"], 0.0);
  const json back = state(kWet, {"--beta", "0", "-T", bubble["temperature_K"].dump() + " K"});
  EXPECT_NEAR(back["pressure_Pa"], 2026500.0, 1e-3);
  const json dew = state(kDry, {"--dew", "-P", "20 atm"});
  EXPECT_EQ(phases(dew), "vapour, hydrocarbon liquid");
  EXPECT_EQ(dew["phases"][1]["mole_fraction"], 0.0);
  EXPECT_EQ(phases(state(kDry, {"--beta", "0.5", "-P", "20 atm"})), "vapour, hydrocarbon liquid");
  EXPECT_TRUE(contains(flash(kWet, {"--bubble", "-P", "20 atm"}).out,
                       "Phases       hydrocarbon liquid + aqueous liquid, incipient vapour\n"));
  EXPECT_EQ(flash(kWet, {"--dew", "-P", "20 atm"}).code, 1);
}

TEST(three_phases, fill_tables_rows_and_numbers) {
  const std::vector<std::string> line{"-T", "200,250,298 K", "-P", "20 atm"};
  const auto with = [&](const char* option, const char* value) {
    auto arguments = line;
    arguments.insert(arguments.end(), {option, value});
    return flash(kWet, arguments).out;
  };
  const auto rows = split(with("--format", "csv"), '\n');
  for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
    EXPECT_EQ(split(rows[i], ',').size(), split(rows[0], ',').size()) << rows[i];
  }
  EXPECT_EQ(
      std::count_if(rows.begin(), rows.end(), [](const auto& r) { return contains(r, ",aqueous liquid,"); }),
      3);
  EXPECT_TRUE(contains(with("--units", "K,atm"),
                       "aqueous mol  kg/m3 vapour  kg/m3 hydrocarbon  kg/m3 aqueous  status"));
  EXPECT_TRUE(contains(with("--units", "K,atm"), "vapour + hydrocarbon liquid + aqueous liquid"));
  const json s = state(kWet, {"-T", "250 K", "-P", "20 atm"});
  EXPECT_EQ(split(with("--print", "hydrocarbon,aqueous_liquid_fraction"), '\n')[1],
            s["hydrocarbon_liquid_fraction"].dump() + " " + s["aqueous_liquid_fraction"].dump());
  EXPECT_TRUE(contains(flash(kWet, {"-T", "250 K", "-P", "20 atm"}).out, "vapour/hydrocarbon  vapour/aqueous"));
}

TEST(three_phases, without_an_answer_say_so) {
  for (const char* number : {"4", "1", "three", ""}) {
    const auto r = run({"flash", "--phases", number, "--z", "methane=1", "-T", "25", "-P", "1"});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(contains(r.err, "up to 2 or up to 3 phases")) << r.err;
  }
  EXPECT_EQ(run({"flash", "--phases", "2", "--z", "methane=1", "-T", "25", "-P", "1"}).code, 0);
  const json iterate = state(kWet, {"-T", "1200 K", "-P", "1 atm"})["last_iterate"];
  for (const char* key : {"liquid_A_fraction", "liquid_A", "liquid_B", "vapour"})
    EXPECT_TRUE(iterate.contains(key));
  EXPECT_TRUE(contains(flash(kWet, {"-T", "1200 K", "-P", "1 atm"}).out, "liquid A  liquid B\n"));
  const auto none = flash(kWet, {"-T", "1600 K", "-P", "1 atm"});  // nothing was found on the way either
  EXPECT_EQ(none.code, 1);
  EXPECT_TRUE(contains(none.out, "136: no starting point for three phases"));
  EXPECT_FALSE(contains(none.out, "last iterate"));
}

// Where the equilibrium has no second liquid, and with free water where the solubility parts the liquids, both
// flashes of the library mean the same state.
TEST(real_library, flashes_of_two_and_three_phases_agree) {
  const struct {
    const char* gas;
    std::vector<std::string> options;
  } cases[] = {{"methane=0.8,ethane=0.1,nC4=0.06,nC6=0.04", {}},
               {"methane=0.7,nC6=0.2,water=0.1", {"--free-water"}}};
  for (const auto& c : cases) {
    const auto with = [&](const char* number) {
      std::vector<std::string> arguments{"flash",
                                         "--phases",
                                         number,
                                         "--z",
                                         c.gas,
                                         "-T",
                                         "230,290,350,500 K",
                                         "-P",
                                         "20,60 bar",
                                         "--print",
                                         "beta,hydrocarbon,aqueous,H"};
      arguments.insert(arguments.end(), c.options.begin(), c.options.end());
      const auto r = run(arguments, default_library_path());
      EXPECT_EQ(r.code, 0) << r.err;
      std::istringstream numbers(r.out);
      std::vector<double> result;
      for (double value = 0.0; numbers >> value;) result.push_back(value);
      return result;
    };
    const auto two = with("2"), three = with("3");
    ASSERT_EQ(two.size(), 32u);
    ASSERT_EQ(three.size(), 32u);
    for (std::size_t i = 0; i < two.size(); ++i) {
      EXPECT_NEAR(three[i], two[i], 1e-8 * std::max(1.0, std::abs(two[i]))) << c.gas << " number " << i;
    }
  }
}
