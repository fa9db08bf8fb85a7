// The exports, as a host that links the library calls them.

#include <cmath>
#include <memory>
#include <numeric>

#include "cases.hpp"
#include "envelope/gases.hpp"
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

// Two specifications other than T and P: enthalpy, entropy, bubble and dew points. What is specified belongs to
// the states of a coarser grid, found before the clock starts.
struct Specified {
  double P, H, S;
};

std::vector<Specified> specified_states(Host& h) {
  std::vector<Specified> states;
  h.gas->mixture.use();
  MixtureRecord* m = &h.gas->mixture.record;
  for (double T = 151.0; T < 350.0; T += 8.0)
    for (double P = 1.0; P < 148.0; P += 7.0) {
      double HL = 0.0, HV = 0.0, SL = 0.0, SV = 0.0;
      h.flash(T, P);
      if (h.beta < 1.0) LiquidMolarEnthalpy_PPR78(T, P, h.x.data(), m, &HL);
      if (h.beta < 1.0) LiquidMolarEntropy_PPR78(T, P, h.x.data(), m, &SL);
      if (h.beta > 0.0) GasMolarEnthalpy_PPR78(T, P, h.y.data(), m, &HV);
      if (h.beta > 0.0) GasMolarEntropy_PPR78(T, P, h.y.data(), m, &SV);
      states.push_back({P, (1.0 - h.beta) * HL + h.beta * HV, (1.0 - h.beta) * SL + h.beta * SV});
    }
  return states;
}

Case energy_case(const char* name, bool entropy) {
  auto host = std::make_shared<Host>("rich");
  auto states = std::make_shared<std::vector<Specified>>(specified_states(*host));
  Case c;
  c.name = name;
  c.what = std::string(entropy ? "FlashLVatSP" : "FlashLVatHP") +
           " of the rich gas, cold, no estimate; mean over 151 .. 343 K step 8, 1 .. 141 atm step 7";
  c.target = 40000.0;
  c.batch = static_cast<double>(states->size());
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host, states, entropy] {
    double sum = 0.0;
    for (const Specified& s : *states) {
      double T = 0.0, liquid, vapour;
      const auto flash = entropy ? FlashLVatSP : FlashLVatHP;
      flash(entropy ? s.S : s.H, s.P, host->gas->feed.data(), &host->gas->mixture.record, nullptr, 1, &T,
            &host->beta, host->x.data(), host->y.data(), host->K.data(), &liquid, &vapour);
      sum += T;
    }
    return sum;
  };
  return c;
}

Case saturation_case(const char* name, double W) {
  auto host = std::make_shared<Host>("rich");
  Case c;
  c.name = name;
  c.what = std::string(W == 0.0 ? "bubble" : "dew") +
           " point of the rich gas, FlashLVatWP and FlashLVatWT, cold; 10 .. 60 atm and 200 .. 250 K";
  c.target = 15000.0;
  c.batch = 102.0;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host, W] {
    double sum = 0.0;
    for (int k = 0; k < 51; ++k) {
      const double* z = host->gas->feed.data();
      MixtureRecord* m = &host->gas->mixture.record;
      double T = 0.0, P = 0.0;
      FlashLVatWP(W, 10.0 + k, z, m, nullptr, 1, &T, host->x.data(), host->y.data(), host->K.data());
      FlashLVatWT(W, 200.0 + k, z, m, nullptr, 1, &P, host->x.data(), host->y.data(), host->K.data());
      sum += T + P;
    }
    return sum;
  };
  return c;
}

Case envelope_case(const char* name, int points) {
  auto host = std::make_shared<Host>("rich");
  auto arrays = std::make_shared<std::vector<double>>(3 * 400);
  Case c;
  c.name = name;
  c.what = "PhaseEnvelope of the rich gas with critical point and extremes, stability tested along it, " +
           (points > 0 ? std::to_string(points) + " even points" : std::string("as traced"));
  c.target = 1e6;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host, arrays, points] {
    std::int32_t count = 0, criticals = 0;
    double e[4];
    double* T = arrays->data();
    PhaseEnvelope(host->gas->feed.data(), &host->gas->mixture.record, nullptr, 0, 0.0, 0.0, 0.0, points, 400,
                  1.0, 0.0, T, T + 400, T + 800, &count, &criticals, e, e + 1, e + 2, e + 3);
    return count + e[0] + e[3];
  };
  return c;
}

// Envelopes of 40 random gases, every one of another mixture: what each needs before it is handed over again.
Case random_envelopes_case() {
  constexpr int kGases = 40, kSeed = 41;
  struct RandomGas {
    tests::Mixture mixture;
    std::vector<double> feed;
  };
  auto gases = std::make_shared<std::vector<RandomGas>>();
  for (int k = 0; k < kGases; ++k) {
    envelopes::Gas gas = envelopes::random_gas(kSeed, k);
    gases->push_back({tests::mixture_of(gas.ids), std::move(gas.z)});
  }
  for (RandomGas& g : *gases) g.mixture.record.table = g.mixture.table.data();
  auto arrays = std::make_shared<std::vector<double>>(3 * 400);
  Case c;
  c.name = "envelope_gases";
  c.what = "PhaseEnvelope of 40 random gases of 5 to 15 components, as traced; mean";
  c.batch = kGases;
  c.set_up = [] {};
  c.pass = [gases, arrays] {
    double sum = 0.0;
    for (RandomGas& g : *gases) {
      std::int32_t count = 0, criticals = 0;
      double e[4];
      double* T = arrays->data();
      g.mixture.use();
      PhaseEnvelope(g.feed.data(), &g.mixture.record, nullptr, 0, 0.0, 0.0, 0.0, 0, 400, 1.0, 0.0, T, T + 400,
                    T + 800, &count, &criticals, e, e + 1, e + 2, e + 3);
      sum += count + e[0] + e[3];
    }
    return sum;
  };
  return c;
}

Case critical_case() {
  auto host = std::make_shared<Host>("rich");
  Case c;
  c.name = "critical_point";
  c.what = "CriticalPoint of the rich gas, all of its spinodal searched, stability tested";
  c.target = 50000.0;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host] {
    double T = 0.0, P = 0.0, V = 0.0, Z = 0.0;
    CriticalPoint(host->gas->feed.data(), &host->gas->mixture.record, 0, &T, &P, &V, &Z);
    return T + P;
  };
  return c;
}

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

// Two liquids and a vapour of the wet gas over the temperatures at which it has them.
struct ThreePhaseHost {
  std::shared_ptr<Gas> gas = bench::gas("wet");
  std::vector<double> xA = gas->feed, xB = gas->feed, y = gas->feed, KLL = gas->feed, KLV = gas->feed;
  double beta = 0.0, V = 0.0, of_A = 0.0, of_B = 0.0, of_vapour = 0.0;

  StatusCode at_TP(double T, double P) {
    return FlashLLVatTP(T, P, gas->feed.data(), &gas->mixture.record, nullptr, 0, &beta, &V, xA.data(),
                        xB.data(), y.data(), KLL.data(), KLV.data());
  }
  StatusCode at_HP(double H, double P, double& T) {
    return FlashLLVatHP(H, P, gas->feed.data(), &gas->mixture.record, nullptr, 0, &T, &beta, &V, xA.data(),
                        xB.data(), y.data(), KLL.data(), KLV.data(), &of_A, &of_B, &of_vapour);
  }
  int phases() const { return (beta > 0.0 ? 1 : 0) + (V > 0.0 ? 1 : 0) + (1.0 - beta - V > 1e-15 ? 1 : 0); }
};

template <class Visit>
void for_each_wet_state(Visit visit) {
  for (double T = 242.0; T < 401.0; T += 2.0)
    for (double P = 2.0; P < 121.0; P += 2.0) visit(T, P);
}
constexpr double kWetStates = 80.0 * 60.0;

Case three_phase_case() {
  auto host = std::make_shared<ThreePhaseHost>();
  Case c;
  c.name = "three_phase_TP";
  c.what =
      "FlashLLVatTP of the wet gas, cold, every component tried; mean over 242 .. 400 K and 2 .. 120 atm step "
      "2";
  c.target = 60000.0;
  c.batch = kWetStates;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host] {
    double sum = 0.0;
    for_each_wet_state([&](double T, double P) {
      host->at_TP(T, P);
      sum += host->V;
    });
    return sum;
  };
  return c;
}

Case three_phase_energy_case() {
  auto host = std::make_shared<ThreePhaseHost>();
  Case c;
  c.name = "three_phase_HP";
  c.what = "FlashLLVatHP of the wet gas, cold; -4000 .. 4000 cal/mol step 100, 2 .. 118 atm step 4";
  c.batch = 81.0 * 30.0;
  c.set_up = [host] { host->gas->mixture.use(); };
  c.pass = [host] {
    double sum = 0.0;
    for (double H = -4000.0; H < 4001.0; H += 100.0)
      for (double P = 2.0; P < 119.0; P += 4.0) {
        double T = 0.0;
        host->at_HP(H, P, T);
        sum += T;
      }
    return sum;
  };
  return c;
}

void print_wet_shares() {
  ThreePhaseHost host;
  host.gas->mixture.use();
  int shares[4] = {}, failed = 0;
  for_each_wet_state([&](double T, double P) {
    if (host.at_TP(T, P) == KV_OK)
      ++shares[host.phases()];
    else
      ++failed;
  });
  std::printf("three_phase_TP\t1 phase %.1f %%, 2 phases %.1f %%, 3 phases %.1f %%, no answer %d of %.0f\n",
              100.0 * shares[1] / kWetStates, 100.0 * shares[2] / kWetStates, 100.0 * shares[3] / kWetStates,
              failed, kWetStates);
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
  return {
      property_case("density", "GasDensity_PPR78 with its derivatives", 3000.0,
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
      property_case("entropy_dn", "GasMolarEntropy_Derivatives_PPR78, all of them; T and P by differences", 0.0,
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

// Water dew points of the lean gas with 1e-5 .. 1e-2 of water, cold.
Case water_case(const char* name, bool pressure) {
  auto mixture = std::make_shared<tests::Mixture>();
  auto feeds = std::make_shared<std::vector<std::vector<double>>>();
  std::vector<std::string> ids = tests::kLeanGas;
  ids.emplace_back("water");
  *mixture = tests::mixture_of(ids);
  mixture->record.table = mixture->table.data();
  for (int k = 0; k <= 30; ++k) {
    const double y = 1e-5 * std::pow(10.0, 0.1 * k);
    std::vector<double> z = tests::kLeanGasFeed;
    const double sum = std::accumulate(z.begin(), z.end(), 0.0);
    for (double& v : z) v *= (1.0 - y) / sum;
    z.push_back(y);
    feeds->push_back(std::move(z));
  }
  Case c;
  c.name = name;
  c.what =
      std::string(pressure ? "WaterDewPressure at the temperature" : "WaterDewTemperature at the pressure") +
      " of saturation at 5 .. 155 atm, lean gas with 1e-5 .. 1e-2 of water, cold";
  c.target = 20000.0;
  c.batch = static_cast<double>(feeds->size());
  std::vector<double> given(feeds->size());
  mixture->use();
  for (std::size_t k = 0; k < given.size(); ++k) {
    given[k] = 5.0 + 5.0 * static_cast<double>(k);
    double T = 0.0;
    if (!pressure) continue;
    WaterDewTemperature(given[k], (*feeds)[k].data(), 1, 0, 0, &mixture->record, 0, &T);
    given[k] = T;
  }
  c.set_up = [mixture] { mixture->use(); };
  c.pass = [mixture, feeds, given, pressure] {
    double sum = 0.0;
    for (std::size_t k = 0; k < given.size(); ++k) {
      double found = 0.0;
      const auto dew = pressure ? WaterDewPressure : WaterDewTemperature;
      dew(given[k], (*feeds)[k].data(), 1, 0, 0, &mixture->record, 0, &found);
      sum += found;
    }
    return sum;
  };
  return c;
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
  all.push_back(energy_case("flash_HP", false));
  all.push_back(energy_case("flash_SP", true));
  all.push_back(saturation_case("bubble", 0.0));
  all.push_back(saturation_case("dew", 1.0));
  all.push_back(water_case("water_dew_P", true));
  all.push_back(water_case("water_dew_T", false));
  all.push_back(three_phase_case());
  all.push_back(three_phase_energy_case());
  all.push_back(envelope_case("envelope", 0));
  all.push_back(envelope_case("envelope_150", 150));
  all.push_back(random_envelopes_case());
  all.push_back(critical_case());
  return all;
}

void print_counts() {
  print_shares("lean");
  print_shares("rich");
  print_wet_shares();
}

}  // namespace kestrune::bench
