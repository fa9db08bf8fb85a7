// Henry constants of gases in water in the form of IAPWS G7-04 (equation 294).
#ifndef KESTRUNE_SIBLINGS_PURE_HENRY_HPP
#define KESTRUNE_SIBLINGS_PURE_HENRY_HPP

#include "pure/row.hpp"

namespace kestrune::pure {

// ln(kH/p_w) = A/Tr + B x^0.355/Tr + C Tr^-0.41 exp(x), x = 1 - Tr; p_w the databank's vapour pressure of
// water. kH in Pa at t, K; t below 647.096.
double henry_iapws(const Row& row, double t) noexcept;

// d ln kH/dT, 1/K.
double henry_iapws_log_slope(const Row& row, double t) noexcept;

}  // namespace kestrune::pure

#endif
