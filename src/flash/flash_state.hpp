// One isothermal flash under way: what its named steps share. Private to the solver.
#ifndef KESTRUNE_FLASH_FLASH_STATE_HPP
#define KESTRUNE_FLASH_FLASH_STATE_HPP

#include "flash/isothermal.hpp"
#include "flash/stability.hpp"

namespace kestrune::flash {

// Stationary points that are remembered while all trials are tried.
inline constexpr int kTried = 6;
// Starts of trials that are remembered where all are tried.
inline constexpr int kStarts = 32;

struct Flash {
  Flash(const IsothermalCall& c, Model& model, const Settings& s, FlashTrace& t)
      : call(c), m(model), settings(s), trace(t) {}

  const IsothermalCall& call;
  Model& m;
  Settings settings;
  FlashTrace& trace;

  Iterate it;            // the two-phase iteration; it.z is the normalised feed
  Iterate best, answer;  // the best answer, and the one under test, while others are tried
  TwoPhaseWork two;
  TrialWork work;
  Trial trial, lowest;  // the trial that runs, and the lowest of the current test
  bool have_lowest = false;
  Follow how = Follow::quick;  // how far trials are followed
  const double* incipient =
      nullptr;               // [ld] a stationary point that is known beforehand, of distance 0; may be null
  double incipient_Z = 0.0;  // of it, 0 where it is not known
  bool came_back = false;    // some trial ran back into the reference
  int start_count = 0;
  Kind start_kinds[kStarts] = {};

  double* wilson_k = nullptr;   // [ld]
  double* feed_phi = nullptr;   // [ld] ln phi of the feed as one phase
  Evaluated feed;               // of the same, by the built-in equation
  double* d = nullptr;          // [ld] ln z + ln phi of it
  double* answer_d = nullptr;   // [ld] the same of a phase of an answer under test
  double* direction = nullptr;  // [ld] of lowest curvature at the feed
  double* tried = nullptr;      // [ld * kTried] compositions of trials that a split was tried from
  double* between = nullptr;    // [ld] composition that a trial starts from
  double* starts = nullptr;     // [ld * kStarts] ln W
  double* start = nullptr;      // [ld] ln W that the trial which runs began with
  double feed_gibbs = 0.0;      // sum of z d
  double feed_Z = 0.0;
  Kind feed_kind = Kind::stable;
  StatusCode status = KV_OK;  // of the fugacity routine
  // A third phase of the answer under test, null without one.
  struct Third {
    const double *x = nullptr, *ln_phi = nullptr;
    double Z = 0.0;
  } third;

  bool liquids_only() const { return call.mode == Mode::liquid_liquid; }
  bool thorough() const { return call.third != nullptr; }  // every component is tried
};

/*
 * Gas or liquid by packing: above the critical volume of the equation, 3.9514 b of the mixture, it is gas.
 * Without a Z (a phase that is water, a host's routine that did not tell) it is liquid.
 */
Kind kind_of(const Flash& f, const double* composition, double Z);

/* The root that a trial and a single phase are asked for. */
Kind trial_kind(const Flash& f);

// The starts of trials, by number: the two of Wilson's coefficients, the ideal-gas-like one, and component j
// almost pure as kNearPure + j.
enum TrialNumber { kWilsonLiquid, kWilsonVapour, kIdealGas, kNearPure };

/*
 * Whether a trial of this test (since f.start_count was 0) began close to where f.trial does: ln W of every
 * amount that matters within 0.3. It would end where that one has. Else the start is remembered.
 */
bool began_before(Flash& f, Kind kind);

/* Puts the start of a trial into f.trial. False: f.status. */
bool start_trial(Flash& f, const Reference& ref, int number);

/* ln phi, Gibbs energy and kind of the feed as one phase. False: f.status. */
bool evaluate_feed(Flash& f);

/*
 * Full stability analysis of the feed: both Wilson trials, the ideal-gas-like one, near-pure ones. f.lowest is
 * the trial of lowest distance, when there is one that is not the feed itself. False: f.status.
 */
bool test_feed(Flash& f);

// Starts of the solver's own, by the numbers that the trace shows.
enum class Source { wilson = 1, trial = 3, other_answer = 4 };

// A phase beside which a split is tried.
struct Beside {
  const double* ln_phi;
  double Z;
  Kind kind;
};

// A Gibbs energy over RT counts as lower from here.
inline constexpr double kLowerGibbs = 1e-12;
inline constexpr double kRounding = 1e-10;  // of Gibbs energies over RT

/*
 * Starts of the two-phase iteration: f.it.log_k, f.it.beta and the roots asked for. From Wilson's coefficients;
 * from the estimate in the call's result arrays; from f.lowest beside a phase, the lighter of the two being the
 * vapour.
 */
void start_from_wilson(Flash& f);
void start_from_estimate(Flash& f);
void start_from_trial(Flash& f, const Beside& other, Source source);

/*
 * Iterates from the start that was chosen. True when it converged on something better than the feed, and that
 * passed the gate. Of a feed that is known to be unstable any split is better, though close to a phase boundary
 * by less than the rounding of Gibbs energies.
 */
bool good_split(Flash& f, bool unstable, Outcome& outcome);

/*
 * The split of lowest Gibbs energy from all trials of a feed that is known to be unstable, each followed to its
 * end: where the one from its lowest trial does not converge. found: f.it is one. False: f.status.
 */
bool split_from_all(Flash& f, bool& found);

/*
 * Tests the converged answer f.it and replaces it by a better one where there is one. What is still cut by its
 * tangent plane then is a state with three phases, and the answer its two-phase split of lowest Gibbs energy.
 * False: f.status.
 */
bool settle_answer(Flash& f);

/*
 * Test of an answer: trials that it cannot have come from against the plane that it.x, it.y and f.third share.
 * f.lowest is the phase that cuts it. False: f.status.
 */
bool test_answer(Flash& f, bool& stable);

/* Hands f.lowest to a caller that asked for it. */
void report_third(Flash& f);

/* Takes f.lowest to its stationary point, for an incipient phase that is reported. */
bool finish_lowest(Flash& f);

}  // namespace kestrune::flash

#endif
