// Kernels of the calculation library, linked statically, and the work that the flash does.

#include <memory>

#include "cases.hpp"
#include "eos/group_data.hpp"
#include "eos/phase.hpp"
#include "eos/temperature.hpp"
#include "flash/isothermal/isothermal.hpp"
#include "frame/exports/context.hpp"
#include "gases.hpp"
#include "support/arena.hpp"

namespace kestrune::bench {
namespace {

constexpr double kTemperature = 240.0;  // K, both phases occur over the pressures
constexpr int kStates = 1024;           // more than a branch predictor learns by heart
constexpr double kLowest = 1.0 * kAtmPerBar, kHighest = 150.0 * kAtmPerBar;

// The group data of the case that runs.
eos::GroupData group_data;
void use(tests::Mixture& m) {
  group_data = {m.n, m.groups, m.storage[1], m.storage[2], m.storage[3], m.storage[4], m.storage[5]};
  eos::convert_group_data(m.n, m.groups, m.counts.data(), m.A.data(), m.B.data(), group_data);
}

eos::Context context_of(tests::Mixture& m) {
  return {&m.record, &group_data, &exports::kTools, 0};
}

// A reproducible sequence of numbers between 0 and 1.
class Sequence {
 public:
  double next() {
    word_ = word_ * 6364136223846793005ULL + 1442695040888963407ULL;
    return static_cast<double>(word_ >> 11) / 9007199254740992.0;
  }

 private:
  std::uint64_t word_ = 20;
};

// Phases to evaluate at one prepared temperature: pressures over the range, feeds a little different each time,
// liquid and gas in turn as a flash asks for them.
struct Evaluations {
  std::shared_ptr<Gas> gas;
  int n, ld;
  std::vector<double> P, x;  // [kStates], [kStates * ld]
  std::vector<double> s, s_t, ln_phi, dT, dP, dn;
  std::vector<double> memory = std::vector<double>(65536);
  eos::Temperature t;
  eos::CubicRoot bracub = nullptr;

  explicit Evaluations(std::shared_ptr<Gas> g)
      : gas(std::move(g)), n(gas->mixture.n), ld(support::padded(n)), P(kStates), x(kStates * ld) {
    Sequence random;
    for (int k = 0; k < kStates; ++k) {
      P[k] = kLowest + (kHighest - kLowest) * random.next();
      double sum = 0.0;
      for (int i = 0; i < n; ++i) sum += x[k * ld + i] = gas->feed[i] * (0.8 + 0.4 * random.next());
      for (int i = 0; i < n; ++i) x[k * ld + i] /= sum;
    }
    for (auto* v : {&s, &s_t, &ln_phi, &dT, &dP}) v->resize(ld);
    dn.resize(static_cast<std::size_t>(ld) * n);
  }

  void prepare(int order) {
    use(gas->mixture);
    bracub = exports::kTools.cubic_root();
    support::Arena arena(memory.data(), memory.size() * sizeof(double));
    eos::prepare(kTemperature, context_of(gas->mixture), order, arena, t);
  }

  // ln phi and Z; returns the pieces that the derivatives go on with.
  double phase(int k, eos::Mixture& m, eos::Root& r) {
    m = eos::mix(t, &x[k * ld], s.data());
    const double rt = eos::kR * t.T;
    double Z = 0.0;
    eos::solve_root(bracub, m.a * P[k] / (rt * rt), m.b * P[k] / rt,
                    k % 2 != 0 ? KV_PHASE_GAS : KV_PHASE_LIQUID, false, Z);
    eos::reduce(t, m, P[k], Z, r);
    eos::ln_phi(t, m, r, s.data(), ln_phi.data());
    return ln_phi[0] + Z;
  }
  void derivatives(int k, const eos::Mixture& m, const eos::Root& r) {
    const eos::Mechanics mech = eos::mechanics(t, m, r);
    eos::p_dln_phi_dP(t, mech, r, s.data(), dP.data());
    eos::dln_phi_dT(t, m, r, mech, &x[k * ld], s.data(), s_t.data(), dT.data());
    eos::dln_phi_dn(t, m, r, mech, s.data(), dn.data(), ld, ld, false);
  }
};

Case prepare_case(const std::shared_ptr<Gas>& g, int order) {
  Case c;
  c.name = "prepare_" + g->name + "_order" + std::to_string(order);
  c.what = "parameters of all pairs at a temperature, " +
           std::string(order == 0 ? "no derivatives" : "with d/dT and d2/dT2") + ", 150 .. 350 K";
  c.target = 1000.0;
  c.batch = kStates;
  c.set_up = [g] { use(g->mixture); };
  c.pass = [g, order] {
    double sum = 0.0;
    for (int k = 0; k < kStates; ++k) {
      sum += support::with_arena<4, 60>(g->mixture.n, [&](support::Arena& arena) {
        eos::Temperature t;
        eos::prepare(150.0 + k * (200.0 / kStates), context_of(g->mixture), order, arena, t);
        return t.aij[1];
      });
    }
    return sum;
  };
  return c;
}

Case root_case(const std::shared_ptr<Gas>& g) {
  auto e = std::make_shared<Evaluations>(g);
  auto ab = std::make_shared<std::vector<double>>(2 * kStates);
  Case c;
  c.name = "root_" + g->name;
  c.what = "the root of the cubic alone, cold, through BRACUB of the tools library; states as for ln phi";
  c.batch = kStates;
  c.set_up = [e, ab] {
    e->prepare(0);
    const double rt = eos::kR * e->t.T;
    for (int k = 0; k < kStates; ++k) {
      const eos::Mixture m = eos::mix(e->t, &e->x[k * e->ld], e->s.data());
      (*ab)[2 * k] = m.a * e->P[k] / (rt * rt);
      (*ab)[2 * k + 1] = m.b * e->P[k] / rt;
    }
  };
  c.pass = [e, ab] {
    double sum = 0.0;
    for (int k = 0; k < kStates; ++k) {
      double Z = 0.0;
      eos::solve_root(e->bracub, (*ab)[2 * k], (*ab)[2 * k + 1], k % 2 != 0 ? KV_PHASE_GAS : KV_PHASE_LIQUID,
                      false, Z);
      sum += Z;
    }
    return sum;
  };
  return c;
}

Case ln_phi_case(const std::shared_ptr<Gas>& g) {
  auto e = std::make_shared<Evaluations>(g);
  Case c;
  c.name = "ln_phi_" + g->name;
  c.what = "ln phi and Z of one phase at a prepared 240 K, root cold; 1024 states, 1 .. 150 bar";
  c.target = 150.0;
  c.batch = kStates;
  c.set_up = [e] { e->prepare(0); };
  c.pass = [e] {
    double sum = 0.0;
    for (int k = 0; k < kStates; ++k) {
      eos::Mixture m;
      eos::Root r;
      sum += e->phase(k, m, r);
    }
    return sum;
  };
  return c;
}

Case derivatives_case(const std::shared_ptr<Gas>& g) {
  auto e = std::make_shared<Evaluations>(g);
  Case c;
  c.name = "ln_phi_derivatives_" + g->name;
  c.what = "the same with d/dT, d/dP and the matrix d/dn";
  c.target = 280.0;
  c.batch = kStates;
  c.set_up = [e] { e->prepare(1); };
  c.pass = [e] {
    double sum = 0.0;
    for (int k = 0; k < kStates; ++k) {
      eos::Mixture m;
      eos::Root r;
      sum += e->phase(k, m, r);
      e->derivatives(k, m, r);
      sum += e->dT[0] + e->dP[0] + e->dn[1];
    }
    return sum;
  };
  return c;
}

// One cold flash with the full test of stability; false when it failed.
struct FlashResult {
  std::vector<double> x, y, K;
  double beta = 0.0;
  explicit FlashResult(int n) : x(n), y(n), K(n) {}
};
StatusCode flash_once(Gas& g, double T, double P, FlashResult& to, flash::Counts* counts) {
  flash::IsothermalCall call;
  call.T = T;
  call.P = P;
  call.z = g.feed.data();
  call.context = context_of(g.mixture);
  call.beta = &to.beta;
  call.x = to.x.data();
  call.y = to.y.data();
  call.K = to.K.data();
  call.counts = counts;
  return flash::isothermal_flash(call);
}

// Evaluations of a flash by its steps, for the states of one outcome.
struct StepCounts {
  const char* outcome;
  int states = 0;
  double evaluations[flash::kSteps] = {};
};

void print_steps(const char* name, const StepCounts& c) {
  static const char* const kNames[flash::kSteps] = {
      "feed",  "split", "gate", "curvature", "feed trials", "near-pure", "answer trials", "answer near-pure",
      "report"};
  std::printf("steps_%s_%s\t%d states:", name, c.outcome, c.states);
  for (int k = 0; k < flash::kSteps; ++k)
    std::printf("%s %s %.2f", k > 0 ? "," : "", kNames[k], c.evaluations[k] / c.states);
  std::printf("\n");
}

void print_flash_counts(const char* name) {
  const auto g = gas(name);
  use(g->mixture);
  FlashResult result(g->mixture.n);
  double fugacities = 0.0, pure_roots = 0.0, matrices = 0.0, factorisations = 0.0, iterations = 0.0,
         trials = 0.0;
  int failed = 0;
  StepCounts steps[] = {{"gas"}, {"liquid"}, {"two_phases"}};
  for_each_state([&](double T, double P) {
    flash::Counts c;
    const StatusCode status = flash_once(*g, T, P, result, &c);
    failed += status != KV_OK && status != KV_SINGLE_PHASE;
    fugacities += c.fugacities;
    pure_roots += c.pure_roots;
    matrices += c.matrices;
    factorisations += c.factorisations;
    iterations += c.iterations;
    trials += c.trials;
    StepCounts& s = steps[status != KV_SINGLE_PHASE ? 2 : result.beta > 0.5 ? 0 : 1];
    ++s.states;
    for (int k = 0; k < flash::kSteps; ++k) s.evaluations[k] += c.by_step[k];
  });
  std::printf(
      "flash_%s\t%.2f fugacities (%.2f with d/dn), %.2f pure roots, %.2f factorisations, %.2f iterations, "
      "%.2f trials",
      name, fugacities / kGridSize, matrices / kGridSize, pure_roots / kGridSize, factorisations / kGridSize,
      iterations / kGridSize, trials / kGridSize);
  if (failed != 0) std::printf(", %d failed", failed);
  std::printf("\n");
  for (const StepCounts& s : steps) print_steps(name, s);
}

}  // namespace

std::vector<Case> cases() {
  std::vector<Case> all;
  for (const char* name : {"lean", "rich"}) {
    const auto g = gas(name);
    for (const int order : {0, 2}) all.push_back(prepare_case(g, order));
    all.push_back(root_case(g));
    all.push_back(ln_phi_case(g));
    all.push_back(derivatives_case(g));
  }
  return all;
}

void print_counts() {
  print_flash_counts("lean");
  print_flash_counts("rich");
}

}  // namespace kestrune::bench
