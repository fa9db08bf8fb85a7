// The water-content model: how much water a gas holds beside condensed water, by two methods.
//
// Method 1 balances the fugacity of water in the gas, PPR78, with that of condensed water (condensed.hpp):
// (36) of docs/method.md. Dry gas and water are a mixture of two: at one temperature the parameters of all
// its compositions follow from those of the dry gas, so that an evaluation costs the same for any number of
// components. Method 2 is the chart (chart.hpp).
#ifndef KESTRUNE_WATER_CONTENT_HPP
#define KESTRUNE_WATER_CONTENT_HPP

#include "eos/temperature.hpp"
#include "water/chart.hpp"
#include "water/condensed.hpp"

namespace kestrune::water {

enum class Method { equation_of_state = 1, chart = 2 };

/* The method of an argument word: 0 and 1 the equation of state, 2 the chart. False for others. */
bool method_by_number(int number, Method& method) noexcept;

// A gas as the model sees it. Indices count from 0, -1 when absent; water is always there.
struct Gas {
  eos::Context context;
  Method method = Method::equation_of_state;
  int water = -1, CO2 = -1, H2S = -1;
  double* dry = nullptr;  // [ld] mole fractions of the dry gas, 0 for water
  double* k = nullptr;    // [n] k_ij of water, see interactions.hpp
};

/*
 * Finds water, CO2 and H2S by their CAS numbers (the last of several) and takes the dry gas of z[n], with or
 * without water. KV_NO_WATER without a component that is water; KV_NO_WATER_LIMIT when there is nothing but
 * water.
 */
StatusCode open_gas(const eos::Context& context, const double* z, Method method, support::Arena& arena,
                    Gas& gas);

/* Lowest and highest temperature, K, at which the method has values for the gas; false where it has none. */
bool temperature_range(const Gas& gas, double& lowest, double& highest) noexcept;

// Dry gas, water, CO2 and H2S: the last two with fraction 0, for their coefficients alone.
inline constexpr int kParts = 4;

// A gas at one temperature.
struct Saturation {
  Method method = Method::equation_of_state;
  Chart chart;
  Condensed condensed;
  eos::CubicRoot bracub = nullptr;
  eos::Temperature t;  // of the parts, in the arrays below
  double b[kParts] = {}, aij[kParts * kParts] = {};
  double CO2 = 0.0, H2S = 0.0;  // mole fractions of the dry gas

  Saturation() = default;
  Saturation(const Saturation&) = delete;  // t points into it
  Saturation& operator=(const Saturation&) = delete;

  // Up to the first pressure, atm, the gas takes up any amount of water; a search for a solution ends at the
  // second.
  double lowest_pressure() const {
    return method == Method::chart ? chart.line.saturation : condensed.saturation();
  }
  double highest_pressure() const { return method == Method::chart ? chart.range.highest_P : kHighestPressure; }
};

/*
 * Prepares T (K). Gives back what it takes from the arena. KV_WATER_RANGE below 150 K and above 640 K (method
 * 2: see chart.hpp), KV_COMPONENT_DATA, KV_GROUP_DATA, statuses of the pure-component library.
 */
StatusCode prepare_saturation(const Gas& gas, double T, support::Arena& arena, Saturation& out);

/*
 * Saturated water mole fraction y at P (atm); y holds a start where it lies within 0 .. 1, not included. Where
 * ice is stabler than liquid water, the gas is saturated with ice. KV_NO_WATER_LIMIT where the gas takes up any
 * amount of water: at and below the vapour pressure, and where no fraction of water balances. KV_NOT_CONVERGED
 * where the gas root ends before the balance is reached. KV_WATER_RANGE above the highest pressure: 2000 atm,
 * of the chart see there. y is left alone on failure.
 */
StatusCode saturated_fraction(const Saturation& s, double P, double& y) noexcept;

}  // namespace kestrune::water

#endif
