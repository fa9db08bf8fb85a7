// The judge's model against high-precision reference values made by tools/make_eos_reference.py and against
// interaction parameters computed by another program.
#include "model.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "common/csv.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune::sweep;
using Row = std::map<std::string, std::string>;

std::vector<double> numbers(const std::string& text) {
  std::vector<double> values;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, ';');) values.push_back(std::stod(part));
  return values;
}

std::map<std::string, Components> reference_mixtures() {
  std::map<std::string, Components> all;
  for (const Row& row : kestrune::tests::rows("eos_mixtures.csv")) {
    Components c;
    c.n = std::stoi(row.at("nc"));
    c.groups = std::stoi(row.at("ng"));
    c.tc = numbers(row.at("Tc_K"));
    c.pc = numbers(row.at("Pc_atm"));
    c.omega = numbers(row.at("omega"));
    c.mass = numbers(row.at("M"));
    for (double v : numbers(row.at("counts"))) c.counts.push_back(static_cast<int>(v));
    c.A = numbers(row.at("A_MPa"));
    c.B = numbers(row.at("B_MPa"));
    all[row.at("mixture")] = c;
  }
  return all;
}

double distance(double a, double b) {
  return std::abs(a - b) / std::max(1.0, std::abs(b));
}

template <class Real>
Phase<Real> at(const Components& c, const Row& row) {
  const std::vector<double> x = numbers(row.at("x"));
  const std::vector<Real> exact(x.begin(), x.end());
  Phase<Real> phase;
  const Root root = row.at("phase") == "1" ? Root::largest : Root::smallest;
  evaluate(parameters_at<Real>(c, std::stod(row.at("T_K"))), Real(std::stod(row.at("P_atm"))), exact.data(),
           root, true, phase);
  return phase;
}

TEST(Model, LongDoubleMeetsReferenceEverywhere) {
  const auto mixtures = reference_mixtures();
  int rows = 0;
  for (const Row& row : kestrune::tests::rows("eos_reference.csv")) {
    const Components& c = mixtures.at(row.at("mixture"));
    const Phase<long double> phase = at<long double>(c, row);
    const double Z = std::stod(row.at("Z"));
    EXPECT_NEAR(static_cast<double>(phase.Z) / Z, 1.0, 1e-11) << row.at("state");
    EXPECT_EQ(row.at("status") == "0", phase.roots == 3 || phase.gas_side == (row.at("phase") == "1"))
        << row.at("state");
    const std::vector<double> expected = numbers(row.at("ln_phi"));
    for (int i = 0; i < c.n; ++i)
      EXPECT_LT(distance(static_cast<double>(phase.ln_phi[i]), expected[i]), 1e-11) << row.at("state");
    ++rows;
  }
  EXPECT_GE(rows, 220);
}

TEST(Model, DoubleMeetsReferenceWithinItsConditioning) {
  const auto mixtures = reference_mixtures();
  for (const Row& row : kestrune::tests::rows("eos_reference.csv")) {
    const Components& c = mixtures.at(row.at("mixture"));
    const Phase<double> phase = at<double>(c, row);
    const double tolerance = 2e-12 * (1 + std::stod(row.at("amplification")));
    const std::vector<double> expected = numbers(row.at("ln_phi"));
    for (int i = 0; i < c.n; ++i)
      EXPECT_LT(distance(phase.ln_phi[i], expected[i]), tolerance) << row.at("state");
  }
}

TEST(Model, CompositionDerivatives) {
  const auto mixtures = reference_mixtures();
  std::map<std::string, Row> states;
  for (const Row& row : kestrune::tests::rows("eos_reference.csv")) states[row.at("state")] = row;
  for (const Row& row : kestrune::tests::rows("eos_reference_composition.csv")) {
    const Row& state = states.at(row.at("state"));
    const Phase<long double> phase = at<long double>(mixtures.at(state.at("mixture")), state);
    const std::vector<double> expected = numbers(row.at("dln_phi_dn"));
    for (size_t i = 0; i < expected.size(); ++i)
      EXPECT_LT(distance(static_cast<double>(phase.dln_phi_dn[i]), expected[i]), 1e-11) << row.at("state");
  }
}

// The table rests on other digits of Omega_a, Omega_b and R: k_ij moves by some 1e-5.
TEST(Model, InteractionParametersOfTheDataTables) {
  int rows = 0;
  for (const Row& row : kestrune::tests::rows("kij_from_tables.csv", KESTRUNE_DATA)) {
    if (row.at("set") != "EPPR78_2022") continue;
    const Components c = read_components(KESTRUNE_DATA, {row.at("comp_i"), row.at("comp_j")});
    const auto par = parameters_at<double>(c, std::stod(row.at("T_K")));
    const double kij = 1 - par.a[1] / std::sqrt(par.a[0] * par.a[3]);
    EXPECT_NEAR(kij, std::stod(row.at("kij")), 1e-4 * (1 + std::abs(kij)))
        << row.at("comp_i") << " " << row.at("comp_j") << " " << row.at("T_K");
    ++rows;
  }
  EXPECT_GT(rows, 50);
}

}  // namespace
