// Coefficients of the chart and of its correction for acid gases.

#include "water/chart.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "water/condensed.hpp"

namespace kestrune::water {
namespace {

constexpr double kPoundsPerMillion = 47484.0;  // lb of water in 10^6 standard ft3 of steam: A = 47484 Psat
constexpr double kPsiPerAtm = 14.695948775513;
constexpr double kLowestCorrected = 100.0, kHighestCorrected = 3000.0;  // psia
constexpr double kNegligible = 0.05, kLargest = 0.40;                   // acid gas in the dry gas

struct MaddoxRow {
  double F;
  double c[3];
};
constexpr MaddoxRow kCO2Rows[] = {{80.0, {6.0901, -2.5396, 0.3427}},
                                  {100.0, {6.1870, -2.3779, 0.3103}},
                                  {130.0, {6.1925, -2.0280, 0.2400}},
                                  {160.0, {6.1850, -1.8492, 0.2139}}};
constexpr MaddoxRow kH2SRows[] = {{80.0, {5.1847, -1.9772, 0.3004}},  {100.0, {5.4896, -2.0210, 0.3046}},
                                  {130.0, {6.1694, -2.2342, 0.3319}}, {160.0, {6.8834, -2.4731, 0.3646}},
                                  {220.0, {7.9773, -2.8597, 0.4232}}, {280.0, {9.2783, -3.3723, 0.4897}}};
constexpr double kRankineOfZeroF = 459.67;

StatusCode prepare_line(const eos::Tools& tools, double T, ChartLine& line) noexcept {
  line.offset = std::pow(10.0, 6.69449 - 3083.87 / (1.8 * T)) / kPoundsPerMillion;
  return liquid_vapour_pressure(tools, T, line.saturation);
}

// The rows of a correlation at T, linear in 1/T between two of them, at an end beyond it.
template <std::size_t n>
StatusCode prepare_acid(const eos::Tools& tools, const MaddoxRow (&rows)[n], double T, double fraction,
                        AcidGas& gas) noexcept {
  gas.fraction = fraction;
  if (!(fraction > 0.0)) return KV_OK;
  const double lowest = rows[0].F + kRankineOfZeroF, highest = rows[n - 1].F + kRankineOfZeroF;
  const double R = std::clamp(1.8 * T, lowest, highest);
  std::size_t k = 0;
  while (k + 2 < n && R > rows[k + 1].F + kRankineOfZeroF) ++k;
  const double u0 = 1.0 / (rows[k].F + kRankineOfZeroF), u1 = 1.0 / (rows[k + 1].F + kRankineOfZeroF);
  const double share = (1.0 / R - u0) / (u1 - u0);
  for (int i = 0; i < 3; ++i) gas.c[i] = (1.0 - share) * rows[k].c[i] + share * rows[k + 1].c[i];
  return prepare_line(tools, R / 1.8, gas.line);
}

// By how much more the acid gas holds than the chart says, times its fraction.
double excess(const AcidGas& gas, double P) noexcept {
  if (!(gas.fraction > 0.0)) return 0.0;
  const double psia = std::clamp(P * kPsiPerAtm, kLowestCorrected, kHighestCorrected);
  const double x = std::log10(psia);
  const double own = std::pow(10.0, gas.c[0] + x * (gas.c[1] + x * gas.c[2])) / kPoundsPerMillion;
  const double sweet = gas.line.saturation * kPsiPerAtm / psia + gas.line.offset;
  return gas.fraction * std::max(0.0, own / sweet - 1.0);
}

}  // namespace

bool chart_range(double CO2, double H2S, ChartRange& range) noexcept {
  range = ChartRange{};
  if (!(CO2 + H2S <= kLargest)) return false;
  if (CO2 + H2S <= kNegligible) return true;
  const double highest = CO2 > 0.0 ? std::end(kCO2Rows)[-1].F : std::end(kH2SRows)[-1].F;
  range.lowest_T = (kCO2Rows[0].F + kRankineOfZeroF) / 1.8;
  range.highest_T = (highest + kRankineOfZeroF) / 1.8;
  range.highest_P = kHighestCorrected / kPsiPerAtm;
  return true;
}

StatusCode prepare_chart(const eos::Tools& tools, double T, double CO2, double H2S, Chart& c) noexcept {
  c = Chart{};
  if (!chart_range(CO2, H2S, c.range)) return KV_WATER_RANGE;
  if (!(T >= c.range.lowest_T && T <= c.range.highest_T)) return KV_WATER_RANGE;
  StatusCode status = prepare_line(tools, T, c.line);
  if (status == KV_OK) status = prepare_acid(tools, kCO2Rows, T, CO2, c.CO2);
  if (status == KV_OK) status = prepare_acid(tools, kH2SRows, T, H2S, c.H2S);
  return status;
}

StatusCode chart_content(const Chart& c, double P, double& y) noexcept {
  if (!(P > 0.0 && P <= c.range.highest_P)) return KV_WATER_RANGE;
  const double content = (c.line.saturation / P + c.line.offset) * (1.0 + excess(c.CO2, P) + excess(c.H2S, P));
  if (!(content < 1.0)) return KV_NO_WATER_LIMIT;
  y = content;
  return KV_OK;
}

}  // namespace kestrune::water
