#include "eos/ideal_gas.hpp"

#include <cmath>

#include "frame/provider.hpp"

namespace kestrune::eos {
namespace {

using frame::PureProperty;

// Keeps the worst of the statuses: one without a value before one out of range. True when there is a value.
bool has_value(StatusCode one, StatusCode& all) {
  if (one == KV_OK) return true;
  all = one;
  return one == KV_PURE_RANGE;
}

}  // namespace

std::int32_t cas_number(const MixtureRecord& mixture, int i) noexcept {
  const double number = mixture.table[static_cast<std::size_t>(KV_COL_CAS - 1) * mixture.count + i];
  return number > 0.0 && number < 2147483648.0 ? static_cast<std::int32_t>(number) : 0;
}

StatusCode ideal_gas_of(double T, const MixtureRecord& mixture, int i, const IdealGas& out) noexcept {
  const std::int32_t cas = cas_number(mixture, i);
  StatusCode status = KV_OK, all = KV_OK;
  if (out.h != nullptr) {
    out.h[i] = frame::pure_value(PureProperty::IdealGasSpecificHeatIT, cas, T, kEnthalpyBase, 0.0, status);
    if (!has_value(status, all)) return all;
  }
  if (out.s != nullptr) {
    out.s[i] = frame::pure_value(PureProperty::IdealGasSpecificHeatTIT, cas, T, kEnthalpyBase, 0.0, status);
    if (!has_value(status, all)) return all;
  }
  if (out.cp != nullptr) {
    out.cp[i] = frame::pure_value(PureProperty::IdealGasSpecificHeat, cas, T, status);
    if (!has_value(status, all)) return all;
  }
  return all;
}

StatusCode ideal_gas(double T, const MixtureRecord& mixture, const double* x, unsigned parts,
                     support::Arena& arena, IdealGas& out) {
  const int n = mixture.count, ld = support::padded(n);
  out.h = (parts & kIdealH) != 0 ? arena.zeros(ld) : nullptr;
  out.s = (parts & kIdealS) != 0 ? arena.zeros(ld) : nullptr;
  out.cp = (parts & kIdealCp) != 0 ? arena.zeros(ld) : nullptr;
  StatusCode all = KV_OK;
  for (int i = 0; i < n; ++i) {
    if (!(x[i] >= kSmallestFraction)) continue;
    if (!has_value(ideal_gas_of(T, mixture, i, out), all)) return all;
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
