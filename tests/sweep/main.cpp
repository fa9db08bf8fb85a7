// kestrune_sweep: asks the liquid-vapour flash at many states and judges every answer independently.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include "library.hpp"
#include "states.hpp"
#include "tables.hpp"

namespace {

using namespace kestrune::sweep;

const char* usage =
    "kestrune_sweep [options]\n"
    "  --sample         fixed sample of about 4000 states for every build\n"
    "  --states N       states in all (default 100000)\n"
    "  --jobs N         threads of the judge (default 1)\n"
    "  --seed N         another set of states (default 1)\n"
    "  --warm           ask every state a second time, warm from the answer of the state before it\n"
    "  --mixture NAME   one mixture only\n"
    "  --library FILE   shared library (default: beside this program)\n"
    "  --data DIR       folder of the component data (default: KESTRUNE_DATA of the environment, else the "
    "build's)\n"
    "  --failures FILE  wrong answers with their conditions (default sweep_failures.csv)\n";

struct Options {
  int states = 100000, jobs = 1, critical_steps = 40;
  uint64_t seed = 1;
  bool warm = false;
  std::string mixture, library, data, failures = "sweep_failures.csv";
};

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

bool parse(int argc, char** argv, Options& o) {
  const char* folder = std::getenv("KESTRUNE_DATA");
  o.data = folder ? folder : KESTRUNE_DATA;
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--sample") {
      o.states = 4000;
      o.critical_steps = 14;
      continue;
    }
    if (name == "--warm") {
      o.warm = true;
      continue;
    }
    if (i + 1 >= argc) return false;
    const char* value = argv[++i];
    if (name == "--states")
      o.states = std::max(1, std::atoi(value));
    else if (name == "--jobs")
      o.jobs = std::max(1, std::atoi(value));
    else if (name == "--seed")
      o.seed = std::strtoull(value, nullptr, 10);
    else if (name == "--mixture")
      o.mixture = value;
    else if (name == "--library")
      o.library = value;
    else if (name == "--data")
      o.data = value;
    else if (name == "--failures")
      o.failures = value;
    else
      return false;
  }
  return true;
}

void write_failure(std::FILE* file, const Feed& feed, const State& state, bool warm, const Answer& answer,
                   const Verdict& verdict) {
  std::fprintf(file, "%s,%s,%s,%.17g,%.17g,%d,%.17g,\"%s\",", feed.name.c_str(), state.kind,
               warm ? "warm" : "cold", state.T, state.P, answer.status, answer.beta, verdict.reason.c_str());
  for (size_t i = 0; i < feed.z.size(); ++i) std::fprintf(file, "%s%.17g", i ? ";" : "", feed.z[i]);
  std::fprintf(file, "\n");
  std::fflush(file);
}

// Judges one feed. The answers come first, in the order of the states, so that warm starts are reproducible.
Tally sweep_feed(const Options& o, Library& library, const Feed& feed, int count, std::FILE* failures) {
  const Components components = read_components(o.data, feed.ids);
  uint64_t seed = o.seed;  // other states for every feed
  for (char letter : feed.name) seed = seed * 131 + static_cast<unsigned char>(letter);
  const std::vector<State> states = make_states(feed, components, {count, o.jobs, o.critical_steps, seed});
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

int run(const Options& o) {
  Library library(o.library);
  std::FILE* failures = std::fopen(o.failures.c_str(), "w");
  if (!failures) throw std::runtime_error("cannot write " + o.failures);
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
  std::fclose(failures);
  total.print("all");
  const int bad = total.wrong + total.failed;
  if (bad > 0) std::printf("wrong answers: %s\n", o.failures.c_str());
  std::printf("%d passed, %d failed\n", total.states - bad, bad);
  return bad == 0 && total.states > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!parse(argc, argv, options)) {
    std::fputs(usage, stderr);
    return 2;
  }
  try {
    return run(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kestrune_sweep: %s\n", error.what());
    return 2;
  }
}
