// General square systems: LU with partial pivoting. Columns, j at j * ld.
#ifndef KESTRUNE_SUPPORT_LU_HPP
#define KESTRUNE_SUPPORT_LU_HPP

namespace kestrune::support {

/* Factors a[ld * n] in place, pivot[n] the row exchanges. False when a column has no pivot that is not 0 or not
 * finite. */
bool lu_factor(int n, int ld, double* a, int* pivot) noexcept;

/* Solves with the factors; b[n] is replaced by the solution. */
void lu_solve(int n, int ld, const double* a, const int* pivot, double* b) noexcept;

}  // namespace kestrune::support

#endif
