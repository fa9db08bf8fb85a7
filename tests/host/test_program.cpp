// The program from its arguments to its output, on the toy library.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

#include "fake_physics.hpp"
#include "support.hpp"

using namespace kestrune::host;
using host_test::contains;
using host_test::run;
using nlohmann::json;

namespace {

const std::vector<std::string> kGas{"flash", "--z", "methane=0.7,n-butane=0.3"};

host_test::Run flash(std::vector<std::string> more) {
  more.insert(more.begin(), kGas.begin(), kGas.end());
  return run(more);
}

std::size_t lines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace

TEST(library, says_what_is_missing) {
  EXPECT_TRUE(contains(run({"kij", "methane", "ethane"}, "nowhere/none.lib").err, "nowhere/none.lib"));
  const auto incomplete = run({"kij", "methane", "ethane"}, KESTRUNE_FAKE_INCOMPLETE);
  EXPECT_EQ(incomplete.code, 2);
  EXPECT_TRUE(contains(incomplete.err, "does not export Humidity\n"));
}

TEST(flash, json_holds_the_answer_of_the_library) {
  const auto r = flash({"-T", "25", "C", "-P", "20", "atm", "--format", "json"});
  ASSERT_EQ(r.code, 0) << r.err;
  const json state = json::parse(r.out)["states"][0];
  EXPECT_EQ(state["status_text"], "success");
  EXPECT_DOUBLE_EQ(state["temperature_K"], 298.15);
  EXPECT_DOUBLE_EQ(state["pressure_Pa"], 2026500.0);
  ASSERT_EQ(state["phases"].size(), 2u);
  const json &vapour = state["phases"][0], &liquid = state["phases"][1];
  // The toy gas has Z = 1 + P slope and the toy liquid the volume sum x v, compressed.
  EXPECT_NEAR(vapour["Z"], 1.0 + 20.0 * fake::kGasSlope, 1e-14);
  const double x = liquid["composition"]["methane"], M = liquid["molar_mass_g_mol"];
  const double shape = 1.0 - 19.0 * fake::kCompression;  // 25 C, 20 atm
  const double volume = x * fake::liquid_volume(0) + (1.0 - x) * fake::liquid_volume(1);
  EXPECT_NEAR(liquid["density_kg_m3"], 1000.0 * M / (volume * shape), 1e-9);
  // Balances by mole and by mass.
  const double beta = state["vapour_fraction"], y = vapour["composition"]["methane"];
  EXPECT_NEAR(beta * y + (1.0 - beta) * x, 0.7, 1e-12);
  EXPECT_NEAR(vapour["mass_fraction"].get<double>() + liquid["mass_fraction"].get<double>(), 1.0, 1e-12);
  EXPECT_NEAR(state["K"]["methane"], y / x, 1e-12);
}

TEST(flash, grids_have_one_line_per_state_and_details_on_request) {
  const auto summary = flash({"-T", "200,300", "K", "-P", "10:40:10"});
  EXPECT_EQ(summary.code, 0) << summary.err;
  EXPECT_EQ(lines(summary.out), 1u + 1u + 1u + 8u);
  EXPECT_TRUE(contains(summary.out, "two-phase"));
  EXPECT_FALSE(contains(summary.out, "mole fractions"));
  const auto details = flash({"-T", "200,300 K", "-P", "10:40:10", "--details"});
  EXPECT_TRUE(contains(details.out, "K = y/x"));
  const auto csv = flash({"-T", "300K", "-P", "1,20", "--format", "csv"});
  EXPECT_EQ(lines(csv.out), 1u + 1u + 2u);  // heading, vapour, vapour and liquid
}

TEST(flash, a_status_is_said_in_words_and_ends_with_code_1) {
  for (const char* format : {"table", "json", "csv"}) {
    const auto r = flash({"-T", "25C,1200K", "-P", "1", "--format", format});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(contains(r.out, "no convergence within the iteration limit")) << format;
  }
  const auto csv = flash({"-T", "1200K", "-P", "1", "--format", "csv"});
  const std::string last = csv.out.substr(csv.out.find('\n') + 1);
  EXPECT_EQ(std::count(last.begin(), last.end(), ','), std::count(csv.out.begin(), csv.out.end(), ',') / 2);
}

TEST(flash, remarks_settings_and_units_reach_the_output) {
  const auto r =
      run({"flash", "--z", "methane=70,water=30", "-T", "77", "-P", "1450.377", "--units", "field",
           "--free-water", "--solubility", "7,4000", "--basis", "mass", "--settings", "crit=1e-10,ITEMAX=50"});
  EXPECT_EQ(r.code, 0) << r.err;
  EXPECT_TRUE(contains(r.out, "sum to 100 and were normalised"));
  EXPECT_TRUE(contains(r.out, "mass fractions were converted"));
  EXPECT_TRUE(contains(r.out, "exp(7 - 4000 K / T)"));
  EXPECT_TRUE(contains(r.out, "77.000 F (298.150 K)"));
  EXPECT_TRUE(contains(r.out, "98.6923 atm"));
  const auto j = flash({"-T", "25", "-P", "1", "--settings", "crit=1e-10,ITEMAX=50", "--format", "json"});
  EXPECT_EQ(json::parse(j.out)["settings"]["itemax"], 50);
  const auto allowed =
      run({"flash", "--z", "methane=0.9,oxygen=0.1", "-T", "25", "-P", "1", "--allow-missing-pairs"});
  EXPECT_EQ(allowed.code, 0);
  EXPECT_TRUE(contains(allowed.out, "taken as zero: CH4 / O2"));
}

// Water above the solubility limit is a phase of its own: balances closed, the other liquid at the limit.
TEST(flash, free_water_is_parted_from_the_liquid) {
  const std::vector<std::string> wet{
      "flash",        "--z",   "methane=0.5,n-decane=0.2,water=0.3", "-T", "40", "-P", "30", "--free-water",
      "--solubility", "7,4000"};
  auto arguments = wet;
  arguments.insert(arguments.end(), {"--format", "json"});
  const auto r = run(arguments);
  ASSERT_EQ(r.code, 0) << r.err;
  const json document = json::parse(r.out), &phases = document["states"][0]["phases"];
  ASSERT_EQ(phases.size(), 3u);
  EXPECT_NEAR(phases[1]["composition"]["water"], std::exp(7.0 - 4000.0 / 313.15), 1e-15);
  EXPECT_EQ(phases[2]["phase"], "free water");
  EXPECT_TRUE(phases[2]["Z"].is_null());
  EXPECT_TRUE(phases[2]["density_kg_m3"].is_null());
  EXPECT_TRUE(document["states"][0]["overall"]["density_kg_m3"].is_null());
  EXPECT_FALSE(phases[2]["enthalpy_J_mol"].is_null());
  double mass = 0.0;
  for (const json& phase : phases) mass += phase["mass_fraction"].get<double>();
  EXPECT_NEAR(mass, 1.0, 1e-12);
  for (const auto& [name, z] : document["mixture"]["mole_fractions"].items()) {
    double sum = 0.0;
    for (const json& phase : phases)
      sum += phase["mole_fraction"].get<double>() * phase["composition"][name].get<double>();
    EXPECT_NEAR(sum, z.get<double>(), 1e-12) << name;
  }
  EXPECT_TRUE(contains(run(wet).out, "vapour + liquid + free water"));
}

TEST(flash, mixture_files_combine_with_the_command_line) {
  const std::string path = std::string(KESTRUNE_FAKE) + ".mixture.txt";
  std::ofstream(path) << "methane 0.5\nethane 0.5\n";
  const auto r =
      run({"flash", "-m", path, "--z", "ethane=0.3,N2=0.2", "-T", "25", "-P", "1", "--format", "json"});
  std::remove(path.c_str());
  ASSERT_EQ(r.code, 0) << r.err;
  EXPECT_EQ(json::parse(r.out)["mixture"]["mole_fractions"],
            (json{{"methane", 0.5}, {"ethane", 0.3}, {"nitrogen", 0.2}}));
}

TEST(program, wrong_input_ends_with_code_2_and_the_reason) {
  const struct {
    std::vector<std::string> arguments;
    const char* reason;
  } cases[] = {
      {{}, "subcommand"},
      {{"flesh"}, "unknown command \"flesh\": use flash, props, components, kij"},
      {{"flash", "-T", "25", "-P", "1"}, "no mixture"},
      {{"flash", "--z", "methane=1", "-P", "1"}, "only the pressure is given"},
      {{"flash", "--z", "metane=1", "-T", "25", "-P", "1"}, "did you mean methane"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "-1"}, "not above vacuum"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1 hPa"}, "unknown unit"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1", "--set", "2023"}, "2022 or original"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1", "--settings", "tol=1"}, "unknown setting"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1", "--settings", "itemax=1.5"}, "whole number"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1", "--solubility", "1,2"}, "--free-water"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1", "--free-water", "--solubility", "1"}, "A,B"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1", "--format", "xml"}, "xml"},
      {{"flash", "--z", "methane=0.5,oxygen=0.5", "-T", "25", "-P", "1"}, "CH4 / O2 (methane with oxygen)"},
      {{"flash", "--z", "methane=1", "-T", "25", "-P", "1", "--energy", "kcal"},
       "enthalpy \"kcal\": use kJ/kg"},
      {{"props", "--z", "methane=1", "-T", "25", "-P", "1", "--phase", "solid"}, "use flash, gas or liquid"},
      {{"props", "--z", "methane=1", "-T", "25"}, "--pressure is required"},
      {{"kij", "methane"}, "two components"},
      {{"components", "unobtainium"}, "no component matches"}};
  for (const auto& c : cases) {
    const auto r = run(c.arguments);
    EXPECT_EQ(r.code, 2) << c.reason;
    EXPECT_TRUE(contains(r.err, c.reason)) << c.reason << ": " << r.err;
    EXPECT_EQ(r.out, "");
  }
}

TEST(program, help_and_version_are_no_errors) {
  EXPECT_EQ(run({"--help"}).code, 0);
  EXPECT_EQ(run({"flash", "--help"}).code, 0);
  EXPECT_TRUE(contains(run({"--version"}).out, "kestrune "));
}

TEST(kij_command, shows_matrix_columns_and_what_is_missing) {
  const auto matrix = run({"kij", "methane", "helium", "H2S", "-T", "25"});
  EXPECT_EQ(matrix.code, 0) << matrix.err;
  EXPECT_TRUE(contains(matrix.out, "H2S / He"));
  EXPECT_TRUE(contains(matrix.out, "*"));
  const auto csv = run({"kij", "methane", "ethane", "-T", "200:250:50", "K", "--format", "csv"});
  EXPECT_TRUE(contains(csv.out, "methane,ethane,200,0.0058"));  // published value 0.0059, computed 0.005876
  const auto j = run({"kij", "--z", "methane=1,CO2=1", "-T", "0,50", "--format", "json"});
  EXPECT_EQ(json::parse(j.out)["temperatures"].size(), 2u);
}

TEST(components_command, filters_and_is_machine_readable) {
  const json all = json::parse(run({"components", "--format", "json"}).out);
  EXPECT_EQ(all.size(), all_components().size());
  const json xylenes = json::parse(run({"components", "xylene", "--format", "json"}).out);
  EXPECT_EQ(xylenes.size(), 3u);
  EXPECT_EQ(xylenes[0]["groups"]["CHaro"], 4);
  EXPECT_TRUE(contains(run({"components", "124-38-9"}).out, "carbon dioxide"));
  EXPECT_TRUE(contains(run({"components", "glycol", "--format", "csv"}).out, ",none\n"));
}
