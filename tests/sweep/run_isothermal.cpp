// The flash at T and P, asked at many states.
#include "report.hpp"
#include "states.hpp"
#include "tables.hpp"

namespace kestrune::sweep {
namespace {

void count(const Verdict& v, Tally& tally) {
  const char* const kinds[] = {"single", "two", "three", "wrong", "failed"};
  const char* const kind = kinds[static_cast<int>(v.outcome)];
  tally.count("states");
  tally.count(kind);
  if (v.outcome == Outcome::wrong || v.outcome == Outcome::failed) return tally.blame({kind});
  tally.count("clamp", v.clamped > 0);
  tally.size("balance", v.balance);
  tally.size("ln f", v.fugacity);
  if (v.outcome != Outcome::three_phase_state) tally.size("-tpd", -v.tpd);
}

// Judges one feed. The answers come first, in the order of the states, so that warm starts are reproducible.
void sweep_feed(const Options& o, Library& library, const Feed& feed, int count_of, std::FILE* failures,
                Tally& tally) {
  const Components components = read_components(o.data, feed.ids);
  const std::vector<State> states =
      make_states(feed, components, {count_of, o.jobs, o.critical_steps, o.seed_of(feed)});
  library.prepare(feed, components);
  const int n = static_cast<int>(states.size()), all = o.warm ? 2 * n : n;
  std::vector<Answer> answers;
  for (int k = 0; k < all; ++k) {
    const bool warm = k >= n && k % n > 0;
    answers.push_back(library.flash(feed, states[k % n].T, states[k % n].P, warm ? &answers[k - 1] : nullptr));
  }
  std::vector<Verdict> verdicts(answers.size());
  parallel_for(all, o.jobs,
               [&](int k) { verdicts[k] = judge(question_of(feed, components, states[k % n]), answers[k]); });
  for (int k = 0; k < all; ++k) {
    const State& s = states[k % n];
    count(verdicts[k], tally);
    if (!verdicts[k].reason.empty())
      Line(failures) << feed.name << s.kind << (k >= n ? "warm" : "cold") << s.T << s.P << answers[k].status
                     << answers[k].beta << verdicts[k].reason << feed.z;
  }
}

}  // namespace

int run_isothermal(const Options& o, Library& library, std::FILE* failures) {
  std::fprintf(failures, "mixture,kind,start,T_K,P_atm,status,beta,reason,z\n");
  const std::vector<Feed> feeds = all_feeds();
  const int count_of = o.states / static_cast<int>(feeds.size()) + 1;
  return run_over(
      o, {{"states", "single", "two", "three", "clamp"}, {"balance", "ln f", "-tpd"}}, feeds,
      [&](const Feed& feed, Tally& tally) { sweep_feed(o, library, feed, count_of, failures, tally); });
}

}  // namespace kestrune::sweep
