// Orthogonal collocation on [0, 1].
#ifndef KESTRUNE_SIBLINGS_TOOLS_COLLOCATION_HPP
#define KESTRUNE_SIBLINGS_TOOLS_COLLOCATION_HPP

#include <cstdint>

namespace kestrune::tools {

// Largest number of interior points.
constexpr std::int32_t kMaxCollocation = 2000;

// n interior points, zeros of the Jacobi polynomial that is orthogonal on [0, 1] with the weight
// (1-x)^alpha x^beta; n0 and n1 (0 or 1) add the end points. With nt = n + n0 + n1:
//   x[nt]        nodes in rising order
//   a[nt * nt]   a(i,j) = l_j'(x_i), column-major, l_j the Lagrange polynomials of the nodes
//   b[nt * nt]   b(i,j) = l_j''(x_i)
//   w[nt]        integrals of the l_j over [0, 1] (weight 1): exact to degree nt - 1, and to degree
//                2 n + n0 + n1 - 1 where alpha = n1 and beta = n0
// False, and nothing written, unless 0 <= n <= kMaxCollocation, nt >= 1, n0 and n1 are 0 or 1, alpha and beta
// are finite and above -1.
bool collocation(std::int32_t n, std::int32_t n0, std::int32_t n1, double alpha, double beta, double* x,
                 double* a, double* b, double* w);

}  // namespace kestrune::tools

#endif
