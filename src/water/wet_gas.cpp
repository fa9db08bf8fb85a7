// The saturated fraction as a content of the gas and as its composition.

#include "water/wet_gas.hpp"

#include "water/content.hpp"

namespace kestrune::water {
namespace {

constexpr double kNormalVolume = 22.413969545;  // m3/kmol, ideal gas at 273.15 K and 101325 Pa (CODATA 2018)

// The saturated fraction, then body(gas, fraction).
template <class Body>
StatusCode at_saturation(double T, double P, int number, const double* z, const eos::Context& context,
                         Body&& body) {
  Method method = Method::equation_of_state;
  const bool known = method_by_number(number, method);
  return support::with_arena<3, 64>(context.record->count, [&](support::Arena& arena) -> StatusCode {
    Gas gas;
    Saturation s;
    double y = 0.0;
    StatusCode status = open_gas(context, z, method, arena, gas);
    if (status == KV_OK && !known) status = KV_SPECIFICATION;
    if (status == KV_OK) status = prepare_saturation(gas, T, arena, s);
    if (status == KV_OK) status = saturated_fraction(s, P, y);
    if (status == KV_OK) body(gas, y);
    return status;
  });
}

}  // namespace

StatusCode humidity(double T, double P, int method, const double* z, const eos::Context& context,
                    double& fraction, double& content) {
  return at_saturation(T, P, method, z, context, [&](const Gas& gas, double y) {
    const double M =
        context.record
            ->table[static_cast<std::size_t>(KV_COL_MOLAR_MASS - 1) * context.record->count + gas.water];
    fraction = y;
    content = 1e6 * y * (M > 0.0 && M < 1e3 ? M : kMolarMass) / kNormalVolume;
  });
}

StatusCode wet_gas(double T, double P, int method, const double* z, const eos::Context& context, double* wet) {
  return at_saturation(T, P, method, z, context, [&](const Gas& gas, double y) {
    for (int i = 0; i < context.record->count; ++i) wet[i] = i == gas.water ? y : (1.0 - y) * gas.dry[i];
  });
}

}  // namespace kestrune::water
