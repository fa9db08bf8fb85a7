// Two to four fluid phases at temperature and pressure: what the solvers share, and the steps towards
// equilibrium. Section 9 of docs/method.md.
//
// [Mic94] M. L. Michelsen, Comput. Chem. Eng. 18 (1994) 545-550: amounts of any number of phases as the
// minimum
//         of a convex function of the amounts.
// [Mic82b] M. L. Michelsen, Fluid Phase Equilib. 9 (1982) 21-40: second-order minimisation of the Gibbs energy.
#ifndef KESTRUNE_FLASH3_PHASES_HPP
#define KESTRUNE_FLASH3_PHASES_HPP

#include "flash/fugacity.hpp"

namespace kestrune::flash3 {

inline constexpr int kMostPhases = 3;

/* Room for one more, which is on trial beside three. */
inline constexpr int kRoom = kMostPhases + 1;

/* Components below this mole fraction count as absent. */
inline constexpr double kAbsent = 1e-15;

// Arrays [ld], padded with zeros; z has sum 1.
struct Phases {
  int count = 0;
  double amount[kRoom] = {};  // parts of the feed, sum 1
  double* x[kRoom] = {};      // compositions, sum 1
  double* ln_phi[kRoom] = {};
  double Z[kRoom] = {};
  double gibbs = 0.0;  // over RT, relative to pure gases
  double worst = 0.0;  // largest difference of ln fugacities, of mole fractions from kAbsent
};

struct PhasesWork {
  double *e[kRoom], *dn[kRoom];         // [ld], [ld * n]
  double *moles[kRoom], *saved[kRoom];  // [ld]
  double *step, *scale;                 // [(most - 1) n] padded
  double* system;                       // [(most - 1) n] columns of as many, padded
  int* home;                            // [n] the phase that holds most of a component
};

void take_phases(support::Arena& arena, int ld, Phases& p);
/* most: phases that a Newton step is to be made with; e is there for all. */
void take_work(support::Arena& arena, int n, int ld, int most, PhasesWork& w);
void copy_phases(const Phases& from, Phases& to, int ld);
void exchange_phases(Phases& p, int j, int k);
/* Takes phase j out; its amount goes to the others in proportion. */
void drop_phase(Phases& p, int j);

/*
 * Takes out the phase of the smallest amount, one that Newton's method drove below nothing; what is left has
 * amounts to go on from, and a single phase is the feed z[ld].
 */
void drop_least(Phases& p, const double* z, int ld);

/* ln phi of every phase (with composition derivatives into w.dn), Gibbs energy and worst. */
StatusCode evaluate_phases(flash::Model& m, const double* z, Phases& p, const PhasesWork& w, bool derivatives);

/*
 * Amounts and compositions from the fugacity coefficients: the minimum over a_j >= 0 of sum a_j - sum z_i ln
 * sum a_j/phi_ij [Mic94], (30) of docs/method.md, which is the only one, so that no amount can leave [0, 1].
 * A phase that ends with amount 0 keeps the composition that it would begin with. False: no usable numbers.
 * looks, where it is not null, receives how often the function was looked at.
 */
bool split_between(int n, const double* z, Phases& p, const PhasesWork& w, int* looks = nullptr);

/* Work of a split that was looked at that often, in evaluations of ln phi: none for what a usual one takes. */
inline int split_work(int looks) noexcept {
  constexpr int kUsual = 30;
  return looks > kUsual ? (looks - kUsual) / 2 : 0;
}

/*
 * Direction of Newton's method on the Gibbs energy, (31) of docs/method.md, w.step, in the amounts of every
 * component in the phases that are not its home; w.dn as evaluate_phases leaves it. Where the matrix is not
 * positive definite it is shifted until it is. False: no direction. Sets the amounts to step from, w.saved.
 */
bool newton_direction(flash::Model& m, const double* z, const Phases& p, const PhasesWork& w);

/* Change of the amount of phase j over the whole step. */
double change_of_amount(int n, const Phases& p, const PhasesWork& w, int j);

/* Amounts and compositions after a part of the step. No amount of a component loses more than nine tenths. */
void take_step(int n, int ld, double part, Phases& p, const PhasesWork& w);

/*
 * The phases of two states of one feed in one list, those of b as a part of the whole: phases that both have
 * count once. False: there would be more than four, or one.
 */
bool join_phases(int n, int ld, const double* z, const Phases& a, const Phases& b, double part, Phases& joined);

/* Fractions below kAbsent become 0. */
void drop_traces(int n, double* x);

/* Whether two phases are one and the same: sum of (a - b)^2/(a + b) below the tolerance. */
bool same_phase(int n, const double* z, const double* a, const double* b, double tolerance);

}  // namespace kestrune::flash3

#endif
