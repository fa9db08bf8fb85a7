// The contract of the entries: statuses, units, null and bad arguments, floating-point state, enquiries.
#include <gtest/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <set>
#include <vector>

#include "common/environment.hpp"
#include "csv_rows.hpp"

using namespace pure_test;

namespace {

constexpr std::int32_t water = 7732185;
constexpr std::int32_t methane = 74828;
constexpr double nan_value = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

std::string padded(const std::string& text, std::size_t length) {
  return text + std::string(length - text.size(), ' ');
}

struct NamedIntegral {
  KvPureProperty f;
  const char* unit;
};

const NamedIntegral integrals[] = {
    {&IdealGasSpecificHeatIT_EX, "J/kmol"},
    {&IdealGasSpecificHeatTIT_EX, "J/kmol/K"},
    {&LiquidSpecificHeatIT_EX, "J/kmol"},
    {&LiquidSpecificHeatTIT_EX, "J/kmol/K"},
    {&SolidSpecificHeatIT_EX, "J/kmol"},
    {&SolidSpecificHeatTIT_EX, "J/kmol/K"},
    {&LiquidSpecificHeatInfiniteDilutionIT_EX, "J/kmol"},
    {&LiquidSpecificHeatInfiniteDilutionTIT_EX, "J/kmol/K"},
    {&StdVaporChemicalExergy_EX, "J/kmol"},
    {&StdLiquidChemicalExergy_EX, "J/kmol"},
    {&StdSolidChemicalExergy_EX, "J/kmol"},
};

std::vector<KvPureProperty> all_entries() {
  std::vector<KvPureProperty> all;
  for (const Entry& e : entries()) all.push_back(e.evaluate);
  for (const NamedIntegral& e : integrals) all.push_back(e.f);
  return all;
}

std::vector<std::int32_t> available(std::int32_t cas, std::int32_t property, std::int32_t capacity = 8) {
  std::vector<std::int32_t> words(9, -7);
  words[0] = capacity;
  EXPECT_EQ(AvailableCorrelations(&cas, &property, words.data()), 0);
  EXPECT_EQ(words[static_cast<std::size_t>(words[0]) + 1], -7);  // nothing behind the count
  return {words.begin() + 1, words.begin() + 1 + words[0]};
}

}  // namespace

TEST(PureEntries, UnitsAreBlankPaddedToFifteenCharacters) {
  for (const Entry& e : entries()) {
    EXPECT_EQ(call(e.evaluate, water, 280.0).unit, padded(e.unit, 15) + "#") << e.name;
  }
  for (const NamedIntegral& e : integrals) {
    EXPECT_EQ(call_integral(e.f, water, 280.0, 270.0, 0.0).unit, padded(e.unit, 15) + "#");
  }
}

TEST(PureEntries, ComponentAndCorrelationStatuses) {
  for (const KvPureProperty f : all_entries()) {
    for (const std::int32_t cas : {-1, 0, 1, 7732184, 2147483647}) {
      const Answer answer = call_integral(f, cas, 300.0, 290.0, 5.0);
      EXPECT_EQ(answer.status, 1) << cas;
      EXPECT_EQ(answer.value, 0.0);
    }
    const Answer odd_equation = call_integral(f, methane, 150.0, 140.0, 5.0, 9999);
    EXPECT_EQ(odd_equation.status, 2);
    EXPECT_EQ(odd_equation.value, 0.0);
  }
  EXPECT_EQ(call(&LiquidSpecificHeatInfiniteDilution_EX, water, 300.0).status, 2);
  EXPECT_EQ(call(&SolidThermalConductivity_EX, methane, 80.0).status, 2);
  EXPECT_EQ(call(&SublimationPressure_EX, 74986, 80.0).status, 2);
  EXPECT_EQ(call(&IdealGasSpecificHeat_EX, methane, 300.0, 107).status, 0);
  EXPECT_EQ(call(&IdealGasSpecificHeat_EX, methane, 300.0, 100).status, 2);
}

TEST(PureEntries, RefusesArgumentsThatAreNotFiniteOrNotPositive) {
  for (const KvPureProperty f : all_entries()) {
    for (const double t : {nan_value, infinite, -infinite, 0.0, -0.0, -10.0}) {
      const Answer answer = call_integral(f, water, t, 280.0, 0.0);
      EXPECT_EQ(answer.status, 4) << t;
      EXPECT_EQ(answer.value, 0.0);
    }
  }
  for (int i = 0; i < 8; ++i) {
    for (const double bad : {nan_value, infinite, 0.0, -5.0}) {
      EXPECT_EQ(call_integral(integrals[i].f, water, 280.0, bad, 0.0).status, 4);
    }
    for (const double bad : {nan_value, -infinite}) {
      EXPECT_EQ(call_integral(integrals[i].f, water, 280.0, 270.0, bad).status, 4);
    }
  }
}

TEST(PureEntries, NullArguments) {
  const std::int32_t cas = water;
  const double t = 300.0;
  const double a = 290.0;
  for (const KvPureProperty f : all_entries()) {
    std::int32_t status = -1;
    double result = -1.0;
    char unit[16] = "###############";
    EXPECT_EQ(f(nullptr, &t, &a, &a, nullptr, &status, &result, unit), 4);
    EXPECT_EQ(status, 4);
    EXPECT_EQ(result, 0.0);
    EXPECT_EQ(f(&cas, nullptr, &a, &a, nullptr, &status, &result, unit), 4);
    EXPECT_EQ(f(&cas, &t, &a, &a, nullptr, nullptr, &result, unit), 4);
    EXPECT_EQ(f(&cas, &t, &a, &a, nullptr, &status, nullptr, unit), 4);
    EXPECT_EQ(f(&cas, &t, &a, &a, nullptr, &status, &result, nullptr), 4);
    EXPECT_EQ(f(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), 4);
  }
  std::int32_t status = -1;
  double result = -1.0;
  char unit[16] = {};
  EXPECT_EQ(VaporPressure_EX(&cas, &t, nullptr, nullptr, nullptr, &status, &result, unit), 0);
  EXPECT_EQ(IdealGasSpecificHeatIT_EX(&cas, &t, nullptr, &a, nullptr, &status, &result, unit), 4);
  EXPECT_EQ(IdealGasSpecificHeatTIT_EX(&cas, &t, &a, nullptr, nullptr, &status, &result, unit), 4);
  for (const Entry& e : entries()) {
    EXPECT_EQ(e.check(nullptr, &cas), 4);
    EXPECT_EQ(e.check(&cas, nullptr), 4);
  }
  EXPECT_EQ(AvailableCorrelations(&cas, &cas, nullptr), 4);
  EXPECT_EQ(CorrelationInfo(&cas, &cas, &cas, nullptr, nullptr, nullptr, nullptr), 4);
  EXPECT_EQ(SetTempFolder(nullptr, &cas), 4);
  EXPECT_EQ(SetThermoCodes(&cas, nullptr), 4);
}

TEST(PureEntries, ChecksAgreeWithEvaluations) {
  std::set<std::int32_t> components = {12345};
  for (const CsvRow& row : correlation_rows("vapour_pressure")) components.insert(row.cas);
  EXPECT_EQ(components.size(), 60u);
  for (const Entry& e : entries()) {
    for (const std::int32_t cas : components) {
      for (const std::int32_t equation : {1, 10, 16, 100, 101, 102, 106, 107, 114, 127, 294, 295, 300}) {
        const std::int32_t status = call(e.evaluate, cas, 250.0, equation).status;
        EXPECT_EQ(e.check(&cas, &equation), status == 3 ? 0 : status) << e.name << cas << " " << equation;
      }
    }
  }
}

TEST(PureEntries, ChemicalExergiesFromTheBestSource) {
  std::map<std::pair<std::string, std::int32_t>, std::map<std::string, double>> by_source;
  for (const Fields& f : read_csv("chemical_exergy")) {
    by_source[{f.at("phase"), cas_number(f.at("cas"))}][f.at("source")] = std::stod(f.at("value")) * 1e6;
  }
  for (const auto& [key, values] : by_source) {
    double wanted = values.begin()->second;
    for (const char* source : {"CALC:SZARGUT1988", "SZARGUT1988", "SZARGUT2007"}) {
      if (values.count(source)) wanted = values.at(source);
    }
    const KvPureProperty f = key.first == "g" ? &StdVaporChemicalExergy_EX : &StdLiquidChemicalExergy_EX;
    EXPECT_DOUBLE_EQ(call(f, key.second, 298.15).value, wanted);
  }
  EXPECT_EQ(call(&StdVaporChemicalExergy_EX, methane, 298.15).value, 831.2e6);
  EXPECT_EQ(call(&StdLiquidChemicalExergy_EX, methane, 298.15).status, 2);
  EXPECT_EQ(call(&StdSolidChemicalExergy_EX, water, 298.15).status, 2);
}

TEST(PureEntries, Enquiries) {
  EXPECT_EQ(available(methane, 4), (std::vector<std::int32_t>{127, 107}));
  EXPECT_EQ(available(74840, 4), (std::vector<std::int32_t>{127, 100, 107}));
  EXPECT_EQ(available(74840, 4, 2), (std::vector<std::int32_t>{127, 100}));
  EXPECT_EQ(available(water, 10), (std::vector<std::int32_t>{295}));
  EXPECT_EQ(available(methane, 3), (std::vector<std::int32_t>{101, 294}));
  std::int32_t words[2] = {1, 0};
  for (const std::int32_t property : {-1, 0, 20, 21}) {
    words[0] = 1;
    EXPECT_EQ(AvailableCorrelations(&water, &property, words), 2);
    EXPECT_EQ(words[0], 0);
  }

  double t_min = -1;
  double t_max = -1;
  char unit[16] = "###############";
  char source[61] = {};
  std::int32_t property = 19;
  std::int32_t equation = 1;
  EXPECT_EQ(CorrelationInfo(&water, &property, &equation, &t_min, &t_max, unit, source), 0);
  EXPECT_EQ(t_min, 273.16);
  EXPECT_EQ(t_max, 647.096);
  EXPECT_EQ(std::string(unit, 15), padded("Pa", 15));
  EXPECT_EQ(std::string(source, 60), padded("FIT:Wagner-JPCRD-2002", 60));
  property = 10;  // four branches
  EXPECT_EQ(CorrelationInfo(&water, &property, &equation, &t_min, &t_max, unit, source), 0);
  EXPECT_EQ(t_min, 251.165);
  EXPECT_EQ(t_max, 355.0);
  equation = 77;
  EXPECT_EQ(CorrelationInfo(&water, &property, &equation, &t_min, &t_max, unit, source), 2);
  EXPECT_EQ(t_max, 0.0);

  const std::int32_t length = 4;
  const std::int32_t negative = -1;
  EXPECT_EQ(SetTempFolder("temp", &length), 0);
  EXPECT_EQ(SetTempFolder("temp", &negative), 4);
  EXPECT_EQ(SetThermoCodes(&length, &negative), 0);
  EXPECT_EQ(KVCmpdPure_Free(), 0);
}

TEST(PureEntries, HostFloatingPointStateIsKeptAndDoesNotMatter) {
  const double usual = call(&IdealGasSpecificHeatTIT_EX, methane, 300.0).value;
  ASSERT_EQ(usual, 0.0);  // bounds missing
  const double expected = call_integral(&IdealGasSpecificHeatTIT_EX, methane, 300.0, 120.0, 0.0).value;
  const double pressure = call(&VaporPressure_EX, methane, 2.0).value;
  ASSERT_EQ(std::fesetround(FE_UPWARD), 0);
#if defined(__GLIBC__)
  std::feclearexcept(FE_ALL_EXCEPT);  // what the tests before have left would trap at once
  feenableexcept(FE_INEXACT | FE_UNDERFLOW | FE_OVERFLOW | FE_INVALID | FE_DIVBYZERO);
#endif
  std::int32_t status = 0;
  double result = 0.0;
  double low = 0.0;
  const double t = 300.0;
  const double cold = 2.0;
  const double a = 120.0;
  const double b = 0.0;
  char unit[15];
  IdealGasSpecificHeatTIT_EX(&methane, &t, &a, &b, nullptr, &status, &result, unit);
  VaporPressure_EX(&methane, &cold, nullptr, nullptr, nullptr, &status, &low, unit);
  const int rounding = std::fegetround();
#if defined(__GLIBC__)
  const int traps = fegetexcept();
  fedisableexcept(FE_ALL_EXCEPT);
  EXPECT_EQ(traps, FE_INEXACT | FE_UNDERFLOW | FE_OVERFLOW | FE_INVALID | FE_DIVBYZERO);
#endif
  std::fesetround(FE_TONEAREST);
  EXPECT_EQ(rounding, FE_UPWARD);
  EXPECT_EQ(result, expected);
  EXPECT_EQ(low, pressure);
}

// Control words and sticky flags, which inexact results and one beyond the range of a double would raise.
TEST(PureEntries, WordsOfTheHostComeBackExactly) {
  using namespace kestrune::tests;
  const double t = 300.0, cold = 2.0;
  std::int32_t status = 0;
  double result = 0.0;
  char unit[15];
  std::vector<HostWords> hosts(std::begin(kHosts), std::end(kHosts));
  hosts.push_back(kDefaultWords);
  for (const HostWords& h : hosts) {
    default_words();
    set_words(h.control, h.mxcsr);
    const Words before = read_words();
    VaporPressure_EX(&methane, &t, nullptr, nullptr, nullptr, &status, &result, unit);
    VaporPressure_EX(&methane, &cold, nullptr, nullptr, nullptr, &status, &result, unit);
    const Words after = read_words();
    default_words();
    EXPECT_TRUE(before == after) << h.what;
  }
}
