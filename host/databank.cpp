#include "databank.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <utility>

#include "error.hpp"
#include "kestrune/records.h"
#include "text.hpp"

namespace kestrune::host {

namespace {

void add_once(std::vector<const Component*>& list, const Component* component) {
  if (std::find(list.begin(), list.end(), component) == list.end()) list.push_back(component);
}

// Every key of a component but its formula.
std::vector<std::string> name_keys(const Component& c) {
  std::vector<std::string> keys{search_key(c.id), search_key(c.name), search_key(c.cas)};
  for (const std::string_view alias : aliases_of(c)) keys.push_back(search_key(alias));
  return keys;
}

std::vector<const Component*> exact_matches(const std::string& key) {
  std::vector<const Component*> found;
  for (const Component& c : all_components()) {
    const auto keys = name_keys(c);
    if (std::find(keys.begin(), keys.end(), key) != keys.end()) add_once(found, &c);
  }
  if (!found.empty()) return found;
  for (const Component& c : all_components()) {
    if (search_key(c.formula) == key) add_once(found, &c);
  }
  return found;
}

}  // namespace

std::span<const Component> all_components() {
  return tables::components();
}

std::vector<std::string_view> aliases_of(const Component& component) {
  std::vector<std::string_view> names;
  for (const Alias& a : tables::aliases()) {
    if (a.component == component.number - 1) names.push_back(a.alias);
  }
  return names;
}

namespace {

// The part of a text that can be a name, and what stands behind it.
std::string_view name_part(std::string_view text) {
  constexpr std::string_view inner = " -_,.'()";  // between letters and digits
  std::size_t end = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == ')')
      end = i + 1;
    else if (inner.find(c) == std::string_view::npos)
      break;
  }
  return text.substr(0, end);
}

// "C7+", "C3=", "nC6*": what is not part of a name would be dropped in silence, and another component taken.
void refuse_more_than_a_name(std::string_view name) {
  const std::string_view whole = trimmed(name);
  const auto letter = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
  const auto begin = static_cast<std::size_t>(std::find_if(whole.begin(), whole.end(), letter) - whole.begin());
  if (begin < whole.size() && name_part(whole).empty())
    throw InputError(fmt::format("\"{}\" is not a component: \"{}\" is no part of a name; write {}", whole,
                                 trimmed(whole.substr(0, begin)), whole.substr(begin)));
  const std::string_view part = name_part(whole);
  std::string_view rest = whole.substr(part.size());
  if (rest.empty() || search_key(whole).empty()) return;
  const auto found = exact_matches(search_key(part));
  const std::string known = found.size() == 1 ? std::string(found.front()->name) : std::string(part);
  std::string advice = fmt::format("write {} for that component", known);
  if (rest == "+" || rest == "-")
    advice = fmt::format(
        "a fraction of several components is described by --fraction \"name={}, M=..., SG=...\" or [fraction "
        "{}] in a file, "
        "or written as one that stands for it ({})",
        whole, whole, known);
  else if (rest == "=")
    advice = fmt::format("write ethylene, propylene or 1-butene for an alkene, {} for that component", known);
  throw InputError(
      fmt::format("\"{}\" is not a component: \"{}\" is no part of a name; {}", whole, trimmed(rest), advice));
}

}  // namespace

bool is_water(const Component& component) {
  return component.family == KV_FAMILY_WATER;
}

bool names_component(std::string_view name) {
  const std::string key = search_key(name);
  return !key.empty() && !exact_matches(key).empty();
}

namespace {

// "C7 plus", "CO2(g)": a component and a word behind it.
std::string word_too_many(const std::string& key) {
  for (const std::string_view word : {"plus", "gas", "vapour", "liquid", "aq", "g", "l"}) {
    if (key.size() <= word.size() || key.substr(key.size() - word.size()) != word) continue;
    const auto found = exact_matches(key.substr(0, key.size() - word.size()));
    if (found.size() != 1) continue;
    if (word != "plus") return fmt::format(", write {}, which may be in any phase", found.front()->name);
    return fmt::format(
        ", a fraction of several components is described by --fraction, or written as one that stands for it "
        "({})",
        found.front()->name);
  }
  return "";
}

}  // namespace

const Component& find_component(std::string_view name) {
  refuse_more_than_a_name(name);
  const std::string key = search_key(name);
  const auto found = key.empty() ? std::vector<const Component*>{} : exact_matches(key);
  if (found.size() == 1) return *found.front();
  const std::string shown(trimmed(name));
  if (found.empty()) {
    const auto near = similar_names(name);
    std::string hint = word_too_many(key);
    if (hint.empty() && !near.empty()) hint = ", did you mean " + joined(near, ", ") + "?";
    throw InputError(fmt::format("unknown component \"{}\"{}; 'kestrune components' lists all {}", shown, hint,
                                 all_components().size()));
  }
  std::vector<std::string> names;
  for (const Component* c : found) names.emplace_back(c->name);
  throw InputError(fmt::format("\"{}\" is ambiguous: it may be {}", shown, joined(names, " or ")));
}

std::vector<const Component*> search_components(std::string_view text) {
  const std::string key = search_key(text);
  std::vector<const Component*> found;
  for (const Component& c : all_components()) {
    auto keys = name_keys(c);
    keys.push_back(search_key(c.formula));
    if (std::any_of(keys.begin(), keys.end(),
                    [&](const std::string& k) { return k.find(key) != std::string::npos; })) {
      found.push_back(&c);
    }
  }
  return found;
}

std::vector<std::string> similar_names(std::string_view text) {
  constexpr std::size_t kLongest = 60;  // no name comes near
  const std::string key = search_key(text);
  if (key.size() > kLongest) return {};
  const int limit = key.size() <= 3 ? 1 : std::max(2, static_cast<int>(key.size()) / 3);
  std::vector<std::pair<int, const Component*>> near;
  for (const Component& c : all_components()) {
    int best = limit + 1;
    for (const std::string& k : name_keys(c)) {
      best = std::min(best, edit_distance(key, k));
      if (key.size() >= 4 && k.find(key) != std::string::npos) best = std::min(best, 2);
    }
    if (best <= limit) near.emplace_back(best, &c);
  }
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  for (const auto& [distance, c] : near) {
    if (names.size() == 3) break;
    names.emplace_back(c->name);
  }
  return names;
}

std::string_view group_name(int group) {
  return tables::group_names()[static_cast<std::size_t>(group - 1)];
}

std::string groups_in_words(const Component& component) {
  std::vector<std::string> pieces;
  int total = 0;
  for (int k = 0; k < component.group_count; ++k) total += component.groups[static_cast<std::size_t>(k)].count;
  for (int k = 0; k < component.group_count; ++k) {
    const GroupCount& g = component.groups[static_cast<std::size_t>(k)];
    pieces.push_back(total > 1000 ? fmt::format("{:.1f} % {}", 100.0 * g.count / total, group_name(g.group))
                                  : fmt::format("{} {}", g.count, group_name(g.group)));
  }
  return pieces.empty() ? "none" : joined(pieces, " + ");
}

const Interaction* InteractionSet::published(int k, int l) const {
  for (const Interaction& pair : pairs) {
    if (pair.k == std::min(k, l) && pair.l == std::max(k, l)) return pair.published ? &pair : nullptr;
  }
  return nullptr;
}

const InteractionSet& interaction_set(std::string_view name) {
  static const InteractionSet sets[] = {
      {"2022", "E-PPR78, 40 groups, 2022", tables::interactions_2022()},
      {"original", "PPR78, first 15 groups, 2004 to 2008", tables::interactions_original()}};
  for (const InteractionSet& set : sets) {
    if (set.name == lower(trimmed(name))) return set;
  }
  throw InputError(fmt::format("unknown set of group interactions \"{}\": use 2022 or original", name));
}

}  // namespace kestrune::host
