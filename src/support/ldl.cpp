// Systems by L D L^T: the factors come from the wide loops, the solution is made here.

#include "support/ldl.hpp"

#include <cstddef>

#include "support/lanes.hpp"

namespace kestrune::support {

bool ldl_factor(int n, int ld, double* a, double floor) noexcept {
  return lanes->ldl_factor(n, ld, a, floor);
}

void ldl_solve(int n, int ld, const double* a, double* b) noexcept {
  for (int j = 0; j < n; ++j) {
    const double* __restrict cj = a + static_cast<std::size_t>(j) * ld;
    const double w = b[j];
    for (int i = j + 1; i < n; ++i) b[i] -= w * cj[i];
  }
  for (int j = 0; j < n; ++j) b[j] *= a[static_cast<std::size_t>(j) * ld + j];
  for (int j = n - 1; j >= 0; --j) {
    const double* cj = a + static_cast<std::size_t>(j) * ld;
    double sum = b[j];
    for (int i = j + 1; i < n; ++i) sum -= cj[i] * b[i];
    b[j] = sum;
  }
}

}  // namespace kestrune::support
