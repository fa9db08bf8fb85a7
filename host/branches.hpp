// All points of one vapour fraction at a temperature or a pressure, where a line of that fraction is met more than once.
#ifndef KESTRUNE_HOST_BRANCHES_HPP
#define KESTRUNE_HOST_BRANCHES_HPP

#include <string_view>
#include <vector>

#include "equilibrium.hpp"

namespace kestrune::host {

// Of the points in ascending order of the quantity that is looked for: the first, the last, all of them.
enum class Branch { lower, upper, all };

// "lower", "upper", "all"; InputError for another name.
Branch branch_by_name(std::string_view name);

// The points of vapour fraction W at a temperature (Given::WT) or a pressure (Given::WP), K or Pa: the one that a cold
// start finds and those where the traced line is met, each from a warm start beside the edge of the two phases there. A
// point of the line that no flash finds is a state with its status, a remark and without a value (last_T is the temperature of the
// line), as is the answer where there is no point, without a remark. The mixture has been handed over to the library.
std::vector<Equilibrium> points_of_fraction(const Exports& library, Mixture& mixture, Given given, double W,
                                            double value, Branch branch);

}  // namespace kestrune::host

#endif
