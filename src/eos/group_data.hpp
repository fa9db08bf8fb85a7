// Group data of a host: what the equation of state needs beside the component table, and how they are made.
#ifndef KESTRUNE_EOS_GROUP_DATA_HPP
#define KESTRUNE_EOS_GROUP_DATA_HPP

#include <cstdint>

namespace kestrune::eos {

// Group data as convert_group_data leaves them. The buffers belong to the host.
struct GroupData {
  std::int32_t components = 0;
  std::int32_t groups = 0;
  double* A = nullptr;            // [groups * groups] atm, symmetric
  double* B = nullptr;            // [groups * groups] atm, symmetric
  double* fractions = nullptr;    // [components * groups]
  double* ratio = nullptr;        // [groups * groups] B / A
  double* differences = nullptr;  // [groups * components * components]
};

/*
 * counts[groups * components], A and B [groups * groups] in MPa (strict upper triangle read), into the buffers
 * that data points to. Counts below 1 leave empty loops.
 */
void convert_group_data(std::int32_t components, std::int32_t groups, const std::int32_t* counts,
                        const double* A, const double* B, const GroupData& data) noexcept;

}  // namespace kestrune::eos

#endif
