// The two-phase iteration: from distribution coefficients to two phases in equilibrium.
#ifndef KESTRUNE_FLASH_ISOTHERMAL_TWO_PHASE_HPP
#define KESTRUNE_FLASH_ISOTHERMAL_TWO_PHASE_HPP

#include <cmath>

#include "flash/fugacity.hpp"
#include "flash/settings.hpp"
#include "support/trace.hpp"

namespace kestrune::flash {

enum class Mode { liquid_vapour = 0, liquid_liquid = 1 };

/* The trace of one flash at T and P. Its labels live in trace_flash.cpp. */
struct FlashTrace {
  support::TraceWriter& writer;  // of this flash, or of the one that runs it
  Mode mode = Mode::liquid_vapour;
  bool started = false;  // an initial state is written
  explicit operator bool() const { return static_cast<bool>(writer); }
};

/* All that the iteration remembers from one pass to the next. Arrays [ld], padded with zeros; z has sum 1. */
struct Iterate {
  const double* z = nullptr;
  double *x = nullptr, *y = nullptr;      // the phase of fraction "liquid" and that of fraction beta
  double *log_k = nullptr, *k = nullptr;  // y/x
  double *ln_phi_x = nullptr, *ln_phi_y = nullptr;
  double* r = nullptr;  // ln phi(x) - ln phi(y) - ln K
  double* log_x = nullptr;
  double* accepted_log_k = nullptr;  // of the best iterate that met CRIT
  double beta = 0.0, liquid = 1.0;
  double gibbs = 0.0;           // Gibbs energy over RT of the two phases, relative to pure gases
  double error = 0.0;           // sum of r^2 over the components that are present
  double worst = 0.0;           // largest |r| of them
  double both = 0.0;            // V L of the last Newton system
  double smallest_pivot = 0.0;  // of the last Newton system: how close to singular it was
  double largest_step = 0.0;    // of ln K, by its direction
  double Zx = 0.0, Zy = 0.0;
  Kind kind_x = Kind::liquid, kind_y = Kind::gas;
  int count = 0;         // passes of this solve, shown in the trace
  int source = 0;        // number of the solver's own start that it comes from, 0 for an estimate; likewise
  bool stalled = false;  // CRIT is met, and no more could be had
  // The work holds composition derivatives of x and y, or of phases a short Newton step away from them.
  bool derivatives = false;
  // By the built-in equation: what the evaluations of x and y have left; they, ln phi and Z belong to x and y.
  Evaluated at_x, at_y;
  bool evaluated = false;
};

// The arrays that an iterate owns; z is the flash's.
inline constexpr double* Iterate::*kIterateArrays[] = {
    &Iterate::x, &Iterate::y,     &Iterate::log_k,         &Iterate::k, &Iterate::ln_phi_x, &Iterate::ln_phi_y,
    &Iterate::r, &Iterate::log_x, &Iterate::accepted_log_k};

struct TwoPhaseWork {
  double *step, *scale, *old_log_k;  // [ld]
  double *dx, *dy, *system;          // [ld * n]
  // [ld] sums of the last evaluations; null: derivatives have to be asked for with the evaluation.
  double *sx = nullptr, *sy = nullptr;

  // Whether derivatives can be had of phases that have been evaluated without.
  bool derivatives_later(const Model& m) const { return m.built_in() && sx != nullptr; }
};

enum class Outcome {
  converged,   // equal fugacities, both phases present
  one_phase,   // a phase vanished
  trivial,     // the phases became the same
  not_better,  // after the first passes the feed has the lower Gibbs energy (only when asked to look)
  exhausted,   // iteration limit
  broke_down,  // no step could be taken
  routine      // the fugacity routine returned a status
};

struct IterationPlan {
  double feed_gibbs = 0.0;
  bool compare_with_feed = false;  // give up early when the feed is better
};

/*
 * Iterates from it.log_k (and it.beta as a guess). Global method: successive substitution with a relaxation
 * factor; quasi-linearisation: Newton on (ln K, beta). Which of the two, and when it ends, follows the
 * settings: an iterate is accepted from the second pass on when its error is CRIT at most, whatever else could
 * be said against it. It is then finished to full precision; where that leads nowhere the accepted iterate
 * stands (it.stalled). status: of the fugacity routine for Outcome::routine.
 */
Outcome iterate_two_phases(Model& m, const Settings& settings, const IterationPlan& plan, FlashTrace& trace,
                           const TwoPhaseWork& work, Iterate& it, StatusCode& status);

/*
 * What may be left of ln fugacities, and of a tangent-plane distance that no split was found for, where a
 * host's routine rules: as much as CRIT allows. 0 for the built-in equation, which has bounds of its own.
 */
inline double host_slack(const Model& m, const Settings& s) {
  return m.routine != nullptr ? std::sqrt(s.CRIT) : 0.0;
}

}  // namespace kestrune::flash

#endif
