#include "machine.hpp"

#include <fmt/format.h>

#include <cmath>

namespace kestrune::host {

namespace {

double of_whole(const Equilibrium& s, Property property) {
  return s.overall.properties[property];
}

// One fluid on its way through a machine.
struct Way {
  const Exports& library;
  Mixture& mixture;
  const Machine& machine;
  StatusCode status = KV_OK;

  // The state at a given enthalpy (J/mol) or entropy (J/(mol K)) and a pressure, Pa.
  Equilibrium at(Given given, double value, double P) {
    Equilibrium s = flash_of_all(library, mixture, given, value, P);
    if (!s.answered() && status == KV_OK) status = s.status;
    return s;
  }

  double share(double ideal) const {
    return machine.kind == MachineKind::compressor ? ideal / machine.efficiency : ideal * machine.efficiency;
  }

  // dH/d(ln P), J/mol
  double slope(double H, double lnP) {
    const double P = std::exp(lnP);
    return share(P * of_whole(at(Given::HP, H, P), Property::molar_volume));
  }

  // Enthalpy at the end of a polytropic path of n Runge-Kutta steps.
  double polytropic_end(double H, double P_in, double P_out, int n) {
    const double h = std::log(P_out / P_in) / n;
    double x = std::log(P_in);
    for (int i = 0; i < n && status == KV_OK; ++i, x += h) {
      const double a = slope(H, x), b = slope(H + 0.5 * h * a, x + 0.5 * h),
                   c = slope(H + 0.5 * h * b, x + 0.5 * h), d = slope(H + h * c, x + h);
      H += h / 6.0 * (a + 2.0 * b + 2.0 * c + d);
    }
    return H;
  }

  double polytropic_enthalpy(double H, double P_in, double P_out) {
    constexpr int most = 64;
    constexpr double same = 1e-6;  // of the work
    double before = polytropic_end(H, P_in, P_out, 1);
    for (int n = 2; n <= most && status == KV_OK; n *= 2) {
      const double now = polytropic_end(H, P_in, P_out, n);
      if (std::fabs(now - before) <= same * std::fabs(now - H)) return now;
      before = now;
    }
    return before;
  }

  double isentropic_enthalpy(const Equilibrium& inlet, double P) {
    return of_whole(at(Given::SP, of_whole(inlet, Property::entropy), P), Property::enthalpy);
  }

  // Enthalpy behind the machine.
  double outlet_enthalpy(const Equilibrium& inlet, double P) {
    const double H = of_whole(inlet, Property::enthalpy);
    if (machine.kind == MachineKind::valve) return H;
    if (machine.path == Path::polytropic) return polytropic_enthalpy(H, inlet.P, P);
    return H + share(isentropic_enthalpy(inlet, P) - H);
  }
};

void add_station(MachineResult& result, const std::string& name, const Equilibrium& state, bool cooled,
                 bool valve) {
  const double change =
      valve ? 0.0 : of_whole(state, Property::enthalpy) - of_whole(result.outlet(), Property::enthalpy);
  result.stations.push_back({name, state, cooled ? 0.0 : change, cooled ? change : 0.0});
  (cooled ? result.heat : result.work) += change;
}

}  // namespace

MachineResult run_machine(const Exports& library, Mixture& mixture, const Machine& machine,
                          const Equilibrium& inlet, double P) {
  Way way{library, mixture, machine};
  MachineResult result{P, {{"inlet", inlet}}};
  const double ratio = std::pow(P / inlet.P, 1.0 / machine.stages);
  for (int stage = 1; stage <= machine.stages; ++stage) {
    const Equilibrium from = result.outlet();
    const double to = stage == machine.stages ? P : from.P * ratio;
    const double H = way.outlet_enthalpy(from, to);
    if (way.status != KV_OK) break;
    Equilibrium out = way.at(Given::HP, H, to);
    add_station(result, machine.stages > 1 ? fmt::format("stage {}", stage) : "outlet", out, false,
                machine.kind == MachineKind::valve);
    if (way.status != KV_OK || stage == machine.stages || std::isnan(machine.cooling_T)) continue;
    out = way.at(Given::TP, machine.cooling_T, to);
    add_station(result, fmt::format("cooler {}", stage), out, true, false);
  }
  result.status = way.status;
  if (way.status == KV_OK && machine.stages == 1 && machine.kind != MachineKind::valve) {
    const double ideal = way.isentropic_enthalpy(inlet, P) - of_whole(inlet, Property::enthalpy);
    result.isentropic_efficiency =
        machine.kind == MachineKind::compressor ? ideal / result.work : result.work / ideal;
  }
  return result;
}

}  // namespace kestrune::host
