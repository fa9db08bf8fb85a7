// The isothermal flash solver, shared by every flash: one or two phases at temperature and pressure.
#ifndef KESTRUNE_FLASH_ISOTHERMAL_ISOTHERMAL_HPP
#define KESTRUNE_FLASH_ISOTHERMAL_ISOTHERMAL_HPP

#include "flash/feed.hpp"
#include "flash/fugacity.hpp"
#include "flash/isothermal/two_phase.hpp"

namespace kestrune::flash {

/*
 * For a caller that looks for a third phase itself: an answer of two phases that a further phase cuts is then
 * returned as it is, and every component present is tried as a phase of its own.
 */
struct ThirdPhase {
  double* w = nullptr;  // [n] composition of what cuts the answer's tangent plane; null: the caller tests later
  bool found = false;   // it does; also when the split of an unstable feed failed
  double distance = 0.0;
};

/*
 * One flash: what goes in and where the answer goes, in the order in which calls are written; what is seldom
 * asked for stands last. Arrays [n] of the caller.
 */
struct IsothermalCall : Feed {
  double T = 0.0, P = 0.0;  // K, atm
  double* beta = nullptr;   // vapour (second liquid) fraction; with x and y where it may start
  double *x = nullptr, *y = nullptr, *K = nullptr;
  Mode mode = Mode::liquid_vapour;
  int index = 1;                // initialisation index, for the trace; of two liquids see settings.hpp
  Counts* counts = nullptr;     // may be null
  Model* model = nullptr;       // prepared for this call; null: the flash makes its own
  ThirdPhase* third = nullptr;  // may be null; with free water only whether there is one
  support::TraceWriter* trace = nullptr;  // of the flash that runs this one; null: as the record says
};

/*
 * Solves. KV_OK: two phases. KV_SINGLE_PHASE (95): one, with beta 0 or 1; x, y and K then hold the incipient
 * phase of lowest tangent-plane distance, or the feed twice. 112: iteration limit, also after the restart with
 * the robust settings. 120: the iteration broke down. Others: of the model. On failure the arrays hold the last
 * iterate. K is y/x of the arrays returned, see ratio_of.
 */
StatusCode isothermal_flash(const IsothermalCall& call);

}  // namespace kestrune::flash

#endif
