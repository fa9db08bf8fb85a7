// What thermodynamics demands of the exports, whatever the equation of state: derivatives against differences
// of other properties, heat capacities and speed of sound against the slopes of the density.
#include <utility>

#include "phase_calls.hpp"

using namespace kestrune::tests;

namespace {

// Tolerance relative to the expected value, and to `parts` where that is a difference of larger terms.
void near(const char* what, double got, double expected, double relative = 1e-6, double parts = 0.0) {
  EXPECT_NEAR(got, expected, relative * std::fabs(expected) + 1e-9 * parts) << what;
}

std::vector<Phase> grid() {
  std::vector<double> sparse = kRichGasFeed;
  sparse[0] += std::exchange(sparse[3], 0.0) + std::exchange(sparse[6], 0.0);
  const Phase methane({"methane"}, {1.0}), rich(kRichGas, kRichGasFeed), rich_sparse(kRichGas, sparse),
      acid({"carbon_dioxide", "hydrogen_sulfide", "methane"}, {0.5, 0.3, 0.2}),
      light({"hydrogen", "nitrogen", "helium"}, {0.6, 0.3, 0.1}), brine({"water", "ammonia"}, {0.6, 0.4});
  // Octane with a heat capacity of the host's: J/(mol K), 21.6 + 0.624 T - 1.9e-4 T^2 - 1e-8 T^3 + 1e-12 T^4.
  const Phase own({"methane", "n_octane"}, {0.98, 0.02});
  own.m->at(1, KV_COL_CAS) = 0.0;
  const double cp[] = {21.6, 0.624, -1.9e-4, -1e-8, 1e-12, 200.0, 1500.0};
  for (int k = 0; k < 7; ++k) own.m->at(1, KV_COL_CP_A + k) = cp[k];
  std::vector<Phase> states;
  for (const Phase& p : {methane, rich, rich_sparse, acid, light, own})
    for (const double T : {240.0, 298.15, 390.0})
      for (const double P : {0.1, 7.0, 60.0, 350.0}) {
        if (P == 60.0 && T < 300.0 && p.x.size() == 10) continue;  // beside a double root
        states.push_back(p.at(T, P, KV_PHASE_GAS));
      }
  for (const double P : {5.0, 90.0, 600.0}) {
    states.push_back(methane.at(130, P, KV_PHASE_LIQUID));
    states.push_back(rich.at(180, P + 30, KV_PHASE_LIQUID));
    states.push_back(acid.at(230, P + 30, KV_PHASE_LIQUID));
    states.push_back(brine.at(310, P, KV_PHASE_LIQUID));
  }
  return states;
}

std::string name(const Phase& p) {
  return std::to_string(p.m->n) + " components, first CAS " + std::to_string(p.m->at(0, KV_COL_CAS)) + ", " +
         std::to_string(p.T) + " K, " + std::to_string(p.P) + " atm, phase " + std::to_string(p.kind);
}

// The mixtures of the grid share the one set of group data of the process.
const Phase& activated(const Phase& p) {
  p.m->use();
  return p;
}

TEST(PropertyIdentities, TemperatureAndPressure) {
  for (const Phase& p : grid()) {
    SCOPED_TRACE(name(activated(p)));
    const Derivatives h = p.derivatives('H'), s = p.derivatives('S');
    const Density rho = p.density();
    ASSERT_EQ(h.status + s.status + rho.status, 3 * KV_OK);
    const double v = p.molar_mass() / rho.value, dv_dT = -v * rho.dT / rho.value;
    const auto along_T = [&](auto f) {
      return slope([&](double T) { return f(p.at(T, p.P, p.kind)); }, p.T, 1e-3 * p.T);
    };
    const auto along_P = [&](auto f) {
      return slope([&](double P) { return f(p.at(p.T, P, p.kind)); }, p.P, 3e-3 * p.P);
    };
    near("dH/dT", h.dT, along_T([](const Phase& q) { return q.H(); }));
    near("dS/dT", s.dT, h.dT / p.T);
    near("dG/dT", along_T([](const Phase& q) { return q.G(); }), -p.S(), 1e-6, std::fabs(h.value) / p.T);
    near("dH/dP", h.dP, (v - p.T * dv_dT) * kCalPerCm3Atm, 1e-6, v * kCalPerCm3Atm);
    // the gas constant of the mixing terms is that of the equation to 2e-9 only
    near("dS/dP", s.dP, -dv_dT * kCalPerCm3Atm, 1e-6, 2 * kCalR / p.P);
    near("dG/dP", along_P([](const Phase& q) { return q.G(); }), v * kCalPerCm3Atm);
    near("d rho/dT", rho.dT, along_T([](const Phase& q) { return q.density().value; }));
    near("d rho/dP", rho.dP, along_P([](const Phase& q) { return q.density().value; }));
    near("d2 rho/dTdP", rho.dTdP, along_P([](const Phase& q) { return q.density().dT; }));
    near("d2 rho/dTdP", rho.dTdP, along_T([](const Phase& q) { return q.density().dP; }));
    near("G", p.G(), p.H() - p.T * p.S(), 1e-12, 1e-3);
  }
}

// ln phi of a phase.
std::vector<double> ln_phi(const Phase& p) {
  std::vector<double> value(p.x.size());
  const auto entry = p.gas() ? GasPhi_Derivatives_PPR78 : LiquidPhi_Derivatives_PPR78;
  EXPECT_EQ(entry(p.T, p.P, p.x.data(), &p.m->record, 2, 0, value.data(), nullptr, nullptr, nullptr), KV_OK);
  return value;
}

// Partial molar values h_j - T s_j against RT ln(phi_j P), from a dilute gas of the same composition upwards;
// the sums of the parts; the H of the solution by differences.
TEST(PropertyIdentities, MoleNumbers) {
  for (const Phase& p : grid()) {
    SCOPED_TRACE(name(activated(p)));
    const Phase dilute = p.at(p.T, 1e-6, KV_PHASE_GAS);
    const Derivatives h = p.derivatives('H'), s = p.derivatives('S');
    const Derivatives h0 = dilute.derivatives('H'), s0 = dilute.derivatives('S');
    const std::vector<double> phi = ln_phi(p), phi0 = ln_phi(dilute);
    double sums[2] = {}, sizes[2] = {std::fabs(h.value), std::fabs(s.value)};
    for (std::size_t j = 0; j < p.x.size(); ++j) {
      const double partial_h = h.value + h.dn[j], partial_s = s.value + s.dn[j];
      const double g = partial_h - p.T * partial_s - (h0.value + h0.dn[j] - p.T * (s0.value + s0.dn[j]));
      // the gas constant of the residual parts is that of the ideal gas to 2e-9 only
      const double expected =
          p.T * (kR * kCalPerCm3Atm * (phi[j] - phi0[j]) + kCalR * std::log(p.P / dilute.P));
      EXPECT_NEAR(g, expected, 1e-13 * (std::fabs(partial_h) + p.T * std::fabs(partial_s))) << j;
      sums[0] += p.x[j] * h.dn[j];
      sums[1] += p.x[j] * s.dn[j];
      sizes[0] += std::fabs(p.x[j] * h.dn[j]);
      sizes[1] += std::fabs(p.x[j] * s.dn[j]);
      if (p.x[j] == 0) continue;
      const auto H = [&](double added) {
        Phase q = p;
        q.x[j] += added;
        for (double& fraction : q.x) fraction /= 1.0 + added;
        return q.H();
      };
      near("dH/dn", h.dn[j], slope(H, 0.0, 1e-2 * p.x[j]), 1e-6, sizes[0] / p.x[j]);
    }
    for (const int k : {0, 1}) EXPECT_NEAR(sums[k], 0.0, 1e-13 * sizes[k]);
  }
}

TEST(PropertyIdentities, GasProperties) {
  for (const Phase& p : grid()) {
    if (!p.gas()) continue;
    SCOPED_TRACE(name(activated(p)));
    const Heat c = p.heat();
    ASSERT_EQ(c.status, KV_OK);
    const Density rho = p.density();
    const Derivatives h = p.derivatives('H', KV_DERIV_T | KV_DERIV_P);
    near("Cp", c.Cp, h.dT, 1e-12);
    const double M = p.molar_mass();
    // Cp - Cv = T (dv/dT)^2/(-dv/dP) with v = M/rho
    near("Cp - Cv", c.Cp - c.Cv, p.T * M * rho.dT * rho.dT / (rho.value * rho.value * rho.dP) * kCalPerCm3Atm,
         1e-6, c.Cp);
    near("w", c.w, 10 * std::sqrt(1.01325 * c.Cp / c.Cv / rho.dP));
    const Normal n = p.normal();
    const double normal = p.at(273.15, 1, KV_PHASE_GAS).density().value;
    near("Z", n.Z, p.P * M / (kR * p.T * rho.value), 1e-12);
    near("Z_normal", n.Z_normal, M / (kR * 273.15 * normal), 1e-12);
    near("density_normal", n.density, 1000 * normal, 1e-12);
    near("normal_volume", n.volume, rho.value / normal, 1e-12);
    // The temperature that keeps the enthalpy on both sides of P.
    const double dP = 1e-4 * p.P;
    const auto throttled = [&](double step) {
      double T = p.T + c.JT * step;
      for (int i = 0; i < 3; ++i) T -= (p.at(T, p.P + step, p.kind).H() - h.value) / c.Cp;
      return T;
    };
    EXPECT_NEAR((throttled(dP) - throttled(-dP)) / (2 * dP), c.JT, 1e-6 * std::fabs(c.JT) + 1e-9 / p.P);
  }
}

TEST(PropertyIdentities, InversionOfTheJouleThomsonEffect) {
  const Phase nitrogen({"nitrogen"}, {1.0});
  double low = 10, high = 900;  // atm, at 300 K
  EXPECT_GT(nitrogen.at(300, low, KV_PHASE_GAS).heat().JT, 0);
  EXPECT_LT(nitrogen.at(300, high, KV_PHASE_GAS).heat().JT, 0);
  while (high - low > 1e-9) {
    const double P = 0.5 * (low + high);
    (nitrogen.at(300, P, KV_PHASE_GAS).heat().JT > 0 ? low : high) = P;
  }
  const Phase p = nitrogen.at(300, low, KV_PHASE_GAS);
  const Density rho = p.density();
  EXPECT_NEAR(-p.T * rho.dT / rho.value, 1.0, 1e-9);  // T dv/dT = v
  EXPECT_NEAR(p.derivatives('H').dP, 0.0, 1e-9);
}

}  // namespace
