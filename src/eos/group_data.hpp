// Conversion of the host's group data into the buffers that every later evaluation reads.
#ifndef KESTRUNE_EOS_GROUP_DATA_HPP
#define KESTRUNE_EOS_GROUP_DATA_HPP

#include <cstdint>

#include "frame/state.hpp"

namespace kestrune::eos {

/*
 * counts[groups * components], A and B [groups * groups] in MPa (strict upper triangle read), into the buffers
 * that data points to (shapes in frame/state.hpp; A, B in atm). Counts below 1 leave empty loops.
 */
void convert_group_data(std::int32_t components, std::int32_t groups, const std::int32_t* counts,
                        const double* A, const double* B, const frame::GroupData& data) noexcept;

}  // namespace kestrune::eos

#endif
