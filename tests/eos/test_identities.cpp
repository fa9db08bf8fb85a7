// Relations that hold whatever the parameters are, on the states of the reference files.
#include <gtest/gtest.h>

#include <cmath>

#include "eos_case.hpp"

using namespace kestrune;
using namespace kestrune::tests;

namespace {

constexpr double kGasConstant = 1.9872;  // cal/(mol K); 82.057 * 0.0242173124

TEST(Identities, GibbsDuhemSymmetryAndTheSumsOfPartialValues) {
  auto mixtures = reference_mixtures();
  int checked = 0;
  for (const Row& row : rows("eos_reference.csv")) {
    const double amplification = number(row, "amplification");
    if (amplification > 1e4) continue;
    SCOPED_TRACE(row.at("state") + " " + row.at("mixture"));
    const double T = number(row, "T_K"), P = number(row, "P_atm");
    const auto x = numbers(row, "x");
    const Evaluated e =
        evaluate_state(mixtures.at(row.at("mixture")), T, P, static_cast<int>(number(row, "phase")), x, 9);
    ASSERT_TRUE(e.ok);
    const std::size_t n = x.size();
    double gibbs = 0, volume = 0, enthalpy = 0, size = 1;
    for (std::size_t i = 0; i < n; ++i) {
      gibbs += x[i] * e.ln_phi[i];
      volume += x[i] * e.dP[i];
      enthalpy += x[i] * e.h[i];
      size = std::fmax(size, std::fabs(x[i] * e.ln_phi[i]));
      double duhem = 0, largest = 1;
      for (std::size_t j = 0; j < n; ++j) {
        const double there = e.dn[i + j * n], back = e.dn[j + i * n];
        EXPECT_NEAR(there, back, 1e-12 * (1 + amplification) * std::fmax(1.0, std::fabs(there)))
            << i << ' ' << j;
        duhem += x[j] * e.dn[j + i * n];
        largest = std::fmax(largest, std::fabs(e.dn[j + i * n]));
      }
      EXPECT_NEAR(duhem, 0.0, 1e-11 * largest * (1 + amplification)) << "Gibbs-Duhem, component " << i;
    }
    const double tolerance = 1e-11 * size * (1 + amplification);
    EXPECT_NEAR(gibbs, (e.v.H_res - T * e.v.S_res) / (kGasConstant * T), tolerance + 1e-7 * std::fabs(gibbs));
    EXPECT_NEAR(P * volume, e.v.Z - 1, tolerance);
    EXPECT_NEAR(enthalpy, e.v.H_res, 1e-9 * (1 + amplification) * std::fmax(1.0, std::fabs(e.v.H_res)));
    ++checked;
  }
  EXPECT_GE(checked, 200);
}

TEST(Identities, AnAbsentComponentChangesNothing) {
  Mixture whole = mixture_of({"methane", "water", "propane", "carbon_dioxide", "n_hexane"});
  Mixture part = mixture_of({"methane", "propane", "n_hexane"});
  const std::vector<double> x{0.6, 0.0, 0.3, 0.0, 0.1}, y{0.6, 0.3, 0.1};
  const std::size_t places[] = {0, 2, 4};
  for (const int phase : {KV_PHASE_GAS, KV_PHASE_LIQUID}) {
    const Evaluated a = evaluate_state(whole, 290.0, 30.0, phase, x, 9),
                    b = evaluate_state(part, 290.0, 30.0, phase, y, 9);
    ASSERT_TRUE(a.ok && b.ok);
    EXPECT_NEAR(a.v.Z / b.v.Z, 1.0, 1e-13);
    EXPECT_NEAR(a.v.H_res / b.v.H_res, 1.0, 1e-12);
    EXPECT_NEAR(a.v.Cp_res / b.v.Cp_res, 1.0, 1e-11);
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_NEAR(a.ln_phi[places[k]], b.ln_phi[k], 1e-12);
      EXPECT_NEAR(a.dT[places[k]], b.dT[k], 1e-12);
    }
    EXPECT_TRUE(std::isfinite(a.ln_phi[1]) && std::isfinite(a.ln_phi[3]));
  }
}

}  // namespace
