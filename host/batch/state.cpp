#include "batch/state.hpp"

#include <cmath>

#include "batch/source.hpp"

namespace kestrune::host::batch {

namespace {

using Kind = Column::Kind;

constexpr std::size_t kCompositions = 256;  // wells that take turns in a table

constexpr unsigned bit(Property p) {
  return 1u << static_cast<unsigned>(p);
}

}  // namespace

StateSolver::StateSolver(const Exports& library, const Mixture& mixture, Given given, int phases,
                         const std::vector<Column>& columns)
    : library_(library),
      mixture_(mixture),
      given_(given),
      phase_count_(static_cast<std::size_t>(phases)),
      nc_(mixture.z.size()),
      flash_(library, mixture, given, phases),
      tell_dense_(tell_dense(columns)),
      free_water_((mixture.record.flags & FreeWaterFlag) != 0),
      critical_(kCompositions) {
  for (std::vector<double>& x : x_) x.assign(nc_, kNone);
  for (std::size_t place = 0; place < kPlaces; ++place) wanted_[place] = wanted_of_phase(columns, place);
}

void StateSolver::leave(double first, double second, StatusCode status) {
  first_ = first;
  T_ = given_ == Given::TP ? first : given_ == Given::WT ? second : kNone;
  P_ = given_ == Given::WT ? kNone : second;
  z_ = nullptr;
  molar_mass_ = kNone;
  status_ = flash_status_ = status;
}

StatusCode StateSolver::solve(double first, double second, const double* z, double molar_mass) {
  double* const x[3] = {x_[0].data(), x_[1].data(), x_[2].data()};
  flash_status_ = status_ = flash_(first, second, z, x);
  const bool at_energy = given_ == Given::HP || given_ == Given::SP;
  if (at_energy && has_answer() && !(flash_.T() >= kColdest && flash_.T() <= kHottest))
    flash_status_ = status_ = KV_NOT_CONVERGED;
  first_ = first;
  T_ = at_energy && !has_answer() ? kNone : flash_.T();
  P_ = flash_.P();
  z_ = z;
  molar_mass_ = molar_mass;
  for (std::size_t p = 0; p < kFlashPhases; ++p) share_[p] = p < phase_count_ ? flash_.fraction(p) : kNone;
  if (has_answer()) {
    name_phases();
    place_phases();
    add_properties();
  }
  return status_;
}

PropertyValues StateSolver::properties_of(std::size_t phase, unsigned wanted) {
  // A gas that turned out to be dense is asked for as the gas that it was.
  const bool renamed = phase == 0 && kinds_[0] == PhaseKind::dense;
  return phase_properties(library_, mixture_, renamed ? PhaseKind::vapour : kinds_[phase], T_, P_, x_[phase],
                          mass_of(phase), wanted);
}

LastCritical& StateSolver::critical_of(std::size_t phase) {
  const std::vector<double>& x = x_[phase];
  return critical_[hash_of({reinterpret_cast<const char*>(x.data()), nc_ * sizeof(double)}) % critical_.size()];
}

// What the phases are, by the rules of a single flash (equilibrium.cpp, three_phase.cpp).
void StateSolver::name_phases() {
  const bool of_fraction = given_ == Given::WP || given_ == Given::WT;
  kinds_[0] = PhaseKind::vapour;
  bool alone = !is_there(0) && !of_fraction && tell_dense_;
  for (std::size_t p = 1; p < phase_count_; ++p) {
    if (!is_there(p)) continue;
    if (phase_count_ == 3)
      kinds_[p] = liquid_kind(library_, mixture_, T_, x_[p], alone, &critical_of(p));
    else
      kinds_[p] = only_liquid_kind(library_, mixture_, T_, x_[p], alone, &critical_of(p));
    alone = false;
  }
  if (is_there(1) && phase_count_ == 3 && is_there(2) && kinds_[1] == kinds_[2]) {
    kinds_[1] = PhaseKind::light_liquid;
    kinds_[2] = PhaseKind::heavy_liquid;
  }
  if (!is_there(0) || of_fraction) return;
  settle_root();
  name_packed_gas();
}

// The lightest of three phases may be a liquid as well.
void StateSolver::settle_root() {
  if (free_water_ || phase_count_ < 3 || !is_there(1) || !is_there(2)) return;
  constexpr auto G = Property::free_enthalpy, v = Property::molar_volume, rho = Property::density;
  const PropertyValues gas = properties_of(0, bit(G) | bit(v));
  kinds_[0] = PhaseKind::liquid;
  if (!is_third_liquid(mixture_, x_[0], gas, properties_of(0, bit(G))[G])) {
    kinds_[0] = PhaseKind::vapour;
    return;
  }
  std::vector<PhaseKind*> kinds;
  std::vector<double> densities;
  for (std::size_t p = 0; p < phase_count_; ++p) {
    if (kinds_[p] == PhaseKind::aqueous_liquid) continue;
    kinds.push_back(&kinds_[p]);
    densities.push_back(properties_of(p, bit(rho))[rho]);
  }
  name_by_density(kinds, densities);
}

// A gas that is packed like a liquid beside nothing but water. Alone it is called a liquid by the flash itself, but for
// free water.
void StateSolver::name_packed_gas() {
  bool water = false;
  for (std::size_t p = 1; p < phase_count_; ++p) {
    if (!is_there(p)) continue;
    if (!is_aqueous(mixture_, x_[p])) return;
    water = true;
  }
  if (!(water || free_water_) || kinds_[0] != PhaseKind::vapour) return;
  constexpr auto v = Property::molar_volume;
  if (!is_packed(mixture_, x_[0], properties_of(0, bit(v))[v])) return;
  const PhaseKind kind = liquid_kind(library_, mixture_, T_, x_[0], tell_dense_, &critical_of(0));
  if (kind != PhaseKind::free_water) kinds_[0] = kind;
}

// The columns that a phase has, and its letter: of liquids the lighter one first, then the heavier one; a third liquid
// has a letter and no columns.
void StateSolver::place_phases() {
  at_.fill(kFlashPhases);
  char letters[kPlaces][kFlashPhases] = {};
  std::size_t counts[kPlaces] = {}, order[kFlashPhases] = {0, 1, 2};
  const auto rank = [&](std::size_t p) {
    return kinds_[p] == PhaseKind::light_liquid ? 0 : kinds_[p] == PhaseKind::heavy_liquid ? 1 : 2;
  };
  std::stable_sort(order, order + phase_count_,
                   [&](std::size_t a, std::size_t b) { return rank(a) < rank(b); });
  for (std::size_t k = 0; k < phase_count_; ++k) {
    const std::size_t p = order[k];
    if (!is_there(p)) continue;
    const PhaseKind kind = kinds_[p];
    const Place place = kind == PhaseKind::vapour                                            ? kVapour
                        : kind == PhaseKind::dense                                           ? kDense
                        : kind == PhaseKind::aqueous_liquid || kind == PhaseKind::free_water ? kAqueous
                                                                                             : kLiquid;
    const bool second = place == kLiquid && at_[kLiquid] != kFlashPhases;
    place_of_[p] = second ? kLiquid2 : place;
    std::size_t& at = at_[place_of_[p]];
    if (at == kFlashPhases) at = p;
    if (share_[p] > 0.0) letters[place][counts[place]++] = kPlaceLetters[place];
  }
  letter_count_ = 0;
  for (std::size_t place = 0; place < kPlaces; ++place)
    for (std::size_t k = 0; k < counts[place]; ++k) letters_[letter_count_++] = letters[place][k];
}

void StateSolver::add_properties() {
  for (std::size_t p = 0; p < phase_count_; ++p) {
    const unsigned wanted = is_there(p) ? wanted_[place_of_[p]] : 0u;
    if (wanted == 0) continue;
    properties_[p] = properties_of(p, wanted);
    for (std::size_t k = 0; k < kPropertyCount; ++k) {
      if ((wanted >> k & 1u) == 0) continue;
      const bool none = properties_[p].statuses[k] == KV_OK && std::isnan(properties_[p].values[k]);
      status_ = combined(status_, none ? StatusCode{kRowNoProperty} : properties_[p].statuses[k]);
    }
  }
}

// Of the phases together: a sum over them, by mole.
double StateSolver::whole(Property property) const {
  const Property summed = property == Property::density ? Property::molar_volume : property;
  double sum = 0.0;
  for (std::size_t p = 0; p < phase_count_; ++p)
    if (share_[p] > 0.0) sum += share_[p] == 1.0 ? properties_[p][summed] : share_[p] * properties_[p][summed];
  return property == Property::density ? 1e-3 * molar_mass_ / sum : sum;
}

double StateSolver::mass_of(std::size_t phase) const {
  double mass = 0.0;
  for (std::size_t i = 0; i < nc_; ++i) mass += x_[phase][i] * mixture_.components[i].molar_mass;
  return mass;
}

double StateSolver::value(const Column& c) const {
  switch (c.kind) {
    case Kind::given:
      return c.unit->from_base(first_, molar_mass_);
    case Kind::T:
      return c.unit->from_base(T_);
    case Kind::P:
      return c.unit->from_base(P_);
    case Kind::status:
      return status_;
    case Kind::molar_mass:
      return molar_mass_;
    case Kind::feed:
      return z_ != nullptr ? z_[c.index] : kNone;
    default:
      break;
  }
  if (!has_answer()) return kNone;
  if (c.kind == Kind::whole) return c.unit->from_base(whole(c.property), molar_mass_);
  const std::size_t p = at_[c.phase];
  if (p == kFlashPhases) return c.kind == Kind::fraction ? 0.0 : kNone;
  switch (c.kind) {
    case Kind::fraction:
      return share_[p];
    case Kind::phase_mass:
      return mass_of(p);
    case Kind::composition:
      return x_[p][c.index];
    case Kind::phase_property: {
      const double base = properties_[p][c.property];
      if (c.unit == nullptr) return base;
      return c.unit->from_base(base, c.unit->per_mass ? mass_of(p) : 0.0);
    }
    default:
      return kNone;
  }
}

std::string_view StateSolver::phases() const {
  return {letters_.data(), has_answer() ? letter_count_ : 0};
}

}  // namespace kestrune::host::batch
