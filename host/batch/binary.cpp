#include "batch/binary.hpp"

#include <bit>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "batch/job.hpp"

namespace kestrune::host::batch {

static_assert(std::endian::native == std::endian::little);

std::string binary_head(const Job& job) {
  using nlohmann::ordered_json;
  ordered_json columns = ordered_json::array();
  for (const Column& c : job.columns) {
    const char* type = c.kind == Column::Kind::phases ? "S8" : c.kind == Column::Kind::status ? "i8" : "f8";
    columns.push_back(
        {{"name", c.heading}, {"type", type}, {"unit", c.unit != nullptr ? std::string(c.unit->name) : ""}});
  }
  ordered_json components = ordered_json::array();
  for (const Component& c : job.mixture.components) components.push_back(c.id);
  const ordered_json root{{"program", "kestrune"},
                          {"version", KESTRUNE_VERSION},
                          {"mixture", {{"set", job.mixture.set_name}, {"components", components}}},
                          {"columns", columns}};
  std::string text = root.dump();
  text.append((8 - text.size() % 8) % 8, ' ');
  const std::uint64_t length = text.size();
  return "KSTRBAT1" + std::string(reinterpret_cast<const char*>(&length), sizeof length) + text;
}

}  // namespace kestrune::host::batch
