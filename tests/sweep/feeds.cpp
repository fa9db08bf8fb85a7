#include "feeds.hpp"

#include <cstdlib>

#include "common/csv.hpp"
#include "three_states.hpp"

namespace kestrune::sweep {
namespace {

// The rows of sweep_feeds.csv for a run.
std::vector<System> systems_of(const std::string& run) {
  std::vector<System> systems;
  for (const tests::Row& row : tests::rows("sweep_feeds.csv")) {
    if (row.at("run") != run) continue;
    const auto value = [&](const char* column) { return tests::number(row, column); };
    System s{{row.at("name"), {}, {}, value("T_low"), value("T_high")}, value("P_low"), value("P_high")};
    double total = 0;
    for (const std::string& part : tests::split(row.at("amounts"), ';')) {
      const size_t equals = part.find('=');
      s.feed.ids.push_back(part.substr(0, equals));
      s.feed.z.push_back(std::strtod(part.c_str() + equals + 1, nullptr));
      total += s.feed.z.back();
    }
    for (double& z : s.feed.z) z /= total;
    s.feed.free_water = row.at("free_water") == "1";
    s.feed.solubility_a = s.feed.free_water ? 11.2 : 0;  // s = 5e-5 at 298 K
    s.feed.solubility_b = s.feed.free_water ? 6290.0 : 0;
    systems.push_back(std::move(s));
  }
  return systems;
}

std::vector<Feed> feeds_of(const std::string& run) {
  std::vector<Feed> feeds;
  for (System& s : systems_of(run)) feeds.push_back(std::move(s.feed));
  return feeds;
}

}  // namespace

std::vector<Feed> all_feeds() {
  return feeds_of("all");
}

std::vector<Feed> value_feeds() {
  return feeds_of("value");
}

std::vector<System> three_phase_systems() {
  return systems_of("three");
}

}  // namespace kestrune::sweep
