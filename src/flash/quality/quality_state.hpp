// One flash at a vapour fraction under way: what its named steps share. Private to the solver.
#ifndef KESTRUNE_FLASH_QUALITY_QUALITY_STATE_HPP
#define KESTRUNE_FLASH_QUALITY_QUALITY_STATE_HPP

#include "flash/quality/quality_flash.hpp"
#include "flash/quality/quality_line.hpp"
#include "flash/settings.hpp"

namespace kestrune::flash {

struct Quality {
  Quality(const QualityCall& c, QualityLine& l, const Settings& s, support::TraceWriter& t)
      : call(c),
        line(l),
        settings(s),
        trace(t),
        unknown(of_T() ? l.T_index() : l.P_index()),
        given(of_T() ? l.P_index() : l.T_index()) {}

  const QualityCall& call;
  QualityLine& line;
  Settings settings;
  support::TraceWriter& trace;
  // The point that is looked at; one of another branch or with a dense vapour and one that is not stable, kept; that of
  // a walk.
  LinePoint point, other, unstable, walker;
  bool have_other = false, have_unstable = false;
  bool regular = false;    // point lies on the branch that is reached first; as solved, before the gate
  bool dense = false;      // its vapour is packed like a liquid, beside water; of what the gate saw last
  bool walked = false;     // point comes from a walk along the line
  bool exchanged = false;  // the walk follows the line of 1 - W
  bool only_near = false;  // the walk looks for a point close to the estimate
  double *wilson_k = nullptr, *trial = nullptr, *spare = nullptr;  // [ld]
  double start = 0.0;                                              // of the unknown, by the set-up rules
  double estimate = 0.0;                                           // its logarithm, of a warm start
  int count = 0;                                                   // evaluations that count against ITEMAX
  int unknown, given;                                              // indices of the line
  StatusCode status = KV_OK;

  bool of_T() const { return call.find == Find::temperature; }
  bool boundary() const { return line.W == 0.0 || line.W == 1.0; }
  double T() const { return temperature(line, point); }
  double P() const { return pressure(line, point); }
};

/*
 * The set-up rules of a flash at a vapour fraction: the settings of a cold start, and the value of the unknown
 * that it starts from. Writes the header of the trace.
 */
double set_up_quality(const QualityCall& call, double W, Settings& settings, support::TraceWriter& trace);

/*
 * Whether two phases hardly differ in ln K nor in density, so that they may be one in truth: beside the
 * spinodal of the feed a pair that differs by d in ln K misses equilibrium by d^2 only, or d^3 halfway between,
 * and 1e-10 is met by 1e-5 and by 1e-3.
 */
inline constexpr double kCloseLogK = 0.05;
bool close_phases(const Quality& q);

enum class Verdict {
  good,
  unstable,  // a pair of phases as it was asked for, but something splits off
  refused,   // no answer at all
  model      // q.status
};

/*
 * The gate: every answer leaves through it, whatever path has found it. q.point is brought to exact sums and
 * held against what it claims to be: a split of the feed in the parts 1 - W and W; ln fugacities equal to 1e-8,
 * evaluated at the point; a vapour beside a liquid; two phases and not one, which beside a critical point is
 * told by either being stable against small changes; and a stable feed (for 0 < W < 1 a pair that nothing
 * cuts). On unstable at a boundary q.trial holds the ln K of what splits off.
 */
Verdict accept(Quality& q);

/* The same for a single component j, whose phases differ by their roots alone. */
Verdict accept_pure(Quality& q, int j);

}  // namespace kestrune::flash

#endif
