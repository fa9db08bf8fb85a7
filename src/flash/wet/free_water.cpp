// The rules of free water, (23) and (24) of docs/method.md, with their derivatives.

#include "flash/wet/free_water.hpp"

#include <algorithm>
#include <cmath>

namespace kestrune::flash {
namespace {

// ln phi of the other components in a phase that is water: they are as good as insoluble there.
constexpr double kInsoluble = kLargestLogK;

// The coefficients of a phase that is (almost) pure water.
void water_rich(const Model& m, double xw, double* ln_phi, const Derivatives& d) {
  const double psat = m.psat.value;
  for (int i = 0; i < m.ld; ++i) ln_phi[i] = kInsoluble;
  ln_phi[m.water] = std::log(psat / (m.P * xw));
  if (d.dT != nullptr) std::fill_n(d.dT, m.n, 0.0);
  if (d.dP != nullptr) std::fill_n(d.dP, m.n, 0.0);
  if (d.dT != nullptr) d.dT[m.water] = m.psat.d_dT / psat;
  if (d.dP != nullptr) d.dP[m.water] = -1.0 / m.P;
  if (d.dn == nullptr) return;
  // ln phi_w = -ln x_w + const: 1 for every other amount, 1 - 1/x_w for its own
  for (int j = 0; j < m.n; ++j) {
    double* column = d.dn + static_cast<std::size_t>(j) * m.ld;
    std::fill_n(column, m.n, 0.0);
    column[m.water] = 1.0;
  }
  d.dn[static_cast<std::size_t>(m.water) * m.ld + m.water] = 1.0 - 1.0 / xw;
}

// Composition derivatives of the others when they see the liquid at its solubility limit: in terms of the
// amounts n_j of the hydrocarbons alone, with s/(1 - s) moles of water for each mole of them.
void at_limit_dn(const Model& m, double s, double oil, double* dn) {
  const int w = m.water;
  const double total = oil / (1.0 - s);  // moles of the modified phase in one mole of the whole
  const double ratio = s / (1.0 - s);
  const double* water_column = dn + static_cast<std::size_t>(w) * m.ld;
  for (int j = 0; j < m.n; ++j) {
    double* column = dn + static_cast<std::size_t>(j) * m.ld;
    if (j == w) continue;
    for (int i = 0; i < m.n; ++i) {
      // + ln(x'_i/x_i) = ln((1 - s)/oil): 1 - 1/oil per mole of a hydrocarbon
      if (i != w) column[i] = (column[i] + ratio * water_column[i]) / total + 1.0 - 1.0 / oil;
    }
  }
  double* own = dn + static_cast<std::size_t>(w) * m.ld;
  for (int i = 0; i < m.n; ++i) own[i] = 1.0;
}

// What the change of the limit with temperature adds to d ln phi/dT of the others; dn is that of the modified
// phase.
void at_limit_dT(const Model& m, const double* dn, double* dT) {
  const double s = m.solubility.value, slope = m.solubility.d_dT;
  for (int i = 0; i < m.n; ++i) {
    if (i == m.water) continue;
    double along = dn[static_cast<std::size_t>(m.water) * m.ld + i];
    for (int j = 0; j < m.n; ++j)
      if (j != m.water) along -= dn[static_cast<std::size_t>(j) * m.ld + i] * m.modified[j] / (1.0 - s);
    dT[i] += slope * (along - 1.0 / (1.0 - s));
  }
}

// Water's own coefficient and its derivatives, after the others are there.
void set_water(const Model& m, double xw, bool below, double* ln_phi, const Derivatives& d) {
  const double s = m.solubility.value, psat = m.psat.value;
  const int w = m.water;
  ln_phi[w] = std::log(psat / (m.P * (below ? s : xw)));
  if (d.dT != nullptr) d.dT[w] = m.psat.d_dT / psat - (below ? m.solubility.d_dT / s : 0.0);
  if (d.dP != nullptr) d.dP[w] = -1.0 / m.P;
  if (d.dn == nullptr) return;
  for (int j = 0; j < m.n; ++j) d.dn[static_cast<std::size_t>(j) * m.ld + w] = below ? 0.0 : 1.0;
  if (!below) d.dn[static_cast<std::size_t>(w) * m.ld + w] = 1.0 - 1.0 / xw;
}

}  // namespace

double oil_of(int n, int water, const double* x) noexcept {
  double oil = 0.0;
  for (int i = 0; i < n; ++i) oil += i == water ? 0.0 : x[i];
  return oil;
}

double oil_at_limit(const MixtureRecord& mixture, double T, const double* x, double* oil) noexcept {
  const int n = mixture.count, w = eos::find_water_family(mixture);
  const double s = eos::water_solubility(T, mixture.solubility_a, mixture.solubility_b).value;
  if (w < 0 || !(x[w] > s) || !(s < 1.0)) return 1.0;
  const double part = oil_of(n, w, x) / (1.0 - s);
  for (int i = 0; i < n; ++i) oil[i] = i == w ? s : x[i] / part;
  return part;
}

bool has_free_water(const MixtureRecord& mixture, const double* z) noexcept {
  const int w = eos::find_water_family(mixture);
  if (w < 0) return false;
  double sum = 0.0;
  for (int i = 0; i < mixture.count; ++i) sum += z[i];
  return z[w] >= kLeastWater * sum;
}

StatusCode wet_liquid_fugacity(Model& m, const double* x, double* ln_phi, const Derivatives& d,
                               double& Z) noexcept {
  const double xw = x[m.water], s = m.solubility.value;
  const double oil = xw > kWaterRich ? oil_of(m.n, m.water, x) : 1.0 - xw;
  if (xw > kWaterRich &&
      (m.branch == WaterBranch::by_amount || (m.branch == WaterBranch::by_content && oil < kLeastOil))) {
    m.counts.evaluated();
    Z = 0.0;
    water_rich(m, xw, ln_phi, d);
    return KV_OK;
  }
  const double* composition = x;
  const bool by_x = m.branch == WaterBranch::by_amount || m.branch == WaterBranch::by_content;
  const bool below = by_x ? xw < s : m.branch == WaterBranch::below;
  const bool at_limit = !below && s < 1.0;
  const double scale = at_limit ? (1.0 - s) / oil : 1.0;
  if (at_limit) {
    for (int i = 0; i < m.n; ++i) m.modified[i] = scale * x[i];
    m.modified[m.water] = s;
    composition = m.modified;
  }
  Derivatives plain = d;
  if (at_limit && d.dT != nullptr && d.dn == nullptr) plain.dn = m.limit_dn;
  const StatusCode status = plain_fugacity(m, composition, Kind::liquid, ln_phi, plain, Z);
  if (status != KV_OK) return status;
  if (at_limit) {
    if (d.dT != nullptr) at_limit_dT(m, plain.dn, d.dT);
    const double correction = std::log(scale);  // ln x'_i - ln x_i
    for (int i = 0; i < m.n; ++i)
      if (i != m.water) ln_phi[i] += correction;
    if (d.dn != nullptr) at_limit_dn(m, s, oil, d.dn);
  }
  set_water(m, xw, below, ln_phi, d);
  return KV_OK;
}

}  // namespace kestrune::flash
