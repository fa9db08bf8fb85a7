// A gas with water for the tests, and the exports of water on it.
#ifndef KESTRUNE_TESTS_WATER_GAS_HPP
#define KESTRUNE_TESTS_WATER_GAS_HPP

#include <gtest/gtest.h>

#include <cmath>

#include "common/mixture.hpp"

namespace kestrune::tests {

// Water is the last component.
struct WetGas {
  Mixture m;
  std::vector<double> dry;

  WetGas(std::vector<std::string> ids, std::vector<double> fractions) : dry(std::move(fractions)) {
    ids.emplace_back("water");
    dry.push_back(0.0);
    m = mixture_of(ids);
    m.record.table = m.table.data();
    m.use();
  }
  std::vector<double> with_water(double y) const {
    std::vector<double> z = dry;
    for (double& v : z) v *= 1.0 - y;
    z.back() = y;
    return z;
  }
  StatusCode humidity(double T, double P, int method, double& y) {
    double mg = 0.0;
    m.use();
    return Humidity(T, P, method, dry.data(), &m.record, &y, &mg);
  }
  double saturated(double T, double P, int method = 1) {
    double y = 0.0;
    EXPECT_EQ(humidity(T, P, method, y), KV_OK) << T << " K " << P << " atm";
    return y;
  }
  StatusCode dew_pressure(double T, const std::vector<double>& z, double& P, int method = 1) {
    m.use();
    return WaterDewPressure(T, z.data(), method, 0, 0, &m.record, 0, &P);
  }
  StatusCode dew_temperature(double P, const std::vector<double>& z, double& T, int method = 1) {
    m.use();
    return WaterDewTemperature(P, z.data(), method, 0, 0, &m.record, 0, &T);
  }
};

inline WetGas natural_gas() {
  return {{"methane", "ethane", "propane", "nitrogen", "carbon_dioxide"}, {0.90, 0.05, 0.02, 0.02, 0.01}};
}

}  // namespace kestrune::tests

#endif
