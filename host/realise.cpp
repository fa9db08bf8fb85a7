// From the description of a component or a fraction to the components of the calculation.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "definition.hpp"
#include "error.hpp"
#include "root.hpp"
#include "split.hpp"
#include "text.hpp"
#include "units.hpp"

namespace kestrune::host {

namespace {

double watson_factor(const PetroleumTools& tools, double Tb, double SG) {
  double Kw = 0.0;
  std::int32_t status = 0;
  tools.CalcKUOP(&Tb, &SG, &Kw, &status);
  if (status != 0)
    throw InputError(fmt::format("no Watson factor of a boiling point of {} K and SG {}", Tb, SG));
  return Kw;
}

// The boiling point at which the vapour pressure of [Lee75] is 1 atm.
double boiling_point_of(double Tc, double Pc, double omega) {
  return root_of(0.3 * Tc, Tc, [&](double T) {
    const double r = T / Tc, r6 = std::pow(r, 6.0), ln = std::log(r);
    const double p0 = 5.92714 - 6.09648 / r - 1.28862 * ln + 0.169347 * r6;
    const double p1 = 15.2518 - 15.6875 / r - 13.4721 * ln + 0.43577 * r6;
    return p0 + omega * p1 + std::log(Pc / kAtmInPa);
  });
}

const Component* by_cas(std::int32_t cas_number) {
  for (const Component& c : all_components())
    if (c.cas_number == cas_number) return &c;
  return nullptr;
}

// Molar mass of whole groups of carbon and hydrogen, the first 11 of the table; 0 with others. Atomic masses 12.011, 1.008.
double mass_of_groups(const Definition& d) {
  constexpr double masses[] = {15.035, 14.027, 13.019, 12.011, 16.043, 30.07,
                               13.019, 12.011, 12.011, 14.027, 13.019};
  double sum = 0.0;
  for (const auto& [group, count] : d.groups) {
    if (group > 11 || count != std::floor(count)) return 0.0;
    sum += count * masses[group - 1];
  }
  return sum;
}

std::int32_t number_of_cas(const std::string& cas) {
  std::int32_t number = 0;
  for (const char c : cas)
    if (c != '-') number = number * 10 + (c - '0');
  return number;
}

void set_structure(const Definition& d, double M, double Tb, double SG, Component& c,
                   std::vector<std::string>& notes) {
  const auto classes = [&](const ClassShares& x) { c.group_count = groups_of_classes(M, x, c.groups); };
  switch (d.structure) {
    case Structure::none:
      break;
    case Structure::groups: {
      // Shares of groups are what counts; whole numbers stay as they are.
      double total = 0.0;
      bool whole = true;
      for (const auto& [group, count] : d.groups) {
        total += count;
        whole = whole && count == std::floor(count) && count < 1000.0;
      }
      for (const auto& [group, count] : d.groups)
        c.groups[static_cast<std::size_t>(c.group_count++)] = {
            group, static_cast<int>(std::lround(whole ? count : 10000.0 * count / total))};
      break;
    }
    case Structure::paraffin:
      classes({1.0, 0.0, 0.0});
      break;
    case Structure::naphthene:
      classes({0.0, 1.0, 0.0});
      break;
    case Structure::aromatic:
      classes({0.0, 0.0, 1.0});
      break;
    case Structure::classes: {
      if (!d.shares && !(SG > 0.0))
        refuse(d, "structure = PNA needs SG, or PNA = shares of paraffins, naphthenes and aromatics");
      const ClassShares x = d.shares ? *d.shares : class_shares(M, Tb, SG);
      if (!d.shares && !d.fraction)
        notes.push_back(
            fmt::format("{}: {:.0f} % paraffins, {:.0f} % naphthenes, {:.0f} % aromatics from M and SG", c.name,
                        100.0 * x.paraffins, 100.0 * x.naphthenes, 100.0 * x.aromatics));
      classes(x);
      break;
    }
  }
}

Realised one_component(const Definition& d, const std::string& library_path) {
  Realised result;
  Component c;
  c.id = c.name = d.name;
  c.molar_mass = *d.M;
  std::vector<std::string>& notes = result.notes;
  double SG = d.SG.value_or(0.0), Tb = d.Tb.value_or(0.0);
  if (SG > 0.0 && Tb == 0.0 && !(d.Tc && d.omega)) Tb = boiling_point(*d.M, SG);
  double Kw = SG > 0.0 && Tb > 0.0 ? watson_factor(load_petroleum_tools(library_path), Tb, SG) : 0.0;
  std::vector<std::string> estimated;
  CriticalConstants critical{d.Tc.value_or(0.0), d.Pc.value_or(0.0), 0.0, 0.0};
  const Correlation correlation = d.correlation.value_or(Correlation::lee_kesler);
  if (!d.Tc) {
    critical = critical_constants(correlation, Tb, SG, Kw);
    notes.push_back(fmt::format("{}: Tc {:.2f} K, Pc {:.3f} bar by the correlation {} from {} and SG", d.name,
                                critical.Tc, critical.Pc / 1e5, correlation_name(correlation),
                                d.Tb ? "Tb" : "M"));
  }
  c.Tc = critical.Tc;
  c.Pc = critical.Pc;
  if (Tb >= c.Tc)
    refuse(d,
           fmt::format("its boiling point {:.2f} K is not below its critical temperature {:.2f} K", Tb, c.Tc));
  c.omega = d.omega ? *d.omega : acentric_factor(Tb, c.Tc, c.Pc, Kw > 0.0 ? Kw : 12.0);
  if (!d.omega)
    notes.push_back(
        fmt::format("{}: acentric factor {:.4f} from its boiling point (Lee and Kesler)", d.name, c.omega));
  c.Vc = d.Vc.value_or(critical.Vc);
  if (c.Vc > 0.0) c.Zc = c.Pc * c.Vc * 1e-6 / (8.31446261815324 * c.Tc);
  c.Tb = Tb;
  const std::int32_t cas = d.cas.empty() ? 0 : number_of_cas(d.cas);
  const Component* same = cas == 0 ? nullptr : by_cas(cas);
  if (same != nullptr && std::abs(*d.M / same->molar_mass - 1.0) > 0.02)
    refuse(d, fmt::format("CAS = {} is {} of {:.3f} g/mol, and M is {:g}: leave CAS out, or correct it", d.cas,
                          same->name, same->molar_mass, *d.M));
  const std::string known(same == nullptr ? "" : same->name);
  if (const double mass = mass_of_groups(d); mass > 0.0 && std::abs(mass / *d.M - 1.0) > 0.15)
    notes.push_back(
        fmt::format("{}: its groups weigh {:.1f} g/mol, and M is {:g}; of groups only their shares count",
                    d.name, mass, *d.M));
  c.cas = d.cas;
  if (!d.cp.empty()) {
    std::copy(d.cp.begin(), d.cp.end(), c.own_cp.c.begin());
    c.own_cp.Tmin = d.cp_Tmin;
    c.own_cp.Tmax = d.cp_Tmax;
  } else if (!known.empty()) {
    c.cas_number = cas;
    notes.push_back(fmt::format("{}: heat capacity and gas viscosity of {} (CAS {})", d.name, known, d.cas));
  } else {
    if (Tb == 0.0) Tb = boiling_point_of(c.Tc, c.Pc, c.omega);
    if (SG == 0.0) SG = gravity_of(Tb, c.Tc);
    if (SG == 0.0)
      refuse(d,
             "its ideal-gas heat capacity cannot be estimated (the estimate is for hydrocarbons): give Cp = A, "
             "B, ... in J/(mol K)");
    Kw = watson_factor(load_petroleum_tools(library_path), Tb, SG);
    c.own_cp = petroleum_heat_capacity(*d.M, Kw);
    notes.push_back(fmt::format(
        "{}: ideal-gas heat capacity estimated by Kesler and Lee (1976) for hydrocarbons, Watson factor {:.2f}",
        d.name, Kw));
  }
  set_structure(d, *d.M, Tb, SG, c, notes);
  result.parts.push_back({c, 1.0, 1.0});
  return result;
}

}  // namespace

void check_plausible(const Definition& d) {
  const auto within = [&](std::string_view what_it_is, const std::optional<double>& value, double low,
                          double high, std::string_view unit_name, double scale = 1.0) {
    if (value && !(*value / scale >= low && *value / scale <= high))
      refuse(d,
             fmt::format("{} is {:.6g} {}, and no component has one outside {:g} to {:g}: is the unit right?",
                         what_it_is, *value / scale, unit_name, low, high));
  };
  within("M", d.M, 1.0, 2000.0, "g/mol");
  within("Tc", d.Tc, 5.0, 1500.0, "K");
  within("Pc", d.Pc, 0.1, 500.0, "bar", 1e5);
  within("omega", d.omega, -0.5, 2.0, "(no unit)");
  for (const double T : {d.cp_Tmin, 0.5 * (d.cp_Tmin + d.cp_Tmax), d.cp_Tmax}) {
    double value = 0.0;
    for (std::size_t k = d.cp.size(); k-- > 0;) value = value * T + d.cp[k];
    if (!d.cp.empty() && !(value > 0.0))
      refuse(d, fmt::format(
                    "Cp is {:.5g} J/(mol K) at {:g} K, and must be above 0 in its whole range (Cp range = ...)",
                    value, T));
  }
}

Realised realise(const Definition& d, const std::string& library_path) {
  d.check();
  if (!d.fraction) return one_component(d, library_path);
  const PetroleumTools tools = load_petroleum_tools(library_path);
  const SplitFraction split = d.curve.empty() ? split_by_distribution(d) : split_by_curve(d, tools);
  Realised result;
  const Correlation correlation = d.correlation.value_or(Correlation::lee_kesler);
  int number = 0;
  for (const Cut& cut : split.cuts) {
    Component c;
    c.id = c.name = split.cuts.size() == 1 ? d.name : fmt::format("{} {}", d.name, ++number);
    c.fraction = d.name;
    c.molar_mass = cut.M;
    c.Tb = cut.Tb;
    const double cut_Kw = watson_factor(tools, cut.Tb, cut.SG);
    const CriticalConstants k = critical_constants(correlation, cut.Tb, cut.SG, cut_Kw);
    c.Tc = k.Tc;
    c.Pc = k.Pc;
    c.omega = k.omega;
    c.Vc = k.Vc;
    if (c.Vc > 0.0) c.Zc = c.Pc * c.Vc * 1e-6 / (8.31446261815324 * c.Tc);
    if (!(c.Tc > cut.Tb) || !(c.Pc > 0.0) || !std::isfinite(c.omega) || std::abs(c.omega) > 3.0)
      refuse(d, fmt::format("the correlation {} has no constants for its piece of {:.1f} g/mol; take another, "
                            "or fewer pieces",
                            correlation_name(correlation), cut.M));
    c.own_cp = petroleum_heat_capacity(cut.M, cut_Kw);
    Definition piece = d;
    if (piece.structure == Structure::none) piece.structure = Structure::classes;
    set_structure(piece, cut.M, cut.Tb, cut.SG, c, result.notes);
    result.parts.push_back({c, cut.moles, cut.mass});
  }
  // Hydrocarbons lie between 9.5 (condensed aromatics) and 13.5 (light paraffins).
  const double Kw = watson_factor(tools, split.Tb, *d.SG);
  if (Kw < 8.0 || Kw > 15.0)
    refuse(d, fmt::format("M {:.5g} and SG {:.4g} make a Watson factor of {:.2f}, which no petroleum has (9.5 "
                          "to 13.5): is one "
                          "of them wrong?",
                          split.M, *d.SG, Kw));
  if (Kw < 9.5 || Kw > 13.5)
    result.notes.push_back(
        fmt::format("{}: a Watson factor of {:.2f} is unusual (9.5 to 13.5): check M and SG", d.name, Kw));
  if (split.M_of_curve > 0.0 && std::abs(split.M / split.M_of_curve - 1.0) > 0.15)
    result.notes.push_back(fmt::format("{}: M is given as {:.5g}, and its boiling curve says {:.0f}", d.name,
                                       split.M, split.M_of_curve));
  result.notes.push_back(
      fmt::format("{} was split into {} ({}; M {:.5g}, SG {:.4g}, Watson factor {:.2f}), constants by {}, "
                  "heat capacity by Kesler and Lee (1976)",
                  d.name, split.cuts.size() == 1 ? "1 piece" : fmt::format("{} pieces", split.cuts.size()),
                  split.how, split.M, *d.SG, Kw, correlation_name(correlation)));
  return result;
}

}  // namespace kestrune::host
