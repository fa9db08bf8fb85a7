// Systems by L U, in place.

#include "support/lu.hpp"

#include <cfloat>
#include <cmath>
#include <cstddef>
#include <utility>

namespace kestrune::support {

bool lu_factor(int n, int ld, double* a, int* pivot) noexcept {
  for (int k = 0; k < n; ++k) {
    double* const ck = a + static_cast<std::size_t>(k) * ld;
    int p = k;
    for (int i = k + 1; i < n; ++i)
      if (std::fabs(ck[i]) > std::fabs(ck[p])) p = i;
    pivot[k] = p;
    if (!(std::fabs(ck[p]) > 0.0 && std::fabs(ck[p]) <= DBL_MAX)) return false;
    std::swap(ck[k], ck[p]);
    const double inverse = 1.0 / ck[k];
    for (int i = k + 1; i < n; ++i) ck[i] *= inverse;
    for (int j = k + 1; j < n; ++j) {
      double* __restrict cj = a + static_cast<std::size_t>(j) * ld;
      std::swap(cj[k], cj[p]);
      const double f = cj[k];
      if (f == 0.0) continue;
      for (int i = k + 1; i < n; ++i) cj[i] -= f * ck[i];
    }
  }
  return true;
}

void lu_solve(int n, int ld, const double* a, const int* pivot, double* b) noexcept {
  for (int k = 0; k < n; ++k) {
    std::swap(b[k], b[pivot[k]]);
    const double* c = a + static_cast<std::size_t>(k) * ld;
    for (int i = k + 1; i < n; ++i) b[i] -= c[i] * b[k];
  }
  for (int k = n; k-- > 0;) {
    const double* c = a + static_cast<std::size_t>(k) * ld;
    b[k] /= c[k];
    for (int i = 0; i < k; ++i) b[i] -= c[i] * b[k];
  }
}

}  // namespace kestrune::support
