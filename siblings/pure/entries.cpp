// The exported entries: arguments are checked, the databank is asked, the answer is copied out. Nothing here
// or below throws.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "pure/databank.hpp"
#include "pure/entry.hpp"

namespace {

using namespace kestrune::pure;  // NOLINT: this file is the boundary of that namespace

constexpr int unit_length = 15;
constexpr int source_length = 60;
constexpr int32_t longest_folder = 1024;

// The in and out arguments that every property entry shares.
struct Call {
  const int32_t* cas;
  const double* t;
  const int32_t* table;
  int32_t* status;
  double* result;
  char* unit;
};

// Unit text as it is handed out: blank-padded, no terminating zero.
struct Unit {
  char text[unit_length];
};

template <std::size_t n>
constexpr Unit padded(const char (&name)[n]) {
  static_assert(n - 1 <= unit_length);
  Unit u{};
  for (int i = 0; i < unit_length; ++i) u.text[i] = i < static_cast<int>(n) - 1 ? name[i] : ' ';
  return u;
}

constexpr Unit pascal = padded("Pa");
constexpr Unit conductivity = padded("W/m/K");
constexpr Unit viscosity = padded("Pa.s");
constexpr Unit heat_capacity = padded("J/kmol/K");
constexpr Unit molar_energy = padded("J/kmol");
constexpr Unit molar_density = padded("kmol/m3");
constexpr Unit molar_volume = padded("m3/kmol");
constexpr Unit tension = padded("N/m");
constexpr Unit no_unit = padded("");

const Unit& unit_of(Property property) noexcept {
  switch (property) {
    case Property::GasThermalConductivity:
    case Property::LiquidThermalConductivity:
    case Property::SolidThermalConductivity:
      return conductivity;
    case Property::GasViscosity:
    case Property::LiquidViscosity:
      return viscosity;
    case Property::IdealGasSpecificHeat:
    case Property::LiquidSpecificHeat:
    case Property::SolidSpecificHeat:
    case Property::LiquidSpecificHeatInfiniteDilution:
      return heat_capacity;
    case Property::LiquidDensity:
    case Property::SolidDensity:
      return molar_density;
    case Property::LiquidMolarVolume:
    case Property::SolidMolarVolume:
    case Property::SecondVirialCoefficient:
      return molar_volume;
    case Property::SurfaceTension:
      return tension;
    case Property::VaporizationEnthalpy:
      return molar_energy;
    case Property::HenryConstant:
    case Property::MeltingPressure:
    case Property::SublimationPressure:
    case Property::VaporPressure:
      return pascal;
    default:
      return no_unit;
  }
}

void write_source(char* out, const char* text) noexcept {
  const std::size_t used = std::min<std::size_t>(source_length, std::strlen(text));
  std::memset(out, ' ', source_length);
  std::memcpy(out, text, used);
}

bool complete(const Call& call) noexcept {
  return call.cas && call.t && call.status && call.result && call.unit;
}

bool is_temperature(const double* t) noexcept {
  return t && std::isfinite(*t) && *t > 0.0;
}

int32_t equation_of(const Call& call) noexcept {
  return call.table ? call.table[0] : own_choice;
}

// Hands a result out; where an argument is missing fills those that are there.
int32_t finish(const Call& call, const Result& result, const Unit& text) noexcept {
  if (call.unit) std::memcpy(call.unit, text.text, unit_length);
  if (call.result) *call.result = result.value;
  if (call.status) *call.status = result.status;
  return result.status;
}

int32_t property_entry(Property property, const Call& call) noexcept {
  const FpGuard guard;
  if (!complete(call) || !is_temperature(call.t))
    return finish(call, {status_argument, 0.0}, unit_of(property));
  return finish(call, evaluate(property, *call.cas, *call.t, equation_of(call)), unit_of(property));
}

int32_t integral_entry(Over over, Property property, const double* a, const double* b,
                       const Call& call) noexcept {
  const FpGuard guard;
  const Unit& text = over == Over::t ? molar_energy : heat_capacity;
  const bool good = complete(call) && is_temperature(call.t) && is_temperature(a) && b && std::isfinite(*b);
  if (!good) return finish(call, {status_argument, 0.0}, text);
  return finish(call, integrate(over, property, *call.cas, *call.t, *a, *b, equation_of(call)), text);
}

int32_t exergy_entry(Phase phase, const Call& call) noexcept {
  const FpGuard guard;
  if (!complete(call) || !is_temperature(call.t)) return finish(call, {status_argument, 0.0}, molar_energy);
  return finish(call, chemical_exergy(phase, *call.cas, equation_of(call)), molar_energy);
}

int32_t check_entry(Property property, const int32_t* cas, const int32_t* equation) noexcept {
  if (!cas || !equation) return status_argument;
  const Rows rows = find_rows(property, *cas);
  if (rows.n == 0) return missing_status(*cas);
  return choose_row(rows, *equation) ? status_good : status_no_correlation;
}

// Property of a host's index; none where the index means nothing.
Property property_of(int32_t index) noexcept {
  return index >= 1 && index <= property_count ? static_cast<Property>(index) : Property::none;
}

}  // namespace

#define PURE_PROPERTY(name)                                                                               \
  KV_ENTRY int32_t KV_CALL name##_EX(const int32_t* cas, const double* T, const double*, const double*,   \
                                     const int32_t* table, int32_t* status, double* result, char* unit) { \
    return property_entry(Property::name, {cas, T, table, status, result, unit});                         \
  }                                                                                                       \
  KV_ENTRY int32_t KV_CALL Check##name##_EX(const int32_t* cas, const int32_t* equation) {                \
    return check_entry(Property::name, cas, equation);                                                    \
  }
KV_PURE_PROPERTIES(PURE_PROPERTY)

#define PURE_INTEGRALS(name)                                                                                   \
  KV_ENTRY int32_t KV_CALL name##IT_EX(const int32_t* cas, const double* T, const double* a, const double* b,  \
                                       const int32_t* table, int32_t* status, double* result, char* unit) {    \
    return integral_entry(Over::t, Property::name, a, b, {cas, T, table, status, result, unit});               \
  }                                                                                                            \
  KV_ENTRY int32_t KV_CALL name##TIT_EX(const int32_t* cas, const double* T, const double* a, const double* b, \
                                        const int32_t* table, int32_t* status, double* result, char* unit) {   \
    return integral_entry(Over::ln_t, Property::name, a, b, {cas, T, table, status, result, unit});            \
  }
PURE_INTEGRALS(IdealGasSpecificHeat)
PURE_INTEGRALS(LiquidSpecificHeat)
PURE_INTEGRALS(SolidSpecificHeat)
PURE_INTEGRALS(LiquidSpecificHeatInfiniteDilution)

#define PURE_EXERGY(name, phase)                                                                          \
  KV_ENTRY int32_t KV_CALL name##_EX(const int32_t* cas, const double* T, const double*, const double*,   \
                                     const int32_t* table, int32_t* status, double* result, char* unit) { \
    return exergy_entry(phase, {cas, T, table, status, result, unit});                                    \
  }
PURE_EXERGY(StdVaporChemicalExergy, Phase::vapour)
PURE_EXERGY(StdLiquidChemicalExergy, Phase::liquid)
PURE_EXERGY(StdSolidChemicalExergy, Phase::solid)

KV_ENTRY int32_t KV_CALL AvailableCorrelations(const int32_t* cas, const int32_t* property,
                                               int32_t* equations) {
  if (!cas || !property || !equations || equations[0] < 0) return status_argument;
  const int32_t capacity = equations[0];
  equations[0] = 0;
  const Rows rows = find_rows(property_of(*property), *cas);
  if (rows.n == 0) return missing_status(*cas);
  int32_t n = 0;
  for (int32_t i = 0; i < rows.n; ++i) {
    const int32_t equation = rows.row[i].equation;
    // Branches of a melting curve share one number: only the first row of a number counts.
    if (choose_row(rows, equation) != rows.row + i || n == capacity) continue;
    equations[++n] = equation;
  }
  equations[0] = n;
  return status_good;
}

KV_ENTRY int32_t KV_CALL CorrelationInfo(const int32_t* cas, const int32_t* property, const int32_t* equation,
                                         double* T_min, double* T_max, char* unit, char* source) {
  if (!cas || !property || !equation || !T_min || !T_max || !unit || !source) return status_argument;
  const Property asked = property_of(*property);
  std::memcpy(unit, unit_of(asked).text, unit_length);
  write_source(source, "");
  *T_min = 0.0;
  *T_max = 0.0;
  const Rows rows = find_rows(asked, *cas);
  const Row* row = choose_row(rows, *equation);
  if (!row) return rows.n == 0 ? missing_status(*cas) : status_no_correlation;
  *T_min = row->t_min;
  *T_max = row->t_max;
  write_source(source, row->source);
  if (asked != Property::MeltingPressure) return status_good;
  for (const Row* r = rows.row; r < rows.row + rows.n; ++r) {  // the branches follow one another in T
    if (*equation != own_choice && *equation != r->equation) continue;
    *T_min = std::min(*T_min, r->t_min);
    *T_max = std::max(*T_max, r->t_max);
  }
  return status_good;
}

KV_ENTRY int32_t KV_CALL SetTempFolder(const char* folder, const int32_t* length) {
  return folder && length && *length >= 0 && *length <= longest_folder ? status_good : status_argument;
}

KV_ENTRY int32_t KV_CALL SetThermoCodes(const int32_t* first, const int32_t* second) {
  return first && second ? status_good : status_argument;
}

KV_ENTRY int32_t KV_CALL KVCmpdPure_Free(void) {
  return status_good;
}
