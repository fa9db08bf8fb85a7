// Pure components: what the library of pure components has of one, with ranges and sources, and its values.
#include "pure.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "session.hpp"
#include "web.h"

using namespace kestrune;
using arrays::guarded;
using nlohmann::ordered_json;

namespace {

host::PureExports pure_library() {
  return host::load_pure_library(arrays::library_path());
}

host::PureProperty property_at(std::int32_t index) {
  const auto all = host::all_pure_properties();
  if (index < 0 || static_cast<std::size_t>(index) >= all.size())
    throw host::InputError("no such property of a pure component");
  return all[static_cast<std::size_t>(index)].property;
}

ordered_json properties_of(const host::Component& component) {
  const host::PureExports library = pure_library();
  ordered_json found = ordered_json::array();
  std::int32_t index = -1;
  for (const host::PurePropertyInfo& info : host::all_pure_properties()) {
    ++index;
    const host::PureRange range = host::range_of(library, component, info.property);
    if (!range.found) continue;
    found.push_back({{"index", index},
                     {"title", info.title},
                     {"quantity", host::quantity_name(info.quantity)},
                     {"T_min", range.T_min},
                     {"T_max", range.T_max},
                     {"source", range.source}});
  }
  return found;
}

}  // namespace

extern "C" int32_t kw_pure(const char* name, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const host::Component& c = host::find_component(name);
    const ordered_json all = {{"name", c.name},
                              {"formula", c.formula},
                              {"cas", c.cas},
                              {"molar_mass", c.molar_mass},
                              {"Tc", c.Tc},
                              {"Pc", c.Pc},
                              {"aliases", host::aliases_of(c)},
                              {"properties", properties_of(c)}};
    return arrays::copied(all.dump(), text, size);
  });
}

extern "C" int32_t kw_pure_values(const char* name, int32_t index, int32_t count, const double* T,
                                  double* values, int8_t* outside, char* text, int32_t size) {
  return guarded(text, size, [&] {
    const host::Component& component = host::find_component(name);
    const host::PureProperty property = property_at(index);
    const host::PureExports library = pure_library();
    for (std::int32_t i = 0; i < count; ++i) {
      const bool usable = T[i] > 0.0;
      const host::PureValue found = usable ? host::pure_value(library, component, property, T[i])
                                           : host::PureValue{host::kNone, false, {}};
      values[i] = found.value;
      outside[i] = found.outside ? 1 : 0;
    }
    return 0;
  });
}

extern "C" int32_t kw_pure_boiling(const char* name, int32_t count, const double* P, double* T, char* text,
                                   int32_t size) {
  return guarded(text, size, [&] {
    const host::Component& component = host::find_component(name);
    const host::PureExports library = pure_library();
    std::transform(P, P + count, T, [&](double p) {
      return p > 0.0 ? host::boiling_temperature(library, component, p) : host::kNone;
    });
    return 0;
  });
}
