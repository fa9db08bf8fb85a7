// What follows a converged split: is it the answer that is owed, and if not, which one is.

#include <algorithm>

#include "flash/isothermal/flash_state.hpp"

namespace kestrune::flash {
namespace {

constexpr int kMaxOtherAnswers = 8;

void copy_answer(const Iterate& from, Iterate& to, int ld) {
  Iterate copy = from;
  copy.z = to.z;
  copy.derivatives = copy.evaluated = false;
  for (const auto array : kIterateArrays) {
    std::copy_n(from.*array, ld, to.*array);
    copy.*array = to.*array;
  }
  to = copy;
}

// Tries a split from the lowest trial beside the given phase; keeps it in f.best when it is lower. False: f.status.
bool try_other(Flash& f, const PlanePhase& phase, bool& improved) {
  start_from_trial(f, phase, Source::other_answer);
  Outcome outcome;
  if (good_split(f, true, outcome) && f.it.gibbs < f.best.gibbs - kLowerGibbs) {
    copy_answer(f.it, f.best, f.m.ld);
    improved = true;
  }
  return outcome != Outcome::routine;
}

bool try_beside_all(Flash& f, const Plane& plane, bool& improved) {
  for (int j = 0; j < plane.count; ++j)
    if (!try_other(f, plane.phase[j], improved)) return false;
  return true;
}

// Every trial against a tangent plane, and a split from each that cuts it beside each phase of the plane.
bool try_all_trials(Flash& f, const Plane& plane, bool& improved) {
  int number = 0;
  for (bool found = true;;) {
    f.status = next_cut(f.test, plane, number, found);
    if (f.status != KV_OK || !found) return f.status == KV_OK;
    if (!try_beside_all(f, plane, improved)) return false;
  }
}

// The phases of an answer of the iteration.
void put_phases(const Iterate& it, Plane& plane) {
  plane.count = 2;
  plane.phase[0] = {it.x, it.ln_phi_x, it.Zx, it.kind_x};
  plane.phase[1] = {it.y, it.ln_phi_y, it.Zy, it.kind_y};
}

// Tests f.it against the plane of its phases. The trials take the place of what the iteration has left.
// False: f.status.
bool test_answer(Flash& f, Plane& plane) {
  plane.z = f.it.z;
  put_phases(f.it, plane);
  if (f.it.derivatives) {
    plane.phase[0].dn = f.two.dx;
    plane.phase[1].dn = f.two.dy;
  } else if (f.it.evaluated) {
    plane.phase[0].at = &f.it.at_x;
    plane.phase[1].at = &f.it.at_y;
  }
  f.it.derivatives = false;
  answer_plane(f.test, plane);
  f.status = test_plane(f.test, plane);
  return f.status == KV_OK;
}

// An answer that is cut by its tangent plane: other splits, from all that cuts the planes of the answer and of
// the feed, until none is lower. What then is still cut is a state with three phases.
bool look_for_better(Flash& f) {
  for (int k = 0; k < kMaxOtherAnswers; ++k) {
    bool improved = false;
    Plane plane;
    if (!test_answer(f, plane)) return false;
    if (!f.test.cut()) return true;
    copy_answer(f.it, f.best, f.m.ld);
    copy_answer(f.it, f.answer, f.m.ld);
    put_phases(f.answer, plane);
    // From what cuts the plane, then from all that does.
    if (!try_beside_all(f, plane, improved) || !try_all_trials(f, plane, improved) ||
        !try_all_trials(f, f.feed, improved))
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
  if (!try_all_trials(f, f.feed, found)) return false;
  if (found) copy_answer(f.best, f.it, f.m.ld);
  return true;
}

bool settle_answer(Flash& f) {
  if (f.call.third != nullptr) {
    if (f.call.third->w == nullptr) return true;  // the caller tests the answer itself
    Plane plane;
    if (!test_answer(f, plane)) return false;
    if (f.test.cut()) report_third(f);
    return true;
  }
  return look_for_better(f);
}

void report_third(Flash& f) {
  if (f.call.third == nullptr || f.call.third->w == nullptr || !f.test.have_lowest) return;
  ThirdPhase& third = *f.call.third;
  std::copy_n(f.test.lowest.w, f.m.n, third.w);
  third.found = true;
  third.distance = f.test.lowest.tm;
}

}  // namespace kestrune::flash
