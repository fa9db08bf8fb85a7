// What every flash is given, and what it does with compositions.
#ifndef KESTRUNE_FLASH_FEED_HPP
#define KESTRUNE_FLASH_FEED_HPP

#include <algorithm>
#include <cmath>

#include "eos/context.hpp"
#include "flash/host.hpp"

namespace kestrune::flash {

// Where a search may start beside what the solver finds itself.
enum class Start {
  cold,           // nothing given
  warm,           // the results of the call hold an estimate; an unusable one is ignored
  cold_with_hint  // cold, but the results hold a further starting point (the water retry)
};

/* What is flashed, by whose data and routines, and where a search may start: the part that all calls share. */
struct Feed {
  const double* z = nullptr;  // [n], need not sum to one
  eos::Context context;
  HostRoutines* routines = nullptr;
  bool free_water = false;  // what water there is beyond the solubility limit is a liquid of its own
  Start start = Start::cold;

  // The same for a flash inside, whose results hold nothing yet.
  Feed afresh() const { return {z, context, routines, free_water}; }
};

/* The feed z[n] divided by its sum. False when the sum is beyond the range of a double. */
inline bool normalise_feed(int n, const double* z, double* out) noexcept {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += z[i];
  for (int i = 0; i < n; ++i) out[i] = z[i] / sum;
  return std::isfinite(sum);
}

/* Whether x[n] and y[n] of an estimate are compositions: fractions that sum to one within 1e-6. */
inline bool usable_compositions(int n, const double* x, const double* y) noexcept {
  double sx = 0.0, sy = 0.0;
  for (int i = 0; i < n; ++i) {
    if (!(x[i] >= 0.0 && x[i] <= 1.0 + 1e-6 && y[i] >= 0.0 && y[i] <= 1.0 + 1e-6)) return false;
    sx += x[i];
    sy += y[i];
  }
  return std::fabs(sx - 1.0) <= 1e-6 && std::fabs(sy - 1.0) <= 1e-6;
}

/* Whether one of two phases x[n] and y[n] is neither of two others: fractions differ by more than 0.001. */
inline bool other_phases(int n, const double* x, const double* y, const double* x2, const double* y2) noexcept {
  constexpr double kOther = 1e-3;
  for (const double* phase : {x, y}) {
    double to_x = 0.0, to_y = 0.0;
    for (int i = 0; i < n; ++i) {
      to_x = std::max(to_x, std::fabs(phase[i] - x2[i]));
      to_y = std::max(to_y, std::fabs(phase[i] - y2[i]));
    }
    if (std::min(to_x, to_y) > kOther) return true;
  }
  return false;
}

/* The most that there can be of a phase w[n], with what the feed z[n] has of its main components. */
inline double most_of(int n, const double* z, const double* w) noexcept {
  constexpr double kMain = 0.05;
  double most = 1.0;
  for (int i = 0; i < n; ++i)
    if (w[i] > kMain) most = std::fmin(most, z[i] / w[i]);
  return most;
}

}  // namespace kestrune::flash

#endif
