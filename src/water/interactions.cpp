// The k_ij of water in a gas, by CAS number.

#include "water/interactions.hpp"

#include <cmath>
#include <limits>

namespace kestrune::water {
namespace {

struct Row {
  double cas, k;
};
constexpr double kH2S = 7783064, kFirstH2S = 0.19031, kSlopeH2S = -0.05965;  // times T/Tc of hydrogen sulphide
constexpr Row kRows[] = {{74828, 0.4850},                                    // methane
                         {74840, 0.4920},                                    // ethane
                         {74986, 0.5525},                                    // propane
                         {106978, 0.5091},                                   // n-butane
                         {75285, 0.5091},                                    // isobutane
                         {7727379, 0.4778},                                  // nitrogen
                         {124389, 0.1896},                                   // carbon dioxide
                         {kH2S, kFirstH2S}, {109660, 0.5000},                // n-pentane
                         {78784, 0.5000},                                    // isopentane
                         {463821, 0.5000},                                   // neopentane
                         {110543, 0.5000},                                   // n-hexane
                         {142825, 0.5000},                                   // n-heptane
                         {111659, 0.5000},                                   // n-octane
                         {111842, 0.5000},                                   // n-nonane
                         {124185, 0.5000}};                                  // n-decane

const double* column(const MixtureRecord& m, int k) noexcept {
  return m.table + static_cast<std::size_t>(k - 1) * m.count;
}

}  // namespace

void vapour_interactions(const MixtureRecord& mixture, double* k) noexcept {
  const double* cas = column(mixture, KV_COL_CAS);
  for (int i = 0; i < mixture.count; ++i) {
    k[i] = std::numeric_limits<double>::quiet_NaN();
    for (const Row& row : kRows)
      if (cas[i] == row.cas) k[i] = row.k;
  }
}

void apply_vapour_interactions(const MixtureRecord& mixture, int water, const double* k,
                               eos::Temperature& t) noexcept {
  const double *cas = column(mixture, KV_COL_CAS), *Tc = column(mixture, KV_COL_TC);
  double* row = t.aij + static_cast<std::size_t>(water) * t.ld;
  for (int i = 0; i < t.n; ++i) {
    if (i == water || std::isnan(k[i])) continue;
    const double kij = cas[i] == kH2S ? k[i] + kSlopeH2S * t.T / Tc[i] : k[i];
    double* across = t.aij + static_cast<std::size_t>(i) * t.ld;
    row[i] = across[water] = std::sqrt(row[water] * across[i]) * (1.0 - kij);
  }
}

}  // namespace kestrune::water
