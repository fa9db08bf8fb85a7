#include "scenario.hpp"

#include <cmath>
#include <cstdio>
#include <numeric>

namespace kestrune::fuzz {
namespace {

constexpr int kLightComponents = 24;  // the first ones of the databank: gases, water, light hydrocarbons

// Fields of the record by their offsets: a packed record knows no references.
struct Setting {
  const char* name;
  std::size_t offset;
  bool integer = false;
};
#define KV_SETTING(field, ...) \
  { #field, offsetof(MixtureRecord, field) __VA_OPT__(, ) __VA_ARGS__ }
constexpr Setting kSettings[] = {
    KV_SETTING(CRIT),           KV_SETTING(CLIM),          KV_SETTING(EPS),
    KV_SETTING(ITEMAX, true),   KV_SETTING(NEW, true),     KV_SETTING(relaxation),
    KV_SETTING(pure_tolerance), KV_SETTING(sum_tolerance), KV_SETTING(solubility_a),
    KV_SETTING(solubility_b)};
#undef KV_SETTING

int draw_count(Choices& choices) {
  const int share = choices.below(256);
  if (share < 236) return 1 + choices.below(12);
  if (share < 255) return 13 + choices.below(28);
  return choices.chance(5) ? 200 : 41 + choices.below(40);
}

// Never one that stands in the databank for its gas data alone: the command line refuses it before any call.
const host::Component& draw_component(Choices& choices) {
  const auto all = host::all_components();
  const bool light = !choices.chance(30);
  for (;;) {
    const int which = choices.below(light ? kLightComponents : static_cast<int>(all.size()));
    const host::Component& c = all[static_cast<std::size_t>(which)];
    if (std::isfinite(c.omega)) return c;
  }
}

host::Composition draw_components(Choices& choices) {
  host::Composition c;
  const int n = draw_count(choices);
  for (int i = 0; i < n; ++i) c.components.push_back(draw_component(choices));
  if (choices.chance(30))
    c.components[static_cast<std::size_t>(choices.below(n))] = host::find_component("water");
  c.amounts.assign(c.components.size(), 1.0);
  return c;
}

}  // namespace

std::string shown(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  char brief[40];
  std::snprintf(brief, sizeof brief, "%g", value);
  return std::strtod(brief, nullptr) == value ? brief : text;
}

Scenario::Scenario(Choices& choices)
    : mixture(host::build_mixture(draw_components(choices),
                                  host::interaction_set(choices.chance(10) ? "original" : "2022"))) {
  lay_out(choices);
  draw_feed(choices);
  draw_settings(choices);
  if (choices.chance(20)) draw_flaw(choices);
  int converted = n();
  if (flaw.empty() && choices.chance(1)) {
    sound_model = false;
    converted = choices.pick({0, -1, INT32_MIN});
    flaw = "group data converted for " + std::to_string(converted) + " components";
  }
  hand_over(converted);
}

Scenario::Scenario(const host::Composition& composition, std::uint8_t flags, const char* set)
    : mixture(host::build_mixture(composition, host::interaction_set(set))) {
  Choices none(nullptr, 0);
  lay_out(none);
  *record = mixture.record;
  record->table = table;
  record->flags = flags;
  mixture.z = composition.amounts;
}

void Scenario::lay_out(Choices& choices) {
  record = static_cast<MixtureRecord*>(zones.bytes(sizeof(MixtureRecord), choices.chance(30) ? 3 : 0));
  table = zones.array<double>(mixture.table.size());
  std::copy(mixture.table.begin(), mixture.table.end(), table);
}

Scenario::~Scenario() {
  // The library keeps the addresses of the buffers: take them away before the buffers go.
  ConvertPPR78GroupData(0, 0, nullptr, nullptr, nullptr, nullptr);
}

void Scenario::draw_feed(Choices& choices) {
  std::vector<double>& z = mixture.z;
  const int manner = choices.below(8);  // 0 .. 4 anything, 5 with absent ones, 6 with traces, 7 nearly pure
  for (double& v : z) {
    v = manner == 0 ? 0.05 + choices.unit() : -std::log1p(-choices.unit());
    if (manner == 5 && choices.chance(40)) v = 0.0;
    if (manner == 6 && choices.chance(40))
      v = choices.pick({1e-6, 1e-9, 1e-12, 1e-15, 1e-16, 1e-20, 1e-100, 1e-300});
  }
  if (manner == 7) z[static_cast<std::size_t>(choices.below(n()))] += choices.pick({1e3, 1e6, 1e9, 1e12, 1e15});
  double sum = std::accumulate(z.begin(), z.end(), 0.0);
  if (!(sum > 0.0)) sum = z[0] = 1.0;
  for (double& v : z) v /= sum;
}

void Scenario::draw_settings(Choices& choices) {
  *record = mixture.record;
  record->table = table;
  record->flags = static_cast<std::uint8_t>(choices.pick({0, 1, 0x81, 0x80, 0, 1}));
  if (choices.chance(70)) {
    record->solubility_a = choices.between(-2.0, 25.0);
    record->solubility_b = choices.between(0.0, 8000.0);
  }
  if (choices.chance(1)) {
    record->trace_flag = choices.pick({1, 2});
    record->trace_unit = choices.pick({99, -1, INT32_MIN});
  }
  const int manner = choices.below(10);
  if (manner == 6 || manner == 7)
    std::memset(reinterpret_cast<std::uint8_t*>(record) + 61, 0, sizeof *record - 61);
  if (manner < 8) return;
  record->CRIT = choices.even_in_logarithm(1e-18, 1e-6);
  record->CLIM = choices.pick({1e10, 0.0, 1.0, 1e-3});
  record->EPS = choices.even_in_logarithm(1e-12, 1e-2);
  record->ITEMAX = choices.pick({200, 20, 50, 1000, 10000});
  record->NEW = choices.pick({0, 1, 5});
  record->relaxation = choices.between(0.3, 1.2);
  record->pure_tolerance = choices.even_in_logarithm(1e-16, 1e-3);
  record->sum_tolerance = choices.even_in_logarithm(1e-12, 1e-2);
}

void Scenario::draw_flaw(Choices& choices) {
  const int kind = choices.below(6), component = choices.below(n());
  sound_model = kind == 2;
  if (kind <= 1) {
    const int column = choices.pick<int>({KV_COL_TC, KV_COL_PC, KV_COL_OMEGA, KV_COL_VC, KV_COL_ZC,
                                          KV_COL_MOLAR_MASS, KV_COL_FAMILY, KV_COL_CAS, KV_COL_MELTING_POINT,
                                          KV_COL_BOILING_POINT, KV_COL_TMIN_PSAT, KV_COL_DIPOLE});
    double& value = at(component, column);
    value = choices.chance(40) ? value * choices.pick({0.5, 2.0, 1e-3, 1e3, 1e-9, 1e9}) : choices.absurd();
    sound_model = column > KV_COL_OMEGA || column < KV_COL_TC;
    flaw = "column " + std::to_string(column) + " of component " + std::to_string(component + 1) + " = " +
           shown(value);
  } else if (kind == 2) {
    const Setting& s = kSettings[choices.below(static_cast<int>(std::size(kSettings)))];
    const double value = choices.absurd();
    const std::int32_t integer = choices.absurd_integer();
    auto* const place = reinterpret_cast<std::uint8_t*>(record) + s.offset;
    s.integer ? std::memcpy(place, &integer, sizeof integer) : std::memcpy(place, &value, sizeof value);
    flaw = s.name;
  } else if (kind == 3) {
    std::vector<double>& data = choices.chance(50) ? mixture.A : mixture.B;
    const auto entry = static_cast<std::size_t>(choices.below(static_cast<int>(data.size())));
    data[entry] = choices.absurd();
    flaw = std::string(&data == &mixture.A ? "A[" : "B[") + std::to_string(entry) + "] = " + shown(data[entry]);
  } else if (kind == 4) {
    const auto entry = static_cast<std::size_t>(choices.below(static_cast<int>(mixture.counts.size())));
    mixture.counts[entry] = choices.absurd_integer();
    flaw = "counts[" + std::to_string(entry) + "] = " + std::to_string(mixture.counts[entry]);
  } else {
    record->count = choices.pick({0, -1, INT32_MIN, INT32_MAX, 10001, n() > 1 ? n() - 1 : 0});
    flaw = "count = " + std::to_string(record->count);
  }
}

void Scenario::hand_over(int components) {
  const auto nC = static_cast<std::size_t>(n()), nG = mixture.groups.size();
  const std::size_t sizes[6] = {0, nG * nG, nG * nG, nC * nG, nG * nG, nG * nC * nC};
  double* storage[6];
  for (int k = 0; k < 6; ++k) storage[k] = buffers.array<double>(sizes[k]);
  ConvertPPR78GroupData(components, mixture.group_count(), mixture.counts.data(), mixture.A.data(),
                        mixture.B.data(), storage);
}

std::string Scenario::text() const {
  std::string text;
  for (int i = 0; i < n(); ++i)
    text += (i > 0 ? "," : "") + std::string(mixture.components[static_cast<std::size_t>(i)].id);
  if (mixture.set_name != "2022") text += " set=" + std::string(mixture.set_name);
  text += " flags=" + std::to_string(record->flags);
  for (const Setting& s : kSettings) {
    const auto* const place = reinterpret_cast<const std::uint8_t*>(record) + s.offset;
    if (std::memcmp(place, reinterpret_cast<const std::uint8_t*>(&mixture.record) + s.offset,
                    s.integer ? 4 : 8) == 0)
      continue;
    double value;
    std::int32_t integer;
    std::memcpy(&value, place, sizeof value);
    std::memcpy(&integer, place, sizeof integer);
    text += std::string(" ") + s.name + "=" + shown(s.integer ? integer : value);
  }
  if (!flaw.empty()) text += " FLAW " + flaw;
  return text;
}

std::vector<double> spoiled(Choices& choices, std::vector<double> z, std::string& flaw) {
  double& entry = z[static_cast<std::size_t>(choices.below(static_cast<int>(z.size())))];
  const int kind = choices.below(4);
  if (kind == 0) {
    const double factor = 1.0 + choices.pick({1e-9, -1e-9, 1e-7, 1e-5, -1e-3, 0.1, -0.5, 1.0, 2.0});
    for (double& v : z) v *= factor;
  } else if (kind == 1) {
    entry = choices.absurd();
  } else if (kind == 2) {
    const double all = choices.pick({0.0, 1e-300, 1e-310, 1e300, 1e-20, 1e20});
    for (double& v : z) v = all;
  } else {
    entry += choices.pick({1e-9, 1e-6, 1e-4, 0.01, 1.0, 1e9, -1e-9, -1e-3});
  }
  flaw = "feed";
  return z;
}

}  // namespace kestrune::fuzz
