// What follows a converged split: is it the answer that is owed, and if not, which one is.

#include <algorithm>
#include <initializer_list>

#include "flash/flash_state.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMaxOtherAnswers = 8;

void copy_answer(const Iterate& from, Iterate& to, int ld) {
  Iterate copy = from;
  copy.z = to.z;
  copy.derivatives = false;
  for (const auto array : kIterateArrays) {
    std::copy_n(from.*array, ld, to.*array);
    copy.*array = to.*array;
  }
  to = copy;
}

// Tries a split from f.lowest beside the given phase; keeps it in f.best when it is lower. False: f.status.
bool try_other(Flash& f, const Beside& phase, bool& improved) {
  start_from_trial(f, phase, Source::other_answer);
  Outcome outcome;
  if (good_split(f, true, outcome) && f.it.gibbs < f.best.gibbs - kLowerGibbs) {
    copy_answer(f.it, f.best, f.m.ld);
    improved = true;
  }
  return outcome != Outcome::routine;
}

// Every trial against a tangent plane, and a split from each that cuts it beside each phase of the plane.
bool try_all_trials(Flash& f, Reference ref, std::initializer_list<Beside> phases, bool& improved) {
  ref.known = f.tried;
  ref.known_count = 0;
  f.start_count = 0;
  for (int number = 0; number < kNearPure + f.m.n; ++number) {
    if (number >= kNearPure && !(f.it.z[number - kNearPure] > 0.0)) continue;
    if (!start_trial(f, ref, number)) return false;
    if (began_before(f, trial_kind(f))) continue;
    f.trial.Z = 0.0;
    f.m.counts.step = Step::answer_trials;
    f.status = follow_trial(f.m, ref, trial_kind(f), Follow::strict, f.work, f.trial);
    if (f.status != KV_OK) return false;
    if (f.trial.end != TrialEnd::stationary || !(f.trial.tm < kUnstable)) continue;
    if (ref.known_count < kTried) std::copy_n(f.trial.w, f.m.ld, f.tried + ref.known_count++ * f.m.ld);
    std::swap(f.trial, f.lowest);
    f.have_lowest = true;
    for (const Beside& phase : phases)
      if (!try_other(f, phase, improved)) return false;
  }
  return true;
}

// An answer that is cut by its tangent plane: other splits, from all that cuts the planes of the answer and of
// the feed, until none is lower. What then is still cut is a state with three phases.
bool look_for_better(Flash& f) {
  Iterate& answer = f.answer;
  for (int k = 0; k < kMaxOtherAnswers; ++k) {
    bool stable = true, improved = false;
    if (!test_answer(f, stable)) return false;
    if (stable) return true;
    copy_answer(f.it, f.best, f.m.ld);
    copy_answer(f.it, answer, f.m.ld);
    const Reference plane{answer.x, f.answer_d, answer.y};
    const Reference feed{f.it.z, f.d};
    const Beside feed_phase{f.feed_phi, f.feed_Z, f.feed_kind};
    const Beside phases[] = {{answer.ln_phi_x, answer.Zx, answer.kind_x},
                             {answer.ln_phi_y, answer.Zy, answer.kind_y}};
    // From what cuts the plane, then from all that does.
    for (const Beside& phase : phases)
      if (!try_other(f, phase, improved)) return false;
    if (!try_all_trials(f, plane, {phases[0], phases[1]}, improved) ||
        !try_all_trials(f, feed, {feed_phase}, improved))
      return false;
    copy_answer(f.best, f.it, f.m.ld);
    if (!improved) return true;
  }
  return true;
}

}  // namespace

bool split_from_all(Flash& f, bool& found) {
  f.best.gibbs = f.feed_gibbs + kRounding;
  found = false;
  if (!try_all_trials(f, {f.it.z, f.d}, {{f.feed_phi, f.feed_Z, f.feed_kind}}, found)) return false;
  if (found) copy_answer(f.best, f.it, f.m.ld);
  return true;
}

bool settle_answer(Flash& f) {
  if (f.call.third != nullptr) {
    if (f.call.third->w == nullptr) return true;  // the caller tests the answer itself
    bool stable = true;
    if (!test_answer(f, stable)) return false;
    if (!stable) report_third(f);
    return true;
  }
  return look_for_better(f);
}

void report_third(Flash& f) {
  if (f.call.third == nullptr || f.call.third->w == nullptr || !f.have_lowest) return;
  ThirdPhase& third = *f.call.third;
  std::copy_n(f.lowest.w, f.m.n, third.w);
  third.found = true;
  third.distance = f.lowest.tm;
}

}  // namespace kestrune::flash
