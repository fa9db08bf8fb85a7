// The property exports of one phase as functions of T, P and x.
#ifndef KESTRUNE_TESTS_PHASE_CALLS_HPP
#define KESTRUNE_TESTS_PHASE_CALLS_HPP

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "common/mixture.hpp"

namespace kestrune::tests {

inline constexpr double kR = 82.057;  // cm3 atm/(mol K)
inline constexpr double kCalPerCm3Atm = 0.0242173124;
inline constexpr double kCalR = 1.9872;  // cal/(mol K)
inline constexpr double kJoule = 4.184;  // per cal

struct Density {
  StatusCode status = -1;
  double value = 0, dT = 0, dP = 0, dTdP = 0;
};
struct Derivatives {
  StatusCode status = -1;
  double value = 0, dT = 0, dP = 0;
  std::vector<double> dn;
};
struct Heat {
  StatusCode status = -1;
  double Cp = 0, Cv = 0, w = 0, JT = 0;
};
struct Normal {
  StatusCode status = -1;
  double Z = 0, Z_normal = 0, density = 0, volume = 0;
};

using ValueExport = decltype(&GasMolarEnthalpy_PPR78);

// A phase of a mixture at a state; copies share the mixture and its buffers.
struct Phase {
  std::shared_ptr<Mixture> m;
  std::vector<double> x;
  double T = 300, P = 1;
  int kind = KV_PHASE_GAS;

  Phase(const std::vector<std::string>& ids, std::vector<double> fractions)
      : m(std::make_shared<Mixture>(mixture_of(ids))), x(std::move(fractions)) {
    m->use();
  }
  Phase at(double t, double p, int phase) const {
    Phase other = *this;
    other.T = t;
    other.P = p;
    other.kind = phase;
    return other;
  }
  bool gas() const { return kind == KV_PHASE_GAS; }
  double call(ValueExport of_gas, ValueExport of_liquid, StatusCode* status) const {
    double value = -7;
    const StatusCode got = (gas() ? of_gas : of_liquid)(T, P, x.data(), &m->record, &value);
    if (status != nullptr) *status = got;
    return value;
  }
  double H(StatusCode* status = nullptr) const {
    return call(GasMolarEnthalpy_PPR78, LiquidMolarEnthalpy_PPR78, status);
  }
  double S(StatusCode* status = nullptr) const {
    return call(GasMolarEntropy_PPR78, LiquidMolarEntropy_PPR78, status);
  }
  double G(StatusCode* status = nullptr) const {
    return call(GasMolarFreeEnthalpy_PPR78, LiquidMolarFreeEnthalpy_PPR78, status);
  }
  Derivatives derivatives(char property, int mask = 7) const {
    Derivatives d;
    d.dn.assign(x.size(), 0.0);
    const auto entry =
        property == 'H' ? (gas() ? GasMolarEnthalpy_Derivatives_PPR78 : LiquidMolarEnthalpy_Derivatives_PPR78)
                        : (gas() ? GasMolarEntropy_Derivatives_PPR78 : LiquidMolarEntropy_Derivatives_PPR78);
    d.status = entry(T, P, x.data(), &m->record, mask, &d.value, &d.dT, &d.dP, d.dn.data());
    return d;
  }
  Density density() const {
    Density d;
    d.status = (gas() ? GasDensity_PPR78 : LiquidDensity_PPR78)(T, P, x.data(), &m->record, &d.value, &d.dT,
                                                                &d.dP, &d.dTdP);
    return d;
  }
  Heat heat() const {
    Heat h;
    h.status = GasSpecificHeat_PPR78(T, P, x.data(), &m->record, &h.Cp, &h.Cv, &h.w, &h.JT);
    return h;
  }
  Normal normal() const {
    Normal n;
    n.status = GasN(T, P, x.data(), &m->record, &n.Z, &n.Z_normal, &n.density, &n.volume);
    return n;
  }
  double viscosity(StatusCode* status = nullptr) const {
    return call(GasDynamicViscosity_PPR78, GasDynamicViscosity_PPR78, status);
  }
  double conductivity(StatusCode* status = nullptr) const {
    return call(GasThermalConductivity_PPR78, GasThermalConductivity_PPR78, status);
  }
  double molar_mass() const {
    double M = 0;
    MolecularWeight(m->n, x.data(), &m->table[static_cast<std::size_t>(m->n)], &M);
    return M;
  }
};

// The first derivative of f at `at` by seven points with a distance of h, sixth order.
template <class F>
double slope(F&& f, double at, double h) {
  return (45 * (f(at + h) - f(at - h)) - 9 * (f(at + 2 * h) - f(at - 2 * h)) + f(at + 3 * h) - f(at - 3 * h)) /
         (60 * h);
}

}  // namespace kestrune::tests

#endif
