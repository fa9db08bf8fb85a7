#include "batch/prepare.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "batch/source.hpp"
#include "text.hpp"

namespace kestrune::host::batch {

namespace {

template <class T>
std::string_view bytes_of(const std::vector<T>& values) {
  return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

std::string mixture_text(const Mixture& m) {
  std::string names;
  for (const Component& c : m.components) names += c.name + '\n';
  std::string all = names;
  for (const std::vector<double>& values : {m.table, m.A, m.B, m.z}) all += bytes_of(values);
  all += bytes_of(m.counts);
  for (const ConstantPair& pair : m.constants) all += fmt::format("{} {} {}\n", pair.i, pair.j, pair.k);
  return fmt::format("{} components, set {}, {:016x}", m.count(), m.set_name, hash_of(all));
}

std::string settings_text(const MixtureRecord& r) {
  const double a = r.solubility_a, b = r.solubility_b, CRIT = r.CRIT, CLIM = r.CLIM, EPS = r.EPS,
               relax = r.relaxation;
  const std::int32_t ITEMAX = r.ITEMAX, NEW = r.NEW;
  const bool free_water = (r.flags & FreeWaterFlag) != 0;
  return fmt::format("free_water={} {} {} crit={} clim={} eps={} itemax={} new={} relax={}", free_water, a, b,
                     CRIT, CLIM, EPS, ITEMAX, NEW, relax);
}

// The library with its siblings beside it; one that lies elsewhere counts as nothing.
std::string library_text(const std::string& path) {
  if (path.empty()) return "given";
  std::string text;
  for (const std::string& file : library_files(path)) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
    text += fmt::format("{}{:016x}", text.empty() ? "" : " ", hash_of(bytes));
  }
  return text;
}

std::string heading_text(const Heading& h) {
  std::string text;
  for (const std::string& title : h.titles) text += (text.empty() ? "" : std::string(1, h.separator)) + title;
  // What of it is read as what: --keep and --ignore have a say.
  for (const AmountColumn& a : h.amounts) text += fmt::format(" {}:{}", a.column + 1, a.name);
  if (!h.given) return text;
  for (const ConditionColumn& c : h.conditions) text += fmt::format(" {}:{}", c.column + 1, c.unit->name);
  return text;
}

}  // namespace

Mixture mixture_of_amounts(const Heading& heading, const Composition& definitions, const InteractionSet& set,
                           std::vector<AmountParts>& amounts) {
  const auto composition = [&](auto amount) {
    Composition c = definitions;
    for (std::size_t k = 0; k < heading.amounts.size(); ++k) c.add(heading.amounts[k].name, amount(k));
    return c;
  };
  amounts.clear();
  for (std::size_t wanted = 0; wanted < heading.amounts.size(); ++wanted) {
    const Mixture one =
        build_mixture(composition([wanted](std::size_t k) { return k == wanted ? 1.0 : 0.0; }), set);
    AmountParts parts;
    for (std::size_t i = 0; i < one.z.size(); ++i)
      if (one.z[i] != 0.0) parts.parts.emplace_back(i, one.z[i]);
    if (heading.basis == Basis::mass) parts.divisor = one.molar_mass;
    amounts.push_back(parts);
  }
  return build_mixture(composition([](std::size_t) { return 1.0; }), set);
}

std::vector<RefusedPair> refused_pairs(const Mixture& mixture) {
  std::vector<RefusedPair> pairs;
  for (const MissingPair& p : mixture.missing) {
    const auto same = [&](const RefusedPair& q) {
      return q.first == p.component_i && q.second == p.component_j;
    };
    if (std::none_of(pairs.begin(), pairs.end(), same)) pairs.push_back({p.component_i, p.component_j});
  }
  for (const int i : mixture.uncovered) pairs.push_back({i, -1});
  return pairs;
}

Identity identity_of(const Job& job, const std::string& library, std::size_t chunk_lines) {
  std::vector<std::string> columns, kept;
  for (const Column& c : job.columns) columns.push_back(c.heading);
  for (const KeptColumn& k : job.kept)
    kept.push_back(fmt::format("{}{}", k.of_composition ? "compositions " : "", k.column + 1));
  return {{"version", KESTRUNE_VERSION},
          {"library", library_text(library)},
          {"mixture", mixture_text(job.mixture)},
          {"basis", job.amount_heading().basis == Basis::mole ? "mole" : "mass"},
          {"settings", settings_text(job.mixture.record)},
          {"states", heading_text(job.states)},
          {"compositions", job.has_compositions ? heading_text(job.compositions) : "-"},
          {"refused_pairs", std::to_string(job.refused.size())},
          {"phases", std::to_string(job.phases)},
          {"columns", joined(columns, ",")},
          {"kept", kept.empty() ? "-" : joined(kept, ",")},
          {"format", job.binary ? "binary" : "csv"},
          {"chunk", std::to_string(chunk_lines)}};
}

}  // namespace kestrune::host::batch
