/*
 * KVCmpdPureLite: temperature-dependent properties of pure components. Every argument by reference, every
 * entry undecorated, every entry returns its status.
 *
 * cas      CAS number without hyphens (water 7732185)
 * T        temperature, K
 * a, b     integral forms (..IT_EX, ..TIT_EX): lower bound in K and value at the lower bound; else not read
 *          and may be null
 * table    first word = number of the equation wanted, 1 = the databank's own choice; may be null (= 1)
 * status   out, the value returned
 * result   out, in the unit stated; 0 where status is 1, 2 or 4
 * unit     out, 15 characters, blank-padded, no terminating zero
 *
 * Status: 0 good; 1 component unknown; 2 no correlation for this property; 3 temperature outside the range of
 * the correlation, the value is still given, extrapolated safely; 4 an argument is not finite (or null).
 *
 * Units: heat capacities J/kmol/K, their integrals over T J/kmol and over ln T J/kmol/K, pressures and Henry
 * constants (in water) Pa, vaporisation enthalpy and exergies J/kmol, molar densities kmol/m3, molar volumes
 * m3/kmol, viscosities Pa.s, conductivities W/m/K, surface tension N/m, second virial coefficient m3/kmol.
 */
#ifndef KESTRUNE_KVCMPDPURELITE_H
#define KESTRUNE_KVCMPDPURELITE_H

#include "kestrune/platform.h"

/* Properties with an evaluation entry Name_EX and a check entry CheckName_EX. */
#define KV_PURE_PROPERTIES(X)  \
  X(GasThermalConductivity)    \
  X(GasViscosity)              \
  X(HenryConstant)             \
  X(IdealGasSpecificHeat)      \
  X(LiquidDensity)             \
  X(LiquidMolarVolume)         \
  X(LiquidSpecificHeat)        \
  X(LiquidThermalConductivity) \
  X(LiquidViscosity)           \
  X(MeltingPressure)           \
  X(SecondVirialCoefficient)   \
  X(SolidDensity)              \
  X(SolidMolarVolume)          \
  X(SolidSpecificHeat)         \
  X(SolidThermalConductivity)  \
  X(SublimationPressure)       \
  X(SurfaceTension)            \
  X(VaporizationEnthalpy)      \
  X(VaporPressure)             \
  X(LiquidSpecificHeatInfiniteDilution)

/* Integral forms (IT over T, TIT of the heat capacity divided by T) and exergies: Name_EX only. */
#define KV_PURE_INTEGRALS(X)               \
  X(IdealGasSpecificHeatIT)                \
  X(IdealGasSpecificHeatTIT)               \
  X(LiquidSpecificHeatIT)                  \
  X(LiquidSpecificHeatTIT)                 \
  X(SolidSpecificHeatIT)                   \
  X(SolidSpecificHeatTIT)                  \
  X(LiquidSpecificHeatInfiniteDilutionIT)  \
  X(LiquidSpecificHeatInfiniteDilutionTIT) \
  X(StdVaporChemicalExergy)                \
  X(StdLiquidChemicalExergy)               \
  X(StdSolidChemicalExergy)

/* Types of the entries, for a caller that resolves them by name. */
typedef int32_t(KV_CALL* KvPureProperty)(const int32_t* cas, const double* T, const double* a, const double* b,
                                         const int32_t* table, int32_t* status, double* result, char* unit);
typedef int32_t(KV_CALL* KvPureCheck)(const int32_t* cas, const int32_t* equation);

KV_EXTERN_C_BEGIN

#define KV_PURE_DECLARE(name)                                                                             \
  KV_API int32_t KV_CALL name##_EX(const int32_t* cas, const double* T, const double* a, const double* b, \
                                   const int32_t* table, int32_t* status, double* result, char* unit);
#define KV_PURE_DECLARE_CHECK(name)                                                       \
  /* 0 when the correlation exists for the component (equation 1: any), else a status. */ \
  KV_API int32_t KV_CALL Check##name##_EX(const int32_t* cas, const int32_t* equation);
KV_PURE_PROPERTIES(KV_PURE_DECLARE)
KV_PURE_PROPERTIES(KV_PURE_DECLARE_CHECK)
KV_PURE_INTEGRALS(KV_PURE_DECLARE)
#undef KV_PURE_DECLARE
#undef KV_PURE_DECLARE_CHECK

/*
 * Numbers of the equations that the databank holds for a component and property. property: index from 1 in
 * the order of KV_PURE_PROPERTIES. equations: in: capacity in word 1; out: word 1 the count, then the numbers.
 */
KV_API int32_t KV_CALL AvailableCorrelations(const int32_t* cas, const int32_t* property, int32_t* equations);
/* Range and unit of one correlation: T_min, T_max in K, unit as above, source 60 characters blank-padded. */
KV_API int32_t KV_CALL CorrelationInfo(const int32_t* cas, const int32_t* property, const int32_t* equation,
                                       double* T_min, double* T_max, char* unit, char* source);
/* Folder for temporary files, length characters. This library writes none; the name is only checked. */
KV_API int32_t KV_CALL SetTempFolder(const char* folder, const int32_t* length);
/* Thermodynamic codes of the caller, two words. This library's values do not depend on them. */
KV_API int32_t KV_CALL SetThermoCodes(const int32_t* first, const int32_t* second);
/* Releases what the library holds (nothing: the data are compiled in). */
KV_API int32_t KV_CALL KVCmpdPure_Free(void);

KV_EXTERN_C_END

#endif
