// Dense linear systems, column-major storage: element (i, j) of a is a[i + lda * j].
#ifndef KESTRUNE_SIBLINGS_TOOLS_DENSE_HPP
#define KESTRUNE_SIBLINGS_TOOLS_DENSE_HPP

#include <cstdint>

namespace kestrune::tools {

// Outcome of the routines that solve or invert; the values are the status words of the entries.
enum class DenseStatus : std::int32_t { ok = 0, singular = 1, bad_argument = 2 };

// LU factors with partial pivoting, in place, in the classic storage: U above, negated multipliers below,
// ipvt[n] pivot rows from 1. Returns 0, or the last k (from 1) with U(k,k) exactly zero; the factors are
// complete in either case, but cannot be solved with in the second.
std::int32_t factor_classic(double* a, std::int32_t lda, std::int32_t n, std::int32_t* ipvt) noexcept;

// Solves a x = b, or transposed a x = b, with the factors of factor_classic; b[n] becomes x.
void solve_classic(const double* a, std::int32_t lda, std::int32_t n, const std::int32_t* ipvt, double* b,
                   bool transposed) noexcept;

// a X = B for m right-hand sides b[ldb * m], which become X. Rows are equilibrated by powers of two before
// the factors with partial pivoting are taken, and each solution gets one step of refinement. a is destroyed.
//
// singular: changes of n eps in the elements, measured in the largest element of their column of the
// equilibrated matrix, would make it singular, as far as pivots and an estimate of the inverse's size tell; so
// neither row nor column units decide. b is left alone. Also where a solution overflows.
// bad_argument: sizes, or an element that is not finite; b is left alone.
DenseStatus solve_system(std::int32_t n, std::int32_t lda, double* a, std::int32_t m, std::int32_t ldb,
                         double* b) noexcept;

// a becomes its inverse; the same equilibration and test of singularity. a is left alone unless ok is returned
// or the inverse overflows.
DenseStatus invert(std::int32_t n, std::int32_t lda, double* a) noexcept;

}  // namespace kestrune::tools

#endif
