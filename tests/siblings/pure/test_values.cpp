// Values of the correlations: every row of every table, published figures, and what happens beyond the ranges.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "csv_rows.hpp"

using namespace pure_test;

namespace {

void expect_close(double y, double reference, double tolerance, const std::string& what) {
  EXPECT_LE(std::fabs(y - reference), tolerance * std::fabs(reference))
      << what << ": " << y << " against " << reference;
}

}  // namespace

// A row of every equation of every property, evaluated with 30 digits from data/pure/README.md.
TEST(PureValues, EveryEquation) {
  const struct {
    const char* property;
    std::int32_t cas, equation;
    double t, value;
  } rows[] = {
      {"GasThermalConductivity", 7727379, 102, 925, 0.0618747592426381},
      {"GasViscosity", 7732185, 102, 769, 2.8276979057631e-05},
      {"HenryConstant", 7727379, 101, 411, 9835254024.63875},
      {"IdealGasSpecificHeat", 7440597, 100, 1802, 20786.157},
      {"IdealGasSpecificHeat", 7727379, 107, 920, 32215.1293751044},
      {"IdealGasSpecificHeat", 124389, 127, 940, 53553.9143069156},
      {"IdealGasSpecificHeat", 463581, 16, 940, 56365.8829178281},
      {"IdealGasSpecificHeat", 1333740, 100, 170, 26824.4074},
      {"IdealGasSpecificHeat", 124389, 107, 3020, 62410.735655284},
      {"LiquidDensity", 7727379, 105, 101, 24.3721461543197},
      {"LiquidDensity", 7732185, 119, 498, 46.2931831843242},
      {"LiquidSpecificHeat", 463581, 16, 281, 78680.8929396685},
      {"LiquidSpecificHeat", 7727379, 100, 92, 60496.9332992},
      {"LiquidSpecificHeat", 124389, 114, 260, 99246.2200561814},
      {"LiquidThermalConductivity", 463581, 16, 188, 0.170942556545284},
      {"LiquidThermalConductivity", 7727379, 100, 96, 0.107968133871667},
      {"LiquidViscosity", 7727379, 101, 97, 8.29639838264463e-05},
      {"SecondVirialCoefficient", 7727379, 104, 925, 0.0283481345419724},
      {"SolidDensity", 7727379, 100, 46, 35.09758},
      {"SolidSpecificHeat", 7727379, 100, 51, 42032.8693059999},
      {"SolidThermalConductivity", 7732185, 101, 188, 3.36569829952462},
      {"SublimationPressure", 7727379, 10, 60, 6315.27581619745},
      {"SublimationPressure", 124389, 101, 182, 33307.6143666779},
      {"SurfaceTension", 111466, 100, 417, 0.0343112},
      {"SurfaceTension", 7732185, 106, 498, 0.0320468985313412},
      {"VaporizationEnthalpy", 7732185, 106, 498, 33067887.6633689},
      {"VaporPressure", 7727379, 101, 101, 833347.172838318},
      {"MeltingPressure", 7727379, 1, 200, 1101124480.71585},
      {"MeltingPressure", 124389, 1, 300, 548447421.063117},
      {"MeltingPressure", 74851, 1, 150, 173545597.487459},
      {"MeltingPressure", 67561, 1, 220, 389203915.550577},
      {"MeltingPressure", 7440371, 1, 200, 625036559.451043},
  };
  for (const auto& r : rows) {
    const Answer answer = call(entry(r.property).evaluate, r.cas, r.t, r.equation);
    const std::string what = std::string(r.property) + " by " + std::to_string(r.equation);
    EXPECT_EQ(answer.status, 0) << what;
    EXPECT_EQ(entry(r.property).check(&r.cas, &r.equation), 0) << what;
    expect_close(answer.value, r.value, 1e-12, what);
  }
  const double density = call(&LiquidDensity_EX, 7732185, 400.0).value;
  EXPECT_DOUBLE_EQ(call(&LiquidMolarVolume_EX, 7732185, 400.0).value, 1.0 / density);
  EXPECT_DOUBLE_EQ(call(&SolidMolarVolume_EX, 7727379, 46).value, 1.0 / 35.09758);
}

// Figures from the literature, with the tolerance that the accuracy of the correlation allows.
TEST(PureValues, PublishedFigures) {
  struct Figure {
    const char* property;
    std::int32_t cas;
    double t, value, tolerance;
    const char* source;
  };
  const Figure figures[] = {
      {"VaporPressure", 7732185, 373.124, 101325, 1e-3, "IAPWS-95, normal boiling point"},
      {"VaporPressure", 7732185, 300.0, 3536.8, 2e-3, "IAPWS-95 saturation table"},
      {"VaporPressure", 74828, 111.667, 101325, 5e-3, "Setzmann and Wagner 1991, normal boiling point"},
      {"VaporPressure", 74986, 231.036, 101325, 5e-3, "Lemmon et al. 2009, normal boiling point"},
      {"VaporPressure", 124389, 273.15, 3.4851e6, 5e-3, "Span and Wagner 1996"},
      {"IdealGasSpecificHeat", 74828, 298.15, 35690, 2e-3, "JANAF tables"},
      {"IdealGasSpecificHeat", 124389, 298.15, 37129, 2e-3, "JANAF tables"},
      {"IdealGasSpecificHeat", 7727379, 298.15, 29124, 2e-3, "JANAF tables"},
      {"IdealGasSpecificHeat", 7732185, 298.15, 33590, 2e-3, "JANAF tables"},
      {"IdealGasSpecificHeat", 7783064, 298.15, 34192, 4e-3, "JANAF tables"},
      {"IdealGasSpecificHeat", 7440371, 400.0, 20786.16, 1e-6, "5/2 R"},
      {"GasViscosity", 7727379, 300.0, 17.9e-6, 1e-2, "Lemmon and Jacobsen 2004"},
      {"GasViscosity", 74828, 300.0, 11.1e-6, 2e-2, "Vogel et al. 2000, dilute gas"},
      {"GasThermalConductivity", 74828, 300.0, 0.0343, 2e-2, "Friend et al. 1989, dilute gas"},
      {"LiquidViscosity", 7732185, 298.15, 8.90e-4, 1e-2, "IAPWS 2008"},
      {"LiquidThermalConductivity", 7732185, 298.15, 0.6065, 1e-2, "IAPWS 2011"},
      {"LiquidDensity", 7732185, 298.15, 997.05 / 18.01528, 1e-3, "IAPWS-95"},
      {"LiquidDensity", 74986, 231.036, 580.9 / 44.0956, 5e-3, "Lemmon et al. 2009"},
      {"LiquidSpecificHeat", 7732185, 298.15, 75330, 3e-3, "IAPWS-95"},
      {"VaporizationEnthalpy", 7732185, 373.124, 40.65e6, 3e-3, "IAPWS-95"},
      {"VaporizationEnthalpy", 74828, 111.667, 8.19e6, 1e-2, "Setzmann and Wagner 1991"},
      {"SurfaceTension", 7732185, 298.15, 0.07197, 5e-3, "IAPWS R1-76"},
      {"SecondVirialCoefficient", 7727379, 300.0, -4.5e-3, 0.08, "Dymond et al., -4.2 to -4.7 cm3/mol"},
      {"SecondVirialCoefficient", 124389, 300.0, -0.1215, 2e-2, "Span and Wagner 1996"},
      {"SublimationPressure", 124389, 194.686, 101325, 1e-2, "Span and Wagner 1996, sublimation point"},
      {"SublimationPressure", 7732185, 230.0, 8.94735, 5e-3, "IAPWS R14-08, check value"},
      {"MeltingPressure", 7732185, 260.0, 138.268e6, 1e-5, "IAPWS R14-08, check value of ice Ih"},
      {"MeltingPressure", 7732185, 254.0, 187.1936e6, 1e-5,
       "IAPWS R14-08, ice Ih; ice III would be 268.685 MPa"},
      {"MeltingPressure", 7732185, 320.0, 1356.76e6, 1e-5, "IAPWS R14-08, check value of ice VI"},
      {"HenryConstant", 124389, 298.15, 1.65e8, 2e-2, "Sander 2015, 3.3e-4 mol/m3/Pa"},
  };
  for (const Figure& f : figures) {
    const Answer answer = call(entry(f.property).evaluate, f.cas, f.t);
    EXPECT_EQ(answer.status, 0) << f.property << " " << f.cas;
    expect_close(answer.value, f.value, f.tolerance, std::string(f.property) + " " + f.source);
  }
}

TEST(PureValues, HenryConstantsInTheFormOfIapws) {
  // IAPWS G7-04, check table: ln(kH/GPa). The vapour pressure of water is the databank's, good to 0.3 %.
  const double t[] = {300.0, 400.0, 500.0};
  const struct {
    std::int32_t cas;
    double log_k[3];
  } gases[] = {{7440597, {2.6576, 2.1660, 1.1973}}, {7440371, {1.4061, 1.8079, 1.1536}}};
  for (const auto& gas : gases) {
    for (int i = 0; i < 3; ++i) {
      const Answer form = call(&HenryConstant_EX, gas.cas, t[i], 294);
      EXPECT_EQ(form.status, 0);
      EXPECT_NEAR(std::log(form.value / 1e9), gas.log_k[i], 3e-3) << gas.cas << " " << t[i];
      EXPECT_NEAR(std::log(call(&HenryConstant_EX, gas.cas, t[i]).value / 1e9), gas.log_k[i], 8e-3);
    }
  }
}

// Beyond the range: status 3, the value continuous at the end, finite, and positive where it must be.
TEST(PureValues, BeyondTheRange) {
  for (const Entry& e : entries()) {
    if (*e.table == '\0') continue;
    const std::string property = e.name;
    const bool vanishes = property == "VaporizationEnthalpy" || property == "SurfaceTension";
    for (const CsvRow& row : correlation_rows(e.table)) {
      const double ends[] = {row.t_min, upper_end(row)};
      for (const double end : ends) {
        if (end == 0.0) continue;
        const double at = call(e.evaluate, row.cas, end).value;
        const double beyond = end == row.t_min ? end * (1 - 1e-11) : end * (1 + 1e-11);
        const Answer answer = call(e.evaluate, row.cas, beyond);
        EXPECT_EQ(answer.status, 3) << property << row.name;
        // 1e-11 K/K may move a steep quantity by some 1e-9 of itself, one that vanishes at Tc by more.
        const double scale = call(e.evaluate, row.cas, row.t_min > 0.0 ? row.t_min : 1.0).value;
        EXPECT_NEAR(answer.value, at, vanishes ? 1e-3 * scale : 2e-9 * std::fabs(at))
            << property << row.name << end;
      }
      for (const double t : {1e-9, 0.5, 3.0, 40.0, 150.0, 300.0, 700.0, 1500.0, 6000.0, 1e5, 1e300}) {
        const Answer answer = call(e.evaluate, row.cas, t);
        const bool outside = t < row.t_min || t > upper_end(row);
        EXPECT_EQ(answer.status, outside ? 3 : 0) << property << row.name << t;
        EXPECT_TRUE(std::isfinite(answer.value)) << property << row.name << t;
        if (property == "SecondVirialCoefficient") continue;
        const bool zero = vanishes && equation_tc(row) > 0.0 && t >= equation_tc(row);
        EXPECT_TRUE(zero ? answer.value == 0.0 : answer.value > 0.0)
            << property << row.name << t << answer.value;
      }
    }
  }
  for (const std::int32_t cas : {7732185, 74851, 67561}) {
    for (const double t : {1.0, 2000.0}) {
      EXPECT_EQ(call(&MeltingPressure_EX, cas, t).status, 3);
      EXPECT_GT(call(&MeltingPressure_EX, cas, t).value, 0.0);
    }
  }
}

// Pressures and Henry constants go on in 1/T with the slope that they have at the end of the range.
TEST(PureValues, SlopesGoOnBeyondTheRange) {
  const auto slope = [](KvPureProperty f, std::int32_t cas, double t, double step, std::int32_t equation) {
    const double ratio = call(f, cas, t + step, equation).value / call(f, cas, t, equation).value;
    return std::log(ratio) / (1.0 / (t + step) - 1.0 / t);
  };
  const auto compare = [&](KvPureProperty f, std::int32_t cas, double t_min, double t_max,
                           std::int32_t equation) {
    for (const double end : {t_min, t_max}) {
      const double out = end == t_min ? -1e-4 * end : 1e-4 * end;
      const double inner = slope(f, cas, end, -1e-5 * std::fabs(out) / out * end, equation);
      const double outer = slope(f, cas, end, out, equation);
      EXPECT_NEAR(outer, inner, 2e-3 * std::fabs(inner) + 1.0) << cas << " " << end << " " << equation;
    }
  };
  for (const char* name : {"VaporPressure", "SublimationPressure", "HenryConstant"}) {
    for (const CsvRow& row : correlation_rows(entry(name).table)) {
      compare(entry(name).evaluate, row.cas, row.t_min, row.t_max, 1);
    }
  }
  for (const Fields& f : read_csv("henry_water_iapws")) {
    compare(&HenryConstant_EX, cas_number(f.at("cas")), std::stod(f.at("Tmin")), std::stod(f.at("Tmax")), 294);
  }
}

// Gases go on with a power of T, the one at the end of the range where that is one of a gas.
TEST(PureValues, PowersOfTemperatureBeyondTheRange) {
  for (const auto& [name, highest] : {std::pair{"GasViscosity", 1.1}, {"GasThermalConductivity", 2.0}}) {
    const auto exponent = [&, f = entry(name).evaluate](std::int32_t cas, double from, double to) {
      return std::log(call(f, cas, to).value / call(f, cas, from).value) / std::log(to / from);
    };
    for (const CsvRow& row : correlation_rows(entry(name).table)) {
      const double inner[] = {exponent(row.cas, row.t_min, row.t_min * 1.0001),
                              exponent(row.cas, row.t_max * 0.9999, row.t_max)};
      const double outer[] = {exponent(row.cas, row.t_min / 2, row.t_min),
                              exponent(row.cas, row.t_max, row.t_max * 2)};
      for (const int end : {0, 1})
        EXPECT_NEAR(outer[end], std::clamp(inner[end], 0.5, highest), 2e-3)
            << name << ' ' << row.name << ' ' << end;
    }
  }
}

TEST(PureValues, PressuresAndViscositiesKeepTheirDirection) {
  for (const char* name : {"VaporPressure", "SublimationPressure", "GasViscosity", "GasThermalConductivity"}) {
    for (const CsvRow& row : correlation_rows(entry(name).table)) {
      for (const double t : {0.3 * row.t_min, 0.9 * row.t_min, 1.02 * row.t_max, 2.0 * row.t_max}) {
        const double step =
            call(entry(name).evaluate, row.cas, t * 1.01).value / call(entry(name).evaluate, row.cas, t).value;
        EXPECT_GT(step, 1.0) << name << row.name << t;
      }
    }
  }
  for (const CsvRow& row : correlation_rows("liquid_viscosity")) {
    const double end = call(&LiquidViscosity_EX, row.cas, row.t_min).value;
    EXPECT_GE(call(&LiquidViscosity_EX, row.cas, 0.9 * row.t_min).value, end) << row.name;
    EXPECT_EQ(call(&LiquidViscosity_EX, row.cas, 0.6 * row.t_min).value > end,
              call(&LiquidViscosity_EX, row.cas, 0.51 * row.t_min).value >
                  call(&LiquidViscosity_EX, row.cas, 0.6 * row.t_min).value)
        << row.name << " rises down to half its lowest temperature";
    EXPECT_EQ(call(&LiquidViscosity_EX, row.cas, 0.5 * row.t_min).value,
              call(&LiquidViscosity_EX, row.cas, 0.01 * row.t_min).value);
  }
}
