// Points of a line of constant vapour fraction W in T and P: bubble points (0), dew points (1), and what lies
// between. Unknowns of a point are X = (ln K_1 .. ln K_n, ln T, ln P); equations are the equal fugacities, sum
// y = sum x, and one unknown that is specified: (28) of docs/method.md.
//
// [Mic80] M. L. Michelsen, Fluid Phase Equilib. 4 (1980) 1-10: Newton on these unknowns, and following the line
//         with the unknown specified that changes most.
#ifndef KESTRUNE_FLASH_QUALITY_QUALITY_LINE_HPP
#define KESTRUNE_FLASH_QUALITY_QUALITY_LINE_HPP

#include "flash/fugacity.hpp"
#include "support/trace.hpp"

namespace kestrune::flash {

// What the points of one line share. Built by open_line on the caller's stack.
struct QualityLine {
  int n = 0, ld = 0;
  const double* z = nullptr;  // [ld] feed with sum 1, padded
  double W = 0.0;             // of the phase y
  eos::Context context;
  HostRoutines* routines = nullptr;
  bool free_water = false;
  bool stable_roots = false;  // each phase takes the root below, not that of its name
  Kind root_x = Kind::stable, root_y = Kind::stable;
  Model m;  // at the temperature of the last evaluation
  support::Arena* arena = nullptr;
  support::Arena::Mark base{};
  double prepared = -1.0;  // temperature of m; none is below 0
  int prepared_order = 0;
  int passes = 0;  // evaluations of both phases
  support::TraceWriter* trace = nullptr;
  int unknown = 0;  // T or P index, for the trace
  // Work.
  double *phi_x, *phi_y, *t_x, *t_y, *p_x, *p_y;  // [ld]
  double *d_x, *d_y;                              // [ld * n]
  double *system, *step;                          // [(n + 2)^2], [n + 2]
  int* pivot;                                     // [n + 2]

  int T_index() const { return n; }
  int P_index() const { return n + 1; }
};

struct LinePoint {
  double* X = nullptr;                // [n + 2]
  double* slope = nullptr;            // [n + 2] dX/dX[held] along the line
  double *x = nullptr, *y = nullptr;  // [ld] compositions
  double Zx = 0.0, Zy = 0.0;
  double error = 0.0;      // largest |difference of ln fugacities|
  double left_over = 0.0;  // largest change of X that Newton's method still asked for, of no use for ln f
  int passes = 0;          // of the last solve
};

/* Takes the work arrays; the arena must outlive the line and is used by no one else meanwhile but take_point.
 */
void open_line(support::Arena& arena, QualityLine& line);
void take_point(support::Arena& arena, const QualityLine& line, LinePoint& p);
/* To be called when everything that stays has been taken from the arena. */
void seal_line(QualityLine& line);
void copy_point(const QualityLine& line, const LinePoint& from, LinePoint& to);

double temperature(const QualityLine& line, const LinePoint& p);
double pressure(const QualityLine& line, const LinePoint& p);

/* Brings line.m to T and P, order 1 with derivatives; a temperature that it has already costs nothing. */
StatusCode line_model(QualityLine& line, double T, double P, int order = 1);

enum class Solved { yes, trivial, no, model };

// Passes of Newton's method that a point may take.
inline constexpr int kNewtonLimit = 30;

/*
 * Newton's method from p.X with the unknown held held at value. On yes the point is converged to 1e-10 in ln
 * fugacities, with compositions and slope. trivial: the phases became one (not looked for when
 * through_critical). model: status says what the fugacity routine returned. With a criterion, in the
 * main iteration of a flash, the point is accepted when the square of its largest residual is that at most,
 * which the limit is for and the trace shows; it is finished within kNewtonLimit passes, and stands then in any
 * case.
 */
Solved solve_point(QualityLine& line, LinePoint& p, int held, double value, int limit, bool through_critical,
                   StatusCode& status, double criterion = -1.0);

/*
 * d X[unknown]/dW at the point that solve_point has just found, the other of T and P fixed. For 0 < W < 1 only:
 * at the ends one of the matrices that it needs is not there.
 */
double slope_with_fraction(QualityLine& line, const LinePoint& p, int unknown);

/*
 * One substitution: ln K from the fugacity coefficients at p.X, then the unknown (T or P index) corrected so
 * that sum y = sum x to first order. False: status of the fugacity routine, or nothing that could be corrected.
 */
bool substitute(QualityLine& line, LinePoint& p, int unknown, StatusCode& status);

/* x and y of p.X, with sum 1. False when a sum is not usable, or the two differ by more than the tolerance. */
bool compositions(const QualityLine& line, LinePoint& p, double tolerance);

/*
 * x and y of p.X with sums and balance to the last digits: all ln K change by the same, 1e-9 at most (else
 * false), until the two sums are equal.
 */
bool share_out(const QualityLine& line, LinePoint& p);

/*
 * For a point beside a critical one that is known but for its last digits: corrections of p.X with the
 * unknown held as it stands. Directions in which the equations hardly change are left alone: they determine
 * nothing but rounding. work[(n + 2) * padded(n + 2)]. x and y are those of p.X, the slope is not. False:
 * status of the fugacity routine, or no correction.
 */
bool polish_point(QualityLine& line, LinePoint& p, int held, double* work, StatusCode& status);

// Whether a point that a walk has met is the one that is looked for.
struct Wanted {
  bool (*is)(void* who, const LinePoint& p) = nullptr;
  void* who = nullptr;
};

/*
 * Follows the line from the converged point p in the direction of rising pressure, over critical points, until
 * the unknown target has the value with y as the vapour (or, when exchanged, with x as the vapour: such a point
 * belongs to the line of 1 - W) and the point is wanted. yes: such a point was met. no: the line comes to an
 * end of the range first. p is the last point of the walk.
 */
Solved follow_line(QualityLine& line, LinePoint& p, int target, double value, bool exchanged,
                   const Wanted& wanted, StatusCode& status);

/*
 * The trivial solution: no component that is present, be it a trace, has a K that differs from 1, and the
 * densities are the same.
 */
bool one_phase(const QualityLine& line, const LinePoint& p);

/* The same point as one of the line of 1 - W, whose phases have the other names. */
void exchange_phases(QualityLine& line, LinePoint& p);

}  // namespace kestrune::flash

#endif
