// Flashes at enthalpy, entropy and vapour fraction, from the options to the reports; numbers for scripts.
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

const std::string kRich = "methane=0.80,ethane=0.09,propane=0.06,nC4=0.03,nC5=0.015,nC6=0.005";

host_test::Run flash(std::vector<std::string> more, const std::string& library = KESTRUNE_FAKE,
                     const std::string& gas = "methane=0.7,n-butane=0.3") {
  more.insert(more.begin(), {"flash", "--z", gas});
  return run(more, library);
}

json states(std::vector<std::string> more, const std::string& library = KESTRUNE_FAKE,
            const std::string& gas = "methane=0.7,n-butane=0.3") {
  more.insert(more.end(), {"--format", "json"});
  const auto r = flash(more, library, gas);
  EXPECT_EQ(r.err, "");
  return json::parse(r.out)["states"];
}

// The numbers of one state that --print writes, with the real library.
std::vector<double> numbers(std::vector<std::string> more, const std::string& gas) {
  const auto r = flash(more, default_library_path(), gas);
  EXPECT_EQ(r.code, 0) << r.err;
  std::istringstream line(r.out);
  std::vector<double> result;
  for (double value = 0.0; line >> value;) result.push_back(value);
  result.resize(8, std::nan(""));
  return result;
}

std::string exact(double value) {
  std::ostringstream text;
  text.precision(17);
  text << value;
  return text.str();
}

}  // namespace

TEST(conditions, other_than_two_that_a_flash_takes_are_refused) {
  const struct {
    std::vector<std::string> arguments;
    const char* reason;
  } cases[] = {
      {{}, "no conditions are given: give one of the pairs temperature and pressure; enthalpy and"},
      {{"-T", "25"}, "only the temperature is given"},
      {{"--bubble"}, "only the vapour fraction is given"},
      {{"-T", "25", "-P", "1", "-H", "-5"}, "3 conditions are given (temperature, pressure, enthalpy)"},
      {{"-T", "25", "-P", "1", "--dew"}, "3 conditions"},
      {{"-T", "25", "-H", "-5"}, "a flash at temperature and enthalpy is not available"},
      {{"-T", "25", "-S", "-5"}, "a flash at temperature and entropy is not available"},
      {{"-H", "5", "-S", "-5"}, "a flash at enthalpy and entropy is not available"},
      {{"-H", "5", "--beta", "0.5"}, "a flash at enthalpy and vapour fraction is not available"},
      {{"-S", "5", "--dew"}, "a flash at entropy and vapour fraction is not available"},
      {{"--beta", "0.5", "--dew", "-P", "1"}, "excludes"},
      {{"--bubble", "--dew", "-P", "1"}, "excludes"},
      {{"--beta", "1.01", "-P", "1"}, "not between 0 (bubble point) and 1 (dew point)"},
      {{"--beta", "0.5 K", "-P", "1"}, "a vapour fraction has no unit"},
      {{"-H", "5 J", "-P", "1"}, "unknown unit of enthalpy"},
      {{"-T", "25", "-P", "1", "--print", "T,size"}, "unknown number \"size\": print T, P, beta"},
      {{"-T", "25", "-P", "1", "--print", "T", "--format", "csv"}, "excludes"}};
  for (const auto& c : cases) {
    const auto r = flash(c.arguments);
    EXPECT_EQ(r.code, 2) << c.reason;
    EXPECT_TRUE(contains(r.err, c.reason)) << c.reason << ": " << r.err;
    EXPECT_EQ(r.out, "");
  }
}

TEST(flashes, find_the_temperature_of_an_enthalpy_or_entropy) {
  const json at = states({"-T", "250 K", "-P", "20 atm"})[0];
  ASSERT_EQ(at["phases"].size(), 2u);
  const double H = at["overall"]["enthalpy_J_mol"], S = at["overall"]["entropy_J_mol_K"];
  const double M = at["overall"]["molar_mass_g_mol"];
  const std::vector<std::string> cases[] = {{"-H", exact(H), "J/mol"},
                                            {"-H", exact(H / M) + " kJ/kg"},
                                            {"-S", exact(S), "J/(mol K)"},
                                            {"--entropy", exact(S / 4.184) + " cal/(mol K)"}};
  for (auto arguments : cases) {
    arguments.insert(arguments.end(), {"-P", "20 atm"});
    const json found = states(arguments)[0];
    EXPECT_NEAR(found["temperature_K"], 250.0, 1e-6) << arguments[1];
    EXPECT_NEAR(found["vapour_fraction"], at["vapour_fraction"].get<double>(), 1e-9);
    EXPECT_NEAR(found["overall"]["enthalpy_J_mol"], H, 1e-6 * std::abs(H));
  }
  const json given = states({"-H", exact(H), "J/mol", "-P", "20 atm"})[0]["given"];
  EXPECT_EQ(given["enthalpy_J_mol"], H);
  EXPECT_EQ(given["pressure_Pa"], 2026500.0);
  const auto text = flash({"-H", "-500 cal/mol", "-P", "20 atm", "--energy", "cal/mol"});
  EXPECT_TRUE(contains(text.out, "Given        enthalpy -500.000 cal/mol\n")) << text.out;
  const auto line = flash({"-S", "-7:-5:1 cal/mol/K", "-P", "20,30 atm", "--units", "si"});
  EXPECT_EQ(line.code, 0) << line.out;
  EXPECT_EQ(std::count(line.out.begin(), line.out.end(), '\n'), 1 + 1 + 1 + 6);
  EXPECT_TRUE(contains(line.out, "S J/(mol K)"));
}

TEST(flashes, a_bubble_or_dew_point_shows_the_incipient_phase) {
  for (const bool bubble : {true, false}) {
    const json s = states({bubble ? "--bubble" : "--dew", "-P", "20 atm"})[0];
    ASSERT_EQ(s["phases"].size(), 2u);
    const json &vapour = s["phases"][0], &liquid = s["phases"][1];
    EXPECT_EQ(vapour["mole_fraction"], bubble ? 0.0 : 1.0);
    EXPECT_EQ(liquid["mass_fraction"], bubble ? 1.0 : 0.0);
    // Sum of z K or of z / K is 1 there.
    const json& incipient = (bubble ? vapour : liquid)["composition"];
    EXPECT_NEAR(incipient["methane"].get<double>() + incipient["n_butane"].get<double>(), 1.0, 1e-9);
    EXPECT_FALSE((bubble ? vapour : liquid)["enthalpy_J_mol"].is_null());
    EXPECT_EQ(s["overall"]["enthalpy_J_mol"], (bubble ? liquid : vapour)["enthalpy_J_mol"]);
    // And the pressure of that temperature is the one it was found at.
    const json back = states({"--beta", bubble ? "0" : "1", "-T", exact(s["temperature_K"]) + " K"})[0];
    EXPECT_NEAR(back["pressure_Pa"], 2026500.0, 1e-3);
  }
  const auto text = flash({"--bubble", "-P", "20 atm"});
  EXPECT_TRUE(contains(text.out, "Phases       liquid, incipient vapour\n"));
  EXPECT_TRUE(contains(text.out, "K = y/x"));
  const auto csv = flash({"--beta", "0:1:0.5", "-P", "20 atm", "--format", "csv"});
  const auto rows = split(csv.out, '\n');
  ASSERT_GE(rows.size(), 7u);
  for (std::size_t i = 0; i < 7; ++i) {
    const auto fields = split(rows[i], ',');
    EXPECT_EQ(fields.size(), split(rows[0], ',').size());
    EXPECT_EQ(fields[1], i == 0 ? "given_vapour_fraction" : i < 3 ? "0" : i < 5 ? "0.5" : "1");
  }
}

TEST(flashes, statuses_of_saturation_are_said_in_words_and_end_with_code_1) {
  for (const char* format : {"table", "json", "csv"}) {
    const auto none = flash({"--dew", "-P", "10,95 atm", "--format", format});
    EXPECT_EQ(none.code, 1);
    EXPECT_TRUE(contains(none.out, "no temperature or pressure has this vapour fraction")) << format;
    const auto unstable = flash({"--bubble", "-P", "70 atm", "--format", format});
    EXPECT_EQ(unstable.code, 1);
    EXPECT_TRUE(contains(unstable.out, "another phase splits off before it")) << format;
    const auto far = flash({"-H", "1e6", "-P", "10 atm", "--format", format});
    EXPECT_EQ(far.code, 1);
    EXPECT_TRUE(contains(far.out, "no convergence")) << format;
    for (const auto& r : {none, unstable, far}) EXPECT_FALSE(contains(r.out, "nan")) << format;
  }
  const json none = states({"--dew", "-P", "95 atm"})[0], unstable = states({"--bubble", "-P", "70 atm"})[0];
  EXPECT_TRUE(none["temperature_K"].is_null());
  EXPECT_FALSE(none.contains("last_iterate"));
  EXPECT_EQ(unstable["phases"].size(), 2u);
  EXPECT_GT(unstable["temperature_K"], 0.0);
  const json far = states({"-H", "1e6", "-P", "10 atm"})[0];
  EXPECT_TRUE(far["temperature_K"].is_null());
  EXPECT_NEAR(far["last_iterate"]["temperature_K"], fake::kT0, 0.01);
  EXPECT_TRUE(contains(flash({"--dew", "-P", "95 atm"}).out, "Temperature  -\n"));
}

TEST(print, writes_the_numbers_of_json_and_nothing_else) {
  const json s = states({"-T", "250 K", "-P", "20 atm"})[0];
  const auto r =
      flash({"-T", "250 K", "-P", "20 atm", "--print", "T,beta,H,entropy_J_mol_K,M", "--units", "field"});
  std::istringstream line(r.out);
  const json* expected[] = {&s["temperature_K"], &s["vapour_fraction"], &s["overall"]["enthalpy_J_mol"],
                            &s["overall"]["entropy_J_mol_K"], &s["overall"]["molar_mass_g_mol"]};
  for (const json* value : expected) {
    double number = 0.0;
    line >> number;
    EXPECT_EQ(number, value->get<double>());
  }
  EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1);
  const auto missing = flash({"--dew", "-P", "10,95 atm", "--print", "T"});
  EXPECT_EQ(missing.code, 1);
  EXPECT_TRUE(contains(missing.out, "\nnan\n"));
  EXPECT_TRUE(contains(missing.err, "state 2: status 116"));
  const auto gas =
      run({"props", "--z", "methane=1", "-T", "300 K", "-P", "10 atm", "--phase", "gas", "--print", "Z"});
  EXPECT_NEAR(std::stod(gas.out), 1.0 + 10.0 * fake::kGasSlope, 1e-14);
}

// Gas, two phases, liquid, and with free water, where the whole is not the sum of the phases that are shown.
TEST(real_library, temperature_returns_from_enthalpy_and_entropy) {
  const struct {
    std::string gas;
    std::vector<std::string> options;
  } cases[] = {{kRich, {}},
               {"methane=0.5,n-decane=0.2,water=0.3", {"--free-water"}},
               {"methane=0.5,n-decane=0.2,water=0.3", {"--free-water", "--phases", "3"}},
               {"methane=0.5,n-heptane=0.2,water=0.3", {"--phases", "3"}}};
  for (const auto& c : cases) {
    for (const char* T : {"220", "290", "350"}) {
      const auto at = [&](std::vector<std::string> more) {
        more.insert(more.end(), c.options.begin(), c.options.end());
        more.insert(more.end(), {"-P", "20 bar", "--print", "T,beta,H,S"});
        return numbers(more, c.gas);
      };
      const auto known = at({"-T", std::string(T) + " K"});
      const auto by_H = at({"-H", exact(known[2]) + " J/mol"}), by_S = at({"-S", exact(known[3]) + " J/molK"});
      EXPECT_NEAR(by_H[0], known[0], 1e-6) << c.gas;
      EXPECT_NEAR(by_S[0], known[0], 1e-6) << c.gas;
      EXPECT_NEAR(by_H[1], known[1], 1e-6) << c.gas;
      EXPECT_NEAR(by_S[1], known[1], 1e-6) << c.gas;
    }
  }
}

// Of a single component temperature and pressure do not say how much has boiled; the enthalpy does.
TEST(real_library, boiling_methane_returns_from_its_enthalpy) {
  const auto boiling = numbers({"--beta", "0.25", "-P", "10 bar", "--print", "T,H,S"}, "methane=1");
  for (const bool enthalpy : {true, false}) {
    const std::string value = exact(boiling[enthalpy ? 1 : 2]) + (enthalpy ? " J/mol" : " J/molK");
    const auto found =
        numbers({enthalpy ? "-H" : "-S", value, "-P", "10 bar", "--print", "T,beta"}, "methane=1");
    EXPECT_NEAR(found[0], boiling[0], 1e-6);
    EXPECT_NEAR(found[1], 0.25, 1e-7);
  }
}

// On one side of the point there is one phase, on the other there are two.
TEST(real_library, phases_appear_at_bubble_and_dew_points) {
  const auto phases = [](double T, double P) {
    return states({"-T", exact(T) + " K", "-P", exact(P) + " Pa"}, default_library_path(), kRich)[0]["phases"]
        .size();
  };
  const auto bubble = numbers({"--bubble", "-T", "200 K", "--print", "T,P"}, kRich);
  EXPECT_EQ(phases(bubble[0], bubble[1] * (1.0 + 1e-6)), 1u);
  EXPECT_EQ(phases(bubble[0], bubble[1] * (1.0 - 1e-6)), 2u);
  const auto dew = numbers({"--dew", "-P", "20 bar", "--print", "T,P"}, kRich);
  EXPECT_EQ(phases(dew[0] + 1e-4, dew[1]), 1u);
  EXPECT_EQ(phases(dew[0] - 1e-4, dew[1]), 2u);
  const auto half = numbers({"--beta", "0.5", "-P", "20 bar", "--print", "T,P"}, kRich);
  EXPECT_NEAR(numbers({"-T", exact(half[0]) + " K", "-P", "20 bar", "--print", "beta"}, kRich)[0], 0.5, 1e-7);
}
