// Water content by correlation: the chart of natural gas with its correction for carbon dioxide and hydrogen
// sulphide.
#ifndef KESTRUNE_WATER_CHART_HPP
#define KESTRUNE_WATER_CHART_HPP

#include "eos/context.hpp"
#include "kestrune/status.h"

namespace kestrune::water {

// Where the chart holds, K and atm. The temperatures are those of -40 and 460 F, the pressure is 10 000 psia.
struct ChartRange {
  double lowest_T = 233.15, highest_T = 510.93, highest_P = 680.46;
};

/*
 * The range for fractions of CO2 and H2S in the dry gas. More than 5 % of them confine it to that of their
 * correction: 299.82 to 344.26 K (without CO2 to 410.93 K), 3000 psia. False above 40 %, where nothing is in
 * range.
 */
bool chart_range(double CO2, double H2S, ChartRange& range) noexcept;

// W = A/P + B as mole fractions: saturation/P + offset, P in atm; (39) of docs/method.md.
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
  ChartRange range;
  ChartLine line;
  AcidGas CO2, H2S;
};

/*
 * Prepares T (K). KV_WATER_RANGE outside the range, or a status of the pure-component library.
 *
 * W = A/P + B [Buk55], over supercooled water below 32 F, as the chart. Acid gases [Mad74]: the content is
 * the sum of x_i W_i, with W of CO2 and H2S quadratic in log P at a row of temperatures. Here the
 * coefficients are linear in 1/T between the rows, and W_i/W keeps its value beyond the ends of T and P (100
 * to 3000 psia) and is at least 1.
 *
 * [Buk55] R. F. Bukacek, Equilibrium Moisture Content of Natural Gases, IGT Research Bulletin 8 (1955).
 * [Mad74] R. N. Maddox, Gas and Liquid Sweetening, 2nd ed., Campbell Petroleum Series (1974).
 */
StatusCode prepare_chart(const eos::Tools& tools, double T, double CO2, double H2S, Chart& c) noexcept;

/*
 * Saturated water mole fraction y at P (atm). KV_NO_WATER_LIMIT where the gas takes up any amount of water,
 * KV_WATER_RANGE above the highest pressure.
 */
StatusCode chart_content(const Chart& c, double P, double& y) noexcept;

}  // namespace kestrune::water

#endif
