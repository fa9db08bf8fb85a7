// The exports, as a host that links the library calls them.

#include <memory>

#include "cases.hpp"
#include "gases.hpp"

namespace kestrune::bench {
namespace {

struct Host {
  std::shared_ptr<Gas> gas;
  double beta = 0.0;
  std::vector<double> x, y, K;

  explicit Host(const char* name) : gas(bench::gas(name)) {
    for (auto* v : {&x, &y, &K}) v->resize(gas->feed.size());
  }
  // Cold start: nothing of the last answer is used.
  StatusCode flash(double T, double P) {
    return FlashLVatTP(T, P, gas->feed.data(), &gas->mixture.record, nullptr, 1, &beta, x.data(), y.data(),
                       K.data());
  }
};

Case flash_case(const char* name, double target) {
  auto host = std::make_shared<Host>(name);
  Case c;
  c.name = std::string("flash_") + name;
  c.what = "FlashLVatTP, cold, stability tested; mean over 150 .. 350 K step 2, 1 .. 150 bar step 1";
  c.target = target;
  c.batch = kGridSize;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host] {
    double sum = 0.0;
    for_each_state([&](double T, double P) {
      host->flash(T, P);
      sum += host->beta + host->K[0];
    });
    return sum;
  };
  return c;
}

constexpr int kCalls = 1000;

Case boundary_case() {
  auto host = std::make_shared<Host>("rich");
  Case c;
  c.name = "boundary";
  c.what = "FlashLVatTP that ends in the check of its temperature: the cost of the call itself";
  c.batch = kCalls;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host] {
    double sum = 0.0;
    for (int k = 0; k < kCalls; ++k) sum += host->flash(-1.0 - k, 50.0);
    return sum;
  };
  return c;
}

Case molar_mass_case() {
  auto host = std::make_shared<Host>("rich");
  Case c;
  c.name = "molar_mass";
  c.what = "MolecularWeight of the rich gas";
  c.batch = kCalls;
  c.set_up = [] {};
  c.pass = [host] {
    const tests::Mixture& m = host->gas->mixture;
    const double* masses = m.record.table + static_cast<std::size_t>(KV_COL_MOLAR_MASS - 1) * m.n;
    double sum = 0.0, out = 0.0;
    for (int k = 0; k < kCalls; ++k) {
      MolecularWeight(m.n, host->gas->feed.data(), masses, &out);
      sum += out;
    }
    return sum;
  };
  return c;
}

// A property export of the rich gas along temperature: call(gas, T, P, outputs).
template <class Call>
Case property_case(const char* name, const char* what, double target, Call call) {
  auto host = std::make_shared<Host>("rich");
  Case c;
  c.name = name;
  c.what = std::string(what) + " of the rich gas, 280 .. 380 K at 60 atm";
  c.target = target;
  c.batch = kCalls;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host, call] {
    double sum = 0.0, out[4] = {};
    for (int k = 0; k < kCalls; ++k) {
      call(host->gas->feed.data(), &host->gas->mixture.record, 280.0 + 0.1 * k, 60.0, out, host->x.data());
      sum += out[0];
    }
    return sum;
  };
  return c;
}

std::vector<Case> property_cases() {
  using M = MixtureRecord;
  return {property_case("density", "GasDensity_PPR78 with its derivatives", 3000.0,
                        [](const double* x, M* m, double T, double P, double* o, double*) {
                          GasDensity_PPR78(T, P, x, m, o, o + 1, o + 2, o + 3);
                        }),
          property_case("enthalpy", "GasMolarEnthalpy_PPR78", 3000.0,
                        [](const double* x, M* m, double T, double P, double* o, double*) {
                          GasMolarEnthalpy_PPR78(T, P, x, m, o);
                        }),
          property_case("free_enthalpy", "GasMolarFreeEnthalpy_PPR78 (H and S)", 3000.0,
                        [](const double* x, M* m, double T, double P, double* o, double*) {
                          GasMolarFreeEnthalpy_PPR78(T, P, x, m, o);
                        }),
          property_case("specific_heat", "GasSpecificHeat_PPR78", 5000.0,
                        [](const double* x, M* m, double T, double P, double* o, double*) {
                          GasSpecificHeat_PPR78(T, P, x, m, o, o + 1, o + 2, o + 3);
                        }),
          property_case("enthalpy_dn", "GasMolarEnthalpy_Derivatives_PPR78, all of them", 0.0,
                        [](const double* x, M* m, double T, double P, double* o, double* n) {
                          GasMolarEnthalpy_Derivatives_PPR78(T, P, x, m, 7, o, o + 1, o + 2, n);
                        }),
          property_case("entropy_dn", "GasMolarEntropy_Derivatives_PPR78, all of them, by differences", 0.0,
                        [](const double* x, M* m, double T, double P, double* o, double* n) {
                          GasMolarEntropy_Derivatives_PPR78(T, P, x, m, 7, o, o + 1, o + 2, n);
                        }),
          property_case("viscosity", "GasDynamicViscosity_PPR78", 0.0,
                        [](const double* x, M* m, double T, double P, double* o, double*) {
                          GasDynamicViscosity_PPR78(T, P, x, m, o);
                        }),
          property_case("conductivity", "GasThermalConductivity_PPR78", 0.0,
                        [](const double* x, M* m, double T, double P, double* o, double*) {
                          GasThermalConductivity_PPR78(T, P, x, m, o);
                        })};
}

void print_shares(const char* name) {
  Host host(name);
  host.gas->mixture.use();
  int two = 0, failed = 0;
  for_each_state([&](double T, double P) {
    failed += host.flash(T, P) != KV_OK;
    two += host.beta > 0.0 && host.beta < 1.0;
  });
  std::printf("flash_%s\t%.1f %% two-phase", name, 100.0 * two / kGridSize);
  if (failed != 0) std::printf(", %d failed", failed);
  std::printf("\n");
}

}  // namespace

std::vector<Case> cases() {
  std::vector<Case> all{flash_case("lean", 4500.0), flash_case("rich", 7000.0), boundary_case(),
                        molar_mass_case()};
  for (Case& c : property_cases()) all.push_back(std::move(c));
  return all;
}

void print_counts() {
  print_shares("lean");
  print_shares("rich");
}

}  // namespace kestrune::bench
