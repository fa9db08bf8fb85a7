// Systems by L D L^T: the factors come from the wide loops, the solution is made here.

#include "support/ldl.hpp"

#include <cstddef>

#include "support/lanes.hpp"

namespace kestrune::support {

bool ldl_factor(int n, int ld, double* a, double floor) noexcept {
  return lanes->ldl_factor(n, ld, a, floor);
}

// Both loops run towards what was solved last: only the end of each sum waits for it.
void ldl_solve(int n, int ld, const double* a, double* b) noexcept {
  for (int i = 1; i < n; ++i) {
    const double* li = a + i;
    double sum = b[i];
    for (int j = 0; j < i; ++j, li += ld) sum -= b[j] * *li;
    b[i] = sum;
  }
  for (int j = 0; j < n; ++j) b[j] *= a[static_cast<std::size_t>(j) * ld + j];
  for (int j = n - 2; j >= 0; --j) {
    const double* cj = a + static_cast<std::size_t>(j) * ld;
    double sum = b[j];
    for (int i = n - 1; i > j; --i) sum -= cj[i] * b[i];
    b[j] = sum;
  }
}

}  // namespace kestrune::support
