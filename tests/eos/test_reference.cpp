// The phase evaluation against values with 50 digits (tools/make_eos_reference.py). "amplification" of a row is
// how much a relative change of the inputs is magnified there: large only beside a double root.
#include <gtest/gtest.h>

#include <cmath>

#include "eos_case.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr double kTolerance = 1e-11;

double allowed(double reference, double amplification) {
  return (kTolerance + 1e-15 * amplification) * std::fmax(1.0, std::fabs(reference));
}

void expect_all(const char* what, const std::vector<double>& got, const std::vector<double>& reference,
                double scale, double amplification) {
  ASSERT_GE(got.size(), reference.size()) << what;
  for (std::size_t i = 0; i < reference.size(); ++i)
    EXPECT_NEAR(got[i] * scale, reference[i] * scale, allowed(reference[i] * scale, amplification))
        << what << " of component " << i;
}

std::map<std::string, Row> states() {
  std::map<std::string, Row> all;
  for (const Row& row : rows("eos_reference.csv")) all[row.at("state")] = row;
  return all;
}

Evaluated at_state(std::map<std::string, Mixture>& mixtures, const Row& row, int level) {
  return evaluate_state(mixtures.at(row.at("mixture")), number(row, "T_K"), number(row, "P_atm"),
                        static_cast<int>(number(row, "phase")), numbers(row, "x"), level);
}

TEST(Reference, RootAndFugacityCoefficientsWithDerivatives) {
  auto mixtures = reference_mixtures();
  int checked = 0;
  for (const auto& [name, row] : states()) {
    SCOPED_TRACE(name + " " + row.at("mixture") + " " + row.at("kind"));
    const Evaluated e = at_state(mixtures, row, 6);
    ASSERT_TRUE(e.ok);
    const double f = number(row, "amplification"), T = number(row, "T_K"), P = number(row, "P_atm");
    EXPECT_EQ(e.v.status, static_cast<int>(number(row, "status")));
    EXPECT_NEAR(e.v.Z / number(row, "Z"), 1.0, kTolerance + 1e-15 * f);
    expect_all("ln phi", e.ln_phi, numbers(row, "ln_phi"), 1.0, f);
    // derivatives at a double root grow with the square of what the root does
    expect_all("T d ln phi/dT", e.dT, numbers(row, "dln_phi_dT"), T, f * f);
    expect_all("P d ln phi/dP", e.dP, numbers(row, "dln_phi_dP"), P, f * f);
    const double zt = number(row, "dZ_dT") * T, zp = number(row, "dZ_dP") * P;
    EXPECT_NEAR(e.v.dZ_dT * T, zt, allowed(zt, f * f));
    EXPECT_NEAR(e.v.dZ_dP * P, zp, allowed(zp, f * f));
    ++checked;
  }
  EXPECT_GE(checked, 220);
}

TEST(Reference, CompositionDerivatives) {
  auto mixtures = reference_mixtures();
  auto all = states();
  for (const Row& row : rows("eos_reference_composition.csv")) {
    const Row& state = all.at(row.at("state"));
    SCOPED_TRACE(row.at("state") + " " + state.at("mixture"));
    const Evaluated e = at_state(mixtures, state, 6);
    const double f = number(state, "amplification");
    expect_all("d ln phi/dn", e.dn, numbers(row, "dln_phi_dn"), 1.0, f * f);
  }
}

TEST(Reference, CaloricValuesAndMixtureRecord) {
  auto mixtures = reference_mixtures();
  auto all = states();
  for (const Row& row : rows("eos_reference_caloric.csv")) {
    const Row& state = all.at(row.at("state"));
    SCOPED_TRACE(row.at("state") + " " + state.at("mixture"));
    const Evaluated e = at_state(mixtures, state, 9);
    const double f = number(state, "amplification");
    const struct {
      const char* name;
      double value, power;
    } checks[] = {{"a", e.v.a, 0},          {"b", e.v.b, 0},         {"da_dT", e.v.da_dT, 0},
                  {"A", e.v.A, 0},          {"B", e.v.B, 0},         {"d2a_dT2", e.v.d2a_dT2, 0},
                  {"H_res", e.v.H_res, 1},  {"S_res", e.v.S_res, 1}, {"Cp_res", e.v.Cp_res, 2},
                  {"Cv_res", e.v.Cv_res, 1}};
    for (const auto& c : checks) {
      const double reference = number(row, c.name);
      EXPECT_NEAR(c.value, reference,
                  (1e-11 + 1e-15 * std::pow(f, c.power)) * std::fmax(std::fabs(reference), 1e-3))
          << c.name;
    }
    expect_all("h_i", e.h, numbers(row, "h_i"), 1.0, f * f);
  }
}

TEST(Reference, AlphaFunctionSwitchesAfterTheBoundary) {
  // At T = 0.25 Tc: alpha = (1 + m/2)^2.
  const double quadratic = 0.37464 + 1.54226 * 0.491 - 0.26992 * 0.491 * 0.491;
  EXPECT_DOUBLE_EQ(eos::alpha_function(100, 400, 0.491, false, false, nullptr, nullptr),
                   (1 + quadratic / 2) * (1 + quadratic / 2));
  const double w = 0.4911, cubic = 0.379642 + 1.48503 * w - 0.164423 * w * w + 0.016666 * w * w * w;
  EXPECT_DOUBLE_EQ(eos::alpha_function(100, 400, w, false, false, nullptr, nullptr),
                   (1 + cubic / 2) * (1 + cubic / 2));
  double first = 0, second = 0, ignored = 7;
  eos::alpha_function(900, 126.2, 0.0377, true, false, &first, nullptr);
  const double h = 0.05;
  const auto alpha = [](double T) {
    return eos::alpha_function(T, 126.2, 0.0377, false, false, nullptr, nullptr);
  };
  EXPECT_NEAR(first, (alpha(900 + h) - alpha(900 - h)) / (2 * h), 1e-9);
  eos::alpha_function(900, 126.2, 0.0377, false, true, &ignored, &second);
  EXPECT_DOUBLE_EQ(ignored, first);
  EXPECT_NEAR(second, (alpha(900 + h) - 2 * alpha(900) + alpha(900 - h)) / (h * h), 1e-8);
}

}  // namespace
