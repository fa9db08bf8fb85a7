// The component data of a mixture.
#ifndef KESTRUNE_TESTS_SWEEP_TABLES_HPP
#define KESTRUNE_TESTS_SWEEP_TABLES_HPP
#include <string>
#include <vector>

#include "model.hpp"

namespace kestrune::sweep {

// Components by id from components.csv, component_groups.csv and ppr78_interactions.csv of the folder. Pairs of
// groups without a published value count as zero. Throws when an id is unknown or has no groups.
Components read_components(const std::string& folder, const std::vector<std::string>& ids);

}  // namespace kestrune::sweep

#endif
