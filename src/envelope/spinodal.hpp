// Local stability of one phase against changes of composition and density at constant volume: the matrix
// B_ij = sqrt(z_i z_j) d ln f_i/d n_j at constant T and V, and the cubic form along its vector of zero
// curvature: (34) and (35) of docs/method.md. A spinodal state has a singular B; a critical state has a cubic
// form of zero as well.
//
// [Hei80] R. A. Heidemann, A. M. Khalil, AIChE J. 26 (1980) 769-779: the two conditions, volume as a variable.
// [Mic84] M. L. Michelsen, Fluid Phase Equilib. 16 (1984) 57-76: the scaled matrix, derivatives along one
// direction.
#ifndef KESTRUNE_ENVELOPE_SPINODAL_HPP
#define KESTRUNE_ENVELOPE_SPINODAL_HPP

#include "eos/phase.hpp"
#include "kestrune/records.h"
#include "support/arena.hpp"

namespace kestrune::envelope {

/*
 * One feed and its work arrays. The matrix is bordered with the last vector w: B v + g w = 0, w v = 1 gives a
 * number g that vanishes with the eigenvalue next to zero, is smooth there, and has v as the eigenvector then.
 */
struct Spinodal {
  int n = 0, ld = 0;
  eos::Context context;
  const double* z = nullptr;  // [ld] feed with sum 1, padded
  double b = 0.0;             // co-volume of the feed, cm3/mol
  support::Arena* arena = nullptr;
  support::Arena::Mark base{};
  eos::Temperature t;                         // of the last evaluation
  double prepared = -1.0;                     // its temperature; none is below 0
  double *root, *w, *s, *s_t;                 // [ld] sqrt(z), border, sum_j z_j a_ij and its d/dT
  double *v, *y;                              // [n + 1] vector with g, adjoint
  double *move, *a_move, *a_move_t, *move_y;  // [ld]
  double* kept;                               // [ld] a border put aside by its user
  double* matrix;                             // [(n + 1) padded(n + 1)]
  int* pivot;                                 // [n + 1]
};

// Values at one T and packing eta = b/V. The derivatives are those of g and of the form along v.
struct Curvature {
  double g = 0.0, g_T = 0.0, g_eta = 0.0;
  double form = 0.0, form_T = 0.0, form_eta = 0.0;
};

/* Takes the work arrays; z[ld] has sum 1. The arena is used by no one else meanwhile. */
void open_spinodal(support::Arena& arena, const eos::Context& context, const double* z, Spinodal& sp);

/*
 * Evaluates at T (K) and eta (0 .. 1) and makes v, scaled to length one, the next border. Status of the
 * model; KV_NOT_FINITE when the bordered matrix is singular.
 */
StatusCode curvature(Spinodal& sp, double T, double eta, Curvature& c);

/*
 * The same without the form on the way to the spinodal: with it only where Newton's step in 1/T, -g/(g_T T), is below
 * rough.
 */
StatusCode curvature_beside(Spinodal& sp, double T, double eta, double rough, Curvature& c);

/* Whether B at T and eta has no eigenvalue below -slack. status: of the model, which makes it false. */
bool locally_stable(Spinodal& sp, double T, double eta, double slack, StatusCode& status);

/* A border without symmetries, to begin with, brought close to the lowest eigenvector at T and eta. */
StatusCode start_border(Spinodal& sp, double T, double eta);

/* Pressure of the feed, atm, at the temperature of the last evaluation. */
double pressure_at(const Spinodal& sp, double eta);

/* Lowest eigenvalue and the form along its vector of unit length, for a report: the two conditions. */
StatusCode conditions(Spinodal& sp, double T, double eta, double& eigenvalue, double& form);

}  // namespace kestrune::envelope

#endif
