// The exports against values of high precision (tools/make_property_reference.py). A tolerance is relative to
// the value, plus a share of the size of the parts that the value is the sum of.
#include <tuple>

#include "phase_calls.hpp"

using namespace kestrune::tests;

namespace {

constexpr double kRelative = 1e-12, kOfParts = 1e-14;
constexpr double kOfDifferences = 1e-9;  // what is a difference inside the library

struct Judge {
  const Row& row;
  void operator()(const char* column, double got, double parts = 0.0) const {
    const double reference = number(row, column);
    EXPECT_NEAR(got, reference, kRelative * std::fabs(reference) + kOfParts * parts) << column;
  }
  void each(const char* column, const std::vector<double>& got, double parts) const {
    const std::vector<double> reference = numbers(row, column);
    ASSERT_EQ(got.size(), reference.size());
    for (std::size_t j = 0; j < got.size(); ++j)
      EXPECT_NEAR(got[j], reference[j], kRelative * (std::fabs(reference[j]) + parts)) << column << ' ' << j;
  }
};

Phase phase_of_state(const Row& row) {
  Phase p(split(row.at("ids"), ';'), numbers(row, "x"));
  p.m->record.flags = row.at("free_water") == "1" ? FreeWaterFlag : 0;
  return p.at(number(row, "T_K"), number(row, "P_atm"), static_cast<int>(number(row, "phase")));
}

void expect_caloric(const Row& row, const Phase& p, double volume) {
  const Judge expect{row};
  const double size_H = number(row, "H_size"), size_S = number(row, "S_size");
  StatusCode status[3];
  expect("H", p.H(&status[0]), size_H);
  expect("S", p.S(&status[1]), size_S);
  expect("G", p.G(&status[2]), size_H + p.T * size_S);
  const Derivatives h = p.derivatives('H'), s = p.derivatives('S');
  for (const StatusCode got : {status[0], status[1], status[2], h.status, s.status}) EXPECT_EQ(got, KV_OK);
  expect("H", h.value, size_H);
  expect("H_dT", h.dT);
  expect("H_dP", h.dP, volume * kCalPerCm3Atm);
  expect.each("H_dn", h.dn, size_H);
  expect("S", s.value, size_S);
  for (const auto& [column, got, variable] : {std::tuple{"S_dT", s.dT, p.T}, {"S_dP", s.dP, p.P}}) {
    const double reference = number(row, column);
    EXPECT_NEAR(got, reference, kOfDifferences * (std::fabs(reference) + size_S / variable)) << column;
  }
  expect.each("S_dn", s.dn, size_S);
}

TEST(PropertyReference, EveryState) {
  int gases = 0, liquids = 0;
  for (const Row& row : rows("property_reference.csv")) {
    SCOPED_TRACE(row.at("state") + " " + row.at("ids") + " " + row.at("T_K") + " K " + row.at("P_atm") +
                 " atm");
    const Phase p = phase_of_state(row);
    const Judge expect{row};
    if (p.gas()) {
      expect("viscosity", p.viscosity());
      expect("conductivity", p.conductivity());
    }
    if (row.at("H").empty()) continue;  // beyond the ideal gas
    const Density rho = p.density();
    EXPECT_EQ(rho.status, KV_OK);
    expect("density", rho.value);
    expect("density_dT", rho.dT);
    expect("density_dP", rho.dP);
    expect("density_dTdP", rho.dTdP, rho.value / (p.T * p.P));
    const double volume = p.molar_mass() / rho.value;
    expect_caloric(row, p, volume);
    if (!p.gas()) {
      ++liquids;
      continue;
    }
    ++gases;
    const Heat heat = p.heat();
    EXPECT_EQ(heat.status, KV_OK);
    expect("Cp", heat.Cp);
    expect("Cv", heat.Cv);
    expect("w", heat.w);
    expect("JT", heat.JT, volume * kCalPerCm3Atm / heat.Cp);
    const Normal normal = p.normal();
    EXPECT_EQ(normal.status, KV_OK);
    expect("Z", normal.Z);
    expect("Z_normal", normal.Z_normal);
    expect("density_normal", normal.density);
    expect("normal_volume", normal.volume);
  }
  EXPECT_GE(gases, 25);
  EXPECT_GE(liquids, 25);
}

}  // namespace
