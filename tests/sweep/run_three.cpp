// The three-phase flash at T and P: every state from a cold start and from five estimates.
#include <algorithm>
#include <array>
#include <cmath>

#include "options.hpp"
#include "states.hpp"
#include "tables.hpp"
#include "three_reference.hpp"
#include "three_states.hpp"

namespace {

using namespace kestrune::sweep;

// Where the answer comes from: nothing, itself, the answer at 1.002 T and 1.01 P, that of the state before, the
// answer with liquid A and vapour exchanged, and one with the fractions of other components.
constexpr int starts = 6;
const char* const start_names[starts] = {
    "cold",       "warm, itself", "warm, T * 1.002, P * 1.01", "warm, state before", "warm, exchanged",
    "warm, false"};
constexpr double warm_tolerance = 1e-7;

struct Judged {
  std::array<ThreeAnswer, starts> answers;
  std::array<ThreeVerdict, starts> verdicts;
  bool four = false;  // the status says that there are four phases, and there are
  double apart = 0;   // largest difference between the shares of a warm and the cold answer
  bool edge = false;  // two right answers with different phases: the state lies on a boundary
};

struct Tally {
  int states = 0, kinds[4] = {}, four = 0, wrong = 0, failed = 0, warm = 0, bad = 0, edge = 0, tries = 0;
  double apart = 0, balance = 0, fugacity = 0, tpd = 0;
  std::map<std::string, int> groups;

  void add(const Judged& judged) {
    ++states;
    ++kinds[phase_count(layout_of(judged.answers[0]))];
    edge += judged.edge;
    four += judged.four;
    bool warm_wrong = false;
    for (int s = 0; s < starts; ++s) {
      const ThreeVerdict& v = judged.verdicts[s];
      balance = std::max(balance, v.group.empty() ? v.balance : 0);
      fugacity = std::max(fugacity, v.group.empty() ? v.fugacity : 0);
      tpd = std::min(tpd, v.group.empty() ? v.tpd : 0);
      if (v.group.empty()) continue;
      ++groups[v.group + ", " + start_names[s]];
      if (s == 0) ++(judged.answers[0].status == 0 ? wrong : failed);
      warm_wrong = warm_wrong || s > 0;
    }
    warm += warm_wrong;
    bad += warm_wrong || !judged.verdicts[0].group.empty();
    if (!warm_wrong) apart = std::max(apart, judged.apart);
  }

  void add(const Tally& t) {
    states += t.states;
    for (int k = 0; k < 4; ++k) kinds[k] += t.kinds[k];
    four += t.four;
    wrong += t.wrong;
    failed += t.failed;
    warm += t.warm;
    bad += t.bad;
    edge += t.edge;
    tries += t.tries;
    apart = std::max(apart, t.apart);
    balance = std::max(balance, t.balance);
    fugacity = std::max(fugacity, t.fugacity);
    tpd = std::min(tpd, t.tpd);
    for (const auto& [name, count] : t.groups) groups[name] += count;
  }

  void print(const char* name) const {
    std::printf("%-26s %7d %7d %6d %6d %6d %5d %6d %6d %6d %5d  %8.1e %8.1e %8.1e %9.1e\n", name, tries, states,
                kinds[1], kinds[2], kinds[3], four, failed, wrong, warm, edge, apart, balance, fugacity, tpd);
    std::fflush(stdout);
  }
};

void print_times(const char* name, Sample& sample) {
  for (int k = 0; k < 4; ++k) {
    std::vector<double>& times = sample.seconds[k];
    if (times.empty()) continue;
    std::sort(times.begin(), times.end());
    double sum = 0;
    for (double t : times) sum += t;
    std::printf("  %-24s %d phases: mean %8.1f us, p95 %8.1f us, largest %9.1f us, %zu cold calls\n", name, k,
                1e6 * sum / static_cast<double>(times.size()), 1e6 * times[times.size() * 95 / 100],
                1e6 * times.back(), times.size());
  }
}

// A warm answer has to be the cold one. Where it has other phases and both are right, the state lies on the
// boundary between them; where the phases are the same but the shares differ, one of them is not converged:
// unless two phases are nearly critical, where the shares hang on the last digits of the fugacities.
void compare_warm(const Question& question, const ThreeAnswer& cold, int s, Judged& judged) {
  const ThreeAnswer& warm = judged.answers[s];
  ThreeVerdict& verdict = judged.verdicts[s];
  verdict = judge_three(question, warm);
  if (!verdict.group.empty() || !judged.verdicts[0].group.empty()) return;
  const double apart = shares_apart(cold, warm), alike = closest_phases(question, cold);
  if (layout_of(cold) != layout_of(warm)) {
    judged.edge = true;
  } else if (apart > warm_tolerance + 1e-10 / std::pow(alike, 4)) {
    verdict.group = "other shares";
    verdict.reason = text("shares differ by %.3g from the cold start, compositions by %.3g", apart, alike);
  } else {
    judged.apart = std::max(judged.apart, apart);
  }
}

Judged ask_all(Library& library, const Components& components, const ThreeState& state,
               const ThreeState& before) {
  Judged judged;
  const ThreeAnswer& cold = judged.answers[0] = state.answer;
  const Question question{&components, state.z, state.T, state.P};
  judged.verdicts[0] = judge_three(question, cold);
  if (cold.status == KV_FOURTH_PHASE) {
    std::vector<Composition> w;
    std::vector<double> share;
    judged.four = stable_phases(question, Reduced(question), w, share) == 4;
    if (judged.four) judged.verdicts[0] = {};
  }
  if (cold.status != 0) return judged;
  const ThreeAnswer near = library.three(state.T * 1.002, state.P * 1.01, state.z);
  ThreeAnswer exchanged = cold, wrong = cold;
  std::swap(exchanged.a, exchanged.y);
  std::swap(exchanged.beta, exchanged.V);
  for (Composition* w : {&wrong.a, &wrong.b, &wrong.y}) std::rotate(w->begin(), w->begin() + 1, w->end());
  const ThreeAnswer* estimates[starts] = {nullptr, &cold, &near, &before.answer, &exchanged, &wrong};
  for (int s = 1; s < starts; ++s) {
    judged.answers[s] = library.three(state.T, state.P, state.z, estimates[s]);
    compare_warm(question, cold, s, judged);
  }
  return judged;
}

void write_failure(std::FILE* file, const System& system, const ThreeState& state, const Judged& judged,
                   int s) {
  const ThreeAnswer& a = judged.answers[s];
  std::fprintf(file, "%s,%s,\"%s\",%.17g,%.17g,%d,%.17g,%.17g,\"%s\",\"%s\"", system.feed.name.c_str(),
               state.kind, start_names[s], state.T, state.P, a.status, a.beta, a.V,
               judged.verdicts[s].group.c_str(), judged.verdicts[s].reason.c_str());
  for (const Composition* part : {&state.z, &a.a, &a.b, &a.y}) {
    std::fprintf(file, ",");
    write_values(file, *part);
  }
  std::fprintf(file, "\n");
  std::fflush(file);
}

Tally sweep_system(const Options& o, Library& library, const System& system, int count, std::FILE* failures) {
  const Components components = read_components(o.data, system.feed.ids);
  library.prepare(system.feed, components);
  Sample sample =
      sample_states(system, {count, o.jobs, o.seed_of(system.feed)},
                    [&](double T, double P, const Composition& z) { return library.three(T, P, z); });
  const int n = static_cast<int>(sample.states.size());
  std::vector<Judged> judged(n);
  parallel_for(n, o.jobs, [&](int k) {
    judged[k] = ask_all(library, components, sample.states[k], sample.states[k > 0 ? k - 1 : 0]);
  });
  Tally tally;
  tally.tries = sample.tries;
  for (int k = 0; k < n; ++k) {
    tally.add(judged[k]);
    for (int s = 0; s < starts; ++s) {
      if (!judged[k].verdicts[s].group.empty()) write_failure(failures, system, sample.states[k], judged[k], s);
    }
  }
  tally.print(system.feed.name.c_str());
  if (o.times) print_times(system.feed.name.c_str(), sample);
  return tally;
}

}  // namespace

namespace kestrune::sweep {

int run_three(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures, "system,kind,start,T_K,P_atm,status,beta,V,group,reason,z,xA,xB,y\n");
  const std::vector<System> systems = three_phase_systems();
  const int count = o.states / static_cast<int>(systems.size()) + 1;
  std::printf("%-26s %7s %7s %7s %6s %6s %5s %6s %6s %6s %5s  %8s %8s %8s %9s\n", "system", "tries", "states",
              "one", "two", "three", "four", "failed", "wrong", "warm", "edge", "apart", "balance", "ln f",
              "tpd");
  Tally total;
  for (const System& system : systems) {
    if (!o.mixture.empty() && system.feed.name != o.mixture) continue;
    total.add(sweep_system(o, library, system, count, failures));
  }
  total.print("all");
  print_groups(total.groups);
  std::printf("%d passed, %d failed\n", total.states - total.bad, total.bad);
  return total.states > 0 ? total.bad : -1;
}

}  // namespace kestrune::sweep
