// The two checks that all gates share.

#include "flash/accept.hpp"

#include <algorithm>
#include <cmath>

#include "flash/fugacity.hpp"

namespace kestrune::flash {
namespace {
constexpr double kTrace = 1e-15;  // the bound of distribution coefficients
}  // namespace

bool is_split(int n, const double* z, int count, const double* amount, const double* const* x) noexcept {
  double total = 0.0;
  for (int j = 0; j < count; ++j) {
    if (!(amount[j] >= 0.0 && amount[j] <= 1.0)) return false;
    total += amount[j];
    double sum = 0.0;
    for (int i = 0; i < n; ++i) {
      if (!(x[j][i] >= 0.0 && x[j][i] <= 2.0)) return false;
      sum += x[j][i];
    }
    const bool absent = amount[j] == 0.0 && sum == 0.0;
    if (!absent && !(std::fabs(sum - 1.0) <= kOwedBalance)) return false;
  }
  if (!(std::fabs(total - 1.0) <= kOwedBalance)) return false;
  for (int i = 0; i < n; ++i) {
    double there = 0.0;
    for (int j = 0; j < count; ++j) there += amount[j] * x[j][i];
    if (!(std::fabs(there - z[i]) <= kOwedBalance)) return false;
  }
  return true;
}

bool has_digits(int n, const double* x, const double* ln_phi) noexcept {
  constexpr double kThere = 1e-10;
  for (int i = 0; i < n; ++i)
    if (x[i] >= kThere && !(std::fabs(ln_phi[i]) <= kLargestLnPhi)) return false;
  return true;
}

double fugacity_gap(int n, const double* z, const Compared& a, const Compared& b) noexcept {
  double gap = 0.0;
  for (int i = 0; i < n; ++i) {
    if (!(z[i] > 0.0) || a.x[i] < kTrace || b.x[i] < kTrace) continue;
    const double difference = a.ln_phi[i] - b.ln_phi[i];
    const double ln_K = std::clamp(difference, -kLargestLogK, kLargestLogK);
    if (ln_K == difference && !(std::fabs(a.ln_phi[i]) <= kLargestLnPhi)) return 1e300;
    const double apart = std::fabs(std::log(b.x[i] / a.x[i]) - ln_K);
    if (!(apart <= 1e300)) return 1e300;
    gap = std::max(gap, apart);
  }
  return gap;
}

}  // namespace kestrune::flash
