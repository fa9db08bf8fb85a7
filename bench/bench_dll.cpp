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
  return {flash_case("lean", 4500.0), flash_case("rich", 7000.0), boundary_case(), molar_mass_case()};
}

void print_counts() {
  print_shares("lean");
  print_shares("rich");
}

}  // namespace kestrune::bench
