#include "split.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "error.hpp"
#include "root.hpp"
#include "text.hpp"

namespace kestrune::host {

namespace {

constexpr int kUsualPieces = 6;
constexpr double kHeaviestCut = 1000.0;  // g/mol, to which the boiling points of [Sor89] go

// Lower end of the molar masses of a fraction named Cn+: half way below normal Cn, 14 n - 8, 90 for C7+. [Whi83]
double lightest(const Definition& d) {
  if (d.eta) return *d.eta;
  const std::size_t at = d.name.find_first_of("0123456789");
  const std::size_t length = at == std::string::npos ? 0 : number_length(std::string_view(d.name).substr(at));
  const auto n = length == 0 ? std::nullopt : parse_number(std::string_view(d.name).substr(at, length));
  if (!n || *n < 5.0 || *n > 60.0)
    refuse(d,
           "the molar mass of its lightest molecules is not known from its name (C7+, C10+): give eta, for "
           "instance eta = 90");
  return 14.0 * *n - 8.0;
}

// Boundaries in x = (M - eta)/beta that part the mass into n equal pieces; the last is open.
std::vector<double> equal_masses(int n, double alpha, double eta, double beta) {
  const double mean = eta + alpha * beta;
  std::vector<double> ends{0.0};
  for (int k = 1; k < n; ++k) {
    const auto excess = [&](double x) {
      return (eta * gamma_share(alpha, x) + alpha * beta * gamma_share(alpha + 1.0, x)) / mean -
             static_cast<double>(k) / n;
    };
    ends.push_back(root_of(ends.back(), 200.0 + 20.0 * alpha, excess));
  }
  return ends;
}

// Specific gravities of the cuts with the factor that gives the volume of the fraction.
void set_gravities(const Definition& d, std::vector<Cut>& cuts) {
  const auto volume = [&](double Cf) {
    double v = 0.0;
    for (const Cut& c : cuts) v += c.mass / gravity_of_cut(c.M, Cf);
    return v;
  };
  const auto excess = [&](double Cf) { return 1.0 / *d.SG - volume(Cf); };  // rises
  if (excess(0.1) > 0.0 || excess(0.6) < 0.0)
    refuse(d, fmt::format("SG {} does not belong to molar masses about {}", *d.SG, *d.M));
  const double Cf = root_of(0.1, 0.6, excess);
  for (Cut& c : cuts) c.SG = gravity_of_cut(c.M, Cf);
}

}  // namespace

double gamma_share(double a, double x) {
  if (!(x > 0.0)) return 0.0;
  const double front = std::exp(-x + a * std::log(x) - std::lgamma(a));
  if (x < a + 1.0) {  // series
    double term = 1.0 / a, sum = term;
    for (int k = 1; k < 500 && term > 1e-17 * sum; ++k) sum += term *= x / (a + k);
    return front * sum;
  }
  double b = x + 1.0 - a, c = 1e300, d = 1.0 / b, h = d;  // continued fraction of the rest
  for (int k = 1; k < 500; ++k) {
    const double an = -k * (k - a);
    b += 2.0;
    d = 1.0 / (an * d + b);
    c = b + an / c;
    const double step = d * c;
    h *= step;
    if (std::abs(step - 1.0) < 1e-16) break;
  }
  return 1.0 - front * h;
}

SplitFraction split_by_distribution(const Definition& d) {
  const double eta = lightest(d), mean = *d.M, alpha = d.alpha.value_or(1.0);
  const int n = d.pieces.value_or(kUsualPieces);
  if (!(mean > eta))
    refuse(d, fmt::format(
                  "its molar mass {} is not above that of its lightest molecules, eta = {}: is M in g/mol?",
                  mean, eta));
  if (mean > kHeaviestCut)
    refuse(d,
           fmt::format("a molar mass of {} g/mol is above {}, where the correlations end", mean, kHeaviestCut));
  SplitFraction result;
  result.M = mean;
  result.how = alpha == 1.0 ? "exponential distribution" : fmt::format("gamma distribution, alpha {:g}", alpha);
  const double beta = (mean - eta) / alpha;
  const std::vector<double> ends = equal_masses(n, alpha, eta, beta);
  double moles_below = 0.0, excess_below = 0.0;  // of M - eta, in units of its mean
  for (int k = 0; k < n; ++k) {
    const bool last = k + 1 == n;
    const double x = last ? 0.0 : ends[static_cast<std::size_t>(k) + 1];
    const double moles_to = last ? 1.0 : gamma_share(alpha, x);
    const double excess_to = last ? 1.0 : gamma_share(alpha + 1.0, x);
    Cut c{};
    c.moles = moles_to - moles_below;
    c.mass = (eta * c.moles + alpha * beta * (excess_to - excess_below)) / mean;
    c.M = mean * c.mass / c.moles;
    result.cuts.push_back(c);
    moles_below = moles_to;
    excess_below = excess_to;
  }
  if (!(result.cuts.back().M <= kHeaviestCut))
    refuse(
        d,
        fmt::format(
            "its heaviest piece has {:.0f} g/mol, above {:.0f}, where the correlations end: take fewer pieces",
            result.cuts.back().M, kHeaviestCut));
  set_gravities(d, result.cuts);
  for (Cut& c : result.cuts) c.Tb = boiling_point(c.M, c.SG);
  result.Tb = boiling_point(mean, *d.SG);
  return result;
}

SplitFraction split_by_curve(const Definition& d, const PetroleumTools& tools) {
  const auto at = [&](double part) {  // straight lines between the points and beyond the ends
    std::size_t k = 1;
    while (k + 1 < d.curve.size() && d.curve[k].first < part) ++k;
    const auto& [p0, T0] = d.curve[k - 1];
    const auto& [p1, T1] = d.curve[k];
    return T0 + (T1 - T0) * (part - p0) / (p1 - p0);
  };
  const int n = d.pieces.value_or(kUsualPieces);
  SplitFraction result;
  result.how = "boiling curve";
  for (int k = 0; k < n; ++k) result.cuts.push_back({0.0, 0.0, at((k + 0.5) / n), 0.0, 0.0});
  if (result.cuts.front().Tb < 250.0 || result.cuts.back().Tb > 1000.0)
    refuse(d, fmt::format(
                  "the boiling curve reaches from {:.0f} to {:.0f} K; the correlations hold from 250 to 1000 K",
                  result.cuts.front().Tb, result.cuts.back().Tb));
  // One Watson factor; of equal volumes the mean of the specific gravities is that of the fraction.
  double mean = 0.0;
  for (Cut& c : result.cuts) {
    const double Kw = 12.0;
    std::int32_t status = 0;
    tools.CalcSG(&c.Tb, &Kw, &c.SG, &status);
    mean += c.SG / n;
  }
  double moles = 0.0, mass = 0.0;
  for (Cut& c : result.cuts) {
    c.SG *= *d.SG / mean;
    c.M = molar_mass_of_cut(c.Tb, c.SG);
    c.mass = c.SG / n;
    c.moles = c.mass / c.M;
    mass += c.mass;
    moles += c.moles;
  }
  result.M_of_curve = mass / moles;
  result.M = d.M.value_or(result.M_of_curve);
  std::vector<double> Tb, x, w, SG;
  for (Cut& c : result.cuts) {
    c.moles /= moles;
    c.mass /= mass;
    c.M = result.M * c.mass / c.moles;
    Tb.push_back(c.Tb);
    x.push_back(c.moles);
    w.push_back(c.mass);
    SG.push_back(c.SG);
  }
  const std::int32_t count = n;
  std::int32_t status = 0;
  tools.MeABP(&count, Tb.data(), x.data(), w.data(), SG.data(), &result.Tb, &status);
  if (status != 0) refuse(d, "no mean average boiling point of its curve");
  return result;
}

}  // namespace kestrune::host
