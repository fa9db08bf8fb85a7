#include "support/ldl.hpp"

#include <cstddef>

#include "support/lanes.hpp"

namespace kestrune::support {

bool ldl_factor(int n, int ld, double* a, double floor) noexcept {
  if (ld % 4 == 0) return lanes->ldl_factor(n, ld, a, floor);
  for (int j = 0; j < n; ++j) {
    double* __restrict cj = a + static_cast<std::size_t>(j) * ld;
    const double pivot = cj[j];
    if (!(pivot > floor)) return false;
    const double inverse = 1.0 / pivot;
    // Right-looking: the columns to the right are updated with this one before it is scaled.
    for (int k = j + 1; k < n; ++k) {
      double* __restrict ck = a + static_cast<std::size_t>(k) * ld;
      const double w = cj[k] * inverse;
      for (int i = k; i < n; ++i) ck[i] -= w * cj[i];
    }
    for (int i = j + 1; i < n; ++i) cj[i] *= inverse;
    cj[j] = inverse;
  }
  return true;
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
