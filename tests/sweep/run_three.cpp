// The three-phase flash at T and P: every state from a cold start and from five estimates.
#include <algorithm>
#include <array>
#include <cmath>

#include "report.hpp"
#include "tables.hpp"
#include "three_reference.hpp"
#include "three_states.hpp"

namespace kestrune::sweep {
namespace {

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

void count(const Judged& judged, Tally& tally) {
  const char* const kinds[] = {"none", "one", "two", "three"};
  tally.count("states");
  tally.count(kinds[phase_count(layout_of(judged.answers[0]))]);
  tally.count("edge", judged.edge);
  tally.count("four", judged.four);
  std::vector<std::string> wrong;
  bool warm_wrong = false;
  for (int s = 0; s < starts; ++s) {
    const ThreeVerdict& v = judged.verdicts[s];
    if (!v.group.empty()) {
      wrong.push_back(v.group + ", " + start_names[s]);
      warm_wrong = warm_wrong || s > 0;
      continue;
    }
    tally.size("balance", v.balance);
    tally.size("ln f", v.fugacity);
    tally.size("-tpd", -v.tpd);
  }
  tally.blame(wrong);
  if (!warm_wrong) tally.size("apart", judged.apart);
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

void sweep_system(const Options& o, Library& library, const System& system, int count_of, std::FILE* failures,
                  Tally& tally) {
  const Components components = read_components(o.data, system.feed.ids);
  library.prepare(system.feed, components);
  const Sample sample =
      sample_states(system, {count_of, o.jobs, o.seed_of(system.feed)},
                    [&](double T, double P, const Composition& z) { return library.three(T, P, z); });
  const int n = static_cast<int>(sample.states.size());
  std::vector<Judged> judged(n);
  parallel_for(n, o.jobs, [&](int k) {
    judged[k] = ask_all(library, components, sample.states[k], sample.states[k > 0 ? k - 1 : 0]);
  });
  tally.count("tries", sample.tries);
  for (int k = 0; k < 4; ++k) tally.seconds[text("%.0f phases, cold", k)] = sample.seconds[k];
  for (int k = 0; k < n; ++k) {
    const ThreeState& state = sample.states[k];
    count(judged[k], tally);
    for (int s = 0; s < starts; ++s) {
      const ThreeAnswer& a = judged[k].answers[s];
      const ThreeVerdict& v = judged[k].verdicts[s];
      if (!v.group.empty())
        Line(failures) << system.feed.name << state.kind << start_names[s] << state.T << state.P << a.status
                       << a.beta << a.V << v.group << v.reason << state.z << a.a << a.b << a.y;
    }
  }
}

}  // namespace

int run_three(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures, "system,kind,start,T_K,P_atm,status,beta,V,group,reason,z,xA,xB,y\n");
  const std::vector<System> systems = three_phase_systems();
  const int count_of = o.states / static_cast<int>(systems.size()) + 1;
  const Columns columns{{"states", "tries", "one", "two", "three", "four", "edge"},
                        {"apart", "balance", "ln f", "-tpd"}};
  return run_over(o, columns, systems, [&](const System& s, Tally& tally) {
    sweep_system(o, library, s, count_of, failures, tally);
  });
}

}  // namespace kestrune::sweep
