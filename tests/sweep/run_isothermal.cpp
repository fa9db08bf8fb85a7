// The flash at T and P, asked at many states.
#include <algorithm>

#include "options.hpp"
#include "states.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune::sweep;

struct Tally {
  int states = 0, single = 0, two = 0, three = 0, wrong = 0, failed = 0, clamped = 0;
  double balance = 0, fugacity = 0, tpd = 0;

  void add(const Verdict& v) {
    ++states;
    single += v.outcome == Outcome::single_phase;
    two += v.outcome == Outcome::two_phase;
    three += v.outcome == Outcome::three_phase_state;
    wrong += v.outcome == Outcome::wrong;
    failed += v.outcome == Outcome::failed;
    if (v.outcome == Outcome::wrong || v.outcome == Outcome::failed) return;
    clamped += v.clamped > 0;
    balance = std::max(balance, v.balance);
    fugacity = std::max(fugacity, v.fugacity);
    if (v.outcome != Outcome::three_phase_state) tpd = std::min(tpd, v.tpd);
  }

  void add(const Tally& t) {
    states += t.states;
    single += t.single;
    two += t.two;
    three += t.three;
    wrong += t.wrong;
    failed += t.failed;
    clamped += t.clamped;
    balance = std::max(balance, t.balance);
    fugacity = std::max(fugacity, t.fugacity);
    tpd = std::min(tpd, t.tpd);
  }

  void print(const char* name) const {
    std::printf("%-26s %7d %7d %7d %6d %6d %6d %6d  %8.1e %8.1e %9.1e\n", name, states, single, two, three,
                clamped, wrong, failed, balance, fugacity, tpd);
    std::fflush(stdout);
  }
};

void write_failure(std::FILE* file, const Feed& feed, const State& state, bool warm, const Answer& answer,
                   const Verdict& verdict) {
  std::fprintf(file, "%s,%s,%s,%.17g,%.17g,%d,%.17g,\"%s\",", feed.name.c_str(), state.kind,
               warm ? "warm" : "cold", state.T, state.P, answer.status, answer.beta, verdict.reason.c_str());
  write_values(file, feed.z);
  std::fprintf(file, "\n");
  std::fflush(file);
}

// Judges one feed. The answers come first, in the order of the states, so that warm starts are reproducible.
Tally sweep_feed(const Options& o, Library& library, const Feed& feed, int count, std::FILE* failures) {
  const Components components = read_components(o.data, feed.ids);
  const StatePlan plan{count, o.jobs, o.critical_steps, o.seed_of(feed)};
  const std::vector<State> states = make_states(feed, components, plan);
  library.prepare(feed, components);
  const int passes = o.warm ? 2 : 1, n = static_cast<int>(states.size());
  std::vector<Answer> answers;
  for (int k = 0; k < passes * n; ++k) {
    const bool warm = k >= n && k % n > 0;
    answers.push_back(library.flash(feed, states[k % n].T, states[k % n].P, warm ? &answers[k - 1] : nullptr));
  }
  std::vector<Verdict> verdicts(answers.size());
  parallel_for(passes * n, o.jobs, [&](int k) {
    const State& state = states[k % n];
    const Question question{&components,       feed.z,           state.T, state.P, feed.free_water,
                            feed.solubility_a, feed.solubility_b};
    verdicts[k] = judge(question, answers[k]);
  });
  Tally tally;
  for (int k = 0; k < passes * n; ++k) {
    tally.add(verdicts[k]);
    if (!verdicts[k].reason.empty())
      write_failure(failures, feed, states[k % n], k >= n, answers[k], verdicts[k]);
  }
  tally.print(feed.name.c_str());
  return tally;
}

}  // namespace

namespace kestrune::sweep {

int run_isothermal(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures, "mixture,kind,start,T_K,P_atm,status,beta,reason,z\n");
  std::vector<Feed> feeds = all_feeds();
  const int count = o.states / static_cast<int>(feeds.size()) + 1;
  std::printf("%-26s %7s %7s %7s %6s %6s %6s %6s  %8s %8s %9s\n", "mixture", "states", "single", "two", "three",
              "clamp", "wrong", "failed", "balance", "ln f", "tpd");
  Tally total;
  for (const Feed& feed : feeds) {
    if (!o.mixture.empty() && feed.name != o.mixture) continue;
    total.add(sweep_feed(o, library, feed, count, failures));
  }
  total.print("all");
  const int bad = total.wrong + total.failed;
  std::printf("%d passed, %d failed\n", total.states - bad, bad);
  return total.states > 0 ? bad : -1;
}

}  // namespace kestrune::sweep
