#include "commands/envelope_report.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "commands/session.hpp"
#include "table.hpp"

namespace kestrune::host {

namespace {

using nlohmann::ordered_json;

std::string place_in_words(const UnitSystem& units, const CurvePlace& p) {
  if (!p.found()) return "none";
  const Unit &T = units[Quantity::temperature], &P = units[Quantity::pressure];
  return fmt::format("{:.3f} {}, {} {}", T.from_base(p.T), T.name,
                     shown_fixed(P.from_base(p.P), P.name == "Pa" ? 0 : 4), P.name);
}

std::string status_text(StatusCode status) {
  return status == KV_OK ? kv_status_text(status) : fmt::format("{}: {}", status, kv_status_text(status));
}

std::string title_of(const Curve& curve) {
  return curve.fraction == 1.0 ? "Bubble and dew curve" : fmt::format("Vapour fraction {:g}", curve.fraction);
}

ordered_json place_json(const CurvePlace& p) {
  if (!p.found()) return nullptr;
  return {{"temperature_K", p.T}, {"pressure_Pa", p.P}};
}

}  // namespace

std::vector<CurvePlace> further_critical(const EnvelopeReport& r) {
  constexpr double kSame = 1e-6;
  std::vector<CurvePlace> places = critical_places(r.curves.front());
  const auto first = [&](const CurvePlace& p) {
    return r.critical.status == KV_OK && std::fabs(p.T / r.critical.T - 1.0) < kSame &&
           std::fabs(p.P / r.critical.P - 1.0) < kSame;
  };
  places.erase(std::remove_if(places.begin(), places.end(), first), places.end());
  return places;
}

std::vector<std::string> notes_of(const EnvelopeReport& r) {
  std::vector<std::string> notes = remarks(r.mixture);
  for (std::size_t i = 0; i < r.mixture.z.size(); ++i) {
    if (r.mixture.components[i].family != KV_FAMILY_WATER || !(r.mixture.z[i] > 0.0)) continue;
    notes.emplace_back(
        "water by the group interactions, as in a flash; for the dew points of water in a gas kestrune water "
        "--line is "
        "the one to trust (docs/water.md)");
  }
  return notes;
}

void print_envelope_text(const EnvelopeReport& r, std::ostream& out) {
  const Mixture& m = r.mixture;
  const Unit &T = r.units[Quantity::temperature], &P = r.units[Quantity::pressure];
  out << fmt::format("Mixture         {}{}{} component{}, PPR78 with the group interactions of set {}\n",
                     m.title, m.title.empty() ? "" : ", ", m.count(), m.count() == 1 ? "" : "s", m.set_name);
  for (const std::string& line : notes_of(r)) out << "Note            " << line << '\n';
  const CurvePlace critical{r.critical.T, r.critical.P};
  out << "Critical point  "
      << (r.critical.status == KV_OK
              ? fmt::format("{}, {:.3f} cm3/mol, Z {:.5f}", place_in_words(r.units, critical),
                            1e6 * r.critical.V, r.critical.Z)
              : status_text(r.critical.status))
      << '\n';
  for (const CurvePlace& place : further_critical(r)) {
    out << "  further one   " << place_in_words(r.units, place) << '\n';
  }
  for (const Curve& curve : r.curves) {
    if (&curve == &r.curves.front()) {
      out << "Cricondentherm  " << place_in_words(r.units, curve.cricondentherm) << '\n'
          << "Cricondenbar    " << place_in_words(r.units, curve.cricondenbar) << '\n';
    }
    out << fmt::format("\n{}: {}\n", title_of(curve), status_text(curve.status));
    if (curve.points.empty()) continue;
    Table table({fmt::format("T {}", T.name), fmt::format("P {}", P.name), "point"}, "rrl");
    for (const CurvePoint& p : curve.points) {
      table.add({shown_fixed(T.from_base(p.T), 3), shown_fixed(P.from_base(p.P), P.name == "Pa" ? 0 : 4),
                 kind_in_words(curve, p)});
    }
    table.print(out);
  }
}

void print_envelope_csv(const EnvelopeReport& r, std::ostream& out) {
  const Unit &of_T = r.units[Quantity::temperature], &of_P = r.units[Quantity::pressure];
  out << fmt::format("{},{},point,vapour_fraction,kind\n",
                     column_name("temperature_K", Quantity::temperature, of_T),
                     column_name("pressure_Pa", Quantity::pressure, of_P));
  const auto row = [&](double T, double P, const std::string& point, double fraction, double kind) {
    out << fmt::format("{},{},{},{},{}\n", exact(T, of_T), exact(P, of_P), csv_field(point), fraction, kind);
  };
  for (const Curve& curve : r.curves) {
    for (const CurvePoint& p : curve.points) row(p.T, p.P, kind_in_words(curve, p), curve.fraction, p.kind);
  }
}

void print_envelope_json(const EnvelopeReport& r, std::ostream& out) {
  const Curve& outline = r.curves.front();
  ordered_json root{{"mixture", r.mixture.title},
                    {"set", r.mixture.set_name},
                    {"notes", notes_of(r)},
                    {"critical_point", nullptr},
                    {"critical_point_status", r.critical.status},
                    {"further_critical_points", ordered_json::array()},
                    {"cricondentherm", place_json(outline.cricondentherm)},
                    {"cricondenbar", place_json(outline.cricondenbar)},
                    {"curves", ordered_json::array()}};
  if (r.critical.status == KV_OK) {
    root["critical_point"] = {{"temperature_K", r.critical.T},
                              {"pressure_Pa", r.critical.P},
                              {"molar_volume_m3_mol", r.critical.V},
                              {"Z", r.critical.Z}};
  }
  for (const CurvePlace& place : further_critical(r)) {
    root["further_critical_points"].push_back(place_json(place));
  }
  for (const Curve& curve : r.curves) {
    ordered_json points = ordered_json::array();
    for (const CurvePoint& p : curve.points) {
      points.push_back(
          {{"temperature_K", p.T}, {"pressure_Pa", p.P}, {"point", kind_in_words(curve, p)}, {"kind", p.kind}});
    }
    root["curves"].push_back({{"vapour_fraction", curve.fraction},
                              {"status", curve.status},
                              {"status_text", kv_status_text(curve.status)},
                              {"points", points}});
  }
  out << root.dump(2) << '\n';
}

}  // namespace kestrune::host
