#include "csv_rows.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <sstream>

namespace pure_test {
namespace {

std::vector<std::string> split(const std::string& line) {
  std::vector<std::string> fields;
  std::stringstream stream(line);
  for (std::string field; std::getline(stream, field, ',');) fields.push_back(field);
  return fields;
}

using Real = long double;

Real vibration(Real theta, Real t) {
  const Real u = theta / t;
  return u * u * std::exp(-u) / std::pow(std::expm1(-u), Real{2});
}

Real value_107(const std::vector<Real>& c, Real t) {
  const Real x = c[2] / t;
  const Real y = c[4] / t;
  const Real sinh_part = x > 5000 ? 0 : std::pow(x / std::sinh(x), Real{2});
  const Real cosh_part = y > 5000 ? 0 : std::pow(y / std::cosh(y), Real{2});
  return c[0] + c[1] * sinh_part + c[3] * cosh_part;
}

Real value_114(const std::vector<Real>& c, Real t) {
  const Real x = 1 - t / c[5];
  return c[0] * c[0] / x + c[1] - 2 * c[0] * c[2] * x - c[0] * c[3] * x * x -
         c[2] * c[2] * std::pow(x, Real{3}) / 3 - c[2] * c[3] * std::pow(x, Real{4}) / 2 -
         c[3] * c[3] * std::pow(x, Real{5}) / 5;
}

Real value_119(const std::vector<Real>& c, Real t) {
  const Real x = std::max<Real>(0, 1 - t / Real(647.096));
  const Real power[] = {0, 1, 2, 5, 16, 43, 110};
  Real y = 0;
  for (int k = 0; k < 7; ++k) y += c[static_cast<std::size_t>(k)] * std::pow(x, power[k] / 3);
  return y;
}

}  // namespace

std::vector<Fields> read_csv(const std::string& table) {
  std::ifstream file(std::string(KESTRUNE_DATA) + "/pure/" + table + ".csv");
  EXPECT_TRUE(file) << table;
  std::string line;
  std::getline(file, line);
  const std::vector<std::string> header = split(line);
  std::vector<Fields> rows;
  while (std::getline(file, line)) {
    const std::vector<std::string> fields = split(line);
    Fields row;
    for (std::size_t i = 0; i < std::min(fields.size(), header.size()); ++i) row[header[i]] = fields[i];
    rows.push_back(row);
  }
  EXPECT_FALSE(rows.empty()) << table;
  return rows;
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
  if (row.equation == 105) return static_cast<double>(row.c[2]);
  if (row.equation == 106 || row.equation == 114) return static_cast<double>(row.c[5]);
  return row.equation == 119 ? 647.096 : 0.0;
}

double upper_end(const CsvRow& row) {
  const double tc = equation_tc(row);
  return tc > 0.0 ? std::min(tc, row.t_max) : row.t_max;
}

long double independent_value(const CsvRow& row, long double t) {
  const std::vector<Real>& c = row.c;
  switch (row.equation) {
    case 10:
      return std::exp(c[0] - c[1] / (t + c[2]));
    case 16:
      return c[0] + std::exp(c[1] / t + c[2] + c[3] * t + c[4] * t * t);
    case 100: {
      Real y = 0;
      for (std::size_t k = 0; k < 7; ++k) y += c[k] * std::pow(t, static_cast<Real>(k));
      return y;
    }
    case 101:
      return std::exp(c[0] + c[1] / t + c[2] * std::log(t) + c[3] * std::pow(t, c[4]));
    case 102:
      return c[0] * std::pow(t, c[1]) / (1 + c[2] / t + c[3] / (t * t));
    case 104:
      return c[0] + c[1] / t + c[2] * std::pow(t, Real{-3}) + c[3] * std::pow(t, Real{-8}) +
             c[4] * std::pow(t, Real{-9});
    case 105:
      return c[0] / std::pow(c[1], 1 + std::pow(std::max<Real>(0, 1 - t / c[2]), c[3]));
    case 106: {
      const Real tr = t / c[5];
      const Real power = c[1] + c[2] * tr + c[3] * tr * tr + c[4] * tr * tr * tr;
      return tr < 1 ? c[0] * std::pow(1 - tr, power) : 0;
    }
    case 107:
      return value_107(c, t);
    case 114:
      return value_114(c, t);
    case 119:
      return value_119(c, t);
    case 127:
      return c[0] + c[1] * vibration(c[2], t) + c[3] * vibration(c[4], t) + c[5] * vibration(c[6], t);
    default:
      ADD_FAILURE() << "equation " << row.equation;
      return 0;
  }
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
