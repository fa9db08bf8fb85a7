#include "batch/columns.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <set>

#include "error.hpp"
#include "text.hpp"

namespace kestrune::host::batch {

namespace {

using Kind = Column::Kind;

// Short names beside those of the list of properties.
constexpr struct {
  std::string_view name;
  Property property;
} kShort[] = {{"h", Property::enthalpy},
              {"s", Property::entropy},
              {"g", Property::free_enthalpy},
              {"sound", Property::speed_of_sound},
              {"conductivity", Property::conductivity}};

// The library has them of gases, which a dense fluid counts as.
constexpr Property kOfGas[] = {Property::viscosity,          Property::conductivity,
                               Property::normal_density,     Property::normal_volume,
                               Property::standard_density,   Property::standard_volume,
                               Property::standard_cubic_feet};

constexpr Property kOfWhole[] = {Property::density, Property::molar_volume, Property::enthalpy,
                                 Property::entropy, Property::free_enthalpy};

// "density_kg_m3" is the key of "density".
std::string name_of(const PropertyInfo& info) {
  std::string name(info.key);
  for (const std::string_view unit :
       {"_kg_m3", "_m3_mol", "_J_mol_K", "_J_mol", "_m_s", "_K_Pa", "_1_Pa", "_Pa_s", "_W_m_K"}) {
    if (name.size() > unit.size() && name.compare(name.size() - unit.size(), unit.size(), unit) == 0) {
      name.resize(name.size() - unit.size());
      break;
    }
  }
  return lower(name);
}

const PropertyInfo* property_by_name(const std::string& name) {
  for (const auto& known : kShort)
    if (known.name == name) return &all_properties()[static_cast<std::size_t>(known.property)];
  for (const PropertyInfo& info : all_properties())
    if (name_of(info) == name) return &info;
  return nullptr;
}

template <std::size_t n>
bool is_one_of(const Property (&list)[n], Property property) {
  return std::find(std::begin(list), std::end(list), property) != std::end(list);
}

class Maker {
 public:
  Maker(Given given, int phases, const Mixture& mixture, const UnitSystem& units)
      : given_(given), phases_(static_cast<std::size_t>(phases)), mixture_(mixture), units_(units) {}

  std::vector<Column> columns;

  void add(const std::string& written) {
    const std::string name = lower(trimmed(written));
    const std::size_t dot = name.find('.');
    if (dot != std::string::npos) return add_of_phase(written, name.substr(0, dot), name.substr(dot + 1));
    if (name == "t") return add_condition(Kind::T, "temperature_K", Quantity::temperature);
    if (name == "p") return add_condition(Kind::P, "pressure_Pa", Quantity::pressure);
    if (name == "given") return add_given();
    if (name == "status") return plain(Kind::status, "status");
    if (name == "text") return plain(Kind::text, "status_text");
    if (name == "phases") return plain(Kind::phases, "phases");
    if (name == "beta") return of_phase(Kind::fraction, kVapour, "vapour_fraction");
    if (name == "m") return plain(Kind::molar_mass, "molar_mass_g_mol");
    if (name == "z") return by_component(Kind::feed, 0, "z_");
    const PropertyInfo* info = property_by_name(name);
    const bool whole = info != nullptr && is_one_of(kOfWhole, info->property);
    if (info != nullptr && !whole)
      throw InputError(fmt::format("--columns: {0} is a property of a phase: vapour.{0}, liquid.{0}", written));
    if (!whole) unknown(written);
    add_property(Kind::whole, 0, "", *info);
  }

  // What was given beside temperature and pressure.
  void add_given() {
    const Quantity quantity = quantities_of(given_)[0];
    if (given_ == Given::TP || quantity == Quantity::vapour_fraction) return;
    const std::string_view key = quantity == Quantity::enthalpy ? "enthalpy_J_mol" : "entropy_J_mol_K";
    add_condition(Kind::given, "given_" + std::string(key), quantity);
  }

  void add_kept(const std::string& title, std::size_t index) {
    Column column{Kind::kept, title};
    column.index = index;
    columns.push_back(column);
  }

 private:
  [[noreturn]] void unknown(const std::string& written) const {
    throw InputError(fmt::format(
        "--columns: unknown \"{}\": use given, T, P, beta, phases, status, text, z, M, H, S, G, density, "
        "molar_volume, "
        "or vapour., dense., liquid., liquid2., aqueous. and fraction, x, M, Z, density, H, S, Cp, Cv, "
        "speed_of_sound, "
        "joule_thomson, viscosity, ...",
        written));
  }

  void plain(Kind kind, const std::string& heading) { columns.push_back({kind, heading}); }

  void of_phase(Kind kind, std::size_t phase, const std::string& heading) {
    columns.push_back({kind, heading});
    columns.back().phase = phase;
  }

  void by_component(Kind kind, std::size_t phase, const std::string& prefix) {
    for (std::size_t i = 0; i < mixture_.z.size(); ++i) {
      of_phase(kind, phase, prefix + std::string(mixture_.components[i].id));
      columns.back().index = i;
    }
  }

  void add_condition(Kind kind, const std::string& key, Quantity quantity) {
    columns.push_back({kind, column_name(key, quantity, units_[quantity]), &units_[quantity], quantity});
  }

  void add_property(Kind kind, std::size_t phase, const std::string& prefix, const PropertyInfo& info) {
    const Unit& unit = units_[info.quantity];
    columns.push_back({kind, prefix + column_name(info.key, info.quantity, unit),
                       info.quantity == Quantity::ratio ? nullptr : &unit, info.quantity, info.property,
                       phase});
  }

  void add_of_phase(const std::string& written, const std::string& phase_name, const std::string& name) {
    const auto found = std::find(std::begin(kPlaceNames), std::end(kPlaceNames), phase_name);
    if (found == std::end(kPlaceNames)) unknown(written);
    const auto phase = static_cast<std::size_t>(found - std::begin(kPlaceNames));
    if (phase == kLiquid2 && phases_ == 2)
      throw InputError(fmt::format("--columns: {} needs --phases 3", written));
    const std::string prefix = phase_name + ".";
    if (name == "fraction") return of_phase(Kind::fraction, phase, prefix + "fraction");
    if (name == "m") return of_phase(Kind::phase_mass, phase, prefix + "molar_mass_g_mol");
    if (name == "x" || name == "y") return by_component(Kind::composition, phase, prefix + "x_");
    const PropertyInfo* info = property_by_name(name);
    if (info == nullptr) unknown(written);
    if (is_one_of(kOfGas, info->property) && phase != kVapour && phase != kDense)
      throw InputError(
          fmt::format("--columns: {0} is always empty: a liquid has no {1}, only vapour.{1} and dense.{1} do",
                      written, name));
    add_property(Kind::phase_property, phase, prefix, *info);
  }

  Given given_;
  std::size_t phases_;
  const Mixture& mixture_;
  const UnitSystem& units_;
};

}  // namespace

std::vector<Column> columns_by_name(std::string_view names, const std::vector<std::string>& kept, Given given,
                                    int phases, const Mixture& mixture, const UnitSystem& units) {
  Maker maker(given, phases, mixture, units);
  for (std::size_t k = 0; k < kept.size(); ++k) maker.add_kept(kept[k], k);
  const bool usual = trimmed(names).empty();
  if (usual) maker.add_given();
  for (const std::string& name : split(usual ? "T,P,phases,beta,status,text" : names, ',')) maker.add(name);
  std::set<std::string_view> headings;
  for (const Column& c : maker.columns)
    if (!headings.insert(c.heading).second)
      throw InputError(fmt::format("the column {} is asked for twice", c.heading));
  return maker.columns;
}

unsigned wanted_of_phase(const std::vector<Column>& columns, std::size_t phase) {
  unsigned wanted = 0;
  for (const Column& c : columns) {
    const auto bit = [](Property p) { return 1u << static_cast<unsigned>(p); };
    if (c.kind == Kind::whole)
      wanted |= bit(c.property == Property::density ? Property::molar_volume : c.property);
    if (c.kind == Kind::phase_property && c.phase == phase) wanted |= bit(c.property);
  }
  return wanted;
}

bool tell_dense(const std::vector<Column>& columns) {
  return std::any_of(columns.begin(), columns.end(), [](const Column& c) {
    const bool of_phase = c.kind == Kind::fraction || c.kind == Kind::phase_mass ||
                          c.kind == Kind::phase_property || c.kind == Kind::composition;
    return c.kind == Kind::phases || c.kind == Kind::whole ||
           (of_phase && (c.phase == kDense || c.phase == kLiquid || c.phase == kLiquid2));
  });
}

}  // namespace kestrune::host::batch
