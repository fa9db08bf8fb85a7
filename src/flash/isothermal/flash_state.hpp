// One isothermal flash under way: what its named steps share. Private to the solver.
#ifndef KESTRUNE_FLASH_ISOTHERMAL_FLASH_STATE_HPP
#define KESTRUNE_FLASH_ISOTHERMAL_FLASH_STATE_HPP

#include "flash/isothermal/isothermal.hpp"
#include "flash/stability/stability.hpp"

namespace kestrune::flash {

struct Flash {
  Flash(const IsothermalCall& c, Model& model, const Settings& s, FlashTrace& t)
      : call(c),
        m(model),
        settings(s),
        trace(t),
        test(model, c.third != nullptr ? Effort::thorough : Effort::usual, c.mode == Mode::liquid_liquid) {}

  const IsothermalCall& call;
  Model& m;
  Settings settings;
  FlashTrace& trace;

  Iterate it;            // the two-phase iteration; it.z is the normalised feed
  Iterate best, answer;  // the best answer, and the one under test, while others are tried
  TwoPhaseWork two;      // its matrices are lent to the stability test
  Stability test;
  Plane feed;                 // that of the feed as one phase
  double feed_gibbs = 0.0;    // its Gibbs energy over RT
  StatusCode status = KV_OK;  // of the fugacity routine

  bool liquids_only() const { return call.mode == Mode::liquid_liquid; }
};

// Starts of the solver's own, by the numbers that the trace shows.
enum class Source { wilson = 1, trial = 3, other_answer = 4 };

// A Gibbs energy over RT counts as lower from here.
inline constexpr double kLowerGibbs = 1e-12;
inline constexpr double kRounding = 1e-10;  // of Gibbs energies over RT

/*
 * Starts of the two-phase iteration: f.it.log_k, f.it.beta and the roots asked for. From Wilson's coefficients;
 * from the estimate in the call's result arrays; from the lowest trial beside a phase, the lighter of the two being
 * the vapour.
 */
void start_from_wilson(Flash& f);
void start_from_estimate(Flash& f);
void start_from_trial(Flash& f, const PlanePhase& other, Source source);

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

/* Hands the lowest trial to a caller that asked for it. */
void report_third(Flash& f);

}  // namespace kestrune::flash

#endif
