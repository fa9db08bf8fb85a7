// Components by name and group interactions by set. All data are compiled in.
#ifndef KESTRUNE_HOST_DATABANK_HPP
#define KESTRUNE_HOST_DATABANK_HPP

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "databank_tables.hpp"

namespace kestrune::host {

std::span<const Component> all_components();

// The component that goes by this name: id, name, common alias, CAS number with or without hyphens, or
// formula. Case, blanks and punctuation between do not matter; what follows a name and is no part of it (C7+, C3=) is
// refused. InputError with near spellings when there is none,
// and with the candidates when there are several.
const Component& find_component(std::string_view name);

bool is_water(const Component& component);

// Whether a component goes by this name or formula, or several do.
bool names_component(std::string_view name);

// Components whose id, name, alias, formula or CAS number contains the text; all for an empty text.
std::vector<const Component*> search_components(std::string_view text);

// Up to three component names that are spelled like the text.
std::vector<std::string> similar_names(std::string_view text);

// Other names of a component.
std::vector<std::string_view> aliases_of(const Component& component);

// Name of a group, index from 1.
std::string_view group_name(int group);

// Groups of a component in words, "2 CH3 + 1 CH2", in percent where they are those of a fraction; "none" without groups.
std::string groups_in_words(const Component& component);

// A set of group interactions.
struct InteractionSet {
  std::string_view name, title;
  std::span<const Interaction> pairs;

  // The published pair in either order; null when the set prints no value for it.
  const Interaction* published(int k, int l) const;
};

// "2022" (the 40 groups) or "original" (the first 15 groups); InputError for another name.
const InteractionSet& interaction_set(std::string_view name);

}  // namespace kestrune::host

#endif
