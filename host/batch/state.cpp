#include "batch/state.hpp"

#include <cmath>

#include "equilibrium_parts.hpp"

namespace kestrune::host::batch {

namespace {

using Kind = Column::Kind;

// Free water does not follow the equation of state.
constexpr unsigned kOfFreeWater = 1u << static_cast<unsigned>(Property::enthalpy) |
                                  1u << static_cast<unsigned>(Property::entropy) |
                                  1u << static_cast<unsigned>(Property::free_enthalpy);

}  // namespace

StateSolver::StateSolver(const Exports& library, const Mixture& mixture, Given given, int phases,
                         const std::vector<Column>& columns)
    : mixture_(mixture),
      given_(given),
      phase_count_(static_cast<std::size_t>(phases)),
      nc_(mixture.z.size()),
      flash_(library, mixture, given, phases),
      asker_(library, mixture) {
  for (std::size_t p = 0; p < kPhases; ++p) {
    x_[p].assign(nc_, kNone);
    if (p < phase_count_) wanted_[p] = wanted_of_phase(columns, p);
  }
}

void StateSolver::leave(double first, double second, StatusCode status) {
  first_ = first;
  T_ = given_ == Given::TP ? first : given_ == Given::WT ? second : kNone;
  P_ = given_ == Given::WT ? kNone : second;
  share_.fill(kNone);
  z_ = nullptr;
  molar_mass_ = kNone;
  status_ = flash_status_ = status;
}

StatusCode StateSolver::solve(double first, double second, const double* z, double molar_mass) {
  double* const x[3] = {x_[0].data(), x_[1].data(), x_[2].data()};
  flash_status_ = status_ = flash_(first, second, z, x);
  first_ = first;
  T_ = flash_.T();
  P_ = flash_.P();
  z_ = z;
  molar_mass_ = molar_mass;
  for (std::size_t p = 0; p < kPhases; ++p) share_[p] = p < phase_count_ ? flash_.fraction(p) : kNone;
  if (has_answer()) add_properties();
  return status_;
}

void StateSolver::add_property_status(const PropertyValues& of, unsigned wanted) {
  for (std::size_t k = 0; k < kPropertyCount; ++k)
    if ((wanted >> k & 1u) != 0) status_ = combined(status_, of.statuses[k]);
}

void StateSolver::add_properties() {
  const std::size_t w = water_of(mixture_);
  const bool may_part = (mixture_.record.flags & FreeWaterFlag) != 0 && w < nc_;
  for (std::size_t p = 0; p < phase_count_; ++p) {
    unsigned wanted = wanted_[p];
    if (wanted == 0 || std::isnan(x_[p][0])) continue;
    if (may_part && p > 0 && x_[p][w] > kWaterRich) wanted &= kOfFreeWater;
    const double* x = x_[p].data();
    const bool gas = p == 0 && asker_.lighter_is_gas(T_, P_, x);
    properties_[p] = asker_.properties(gas, T_, P_, x, wanted);
    add_property_status(properties_[p], wanted);
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
  const bool absent = c.phase >= phase_count_ || std::isnan(x_[c.phase][0]);
  switch (c.kind) {
    case Kind::fraction:
      return share_[c.phase];
    case Kind::whole:
      return c.unit->from_base(whole(c.property), molar_mass_);
    case Kind::phase_mass:
      return absent ? kNone : mass_of(c.phase);
    case Kind::composition:
      return x_[c.phase][c.index];
    case Kind::phase_property: {
      if (absent) return kNone;
      const double base = properties_[c.phase][c.property];
      if (c.unit == nullptr) return base;
      return c.unit->from_base(base, c.unit->per_mass ? mass_of(c.phase) : 0.0);
    }
    default:
      return kNone;
  }
}

std::string_view StateSolver::phases() {
  std::size_t length = 0;
  for (std::size_t p = 0; has_answer() && p < phase_count_; ++p) {
    if (!(share_[p] > 0.0)) continue;
    spare_.assign(x_[p].begin(), x_[p].end());
    letters_[length++] = p == 0 ? 'V' : is_aqueous(mixture_, spare_) ? 'W' : 'L';
  }
  return {letters_, length};
}

}  // namespace kestrune::host::batch
