// Group data of a host: units, symmetry, and group fractions of the components.

#include "eos/group_data.hpp"

#include <algorithm>
#include <cstddef>

namespace kestrune::eos {

void convert_group_data(std::int32_t components, std::int32_t groups, const std::int32_t* counts,
                        const double* A, const double* B, const GroupData& data) noexcept {
  const std::size_t nc = components > 0 ? static_cast<std::size_t>(components) : 0;
  const std::size_t ng = groups > 0 ? static_cast<std::size_t>(groups) : 0;
  std::fill_n(data.A, ng * ng, 0.0);
  std::fill_n(data.B, ng * ng, 0.0);
  std::fill_n(data.ratio, ng * ng, 0.0);
  std::fill_n(data.fractions, nc * ng, 0.0);
  std::fill_n(data.differences, ng * nc * nc, 0.0);

  for (std::size_t l = 1; l < ng; ++l) {
    for (std::size_t k = 0; k < l; ++k) {
      const std::size_t upper = k + l * ng, lower = l + k * ng;
      data.A[upper] = data.A[lower] = A[upper] * 1000000.0 / 101325.0;
      data.B[upper] = data.B[lower] = B[upper] * 1000000.0 / 101325.0;
      if (data.A[upper] != 0.0) data.ratio[upper] = data.ratio[lower] = data.B[upper] / data.A[upper];
    }
  }

  const auto total = [&](std::size_t i) {
    std::int64_t sum = 0;  // counts of a host are any numbers
    for (std::size_t k = 0; k < ng; ++k) sum += counts[k + i * ng];
    return sum;
  };
  for (std::size_t i = 0; i < nc; ++i) {
    const std::int64_t all = total(i);
    if (all == 0) continue;
    for (std::size_t k = 0; k < ng; ++k)
      data.fractions[i + k * nc] = static_cast<double>(counts[k + i * ng]) / static_cast<double>(all);
  }
  for (std::size_t i = 0; i < nc; ++i) {
    if (total(i) == 0) continue;
    for (std::size_t j = 0; j < nc; ++j) {
      if (total(j) == 0) continue;
      double* difference = data.differences + (j + i * nc) * ng;
      for (std::size_t k = 0; k < ng; ++k)
        difference[k] = data.fractions[j + k * nc] - data.fractions[i + k * nc];
    }
  }
}

}  // namespace kestrune::eos
