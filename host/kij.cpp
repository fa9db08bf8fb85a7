#include "kij.hpp"

#include <algorithm>
#include <cmath>

#include "units.hpp"

namespace kestrune::host {

namespace {

// A_kl(T), atm, [nG * nG].
std::vector<double> interactions_at(const Mixture& m, double T) {
  std::vector<double> a(m.A_atm);
  for (std::size_t p = 0; p < a.size(); ++p) {
    if (a[p] != 0.0) a[p] *= std::pow(298.15 / T, m.ratio[p] - 1.0);
  }
  return a;
}

// E_ij(T), atm.
double group_energy(const Mixture& m, const std::vector<double>& a, std::size_t i, std::size_t j) {
  const std::size_t nG = m.groups.size();
  const double* d = m.differences.data() + nG * (j + m.components.size() * i);
  double sum = 0.0;
  for (std::size_t l = 0; l < nG; ++l) {
    for (std::size_t k = 0; k < nG; ++k) sum += d[k] * d[l] * a[l * nG + k];
  }
  return -0.5 * sum;
}

}  // namespace

double slope_1978(double omega) {
  const double w = omega;
  return w <= 0.491 ? 0.37464 + w * (1.54226 - 0.26992 * w)
                    : 0.379642 + w * (1.48503 + w * (-0.164423 + 0.016666 * w));
}

double alpha_1978(double T, double Tc, double omega) {
  const double root = 1.0 + slope_1978(omega) * (1.0 - std::sqrt(T / Tc));
  return root * root;
}

std::vector<double> binary_interactions(const Mixture& m, double T, const CubicConstants& constants) {
  const std::size_t n = m.components.size();
  std::vector<double> delta(n), k(n * n, 0.0);
  for (std::size_t i = 0; i < n; ++i) {
    const Component& c = m.components[i];
    const double Pc = c.Pc / kAtmInPa;
    const double a = constants.omega_a_r2 * c.Tc * c.Tc / Pc * alpha_1978(T, c.Tc, c.omega);
    delta[i] = std::sqrt(a) / (constants.omega_b_r * c.Tc / Pc);
  }
  const std::vector<double> a = interactions_at(m, T);
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = i + 1; j < n; ++j) {
      const double difference = delta[i] - delta[j];
      k[i * n + j] = k[j * n + i] =
          (group_energy(m, a, i, j) - difference * difference) / (2.0 * delta[i] * delta[j]);
    }
  }
  return k;
}

bool is_incomplete(const Mixture& m, int i, int j) {
  const auto constant = [&](const ConstantPair& p) { return p.i == std::min(i, j) && p.j == std::max(i, j); };
  if (std::any_of(m.constants.begin(), m.constants.end(), constant)) return false;
  const auto bare = [&](int c) { return m.components[static_cast<std::size_t>(c)].group_count == 0; };
  return i != j &&
         (bare(i) || bare(j) || std::any_of(m.missing.begin(), m.missing.end(), [&](const MissingPair& p) {
            return p.component_i == std::min(i, j) && p.component_j == std::max(i, j);
          }));
}

}  // namespace kestrune::host
