// Water content by correlation: the chart of natural gas with its correction for carbon dioxide and hydrogen
// sulphide.
#ifndef KESTRUNE_WATER_CHART_HPP
#define KESTRUNE_WATER_CHART_HPP

#include "kestrune/status.h"

namespace kestrune::water {

// Range: -40 to 460 F, up to 10 000 psia.
inline constexpr double kChartLowestT = 233.15, kChartHighestT = 510.93;  // K
inline constexpr double kChartHighestP = 680.46;                          // atm

// W = A/P + B as mole fractions: saturation/P + offset, P in atm.
struct ChartLine {
  double saturation = 0.0;  // vapour pressure over liquid water, atm
  double offset = 0.0;
};

// Carbon dioxide or hydrogen sulphide: its fraction in the dry gas and, at the temperature of its correlation
// nearest to that of the gas, its own content (log10 of lb per million standard ft3 = c0 + c1 x + c2 x^2, x =
// log10 of P in psia) and that of the chart.
struct AcidGas {
  double fraction = 0.0;
  double c[3] = {};
  ChartLine line;
};

struct Chart {
  ChartLine line;
  AcidGas CO2, H2S;
};

/*
 * Prepares T (K). KV_WATER_RANGE outside the range of the chart, for more than 40 % of acid gas, and for more
 * than 5 % outside the temperatures of its correction (299.8 to 344.3 K, without CO2 to 410.9 K); or a status
 * of the pure-component library.
 *
 * W = A/P + B: R. F. Bukacek, Equilibrium Moisture Content of Natural Gases, IGT Research Bulletin 8 (1955);
 * over supercooled water below 32 F, as the chart. Acid gases: R. N. Maddox, Gas and Liquid Sweetening, 2nd
 * ed., Campbell Petroleum Series (1974): the content is the sum of x_i W_i, with W of CO2 and H2S quadratic in
 * log P at a row of temperatures. Here the coefficients are linear in 1/T between the rows, and W_i/W keeps its
 * value beyond the ends of T and P (100 to 3000 psia) and is at least 1.
 */
StatusCode prepare_chart(double T, double CO2, double H2S, Chart& c) noexcept;

/*
 * Saturated water mole fraction y at P (atm). KV_NO_WATER_LIMIT where the gas takes up any amount of water,
 * KV_WATER_RANGE above the highest pressure of the chart; with more than 5 % of acid gas above 3000 psia.
 */
StatusCode chart_content(const Chart& c, double P, double& y) noexcept;

}  // namespace kestrune::water

#endif
