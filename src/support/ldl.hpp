// Symmetric positive-definite systems, L D L^T without roots. Columns of the lower triangle, j at j * ld.
#ifndef KESTRUNE_SUPPORT_LDL_HPP
#define KESTRUNE_SUPPORT_LDL_HPP

namespace kestrune::support {

/*
 * Factors a[ld * n] in place, ld a multiple of four: unit lower triangle below the diagonal, 1/D on it. Only the
 * lower triangle is read; what stands above the diagonal, and the padding, is spoilt. Returns false when a pivot is
 * not above floor (the matrix is not safely positive definite); a is then spoilt.
 */
bool ldl_factor(int n, int ld, double* a, double floor) noexcept;

/* Solves with the factors; b[n] is replaced by the solution. */
void ldl_solve(int n, int ld, const double* a, double* b) noexcept;

}  // namespace kestrune::support

#endif
