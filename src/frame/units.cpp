// Units of the pure-component properties: which one a correlation uses, and the way to the working units.
#include <cstring>
#include <limits>

#include "frame/provider.hpp"

namespace kestrune::frame {

namespace {

// value [unit] * multiply / divide = value [target]. Rows of the library's own sibling stand first.
struct Conversion {
  WorkingUnit target;
  char unit[kUnitLength + 1];
  double multiply, divide;
};

constexpr double kPascalPerAtm = 101325.0;

constexpr Conversion kConversions[] = {
    {WorkingUnit::cal_mol, "J/kmol         ", 1.0, 1e3 * kJoulePerCalorie},
    {WorkingUnit::cal_mol, "cal/mol        ", 1.0, 1.0},
    {WorkingUnit::cal_mol_K, "J/kmol/K       ", 1.0, 1e3 * kJoulePerCalorie},
    {WorkingUnit::cal_mol_K, "J/mol/K        ", 1.0, kJoulePerCalorie},
    {WorkingUnit::cal_mol_K, "cal/mol/K      ", 1.0, 1.0},
    {WorkingUnit::atm, "Pa             ", 1.0, kPascalPerAtm},
    {WorkingUnit::atm, "mmHg           ", 1.0, 760.0},
    {WorkingUnit::atm, "atm            ", 1.0, 1.0},
    {WorkingUnit::cm3_mol, "m3/kmol        ", 1e3, 1.0},
    {WorkingUnit::cm3_mol, "cm3/mol        ", 1.0, 1.0},
    {WorkingUnit::W_m_K, "W/m/K          ", 1.0, 1.0},
    {WorkingUnit::W_m_K, "cal/s/cm/K     ", 1e2 * kJoulePerCalorie, 1.0},
    {WorkingUnit::W_m_K, "microcal/s/cm/K", kJoulePerCalorie, 1e4},
    {WorkingUnit::cP, "Pa.s           ", 1e3, 1.0},
    {WorkingUnit::cP, "cP             ", 1.0, 1.0},
    {WorkingUnit::cP, "microP         ", 1.0, 1e4},
    {WorkingUnit::kmol_m3, "kmol/m3        ", 1.0, 1.0},
    {WorkingUnit::g_cm3, "kg/m3          ", 1.0, 1e3},
    {WorkingUnit::N_m, "N/m            ", 1.0, 1.0},
    {WorkingUnit::N_m, "dyne/cm        ", 1.0, 1e3},
    {WorkingUnit::mol_l_atm, "mol/l/atm      ", 1.0, 1.0},
};

// One table for each kind of property. Equation 1, the databank's choice, and the numbered equations of
// the databank use SI with kmol; the other numbers are those of databanks that use units of their own.
constexpr UnitRow kPressure[] = {{1, "Pa             "},   {10, "Pa             "},  {99, "mmHg           "},
                                 {101, "Pa             "}, {115, "Pa             "}, {300, "atm            "}};
constexpr UnitRow kMelting[] = {{1, "Pa             "}, {295, "Pa             "}, {300, "Pa             "}};
constexpr UnitRow kHenry[] = {
    {1, "Pa             "}, {101, "Pa             "}, {294, "Pa             "}, {300, "mol/l/atm      "}};
constexpr UnitRow kHeatCapacity[] = {
    {1, "J/kmol/K       "},   {16, "J/kmol/K       "},  {99, "cal/mol/K      "},  {100, "J/kmol/K       "},
    {107, "J/kmol/K       "}, {114, "J/kmol/K       "}, {127, "J/kmol/K       "}, {300, "J/mol/K        "}};
constexpr UnitRow kEnthalpy[] = {{1, "J/kmol         "}, {99, "cal/mol        "}, {106, "J/kmol         "}};
constexpr UnitRow kHeatIntegral[] = {
    {1, "J/kmol         "},   {16, "J/kmol         "},  {99, "cal/mol        "}, {100, "J/kmol         "},
    {107, "J/kmol         "}, {114, "J/kmol         "}, {127, "J/kmol         "}};
constexpr UnitRow kMolarDensity[] = {{1, "kmol/m3        "},
                                     {100, "kmol/m3        "},
                                     {105, "kmol/m3        "},
                                     {118, "kg/m3          "},
                                     {119, "kmol/m3        "}};
constexpr UnitRow kMolarVolume[] = {{1, "m3/kmol        "},   {99, "cm3/mol        "},
                                    {100, "m3/kmol        "}, {104, "m3/kmol        "},
                                    {105, "m3/kmol        "}, {119, "m3/kmol        "}};
constexpr UnitRow kConductivity[] = {
    {1, "W/m/K          "},   {16, "W/m/K          "},  {100, "W/m/K          "}, {101, "W/m/K          "},
    {102, "W/m/K          "}, {294, "microcal/s/cm/K"}, {295, "cal/s/cm/K     "}};
constexpr UnitRow kViscosity[] = {{1, "Pa.s           "},
                                  {101, "Pa.s           "},
                                  {102, "Pa.s           "},
                                  {294, "microP         "},
                                  {295, "cP             "}};
constexpr UnitRow kSurfaceTension[] = {
    {1, "N/m            "}, {99, "dyne/cm        "}, {100, "N/m            "}, {106, "N/m            "}};

struct PropertyUnits {
  UnitTable table;
  WorkingUnit working;
};
template <std::size_t n>
constexpr PropertyUnits units(const UnitRow (&rows)[n], WorkingUnit working) {
  return {{rows, n}, working};
}

constexpr PropertyUnits property_units(PureProperty property) {
  switch (property) {
    case PureProperty::GasThermalConductivity:
    case PureProperty::LiquidThermalConductivity:
    case PureProperty::SolidThermalConductivity:
      return units(kConductivity, WorkingUnit::W_m_K);
    case PureProperty::GasViscosity:
    case PureProperty::LiquidViscosity:
      return units(kViscosity, WorkingUnit::cP);
    case PureProperty::HenryConstant:
      return units(kHenry, WorkingUnit::atm);
    case PureProperty::MeltingPressure:
      return units(kMelting, WorkingUnit::atm);
    case PureProperty::SublimationPressure:
    case PureProperty::VaporPressure:
      return units(kPressure, WorkingUnit::atm);
    case PureProperty::LiquidDensity:
    case PureProperty::SolidDensity:
      return units(kMolarDensity, WorkingUnit::kmol_m3);
    case PureProperty::LiquidMolarVolume:
    case PureProperty::SolidMolarVolume:
    case PureProperty::SecondVirialCoefficient:
      return units(kMolarVolume, WorkingUnit::cm3_mol);
    case PureProperty::SurfaceTension:
      return units(kSurfaceTension, WorkingUnit::N_m);
    case PureProperty::IdealGasSpecificHeatIT:
    case PureProperty::LiquidSpecificHeatIT:
    case PureProperty::SolidSpecificHeatIT:
    case PureProperty::LiquidSpecificHeatInfiniteDilutionIT:
      return units(kHeatIntegral, WorkingUnit::cal_mol);
    case PureProperty::VaporizationEnthalpy:
    case PureProperty::StdVaporChemicalExergy:
    case PureProperty::StdLiquidChemicalExergy:
    case PureProperty::StdSolidChemicalExergy:
      return units(kEnthalpy, WorkingUnit::cal_mol);
    default:  // the heat capacities and their integrals over ln T
      return units(kHeatCapacity, WorkingUnit::cal_mol_K);
  }
}

}  // namespace

WorkingUnit working_unit(PureProperty property) noexcept {
  return property_units(property).working;
}

UnitTable unit_table(PureProperty property) noexcept {
  return property_units(property).table;
}

double convert_unit(double value, const char unit[kUnitLength], WorkingUnit target) noexcept {
  for (const Conversion& row : kConversions)
    if (row.target == target && std::memcmp(row.unit, unit, kUnitLength) == 0)
      return value * row.multiply / row.divide;
  return std::numeric_limits<double>::quiet_NaN();
}

}  // namespace kestrune::frame
