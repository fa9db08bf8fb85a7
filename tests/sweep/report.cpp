#include "report.hpp"

#include <algorithm>

namespace kestrune::sweep {
namespace {

void print_times(const Tally& total) {
  for (auto [name, list] : total.seconds) {
    std::sort(list.begin(), list.end());
    double sum = 0;
    for (double t : list) sum += t;
    std::printf("  %-24s %zu calls: mean %.1f us, p95 %.1f us, largest %.1f us\n", name.c_str(), list.size(),
                1e6 * sum / static_cast<double>(list.size()), 1e6 * list[list.size() * 95 / 100],
                1e6 * list.back());
  }
}

template <class Map>
auto value_of(const Map& map, const char* name) {
  const auto found = map.find(name);
  return found == map.end() ? typename Map::mapped_type{} : found->second;
}

}  // namespace

void Tally::blame(const std::vector<std::string>& groups) {
  bad += !groups.empty();
  for (const std::string& group : groups) ++wrong[group];
}

void Tally::add(const Tally& t) {
  bad += t.bad;
  for (const auto& [name, number] : t.counts) counts[name] += number;
  for (const auto& [name, number] : t.wrong) wrong[name] += number;
  for (const auto& [name, value] : t.sizes) size(name, value);
  for (const auto& [name, times] : t.seconds)
    seconds[name].insert(seconds[name].end(), times.begin(), times.end());
}

void print_head(const Columns& columns) {
  std::printf("%-26s", "");
  for (const char* name : columns.counts) std::printf(" %8s", name);
  std::printf(" %8s", "wrong");
  for (const char* name : columns.sizes) std::printf(" %8s", name);
  std::printf("\n");
}

void print_line(const Columns& columns, const std::string& name, const Tally& tally) {
  std::printf("%-26s", name.c_str());
  for (const char* column : columns.counts) std::printf(" %8d", value_of(tally.counts, column));
  std::printf(" %8d", tally.bad);
  for (const char* column : columns.sizes) std::printf(" %8.1e", value_of(tally.sizes, column));
  std::printf("\n");
  std::fflush(stdout);
}

int finish(const Options& options, const Columns& columns, const Tally& total) {
  print_line(columns, "all", total);
  for (const auto& [group, number] : total.wrong) std::printf("  %7d  %s\n", number, group.c_str());
  if (options.times) print_times(total);
  const int judged = value_of(total.counts, columns.counts.front());
  std::printf("%d passed, %d failed\n", judged - total.bad, total.bad);
  return judged > 0 ? total.bad : -1;
}

Line::~Line() {
  std::fprintf(file_, "\n");
  std::fflush(file_);
}

Line& Line::operator<<(const std::string& text) {
  std::fprintf(file_, "%s\"%s\"", first_ ? "" : ",", text.c_str());
  first_ = false;
  return *this;
}

Line& Line::operator<<(double value) {
  std::fprintf(file_, "%s%.17g", first_ ? "" : ",", value);
  first_ = false;
  return *this;
}

Line& Line::operator<<(const Composition& values) {
  for (size_t i = 0; i < values.size(); ++i)
    std::fprintf(file_, "%s%.17g", i > 0 ? ";" : first_ ? "" : ",", values[i]);
  first_ = false;
  return *this;
}

}  // namespace kestrune::sweep
