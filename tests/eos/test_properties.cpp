// The inner routines of the phase and transport properties, which the exports show only in part.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "eos/transport.hpp"
#include "eos_case.hpp"
#include "flash/isothermal/isothermal.hpp"
#include "frame/exports/property_frame.hpp"
#include "frame/provider.hpp"

namespace {

using namespace kestrune;

TEST(ReducedViscosity, HydrogenByNumberTheLastPresentOneWins) {
  tests::Mixture m = tests::mixture_of({"hydrogen", "methane", "hydrogen", "hydrogen"});
  const double x[] = {0.3, 0.3, 0.4, 0.0};
  const eos::Critical c{200.0, 40.0, 100.0, 0.29, 12.0};
  const double V = 0.5 * (82.057 * 0.29 * 200.0 / 40.0 + 100.0);
  const double scale = std::sqrt(12.0) * std::pow(V, 2.0 / 3.0) / std::pow(200.0, 1.0 / 6.0) * 1e-8;
  EXPECT_NEAR(eos::corresponding_viscosity(300.0, m.record, x, c) / scale,
              eos::reduced_viscosity(1.5, 0.4, 0.0), 1e-11);
}

class Dilute : public testing::Test {
 protected:
  tests::Mixture m = tests::mixture_of({"methane", "hydrogen", "n_hexane"});
  const eos::GroupData data = tests::converted(m);
  const eos::Context context = tests::context_with(m, data);
  double alone[3] = {};
  eos::Critical constants(int i) {
    return {m.at(i, KV_COL_TC), m.at(i, KV_COL_PC), m.at(i, KV_COL_VC), m.at(i, KV_COL_ZC),
            m.at(i, KV_COL_MOLAR_MASS)};
  }
};

TEST_F(Dilute, NoJumpWhereACorrelationEnds) {
  for (int i = 0; i < 3; ++i) {
    const eos::Critical c = constants(i);
    double before_mu = 0.0, before_lambda = 0.0;
    for (double T = 20.0; T < 3000.0; T *= 1.002) {
      double mu = 0.0, lambda = 0.0;
      EXPECT_TRUE(eos::has_values(eos::dilute_viscosity(T, context, i, c, alone, mu)));
      EXPECT_TRUE(eos::has_values(eos::dilute_conductivity(T, context, i, c, lambda)));
      EXPECT_GT(mu, before_mu) << T;
      EXPECT_GT(lambda, before_lambda * 0.98) << T;
      if (before_mu > 0.0) {
        EXPECT_LT(mu / before_mu, 1.02) << T;
        EXPECT_LT(lambda / before_lambda, 1.05) << T;
      }
      before_mu = mu;
      before_lambda = lambda;
    }
  }
}

// A root solver that has something to say about its root.
std::int32_t said = 0;
void KV_CALL remarking_solver(const double* c0, const double* c1, const double* c2, const double* c3, double* Z,
                              std::int32_t* status, const std::int32_t* phase, const double* u, const double* w,
                              const double* A, const double* B, const double* settings) {
  exports::kTools.cubic_root()(c0, c1, c2, c3, Z, status, phase, u, w, A, B, settings);
  *status = said;
}

TEST(RootStatus, TwoOfThemComeWithARootEverywhere) {
  tests::Mixture m = tests::mixture_of(tests::kLeanGas);
  const eos::GroupData data = tests::converted(m);
  eos::Tools tools = exports::kTools;
  tools.cubic_root = []() noexcept -> eos::CubicRoot { return remarking_solver; };
  eos::Context context = tests::context_with(m, data);
  context.tools = &tools;
  const double* z = tests::kLeanGasFeed.data();
  const eos::Phase p{300.0, 60.0, z, KV_PHASE_GAS, context};
  double beta = 0.0, x[7], y[7], K[7];
  for (const std::int32_t status : {0, 1, 50, 51, 52, 200, 201, 202, 203}) {
    SCOPED_TRACE(status);
    said = status;
    const bool good = status <= 50 || status == 201 || status == 202;
    eos::Density d{};
    eos::Caloric c;
    eos::WithDerivatives s;
    eos::SpecificHeat heat;
    EXPECT_EQ(eos::density(p, d), status);
    EXPECT_EQ(eos::enthalpy_and_entropy(p, true, true, c), status);
    EXPECT_EQ(eos::entropy_derivatives(p, KV_DERIV_T | KV_DERIV_P, s), status);
    EXPECT_EQ(eos::specific_heat(p, -1, heat), status);
    for (const double value : {d.rho, c.H, c.S, s.dT, heat.Cp}) EXPECT_EQ(value != 0.0, good);
    EXPECT_EQ(exports::mapped(status), good ? StatusCode{KV_OK} : status);
    const StatusCode of_flash = flash::isothermal_flash({{z, context}, 200.0, 40.0, &beta, x, y, K});
    EXPECT_EQ(of_flash, good ? StatusCode{KV_OK} : status);
  }
}

// The unit of every equation that the pure-component library has is that of its row.
TEST(UnitTables, AgreeWithTheSibling) {
  const double T = 320.0, a = 298.15, b = 0.0;
  constexpr std::int32_t kPlain = 20, kFamilies = 4;  // of the integrals: two for each heat capacity
  const std::int32_t heat_capacity[kFamilies] = {
      static_cast<std::int32_t>(frame::PureProperty::IdealGasSpecificHeat),
      static_cast<std::int32_t>(frame::PureProperty::LiquidSpecificHeat),
      static_cast<std::int32_t>(frame::PureProperty::SolidSpecificHeat),
      static_cast<std::int32_t>(frame::PureProperty::LiquidSpecificHeatInfiniteDilution)};
  int rows = 0;
  const auto agree = [&](std::int32_t property, std::int32_t cas, std::int32_t equation) {
    const auto which = static_cast<frame::PureProperty>(property);
    char unit[16] = {};
    double value = 0.0;
    StatusCode status = 0;
    frame::pure_evaluate(which, &cas, &T, &a, &b, &equation, &status, &value, unit);
    if (!eos::has_values(status)) return;
    const frame::UnitTable table = frame::unit_table(which);
    const frame::UnitRow* row = table.rows;
    while (row != table.rows + table.count && row->equation != equation) ++row;
    ++rows;
    if (row == table.rows + table.count)
      ADD_FAILURE() << "property " << property << " equation " << equation << " has no row, " << unit;
    else
      EXPECT_STREQ(row->unit, unit) << "property " << property << " equation " << equation;
  };
  for (const tests::Row& component : tests::rows("components.csv", KESTRUNE_DATA)) {
    const auto cas = static_cast<std::int32_t>(tests::number(component, "cas_number"));
    for (std::int32_t property = 0; property < kPlain; ++property) {
      std::int32_t equations[32] = {31}, number = property + 1;
      if (frame::pure_available_correlations(&cas, &number, equations) != 0) continue;
      agree(property, cas, 1);
      for (int k = 1; k <= equations[0]; ++k) {
        agree(property, cas, equations[k]);
        for (std::int32_t f = 0; f < kFamilies; ++f)
          for (const std::int32_t integral : {2 * f, 2 * f + 1})
            if (property == heat_capacity[f]) agree(kPlain + integral, cas, equations[k]);
      }
    }
    for (std::int32_t exergy = kPlain + 2 * kFamilies; exergy < static_cast<int>(frame::PureProperty::count);
         ++exergy)
      agree(exergy, cas, 1);
  }
  EXPECT_GT(rows, 1000);
}

TEST(SpecificHeat, SelectorDecidesHowFarDownTheListItGoes) {
  tests::Mixture m = tests::mixture_of(tests::kLeanGas);
  const eos::GroupData data = tests::converted(m);
  const eos::Phase p{300.0, 60.0, tests::kLeanGasFeed.data(), KV_PHASE_GAS, tests::context_with(m, data)};
  const auto outputs = [&](int selector) {
    eos::SpecificHeat c;
    EXPECT_EQ(eos::specific_heat(p, selector, c), KV_OK);
    return std::array<double, 7>{
        c.Cp_res, c.Cp, c.Cv, c.speed_of_sound, c.joule_thomson, c.compressibility, c.pressure_coefficient};
  };
  const auto all = outputs(-1);
  for (int selector = 0; selector <= 6; ++selector) {
    const auto some = outputs(selector);
    for (int k = 0; k < 7; ++k)
      EXPECT_EQ(some[k], (selector == 6 ? k == 6 : k <= selector) ? all[k] : 0.0) << selector << ' ' << k;
  }
  // kappa P -> 1 and T beta -> 1 in an ideal gas.
  eos::SpecificHeat ideal;
  const eos::Phase thin{300.0, 1e-6, tests::kLeanGasFeed.data(), KV_PHASE_GAS, tests::context_with(m, data)};
  ASSERT_EQ(eos::specific_heat(thin, -1, ideal), KV_OK);
  EXPECT_NEAR(ideal.compressibility * 1e-6, 1.0, 1e-7);
  EXPECT_NEAR(ideal.pressure_coefficient * 300.0, 1.0, 1e-7);
  EXPECT_NEAR(ideal.Cp - ideal.Cv, 1.9872, 1e-5);
}

}  // namespace
