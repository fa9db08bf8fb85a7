// Flash of two liquids and a vapour at temperature and pressure: the driver behind the export.
#ifndef KESTRUNE_FLASH3_THREE_PHASE_HPP
#define KESTRUNE_FLASH3_THREE_PHASE_HPP

#include "flash3/equilibrium.hpp"

namespace kestrune::flash3 {

/* Where a three-phase flash leaves its phases. Arrays [n] of the caller. */
struct ThreePhaseResult {
  double *beta = nullptr, *V = nullptr;               // parts of the feed in A and in the vapour
  double *xA = nullptr, *xB = nullptr, *y = nullptr;  // lighter liquid, denser liquid, vapour
  double *KLL = nullptr, *KLV = nullptr;              // xA/xB, y/xA
};

/* The sum of the feed is checked against the record's tolerance, here and in the flashes that follow. */
struct ThreePhaseCall : flash::Feed {
  double T = 0.0, P = 0.0;  // K, atm
  ThreePhaseResult out = {};
};

/*
 * KV_OK: three phases. KV_LV_ANSWER (130): a vapour and one liquid, or one of them alone; the liquid stands in
 * A, with beta exactly 1 as a mark, B and KLL zero. KV_LL_ANSWER (131): no vapour; two liquids, or one in B
 * with beta 0 and KLL 1e15. 134, 135: the same, when the liquid-vapour flash of the host had a status. Phases
 * that are absent, and fractions below 1e-15, are 0; K is 1e15 where the phase below lacks a component. 111:
 * the feed does not sum to one. KV_FOURTH_PHASE (118): three phases, and a fourth would split off. 136: the
 * liquid-vapour flash, or the host's split of the liquid, has left nothing to start from; 112, 114: no answer
 * was found, 120, 121: nor by phases that became the same. Others: of the model.
 */
StatusCode three_phase_flash(const ThreePhaseCall& call);

/* The phases of an estimate into e.p: two or three of them. False: it is unusable. */
bool take_estimate(const ThreePhaseResult& given, Equilibrium& e);

/*
 * Names the phases of e.p (vapour, lighter liquid A, denser liquid B) and writes them out, with the marks
 * above. KV_OK, 130, 131.
 */
StatusCode write_phases(Equilibrium& e, const ThreePhaseResult& out);

/*
 * The same of a flash at vapour fraction W: the phases in e.p with a vapour among them, of which one may have
 * no amount. At W = 1 that is the incipient liquid.
 */
StatusCode write_quality_phases(Equilibrium& e, double W, const ThreePhaseResult& out);

/*
 * Free water: splits the liquid x[n] of a liquid-vapour answer (fractions V and 1 - V) into hydrocarbons at
 * their solubility limit, A, and water, B, where there is more water than that. False: there is not, and the
 * answer has been written with the mark, liquid A being x. incipient: of a flash at vapour fraction, where a
 * phase of no amount is written as well (at V 0 with water apart: keep_incipient_vapour). Without free_water
 * water is a component like the others, and nothing is split.
 */
struct LiquidVapour {
  double T, P;
  eos::Context context;
  double V;
  const double *x, *y;
  bool incipient = false;
  bool free_water = true;
};
bool split_free_water(const LiquidVapour& answer, const ThreePhaseResult& out);

/* At a bubble point: the vapour that appears, y[n], beside the liquids that have been written. */
void keep_incipient_vapour(int n, const double* y, const ThreePhaseResult& out);

/*
 * After the fact, kept as hosts know it: a vapour with the mark beta = 1 has its liquid in B and beta 0. True
 * where that was so.
 */
bool move_marked_liquid(int n, const ThreePhaseResult& out);

}  // namespace kestrune::flash3

#endif
