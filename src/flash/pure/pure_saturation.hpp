// Saturation of a single component: equal fugacities of its liquid and its vapour.
#ifndef KESTRUNE_FLASH_PURE_PURE_SATURATION_HPP
#define KESTRUNE_FLASH_PURE_PURE_SATURATION_HPP

#include "flash/quality/quality_line.hpp"

namespace kestrune::flash {

/*
 * Index of the component that makes up the whole feed z[n] (sum 1): the only one, or the first whose fraction
 * is strictly greater than 1 - tolerance. -1 without one.
 */
int single_component(int n, const double* z, double tolerance) noexcept;

/*
 * The same of a feed z[n] as it is given, which need not sum to one: the fraction counts as it stands, and has to
 * be as large a part of the sum; a component without any other beside it counts in any amount.
 */
int single_component_of_feed(int n, const double* z, double tolerance) noexcept;

/*
 * Solves for T at P or P at T (unknown: T or P index of the line; its start and the given one stand in p.X)
 * with the composition of component j alone, to 1e-12. KV_OK: p.X is complete, ln K of j 0 and of the others at
 * infinite dilution. KV_NO_SATURATION: at or above the critical point, or no two roots; others: of the model.
 */
StatusCode pure_saturation(QualityLine& line, LinePoint& p, int j, int unknown);

}  // namespace kestrune::flash

#endif
