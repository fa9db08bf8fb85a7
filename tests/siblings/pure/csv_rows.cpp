#include "csv_rows.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include "common/csv.hpp"

namespace pure_test {

std::vector<Fields> read_csv(const std::string& table) {
  return kestrune::tests::rows(table + ".csv", KESTRUNE_DATA "/pure");
}

std::int32_t cas_number(const std::string& text) {
  std::string digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits), [](char ch) { return ch != '-'; });
  return std::stoi(digits);
}

std::vector<CsvRow> correlation_rows(const std::string& table) {
  std::vector<CsvRow> rows;
  for (const Fields& f : read_csv(table)) {
    CsvRow row{f.at("name"), cas_number(f.at("cas")), std::stoi(f.at("eq")), {}, 0, 0};
    for (const char* k : {"C1", "C2", "C3", "C4", "C5", "C6", "C7"}) row.c.push_back(std::stod(f.at(k)));
    row.t_min = std::stod(f.at("Tmin"));
    row.t_max = std::stod(f.at("Tmax"));
    rows.push_back(row);
  }
  return rows;
}

double equation_tc(const CsvRow& row) {
  if (row.equation == 105) return row.c[2];
  if (row.equation == 106 || row.equation == 114) return row.c[5];
  return row.equation == 119 ? 647.096 : 0.0;
}

double upper_end(const CsvRow& row) {
  const double tc = equation_tc(row);
  return tc > 0.0 ? std::min(tc, row.t_max) : row.t_max;
}

#define PURE_TEST_ENTRY(name, table, unit) \
  { #name, table, &name##_EX, &Check##name##_EX, unit }

const std::vector<Entry>& entries() {
  static const std::vector<Entry> all = {
      PURE_TEST_ENTRY(GasThermalConductivity, "gas_thermal_conductivity", "W/m/K"),
      PURE_TEST_ENTRY(GasViscosity, "gas_viscosity", "Pa.s"),
      PURE_TEST_ENTRY(HenryConstant, "henry_water", "Pa"),
      PURE_TEST_ENTRY(IdealGasSpecificHeat, "ideal_gas_heat_capacity", "J/kmol/K"),
      PURE_TEST_ENTRY(LiquidDensity, "liquid_density", "kmol/m3"),
      PURE_TEST_ENTRY(LiquidMolarVolume, "liquid_density", "m3/kmol"),
      PURE_TEST_ENTRY(LiquidSpecificHeat, "liquid_heat_capacity", "J/kmol/K"),
      PURE_TEST_ENTRY(LiquidThermalConductivity, "liquid_thermal_conductivity", "W/m/K"),
      PURE_TEST_ENTRY(LiquidViscosity, "liquid_viscosity", "Pa.s"),
      PURE_TEST_ENTRY(MeltingPressure, "", "Pa"),
      PURE_TEST_ENTRY(SecondVirialCoefficient, "second_virial", "m3/kmol"),
      PURE_TEST_ENTRY(SolidDensity, "solid_density", "kmol/m3"),
      PURE_TEST_ENTRY(SolidMolarVolume, "solid_density", "m3/kmol"),
      PURE_TEST_ENTRY(SolidSpecificHeat, "solid_heat_capacity", "J/kmol/K"),
      PURE_TEST_ENTRY(SolidThermalConductivity, "solid_thermal_conductivity", "W/m/K"),
      PURE_TEST_ENTRY(SublimationPressure, "sublimation_pressure", "Pa"),
      PURE_TEST_ENTRY(SurfaceTension, "surface_tension", "N/m"),
      PURE_TEST_ENTRY(VaporizationEnthalpy, "heat_of_vaporisation", "J/kmol"),
      PURE_TEST_ENTRY(VaporPressure, "vapour_pressure", "Pa"),
      PURE_TEST_ENTRY(LiquidSpecificHeatInfiniteDilution, "", "J/kmol/K"),
  };
  return all;
}

const Entry& entry(const std::string& name) {
  const auto found =
      std::find_if(entries().begin(), entries().end(), [&](const Entry& e) { return name == e.name; });
  return *found;
}

Answer call(KvPureProperty f, std::int32_t cas, double t, std::int32_t equation) {
  Answer answer{-99, -99.0, std::string(16, '#')};
  const std::int32_t returned =
      f(&cas, &t, nullptr, nullptr, &equation, &answer.status, &answer.value, answer.unit.data());
  EXPECT_EQ(returned, answer.status);
  return answer;
}

Answer call_integral(KvPureProperty f, std::int32_t cas, double t, double a, double b, std::int32_t equation) {
  Answer answer{-99, -99.0, std::string(16, '#')};
  const std::int32_t returned =
      f(&cas, &t, &a, &b, &equation, &answer.status, &answer.value, answer.unit.data());
  EXPECT_EQ(returned, answer.status);
  return answer;
}

}  // namespace pure_test
