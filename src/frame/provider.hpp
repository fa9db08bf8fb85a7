// Pure-component properties from the sibling library KVCmpdPureLite, bound on first use.
//
// Statuses: 0, or 1000 + n for error n of the sibling. 1003 = temperature outside the range of the
// correlation: the value is there all the same. A missing library or entry never returns (siblings.hpp).
#ifndef KESTRUNE_FRAME_PROVIDER_HPP
#define KESTRUNE_FRAME_PROVIDER_HPP

#include <cstddef>
#include <cstdint>

#include "frame/entries.hpp"
#include "kestrune/status.h"

namespace kestrune::frame {

// Units that the library works in. Each property has one, see working_unit.
enum class WorkingUnit {
  cal_mol,    // cal/mol
  cal_mol_K,  // cal/(mol K)
  atm,        // atm
  cm3_mol,    // cm3/mol
  W_m_K,      // W/(m K)
  cP,         // mPa s
  kmol_m3,    // molar density, kmol/m3 = mol/l
  g_cm3,      // mass density, g/cm3
  N_m,        // N/m
  mol_l_atm   // solubility, mol/(l atm)
};

// Unit in which pure_value returns a property.
WorkingUnit working_unit(PureProperty property) noexcept;

/*
 * A value in the unit named by unit[15] (blank-padded) expressed in a working unit. NaN when the unit is not
 * known or measures something else. Calories are thermochemical, 4.184 J.
 */
double convert_unit(double value, const char unit[kUnitLength], WorkingUnit target) noexcept;

// Row of a UnitTable: unit in which the result of an equation is expressed. Equation 1, the first row of
// every table, is the databank's own choice.
struct UnitRow {
  std::int32_t equation;
  char unit[kUnitLength + 1];  // blank-padded, then a zero
};
struct UnitTable {
  const UnitRow* rows;
  std::size_t count;
};
UnitTable unit_table(PureProperty property) noexcept;

/*
 * Value form, the one for calculations: the property in its working unit.
 *
 * cas     CAS number as a whole number             T  temperature, K
 * a, b    integral forms: lower bound, K, and value at the bound in the unit of the sibling (J/kmol for IT,
 *         J/kmol/K for TIT); other properties do not read them
 * status  out, 0 or 1000 + n; 1002 also when the unit of the result cannot be converted
 *
 * Returns 0 with the statuses that have no value.
 */
double pure_value(PureProperty property, const std::int32_t& cas, const double& T, const double& a,
                  const double& b, StatusCode& status) noexcept;
// The same for properties without bounds.
double pure_value(PureProperty property, const std::int32_t& cas, const double& T, StatusCode& status) noexcept;

// Pass-through: the eight arguments of the sibling's entry (kvcmpdpurelite.h), result in the sibling's unit.
StatusCode pure_evaluate(PureProperty property, const std::int32_t* cas, const double* T, const double* a,
                         const double* b, const std::int32_t* table, StatusCode* status, double* result,
                         char* unit) noexcept;

// Table form: the databank's own choice of equation, result in the sibling's unit with its text unit[15].
StatusCode pure_by_choice(PureProperty property, const std::int32_t* cas, const double* T, const double* a,
                          const double* b, double* result, char* unit, StatusCode* status) noexcept;

// Check of a property, not of an integral form or an exergy: the entry's own result, without the offset;
// 0 when the correlation exists. 2 (no correlation) for properties without a check.
std::int32_t pure_check(PureProperty property, const std::int32_t* cas, const std::int32_t* equation) noexcept;

// The entry's own result, without the offset.
std::int32_t pure_available_correlations(const std::int32_t* cas, const std::int32_t* property,
                                         std::int32_t* equations) noexcept;
// The others, with the offset.
StatusCode pure_correlation_info(const std::int32_t* cas, const std::int32_t* property,
                                 const std::int32_t* equation, double* T_min, double* T_max, char* unit,
                                 char* source) noexcept;
StatusCode pure_set_temp_folder(const char* folder, const std::int32_t* length) noexcept;
StatusCode pure_set_thermo_codes(const std::int32_t* first, const std::int32_t* second) noexcept;
StatusCode pure_free() noexcept;

}  // namespace kestrune::frame

#endif
