// Calls of the pure-component library by property, with statuses and units of this library.

#include "frame/provider.hpp"

#include <algorithm>
#include <cmath>

#include "frame/siblings.hpp"
#include "frame/state.hpp"
#include "support/status.hpp"

namespace kestrune::frame {

namespace {

constexpr const char* kPropertyNames[] = {
#define KV_NAME(name) #name "_EX",
    KV_PURE_PROPERTIES(KV_NAME) KV_PURE_INTEGRALS(KV_NAME)
#undef KV_NAME
};
constexpr const char* kCheckNames[] = {
#define KV_NAME(name) "Check" #name "_EX",
    KV_PURE_PROPERTIES(KV_NAME)
#undef KV_NAME
};
constexpr const char* kServiceNames[] = {
#define KV_NAME(name) #name,
    KV_PURE_SERVICES(KV_NAME)
#undef KV_NAME
};

// Option table of the table form: nothing but ones, the databank's own choice.
constexpr std::int32_t kChoice[8] = {1, 1, 1, 1, 1, 1, 1, 1};

template <class Function>
Function bind(const char* name, ProviderEntry& slot) noexcept {
  return reinterpret_cast<Function>(
      BindProviderEntry(platform::kPureLibrary, name, state().pure_library, slot));
}

KvPureProperty property_entry(PureProperty property) noexcept {
  const auto index = static_cast<std::size_t>(property);
  return bind<KvPureProperty>(kPropertyNames[index], state().pure_properties[index]);
}

template <class Function>
Function service_entry(PureService service) noexcept {
  const auto index = static_cast<std::size_t>(service);
  return bind<Function>(kServiceNames[index], state().pure_services[index]);
}

}  // namespace

StatusCode pure_evaluate(PureProperty property, const std::int32_t* cas, const double* T, const double* a,
                         const double* b, const std::int32_t* table, StatusCode* status, double* result,
                         char* unit) noexcept {
  property_entry(property)(cas, T, a, b, table, status, result, unit);
  return *status = support::of_pure_library(*status);
}

StatusCode pure_by_choice(PureProperty property, const std::int32_t* cas, const double* T, const double* a,
                          const double* b, double* result, char* unit, StatusCode* status) noexcept {
  return pure_evaluate(property, cas, T, a, b, kChoice, status, result, unit);
}

double pure_value(PureProperty property, const std::int32_t& cas, const double& T, const double& a,
                  const double& b, StatusCode& status) noexcept {
  // The first word of the table, equation 1, is the sibling's option word as well.
  const UnitRow* rows = unit_table(property).rows;
  char unit[kUnitLength];
  std::fill_n(unit, kUnitLength, ' ');
  double result = 0.0;
  pure_evaluate(property, &cas, &T, &a, &b, &rows->equation, &status, &result, unit);
  if (!support::has_pure_value(status)) return 0.0;
  const bool named = std::any_of(unit, unit + kUnitLength, [](char c) { return c != ' '; });
  const double converted = convert_unit(result, named ? unit : rows->unit, working_unit(property));
  if (!std::isnan(converted)) return converted;
  status = KV_PURE_NO_CORRELATION;
  return 0.0;
}

double pure_value(PureProperty property, const std::int32_t& cas, const double& T,
                  StatusCode& status) noexcept {
  return pure_value(property, cas, T, 0.0, 0.0, status);
}

std::int32_t pure_check(PureProperty property, const std::int32_t* cas, const std::int32_t* equation) noexcept {
  const auto index = static_cast<std::size_t>(property);
  if (index >= kPureCheckCount) return KV_PURE_NO_CORRELATION - support::kPureBlock;
  return bind<KvPureCheck>(kCheckNames[index], state().pure_checks[index])(cas, equation);
}

std::int32_t pure_available_correlations(const std::int32_t* cas, const std::int32_t* property,
                                         std::int32_t* equations) noexcept {
  return service_entry<decltype(&::AvailableCorrelations)>(PureService::AvailableCorrelations)(cas, property,
                                                                                               equations);
}

StatusCode pure_correlation_info(const std::int32_t* cas, const std::int32_t* property,
                                 const std::int32_t* equation, double* T_min, double* T_max, char* unit,
                                 char* source) noexcept {
  return support::of_pure_library(service_entry<decltype(&::CorrelationInfo)>(PureService::CorrelationInfo)(
      cas, property, equation, T_min, T_max, unit, source));
}

StatusCode pure_set_temp_folder(const char* folder, const std::int32_t* length) noexcept {
  return support::of_pure_library(
      service_entry<decltype(&::SetTempFolder)>(PureService::SetTempFolder)(folder, length));
}

StatusCode pure_set_thermo_codes(const std::int32_t* first, const std::int32_t* second) noexcept {
  return support::of_pure_library(
      service_entry<decltype(&::SetThermoCodes)>(PureService::SetThermoCodes)(first, second));
}

StatusCode pure_free() noexcept {
  return support::of_pure_library(service_entry<decltype(&::KVCmpdPure_Free)>(PureService::KVCmpdPure_Free)());
}

}  // namespace kestrune::frame
