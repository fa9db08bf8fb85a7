// Viscosity and conductivity of a gas: constants of the components, their dilute values, mixing, and the
// dense part.

#include "eos/transport.hpp"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "eos/liquid_water.hpp"
#include "frame/cas.hpp"
#include "support/mathkernels.hpp"

namespace kestrune::eos {
namespace {

using frame::PureProperty;

constexpr double kBarPerAtm = 1.01325;
constexpr double kSixth = 1.0 / 6.0;

using support::fast_exp;
using support::fast_log;

// x^y for x > 0.
double power(double x, double y) {
  return fast_exp(y * fast_log(x));
}

// x^(2/3)/T^(1/6)
double two_thirds_over_sixth(double x, double T) {
  return fast_exp(kSixth * (4.0 * fast_log(x) - fast_log(T)));
}

bool usable(double value) {
  return value > 0.0 && value <= DBL_MAX;
}

// Constants of component i; what its columns do not hold follows from the others.
bool critical_constants(const MixtureRecord& mixture, int i, Critical& c) {
  const auto column = [&](int k) { return mixture.table[static_cast<std::size_t>(k - 1) * mixture.count + i]; };
  c = {column(KV_COL_TC), column(KV_COL_PC), column(KV_COL_VC), column(KV_COL_ZC), column(KV_COL_MOLAR_MASS)};
  if (!usable(c.Tc) || !usable(c.Pc) || !usable(c.M)) return false;
  if (!usable(c.Zc)) {
    const double from_omega = 0.2905 - 0.085 * column(KV_COL_OMEGA);
    c.Zc = usable(c.Vc) ? c.Pc * c.Vc / (kR * c.Tc) : std::clamp(from_omega, 0.1, 0.4);
  }
  if (!usable(c.Vc)) c.Vc = c.Zc * kR * c.Tc / c.Pc;
  return true;
}

// Mole fraction of the last component with that CAS number that is present, 0 without one.
double fraction_of(const MixtureRecord& mixture, const double* x, const char* cas) {
  for (int i = mixture.count; i-- > 0;) {
    if (!(x[i] > 0.0)) continue;
    char text[frame::kCasTextLength];
    frame::FormatCasText(i + 1, mixture.table, mixture.count, text);
    if (frame::is_cas(text, cas)) return x[i];
  }
  return 0.0;
}

// sqrt(M) Pc^(2/3)/Tc^(1/6), Pc in atm: 1e-5 of it is a viscosity in cP.
double viscosity_scale(const Critical& c) {
  return std::sqrt(c.M) * two_thirds_over_sixth(c.Pc, c.Tc);
}

// Inverse conductivity 210 (Tc M^3/Pc^4)^(1/6), Pc in bar, m K/W.
double inverse_conductivity(const Critical& c) {
  const double P = c.Pc * kBarPerAtm;
  const double P2 = P * P;
  return 210.0 * power(c.Tc * c.M * c.M * c.M / (P2 * P2), kSixth);
}

/*
 * A low-pressure property of a component: the correlation within its range; beyond an end the value there,
 * continued along curve(T), with KV_PURE_RANGE. Other statuses have no value.
 */
template <class Curve>
StatusCode dilute_value(const Tools& tools, PureProperty property, double T, std::int32_t cas, Curve&& curve,
                        double& value) {
  StatusCode status = KV_OK;
  value = tools.pure_value(property, cas, T, 0.0, 0.0, status);
  if (status != KV_PURE_RANGE) return status;
  const std::int32_t number = static_cast<std::int32_t>(property) + 1, equation = 1;
  double low = 0.0, high = 0.0;
  char unit[frame::kUnitLength], source[60];
  if (tools.pure_range(&cas, &number, &equation, &low, &high, unit, source) != KV_OK) return status;
  const double end = std::clamp(T, low, high);
  StatusCode inside = KV_OK;
  const double at_end = tools.pure_value(property, cas, end, 0.0, 0.0, inside);
  const double continued = at_end * curve(T) / curve(end);
  if (usable(continued)) value = continued;
  return status;
}

// The components that are present, side by side, and their pseudo-critical mixture.
struct Present {
  int count = 0;
  int* index = nullptr;
  double *x = nullptr, *Tc = nullptr, *Pc = nullptr, *Vc = nullptr, *Zc = nullptr, *M = nullptr;
  Critical mixture{};
  Critical at(int k) const { return {Tc[k], Pc[k], Vc[k], Zc[k], M[k]}; }
};

StatusCode find_present(const Phase& p, support::Arena& arena, Present& out) {
  const int n = p.context.record->count;
  out.index = arena.take_ints(n);
  for (double** array : {&out.x, &out.Tc, &out.Pc, &out.Vc, &out.Zc, &out.M}) *array = arena.take(n);
  double total = 0.0;
  for (int i = 0; i < n; ++i) {
    if (!(p.x[i] >= kSmallestFraction)) continue;
    Critical c;
    if (!critical_constants(*p.context.record, i, c)) return KV_COMPONENT_DATA;
    const int k = out.count++;
    out.index[k] = i;
    out.x[k] = p.x[i];
    total += p.x[i];
    out.Tc[k] = c.Tc;
    out.Pc[k] = c.Pc;
    out.Vc[k] = c.Vc;
    out.Zc[k] = c.Zc;
    out.M[k] = c.M;
  }
  if (out.count == 0) return KV_COMPOSITION;
  for (int k = 0; k < out.count; ++k) out.x[k] /= total;
  const std::int32_t count = out.count;
  Critical& m = out.mixture;
  p.context.tools->kay_rules()(&count, out.x, out.Tc, out.Pc, out.Vc, out.Zc, out.M, &m.Tc, &m.Pc, &m.Vc, &m.Zc,
                               &m.M);
  return KV_OK;
}

/*
 * Sum of x_i value_i/(sum_j x_j w_ij) with w_ij = [1 + sqrt(mu_i/mu_j) (M_j/M_i)^(1/4)]^2/sqrt(8 (1 +
 * M_i/M_j)): for viscosities [Wil50], and for conductivities where mu/M stands for their monatomic part
 * [Mas58].
 */
double weighted_mean(const Present& c, const double* value, const double* mu, support::Arena& arena) {
  // w_ij = (1 + q_i/q_j)^2 sqrt(M_j/(8 (M_i + M_j))) with q = sqrt(mu)/M^(1/4).
  double *q = arena.take(c.count), *inverse_q = arena.take(c.count), *term = arena.take(c.count);
  for (int i = 0; i < c.count; ++i) q[i] = std::sqrt(mu[i] / std::sqrt(c.M[i]));
  for (int i = 0; i < c.count; ++i) inverse_q[i] = 1.0 / q[i];
  double mean = 0.0;
  for (int i = 0; i < c.count; ++i) {
    for (int j = 0; j < c.count; ++j) {
      const double one = 1.0 + q[i] * inverse_q[j];
      term[j] = c.x[j] * (one * one) * std::sqrt(0.125 * c.M[j] / (c.M[i] + c.M[j]));
    }
    double sum = 0.0;
    for (int j = 0; j < c.count; ++j) sum += term[j];
    mean += c.x[i] * value[i] / sum;
  }
  return mean;
}

// The frame of both properties: components, their dilute values, the mixture, and what the density adds.
template <class Mean, class Dense>
StatusCode gas_property(const Phase& p, Mean&& mean, Dense&& dense, double& out) {
  return support::with_arena<1, 40>(p.context.record->count, [&](support::Arena& arena) -> StatusCode {
    Present c;
    const StatusCode status = find_present(p, arena, c);
    if (status != KV_OK) return status;
    PhaseValues gas;
    const StatusCode root = volume(p, gas);
    if (!has_values(root)) return root;
    double value = 0.0;
    const StatusCode known = mean(c, arena, value);
    if (!has_values(known)) return known;
    value += dense(c.mixture, c.mixture.Vc / gas.v);
    if (!usable(value)) return KV_NOT_FINITE;
    out = value;
    return graver(known, root);
  });
}

// mu[count]; the gravest status of the components, of one without a value at once.
StatusCode dilute_viscosities(const Phase& p, const Present& c, support::Arena& arena, double* mu) {
  double* alone = arena.zeros(p.context.record->count);
  StatusCode all = KV_OK;
  for (int k = 0; k < c.count && has_values(all); ++k)
    all = graver(all, dilute_viscosity(p.T, p.context, c.index[k], c.at(k), alone, mu[k]));
  return all;
}

}  // namespace

double reduced_viscosity(double Tr, double x_hydrogen, double x_helium) noexcept {
  const double general =
      1.0 + 46.1 * power(Tr, 0.618) - 20.4 * fast_exp(-0.449 * Tr) + 19.4 * fast_exp(-4.058 * Tr);
  double f = (1.0 - x_hydrogen - x_helium) * general;
  if (x_hydrogen > 0.0)
    f += x_hydrogen *
         (1.0 + 47.65 * power(Tr, 0.657) - 20.0 * fast_exp(-0.858 * Tr) + 19.0 * fast_exp(-3.995 * Tr));
  if (x_helium > 0.0)
    f += x_helium *
         (1.0 + 52.57 * power(Tr, 0.656) - 18.9 * fast_exp(-1.144 * Tr) + 17.9 * fast_exp(-5.182 * Tr));
  return f;
}

double corresponding_viscosity(double T, const MixtureRecord& mixture, const double* x,
                               const Critical& c) noexcept {
  const double V = 0.5 * (kR * c.Zc * c.Tc / c.Pc + c.Vc);
  const double f = reduced_viscosity(T / c.Tc, fraction_of(mixture, x, frame::kHydrogenCas),
                                     fraction_of(mixture, x, frame::kHeliumCas));
  return f * std::sqrt(c.M) * two_thirds_over_sixth(V, c.Tc) * 1e-05 / 1000.0;
}

StatusCode dilute_viscosity(double T, const Context& context, int i, const Critical& c, double* alone,
                            double& mu) noexcept {
  const MixtureRecord& mixture = *context.record;
  if (OwnHeatCapacity own; own_heat_capacity(mixture, i, own)) {
    mu = 1e-5 * reduced_viscosity(T / c.Tc, 0.0, 0.0) * viscosity_scale(c);
    return usable(mu) ? KV_OK : KV_NOT_FINITE;
  }
  alone[i] = 1.0;
  const auto shape = [&](double t) { return corresponding_viscosity(t, mixture, alone, c); };
  const StatusCode status =
      dilute_value(*context.tools, PureProperty::GasViscosity, T, cas_number(mixture, i), shape, mu);
  alone[i] = 0.0;
  return status;
}

double corresponding_conductivity(double T, const Critical& c, bool water) noexcept {
  // Translational part, and the internal part C f(Tr) of hydrocarbons with C by molar mass; both stay where
  // they are above Tr = 20, where f has its maximum.
  const double Tr = std::min(T / c.Tc, 20.0);
  const double translational = 8.757 * (fast_exp(0.0464 * Tr) - fast_exp(-0.2412 * Tr));
  if (water) return translational / inverse_conductivity(c);
  const double C = c.M < 40.0 ? (0.003458 * c.M + 0.01688) * c.M - 0.03098 : 0.3013 * c.M - 5.8749;
  const double f = Tr * (-0.152 + Tr * (1.191 - 0.039 * Tr));
  return (translational + std::max(C, 0.0) * std::max(f, 0.0)) / inverse_conductivity(c);
}

StatusCode dilute_conductivity(double T, const Context& context, int i, const Critical& c,
                               double& lambda) noexcept {
  const MixtureRecord& mixture = *context.record;
  if (OwnHeatCapacity own; own_heat_capacity(mixture, i, own)) {
    lambda = corresponding_conductivity(T, c, false);
    return usable(lambda) ? KV_OK : KV_NOT_FINITE;
  }
  const bool water = is_water_family(mixture, i);
  const auto curve = [&](double t) { return corresponding_conductivity(t, c, water); };
  return dilute_value(*context.tools, PureProperty::GasThermalConductivity, T, cas_number(mixture, i), curve,
                      lambda);
}

double dense_viscosity(double rho_r) noexcept {
  // The fourth power of the polynomial less its value at 0, which the original leaves as a step of 1e-5.
  constexpr double c0 = 0.1023;
  const double p = c0 + rho_r * (0.023364 + rho_r * (0.058533 + rho_r * (-0.040758 + rho_r * 0.0093324)));
  return p * p * p * p - c0 * c0 * c0 * c0;
}

double dense_conductivity(double rho_r) noexcept {
  // Three exponentials; the additive constants of the second and third make them meet at 0.5 and 2.
  if (rho_r < 0.5) return 1.22e-2 * std::expm1(0.535 * rho_r);
  const double second_start = 1.22e-2 * std::expm1(0.535 * 0.5);
  if (rho_r < 2.0) return second_start + 1.14e-2 * (fast_exp(0.67 * rho_r) - fast_exp(0.67 * 0.5));
  const double third_start = second_start + 1.14e-2 * (fast_exp(0.67 * 2.0) - fast_exp(0.67 * 0.5));
  return third_start + 2.60e-3 * (fast_exp(1.155 * rho_r) - fast_exp(1.155 * 2.0));
}

StatusCode gas_viscosity(const Phase& p, double& viscosity) {
  const auto mean = [&](const Present& c, support::Arena& arena, double& value) {
    double* mu = arena.take(c.count);
    const StatusCode status = dilute_viscosities(p, c, arena, mu);
    if (has_values(status)) value = weighted_mean(c, mu, mu, arena);
    return status;
  };
  const auto dense = [](const Critical& m, double rho_r) {
    return dense_viscosity(rho_r) * viscosity_scale(m);
  };
  return gas_property(p, mean, dense, viscosity);
}

StatusCode gas_conductivity(const Phase& p, double& conductivity) {
  const auto mean = [&](const Present& c, support::Arena& arena, double& value) {
    double *lambda = arena.take(c.count), *mu = arena.take(c.count);
    StatusCode status = dilute_viscosities(p, c, arena, mu);
    for (int k = 0; k < c.count && has_values(status); ++k)
      status = graver(status, dilute_conductivity(p.T, p.context, c.index[k], c.at(k), lambda[k]));
    if (has_values(status)) value = weighted_mean(c, lambda, mu, arena);
    return status;
  };
  const auto dense = [](const Critical& m, double rho_r) {
    const double Z2 = m.Zc * m.Zc;
    return dense_conductivity(rho_r) / (inverse_conductivity(m) * Z2 * Z2 * m.Zc);
  };
  return gas_property(p, mean, dense, conductivity);
}

}  // namespace kestrune::eos
