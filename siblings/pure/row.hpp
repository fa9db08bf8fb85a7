// Layout of the compiled-in databank. The arrays themselves are generated from data/pure/*.csv at build time
// by tools/make_pure_data.py.
#ifndef KESTRUNE_SIBLINGS_PURE_ROW_HPP
#define KESTRUNE_SIBLINGS_PURE_ROW_HPP

#include <cstdint>

#include "kestrune/kvcmpdpurelite.h"

namespace kestrune::pure {

// Numbered from 1 in the order of KV_PURE_PROPERTIES, as hosts count them.
enum class Property : std::int32_t {
  none,
#define KV_PURE_ENUM(name) name,
  KV_PURE_PROPERTIES(KV_PURE_ENUM)
#undef KV_PURE_ENUM
      count
};

inline constexpr int property_count = static_cast<int>(Property::count) - 1;

// Equation numbers that the databank gives to forms which have none in the tables.
inline constexpr std::int32_t equation_henry_iapws = 294;    // ln(kH/p_w) in reduced temperature
inline constexpr std::int32_t equation_melting_ratio = 295;  // p0 + sum a_i ((T/T0)^t_i - 1)
inline constexpr std::int32_t equation_melting_shift = 300;  // p0 + sum a_i (T/T0 - 1)^t_i

// Word that asks for the databank's own choice of equation.
inline constexpr std::int32_t own_choice = 1;

inline constexpr int max_coefficients = 8;

// One correlation. c holds C1..C7 of the equation; for the melting curves p0, T0, a1, t1, a2, t2, a3, t3.
struct Row {
  std::int32_t equation;
  double t_min, t_max;  // K
  double c[max_coefficients];
  const char* source;  // at most 60 characters
};

// Rows of one property, sorted by CAS number; rows of the same component are neighbours, the databank's own
// choice first (melting curves: the branch of the lowest pressure first). cas[i] belongs to rows[i].
struct Table {
  const std::int32_t* cas;
  const Row* rows;
  std::int32_t n;
};

// Standard molar chemical exergy at 298.15 K and 101325 Pa, J/kmol.
struct Exergy {
  std::int32_t cas;
  double value;
};

struct ExergyTable {
  const Exergy* rows;
  std::int32_t n;
};

enum class Phase : std::int32_t { vapour, liquid, solid };

// Indexed by Property (element 0 is empty) and by Phase.
extern const Table property_tables[property_count + 1];
extern const ExergyTable exergy_tables[3];

// Every component of the databank, sorted.
extern const std::int32_t component_cas[];
extern const std::int32_t n_components;

}  // namespace kestrune::pure

#endif
