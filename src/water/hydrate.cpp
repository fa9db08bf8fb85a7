// The hydrate curve and the constants of the inhibitors.

#include "water/hydrate.hpp"

#include <cmath>

namespace kestrune::water {
namespace {

constexpr double kAirMass = 28.966;  // g/mol
constexpr double kPsiaPerAtm = 14.695948775513;
constexpr double kStart = 253.15;           // K
constexpr double kHighestPressure = 200.0;  // atm
constexpr double kHammerschmidt = 2335.0;   // F

constexpr struct {
  double M, K;  // g/mol; K g/mol
} kInhibitors[] = {{32.0422, 1623.96}, {58.4425, 2695.32}, {74.551, 3241.29}, {110.983, 9106.73}};

// K.
double depression(int kind, double M, double W) noexcept {
  if (kind == 5) return kHammerschmidt / M * W / (100.0 - W) * 5.0 / 9.0;
  if (kind < 1 || kind > 5) return 0.0;
  return kInhibitors[kind - 1].K / kInhibitors[kind - 1].M * W / (100.0 - W);
}

}  // namespace

void hydrate_line(const double* z, int kind, double M, double percent, int points, const MixtureRecord& mixture,
                  double* T, double* P) noexcept {
  const double shift = depression(kind, M, percent);
  const double* masses = mixture.table + static_cast<std::size_t>(KV_COL_MOLAR_MASS - 1) * mixture.count;
  double mass = 0.0;
  for (int i = 0; i < mixture.count; ++i) mass += z[i] * masses[i];
  const double log_gravity = std::log(mass / kAirMass);
  // T/R = a ln(P/psia) - b
  const double a = 13.47 - 1.675 * log_gravity;
  const double b = -439.32 - 34.27 * log_gravity;
  const double end = (a * std::log(kHighestPressure * kPsiaPerAtm) - b) * 5.0 / 9.0;
  const double step = (end - kStart) / static_cast<double>(points - 1);
  double t = kStart;
  for (int j = 0; j < points; ++j) {
    T[j] = t - shift;
    P[j] = std::exp((t * 9.0 / 5.0 + b) / a) / kPsiaPerAtm;
    t += step;
  }
}

}  // namespace kestrune::water
