// The two-phase flash goes first. What cuts its answer becomes a third phase, the three are brought to
// equilibrium, and the answer is tested again; each round has a lower Gibbs energy than the one before, so
// that it ends (improve). Where an added phase leads no lower: it takes the place of each of the others
// (replace_phase), stands beside three of them (settle_four), in pairs with them (try_pairs), or gives way to
// the solver's own starts. Section 9 of docs/method.md.

#include "flash3/equilibrium.hpp"

#include <algorithm>
#include <cmath>

#include "flash/accept.hpp"
#include "flash/feed.hpp"
#include "flash/stability/stability.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::flash3 {
namespace {

constexpr int kMostRounds = 12;                                         // of improving an answer that is cut
constexpr int kRoundsOfFour = 4, kPassesOfFour = 40, kFirstPasses = 5;  // with four phases
constexpr double kLowerGibbs = 1e-13;                                   // over RT: more than rounding
// Tangent-plane distance from which on a phase is missing; and from which on, though no amount of it can be
// found.
constexpr double kCut = -1e-9, kClearlyCut = -8e-9;
constexpr double kLoose = 1e-9;       // difference of ln fugacities that is left to do
constexpr double kNoAmount = 1e-13;   // of a phase: no more than rounding
constexpr double kFirstAmount = 0.1;  // of a phase that is added

flash::Feed feed_of(const Equilibrium& e) {
  return {e.z, e.m.context, e.routines};
}

flash::IsothermalCall isothermal_call(Equilibrium& e) {
  flash::IsothermalCall c{feed_of(e), e.m.T, e.m.P, &e.beta, e.x, e.y, e.K};
  c.model = &e.m;
  c.third = &e.third;
  if (*e.how.trace) c.trace = e.how.trace;
  e.third = {e.cut, false, 0.0};
  return c;
}

void set_phase(const Equilibrium& e, int j, const double* x, double amount, Phases& p) {
  std::copy_n(x, e.m.n, p.x[j]);
  p.amount[j] = amount;
  p.Z[j] = 0.0;
}

// What cuts an answer counts from a distance on, with a host's routine by more than its rounding, and when
// there can be an amount of it that is more than rounding.
void weigh_cut(Equilibrium& e) {
  const double cut = std::min(kCut, -flash::host_slack(e.m, e.how.settings));
  e.third.found = e.third.found && e.third.distance < cut && flash::most_of(e.m.n, e.z, e.cut) > kNoAmount;
}

// Gibbs energy and fugacities of e.p.
StatusCode evaluate(Equilibrium& e) {
  return evaluate_phases(e.m, e.z, e.p, e.w, false);
}

// The two-phase flash, from e.x, e.y, e.beta when warm; its answer into e.p.
StatusCode two_phases(Equilibrium& e, bool warm) {
  flash::IsothermalCall c = isothermal_call(e);
  c.start = warm ? flash::Start::warm : flash::Start::cold;
  c.index = warm ? 0 : 1;
  const StatusCode status = flash::isothermal_flash(c);
  weigh_cut(e);
  if (status == KV_SINGLE_PHASE || (status != KV_OK && e.third.found)) {
    // One phase; or an unstable feed whose split failed: what cuts it is known all the same.
    e.gas = e.beta == 1.0;
    e.p.count = 1;
    set_phase(e, 0, e.z, 1.0, e.p);
  } else if (status == KV_OK) {
    put_two_phases(e, e.beta);
  } else {
    return status;
  }
  const StatusCode evaluated = evaluate(e);
  if (evaluated != KV_OK || e.p.count < 2 || e.p.worst <= kLoose) return evaluated;
  // Beside a critical point: the last steps of the two-phase flash were not enough.
  StatusCode polished = KV_OK;
  if (polish_phases(e.m, e.z, e.how, e.p, e.w, polished) != Ended::converged &&
      !(e.p.worst <= flash::host_slack(e.m, e.how.settings)))
    return polished != KV_OK ? polished : KV_TRIVIAL;
  return test_equilibrium(e);
}

// The same with two liquids, A and B, whatever vapour there may be: the test that follows looks for one. False:
// they are none, or become one.
bool two_liquids(Equilibrium& e) {
  Phases& p = e.p;
  std::copy_n(p.x[kB], e.m.n, e.x);
  std::copy_n(p.x[kA], e.m.n, e.y);
  e.beta = p.amount[kA];
  flash::IsothermalCall c = isothermal_call(e);
  flash::ThirdPhase tested_later;
  c.third = &tested_later;
  c.mode = flash::Mode::liquid_liquid;
  c.start = flash::Start::warm;
  c.index = 0;
  if (flash::isothermal_flash(c) != KV_OK) return false;
  put_two_phases(e, e.beta);
  return evaluate(e) == KV_OK && p.worst <= kLoose;
}

// Two phases that the three-phase iteration left, finished and tested by the two-phase flash.
StatusCode finish_two(Equilibrium& e) {
  std::copy_n(e.p.x[0], e.m.n, e.x);
  std::copy_n(e.p.x[1], e.m.n, e.y);
  e.beta = e.p.amount[1];
  return two_phases(e, true);
}

// Iterates e.p of three phases, and on with two when one of them goes. KV_OK: tested; see e.third.
StatusCode settle(Equilibrium& e, bool patient) {
  e.how.patient = patient;
  StatusCode status = KV_OK;
  const Ended ended = iterate_phases(e.m, e.z, e.how, e.p, e.w, status);
  switch (ended) {
    case Ended::routine:
      return status != KV_OK ? status : KV_TRIVIAL;
    case Ended::exhausted:
      return KV_NOT_CONVERGED;
    case Ended::damped:
      return KV_RELAXATION;
    case Ended::converged:
      return test_equilibrium(e);
    default:
      if (e.p.count != 2) return two_phases(e, false);
      if (ended != Ended::vapour_vanished) return finish_two(e);
      return two_liquids(e) ? test_equilibrium(e) : finish_two(e);
  }
}

// Phases of any number brought to equilibrium and tested.
StatusCode settle_any(Equilibrium& e) {
  if (e.p.count == kMostPhases) return settle(e, true);
  return e.p.count == 2 ? finish_two(e) : two_phases(e, false);
}

// Adds what cuts e.p to it. Two phases become three, and one becomes two.
StatusCode add_phase(Equilibrium& e, bool patient) {
  Phases& p = e.p;
  for (int j = 0; j < p.count; ++j) p.amount[j] *= 1.0 - kFirstAmount;
  set_phase(e, p.count, e.cut, kFirstAmount, p);
  ++p.count;
  return p.count == 3 ? settle(e, patient) : finish_two(e);
}

/*
 * The same of a small amount, of which Newton's method makes more: a phase that draws on something scarce,
 * water on ammonia, takes more of it in a substitution than there is, and is gone after the next.
 */
StatusCode grow_phase(Equilibrium& e) {
  constexpr double kPart = 0.3;  // of what is there of its scarcest component
  Phases& p = e.p;
  double amount = kFirstAmount;
  for (int i = 0; i < e.m.n; ++i)
    if (e.cut[i] > 0.0) amount = std::min(amount, kPart * e.z[i] / e.cut[i]);
  for (int j = 0; j < p.count; ++j) p.amount[j] *= 1.0 - amount;
  set_phase(e, p.count, e.cut, amount, p);
  ++p.count;
  e.how.descend = true;
  const StatusCode status = settle(e, true);
  e.how.descend = false;
  return status;
}

// The answer of three phases and what cuts it, into e.p.
void put_four(Equilibrium& e) {
  Phases& p = e.p;
  copy_phases(e.answer, p, e.m.ld);
  for (int j = 0; j < kMostPhases; ++j) p.amount[j] *= 1.0 - kFirstAmount;
  set_phase(e, kMostPhases, e.added, kFirstAmount, p);
  p.count = kRoom;
}

// The best of several attempts at an answer lower than e.answer.
struct Attempts {
  Equilibrium& e;
  bool improved = false, cut = true;
  double distance = 0.0;

  explicit Attempts(Equilibrium& equilibrium) : e(equilibrium) { copy_phases(e.answer, e.best, e.m.ld); }
  void settle_next() {
    if (settle_any(e) != KV_OK || !(e.p.gibbs < e.best.gibbs - kLowerGibbs)) return;
    copy_phases(e.p, e.best, e.m.ld);
    std::copy_n(e.cut, e.m.n, e.best_cut);
    cut = e.third.found;
    distance = e.third.distance;
    improved = true;
  }
  StatusCode take_best() {
    copy_phases(e.best, e.p, e.m.ld);
    std::copy_n(e.best_cut, e.m.n, e.cut);
    e.third.found = cut;
    e.third.distance = distance;
    return improved ? KV_OK : KV_NOT_CONVERGED;
  }
};

// Phases that are cut: what cuts takes the place of each in turn, and the lowest stands.
StatusCode replace_phase(Equilibrium& e) {
  Attempts attempts(e);
  for (int j = 0; j < e.answer.count; ++j) {
    copy_phases(e.answer, e.p, e.m.ld);
    set_phase(e, j, e.added, e.answer.amount[j], e.p);
    attempts.settle_next();
  }
  return attempts.take_best();
}

// The same with all pairs of the four.
StatusCode try_pairs(Equilibrium& e) {
  Attempts attempts(e);
  for (int j = 1; j < kRoom; ++j)
    for (int k = 0; k < j; ++k) {
      put_four(e);
      drop_phase(e.p, j);
      drop_phase(e.p, k);
      attempts.settle_next();
    }
  return attempts.take_best();
}

// Substitutions of four phases in e.p; one that the convex split leaves no amount of is taken out.
StatusCode substitute_four(Equilibrium& e, const PhasesWork& w) {
  Phases& p = e.p;
  StatusCode status = evaluate_phases(e.m, e.z, p, w, false);
  for (int pass = 0; pass < kPassesOfFour && status == KV_OK; ++pass) {
    int looks = 0;
    if (!split_between(e.m.n, e.z, p, w, &looks)) return KV_NOT_FINITE;
    status = flash::spend(e.m.host, split_work(looks));
    if (status != KV_OK) return status;
    for (int j = p.count - 1; j >= 0 && pass >= kFirstPasses; --j)
      if (p.amount[j] <= kNoAmount && p.count > 1) drop_phase(p, j);
    status = evaluate_phases(e.m, e.z, p, w, false);
    if (p.count <= kMostPhases) break;
  }
  return status;
}

/*
 * Three phases that are cut together with what cuts them: the convex split takes out the one that the others
 * leave no amount of, whichever that is, or Newton's method does. KV_OK: what is left was settled and tested.
 * KV_FOURTH_PHASE: all four stay.
 */
StatusCode settle_four(Equilibrium& e) {
  Phases& p = e.p;
  put_four(e);
  Ended ended = Ended::damped;
  const StatusCode status = support::with_arena<14, 40>(e.m.n, [&](support::Arena& arena) {
    PhasesWork w;
    take_work(arena, e.m.n, e.m.ld, kRoom, w);
    StatusCode found = KV_OK;
    for (int round = 0; round < kRoundsOfFour && found == KV_OK; ++round) {
      found = substitute_four(e, w);
      if (found != KV_OK || p.count <= kMostPhases) break;
      ended = polish_phases(e.m, e.z, e.how, p, w, found);
      if (ended != Ended::damped || p.count <= kMostPhases) break;
    }
    return found;
  });
  if (status != KV_OK) return status;
  if (p.count <= kMostPhases) return settle_any(e);
  return ended == Ended::converged ? KV_FOURTH_PHASE : KV_NOT_CONVERGED;
}

// The solver's own starts, when nothing better leads anywhere.
StatusCode from_own_starts(Equilibrium& e) {
  StatusCode status = KV_NOT_CONVERGED;
  bool lower = false;
  for (const int index : {2, 1, 3, 5}) {
    e.how.index = index;
    if (start_by_index(e.m, e.z, index, e.p) != KV_OK) continue;
    status = settle(e, true);
    lower = status == KV_OK && e.p.gibbs < e.answer.gibbs - kLowerGibbs;
    if (lower) break;
  }
  e.how.index = 4;
  return lower || status != KV_OK ? status : StatusCode{KV_NOT_CONVERGED};
}

// An attempt at an answer lower than e.answer, or one that nothing cuts.
bool lower(const Equilibrium& e, StatusCode status) {
  return status == KV_OK && (!e.third.found || e.p.gibbs < e.answer.gibbs - kLowerGibbs);
}

// Back to the answer that is improved on, and to what cuts it.
void put_answer(Equilibrium& e) {
  copy_phases(e.answer, e.p, e.m.ld);
  std::copy_n(e.added, e.m.n, e.cut);
}

// The ways of an answer of three phases.
StatusCode improve_three(Equilibrium& e) {
  StatusCode status = replace_phase(e);
  if (!lower(e, status)) status = settle_four(e);
  if (status != KV_FOURTH_PHASE && !lower(e, status)) status = try_pairs(e);
  return status;
}

// Those of one or two.
StatusCode improve_few(Equilibrium& e) {
  StatusCode status = add_phase(e, false);
  if (lower(e, status)) return status;
  put_answer(e);
  status = add_phase(e, true);  // a small phase may have been taken for a vanished one
  if (lower(e, status) || e.answer.count != 2) return status;
  put_answer(e);
  status = grow_phase(e);
  return lower(e, status) ? status : replace_phase(e);
}

// From an answer that was just tested to one that nothing cuts. Each way starts from the answer (e.answer) and
// what cuts it (e.added), and counts when nothing cuts its end or that lies lower.
StatusCode improve(Equilibrium& e) {
  for (int round = 0; round < kMostRounds && e.third.found; ++round) {
    copy_phases(e.p, e.answer, e.m.ld);
    std::copy_n(e.cut, e.m.n, e.added);
    const double distance = e.third.distance;
    StatusCode status = e.p.count == kMostPhases ? improve_three(e) : improve_few(e);
    if (status != KV_FOURTH_PHASE && !lower(e, status)) status = from_own_starts(e);
    if (status != KV_OK) {  // the answer stands where what cuts it may be rounding
      copy_phases(e.answer, e.p, e.m.ld);
      e.third.distance = distance;
      if (distance > std::min(kClearlyCut, -flash::host_slack(e.m, e.how.settings))) return KV_OK;
      return status;
    }
  }
  return e.third.found ? KV_NOT_CONVERGED : KV_OK;
}

// What does not pass is no answer; the solver's own starts are the last resort. Of three phases that ended
// nowhere it is told when two of them have become alike.
StatusCode leave(Equilibrium& e, StatusCode status) {
  const bool failed = status == KV_NOT_CONVERGED || status == KV_TRIVIAL;
  if (e.started ? status != KV_OK || accept(e) : !failed) return status;
  copy_phases(e.p, e.answer, e.m.ld);
  e.answer.gibbs = 1e300;
  status = from_own_starts(e);
  if (status == KV_OK) status = improve(e);
  if (status == KV_OK && accept(e)) return status;
  if (status != KV_OK && status != KV_NOT_CONVERGED && status != KV_RELAXATION) return status;
  const StatusCode alike = phases_alike(e.m.n, e.z, e.p, e.how.settings.CRIT);
  return alike != KV_OK ? alike : status != KV_OK ? status : StatusCode{KV_NOT_CONVERGED};
}

}  // namespace

StatusCode open_equilibrium(const flash::Feed& feed, double T, double P, int order, support::Arena& arena,
                            support::TraceWriter& trace, Equilibrium& e) {
  const int n = feed.context.record->count, ld = support::padded(n);
  e.routines = feed.routines;
  for (double** a : {&e.z, &e.x, &e.y, &e.K, &e.cut, &e.added, &e.best_cut}) *a = arena.zeros(ld);
  if (!flash::normalise_feed(n, feed.z, e.z)) return KV_COMPOSITION;
  for (int i = 0; i < n; ++i)
    if (e.z[i] < kAbsent) e.z[i] = 0.0;
  take_phases(arena, ld, e.p);
  take_phases(arena, ld, e.best);
  take_phases(arena, ld, e.answer);
  take_work(arena, n, ld, kMostPhases, e.w);
  e.how.settings = flash::copy_settings(feed.context);
  e.how.trace = &trace;
  e.arena = &arena;
  e.base = arena.mark();
  e.order = order;
  return flash::make_model(T, P, feed.context, feed.routines, false, order, arena, e.m);
}

StatusCode set_conditions(double T, double P, Equilibrium& e) {
  e.m.P = P;
  if (T == e.m.T) return KV_OK;
  e.arena->rewind(e.base);
  const flash::Counts counts = e.m.counts;
  const eos::Context context = e.m.context;
  e.m = {};
  const StatusCode status = flash::make_model(T, P, context, e.routines, false, e.order, *e.arena, e.m);
  e.m.counts = counts;
  return status;
}

void put_two_phases(Equilibrium& e, double beta) {
  e.p.count = 2;
  set_phase(e, 0, e.x, 1.0 - beta, e.p);
  set_phase(e, 1, e.y, beta, e.p);
}

StatusCode find_equilibrium(Equilibrium& e) {
  e.how.index = 4;
  const StatusCode status = two_phases(e, false);
  e.started = status == KV_OK;
  return leave(e, status == KV_OK ? improve(e) : status);
}

StatusCode find_equilibrium_from(Equilibrium& e) {
  StatusCode status = KV_NOT_CONVERGED;
  e.how.index = 0;
  if (e.p.count == 3) status = settle(e, false);
  if (e.p.count == 2 && status != KV_OK) status = finish_two(e);
  if (status == KV_OK) status = improve(e);
  return status == KV_FOURTH_PHASE || (status == KV_OK && accept(e)) ? status : find_equilibrium(e);
}

StatusCode test_equilibrium(Equilibrium& e) {
  if (e.p.count == 1) return two_phases(e, false);
  flash::StabilityCall call{feed_of(e), e.m.T, e.m.P, &e.m, flash::Effort::thorough, e.p.count};
  std::copy_n(e.p.x, e.p.count, call.phase);
  flash::StabilityResult found{.w = e.cut};
  const StatusCode status = flash::test_stability(call, found);
  e.third = {e.cut, found.cut, found.cut ? found.distance : 0.0};
  weigh_cut(e);
  return status;
}

bool accept(const Equilibrium& e) {
  const double owed = std::max(flash::kOwedFugacity, flash::host_slack(e.m, e.how.settings));
  const Phases& p = e.p;
  if (!flash::is_split(e.m.n, e.z, p.count, p.amount, p.x) || !(p.worst <= owed)) return false;
  if (p.count > 1 && !flash::may_split(e.m.T)) return false;
  if (p.count == 1 && !flash::has_digits(e.m.n, p.x[0], p.ln_phi[0])) return false;
  for (int j = 1; j < p.count; ++j)
    if (!(flash::fugacity_gap(e.m.n, e.z, {p.x[0], p.ln_phi[0]}, {p.x[j], p.ln_phi[j]}) <= 2.0 * owed))
      return false;
  return !e.third.found || e.third.distance > kClearlyCut;
}

int lightest_phase(const Equilibrium& e) {
  const Phases& p = e.p;
  int v = 0;
  for (int j = 1; j < p.count; ++j)
    if (flash::lighter(*e.m.context.record, p.x[j], p.Z[j], p.x[v], p.Z[v])) v = j;
  return v;
}

int find_vapour(const Equilibrium& e) {
  const Phases& p = e.p;
  const MixtureRecord& r = *e.m.context.record;
  const int v = lightest_phase(e);
  if (p.count == kMostPhases) return v;
  if (p.count == 1) return e.gas ? 0 : -1;
  if (!(p.Z[v] > 0.0)) return -1;
  const bool aqueous = flash::is_aqueous(eos::find_water_family(r), p.x[1 - v]);
  return flash::passes_for_vapour(r, e.m.T, e.m.P, p.x[v], p.Z[v], aqueous) ? v : -1;
}

}  // namespace kestrune::flash3
