// Ideal-gas properties of the components, by the pure-component library or by the columns of the table, and
// their sums.

#include "eos/ideal_gas.hpp"

#include <algorithm>
#include <cmath>

#include "support/status.hpp"

namespace kestrune::eos {
namespace {

using frame::PureProperty;

// Keeps the worst of the statuses: one without a value before one out of range. True when there is a value.
bool has_value(StatusCode one, StatusCode& all) {
  if (one == KV_OK) return true;
  all = one;
  return support::has_pure_value(one);
}

double heat_capacity_at(const OwnHeatCapacity& own, double T) {
  const double* c = own.cp;
  return c[0] + T * (c[1] + T * (c[2] + T * (c[3] + T * c[4])));
}

// Antiderivatives of the heat capacity over T and over ln T: their differences are the integrals. Beyond the
// range it keeps its value at the end.
double enthalpy_to(const OwnHeatCapacity& own, double T) {
  const double* c = own.cp;
  const double t = std::clamp(T, own.Tmin, own.Tmax);
  const double inside = t * (c[0] + t * (c[1] / 2 + t * (c[2] / 3 + t * (c[3] / 4 + t * c[4] / 5))));
  return inside + heat_capacity_at(own, t) * (T - t);
}
double entropy_to(const OwnHeatCapacity& own, double T) {
  const double* c = own.cp;
  const double t = std::clamp(T, own.Tmin, own.Tmax);
  const double inside = c[0] * std::log(t) + t * (c[1] + t * (c[2] / 2 + t * (c[3] / 3 + t * c[4] / 4)));
  return inside + heat_capacity_at(own, t) * std::log(T / t);
}

StatusCode own_ideal_gas(const OwnHeatCapacity& own, double T, int i, const IdealGas& out) {
  if (out.h != nullptr)
    out.h[i] = (enthalpy_to(own, T) - enthalpy_to(own, kEnthalpyBase)) / frame::kJoulePerCalorie;
  if (out.s != nullptr)
    out.s[i] = (entropy_to(own, T) - entropy_to(own, kEnthalpyBase)) / frame::kJoulePerCalorie;
  if (out.cp != nullptr)
    out.cp[i] = heat_capacity_at(own, std::clamp(T, own.Tmin, own.Tmax)) / frame::kJoulePerCalorie;
  return T < own.Tmin || T > own.Tmax ? KV_PURE_RANGE : KV_OK;
}

}  // namespace

bool own_heat_capacity(const MixtureRecord& mixture, int i, OwnHeatCapacity& out) noexcept {
  if (cas_number(mixture, i) != 0) return false;
  const auto column = [&](int k) { return mixture.table[static_cast<std::size_t>(k - 1) * mixture.count + i]; };
  out.Tmin = column(KV_COL_CP_TMIN);
  out.Tmax = column(KV_COL_CP_TMAX);
  bool good = out.Tmin > 0.0 && out.Tmax > out.Tmin && std::isfinite(out.Tmax);
  for (int k = 0; k < 5; ++k) {
    out.cp[k] = column(KV_COL_CP_A + k);
    good = good && std::isfinite(out.cp[k]);
  }
  return good;
}

std::int32_t cas_number(const MixtureRecord& mixture, int i) noexcept {
  const double number = mixture.table[static_cast<std::size_t>(KV_COL_CAS - 1) * mixture.count + i];
  return number > 0.0 && number < 2147483648.0 ? static_cast<std::int32_t>(number) : 0;
}

StatusCode ideal_gas_of(double T, const Context& context, int i, const IdealGas& out) noexcept {
  const MixtureRecord& mixture = *context.record;
  const auto pure_value = context.tools->pure_value;
  OwnHeatCapacity own;
  if (own_heat_capacity(mixture, i, own)) return own_ideal_gas(own, T, i, out);
  const std::int32_t cas = cas_number(mixture, i);
  StatusCode status = KV_OK, all = KV_OK;
  if (out.h != nullptr) {
    out.h[i] = pure_value(PureProperty::IdealGasSpecificHeatIT, cas, T, kEnthalpyBase, 0.0, status);
    if (!has_value(status, all)) return all;
  }
  if (out.s != nullptr) {
    out.s[i] = pure_value(PureProperty::IdealGasSpecificHeatTIT, cas, T, kEnthalpyBase, 0.0, status);
    if (!has_value(status, all)) return all;
  }
  if (out.cp != nullptr) {
    out.cp[i] = pure_value(PureProperty::IdealGasSpecificHeat, cas, T, 0.0, 0.0, status);
    if (!has_value(status, all)) return all;
  }
  return all;
}

StatusCode ideal_gas(double T, const Context& context, const double* x, unsigned parts, support::Arena& arena,
                     IdealGas& out) {
  const int n = context.record->count, ld = support::padded(n);
  out.h = (parts & kIdealH) != 0 ? arena.zeros(ld) : nullptr;
  out.s = (parts & kIdealS) != 0 ? arena.zeros(ld) : nullptr;
  out.cp = (parts & kIdealCp) != 0 ? arena.zeros(ld) : nullptr;
  StatusCode all = KV_OK;
  for (int i = 0; i < n; ++i) {
    if (!(x[i] >= kSmallestFraction)) continue;
    if (!has_value(ideal_gas_of(T, context, i, out), all)) return all;
  }
  return all;
}

double ideal_enthalpy(int n, const double* x, const IdealGas& g) noexcept {
  double sum = 0.0;
  for (int i = 0; i < n; ++i)
    if (x[i] > kSmallestFraction) sum += x[i] * g.h[i];
  return sum;
}

double ideal_entropy(int n, const double* x, double P, const IdealGas& g) noexcept {
  const double pressure = kCalR * std::log(P);
  double sum = 0.0;
  for (int i = 0; i < n; ++i)
    if (x[i] >= kSmallestFraction) sum += x[i] * (g.s[i] - pressure - kCalR * std::log(x[i]));
  return sum;
}

double ideal_heat_capacity(int n, const double* x, const IdealGas& g) noexcept {
  double sum = 0.0;
  for (int i = 0; i < n; ++i)
    if (x[i] > kSmallestFraction) sum += x[i] * g.cp[i];
  return sum;
}

}  // namespace kestrune::eos
