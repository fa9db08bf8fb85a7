// One flash with free water under way: what its named steps share. Private to these flashes.
//
// The phases are a gas by the equation of state, and a liquid that is hydrocarbons with water up to the
// solubility limit and free water in one. Only fugacities are given, no Gibbs energy: a phase is missing when
// a trial of it would grow, that is when what it takes at the fugacities of the answer adds up to more than
// one: (25) of docs/method.md.
#ifndef KESTRUNE_FLASH_WET_WET_STATE_HPP
#define KESTRUNE_FLASH_WET_WET_STATE_HPP

#include "flash/isothermal/isothermal.hpp"
#include "flash/isothermal/two_phase.hpp"
#include "flash/wet/free_water.hpp"

namespace kestrune::flash {

/* A trial phase. Arrays [ld]. */
struct WetTrial {
  double *log_w = nullptr, *w = nullptr, *ln_phi = nullptr;
  double ln_sum = 0.0;  // logarithm of what it would add up to: above 0 it grows
  double Z = 0.0;
  bool found = false;  // it settled on a phase that is not one of the known ones
};

/* An answer, and what stands at its phases. Arrays [ld]. */
struct WetAnswer {
  double beta = 0.0;  // of the gas
  double *x = nullptr, *y = nullptr;
  double *phi_x = nullptr, *phi_y = nullptr;  // by the rules, of the phases that are there
  double Zx = 0.0, Zy = 0.0;
  double* d = nullptr;    // ln(f_i/P) that its phases share
  double activity = 0.0;  // of water: f_w/Psat
  bool boundary = false;  // a bubble or dew point: the phase of no amount is there all the same
  bool has_gas() const { return beta > 0.0 || boundary; }
  bool has_liquid() const { return beta < 1.0 || boundary; }
};

struct Wet {
  Wet(const IsothermalCall& c, Model& model, const Settings& s, FlashTrace& t)
      : call(c), m(model), settings(s), trace(t) {}

  const IsothermalCall& call;
  Model& m;
  Settings settings;
  FlashTrace& trace;

  const double* z = nullptr;       // [ld] feed, sum 1
  double* dry = nullptr;           // [ld] the feed without its water, sum 1
  double water = 0.0, rest = 1.0;  // parts of the feed
  double pseudo_critical = 0.0;    // Kay's, of the dry feed, K
  double* wilson_k = nullptr;      // [ld]
  WetAnswer answer;                // under test
  WetTrial trial, liquid, vapour;  // the trial that runs, and the strongest of each kind
  double* log_k = nullptr;         // [ld] where a split starts: ln y_i/x_i, water's being ln y_w in the gas
  double *g = nullptr, *before = nullptr, *spare = nullptr;  // [ld] work
  bool liquid_by_name = true;  // what the gate looked at last as hydrocarbon liquid
  bool exchanged = false;      // the gate found the liquid packed less densely than the gas
  bool two_liquids = false;    // and that it was a liquid all the same
  bool either_way = false;     // of two such liquids the gate takes either for the one that holds the water
  Iterate it;
  TwoPhaseWork two;
  StatusCode status = KV_OK;  // of the fugacity routine
};

/* ln phi of a gas; of hydrocarbons that hold the water in x, which is at or below their limit. False: f.status.
 */
bool gas_fugacity(Wet& f, const double* x, double* ln_phi, double& Z);
bool oil_fugacity(Wet& f, const double* x, double* ln_phi, double& Z);

/*
 * Whether a fluid is called a gas: packed less densely than the critical volume of the equation, or at more
 * than 1.25 times the pseudo-critical temperature of the dry feed, where no liquid like it could be.
 */
bool called_gas(const Wet& f, const double* x, double Z);

bool loosely_packed(const Wet& f, const double* x, double Z);

/* Whether a phase of its own could be a gas: loosely packed, or hotter than its pseudo-critical temperature. */
bool like_a_gas(const Wet& f, const double* y, double Z);

/* Whether what the equation of state calls a gas is liquid water: dense, mostly water, below its critical
 * point. */
bool is_liquid_water(const Wet& f, const double* y, double Z);

/*
 * Factor of the change of substitution k, every fourth of which goes as far as all later ones together would:
 * by the eigenvalue of the slowest direction, which is how much of the last change is left. along: the last
 * change times this one; before: the square of the last.
 */
double speed_up(int k, double along, double before) noexcept;

/* Largest difference of two phases without their water. */
double dry_distance(const Wet& f, const double* a, const double* b);

// A phase that an answer has, null without.
struct Known {
  const double* x;  // [ld]
  double Z;
};

/*
 * Looks for a phase of the kind (gas, liquid) that the answer lacks, at its fugacities f.answer.d, among trials
 * from Wilson's coefficients, near-pure components and the ideal gas; known[2] are its gas and its liquid. The
 * strongest stands in f.vapour or f.liquid. False: f.status.
 */
bool look_for_missing(Wet& f, Kind kind, const Known (&known)[2]);

/*
 * The gate. Whether f.answer (beta, x, y) is one: a split, equal fugacities, no gas that holds more water than
 * it can, no phase missing, a single fluid called by its name. f.vapour and f.liquid then hold what is
 * incipient, or what cuts. third: of two phases and a third one missing, which two phases cannot help. False
 * with f.status KV_OK where it is none.
 */
bool accept(Wet& f, bool& third);

/*
 * Two fluids from f.log_k: into f.answer. First beside free water, then, where there is not that much, without.
 * False: they did not converge to two fluids, or f.status.
 */
bool split_two(Wet& f);

/*
 * The feed as a gas: with all of its water, or beside the water that it cannot hold, into f.answer. False:
 * there is no such gas, or f.status.
 */
bool feed_as_gas(Wet& f);

}  // namespace kestrune::flash

#endif
