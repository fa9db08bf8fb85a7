#include "cold_flash.hpp"

#include <algorithm>

#include "equilibrium_parts.hpp"

namespace kestrune::host {

namespace {

constexpr double kRounding = 1e-14;  // of the share that is left for the second of two liquids

}  // namespace

ColdFlash::ColdFlash(const Exports& library, const Mixture& mixture, Given given, int phases)
    : library_(library),
      record_(mixture.record),
      given_(given),
      phases_(static_cast<std::size_t>(phases)),
      nc_(mixture.z.size()),
      ratios_(2 * nc_),
      spare_(nc_) {}

bool ColdFlash::has_entries(const double* x) const {
  return std::any_of(x, x + nc_, [](double v) { return v > 0.0; });
}

StatusCode ColdFlash::operator()(double first, double second, const double* z, double* const x[3]) {
  T_ = atm_ = 0.0;
  // The library follows a fraction beyond the ends of its range, where a line of constant fraction goes on.
  const bool outside = at_fraction() && !(first >= 0.0 && first <= 1.0);
  const StatusCode status = outside        ? StatusCode{KV_SPECIFICATION}
                            : phases_ == 3 ? flash_three(first, second, z, x[0], x[1], x[2])
                                           : flash_two(first, second, z, x[0], x[1]);
  const bool good = has_value(status);
  if (!good) {
    share_ = {kNone, kNone, kNone};
    T_ = given_ == Given::TP ? first : given_ == Given::WT ? second : kNone;
  }
  P_ = given_ != Given::WT ? second : good ? atm_ * kAtmInPa : kNone;
  for (std::size_t p = 0; p < phases_; ++p) {
    // Of a bubble point the vapour, of a dew point the liquids.
    const bool forming = p == 0 ? share_[0] == 0.0 : share_[0] == 1.0;
    const bool incipient = at_fraction() && good && forming && has_entries(x[p]);
    if (!(share_[p] > 0.0) && !incipient) std::fill_n(x[p], nc_, kNone);
  }
  return status;
}

StatusCode ColdFlash::flash_two(double first, double second, const double* z, double* y, double* x) {
  constexpr std::int32_t cold = 1;
  double beta = 0.0, of_liquid = 0.0, of_vapour = 0.0, *K = ratios_.data();
  StatusCode status = KV_OK;
  atm_ = second / kAtmInPa;
  switch (given_) {
    case Given::TP:
      T_ = first;
      status = library_.FlashLVatTP(T_, atm_, z, &record_, nullptr, cold, &beta, x, y, K);
      break;
    case Given::HP:
    case Given::SP:
      status = (given_ == Given::HP ? library_.FlashLVatHP : library_.FlashLVatSP)(
          first / kCalInJ, atm_, z, &record_, nullptr, cold, &T_, &beta, x, y, K, &of_liquid, &of_vapour);
      break;
    case Given::WP:
      beta = first;
      status = library_.FlashLVatWP(first, atm_, z, &record_, nullptr, cold, &T_, x, y, K);
      break;
    default:
      beta = first;
      T_ = second;
      atm_ = 0.0;
      status = library_.FlashLVatWT(first, T_, z, &record_, nullptr, cold, &atm_, x, y, K);
  }
  share_ = {beta, 1.0 - beta, kNone};
  return status;
}

StatusCode ColdFlash::flash_three(double first, double second, const double* z, double* y, double* xA,
                                  double* xB) {
  constexpr std::int32_t cold = 0;
  double A = 0.0, V = 0.0, of_A = 0.0, of_B = 0.0, of_vapour = 0.0;
  double *KLL = ratios_.data(), *KLV = KLL + nc_;
  StatusCode status = KV_OK;
  atm_ = second / kAtmInPa;
  switch (given_) {
    case Given::TP:
      T_ = first;
      status = library_.FlashLLVatTP(T_, atm_, z, &record_, nullptr, cold, &A, &V, xA, xB, y, KLL, KLV);
      break;
    case Given::HP:
    case Given::SP:
      status = (given_ == Given::HP ? library_.FlashLLVatHP : library_.FlashLLVatSP)(
          first / kCalInJ, atm_, z, &record_, nullptr, cold, &T_, &A, &V, xA, xB, y, KLL, KLV, &of_A, &of_B,
          &of_vapour);
      break;
    case Given::WP:
      V = first;
      status = library_.FlashLLVatWP(first, atm_, z, &record_, nullptr, cold, &T_, &A, xA, xB, y, KLL, KLV);
      break;
    default:
      V = first;
      T_ = second;
      atm_ = 0.0;
      status = library_.FlashLLVatWT(first, T_, z, &record_, nullptr, cold, &atm_, &A, xA, xB, y, KLL, KLV);
  }
  settle_liquids(A, V, xA, xB);
  return status;
}

// The only liquid comes first; of two the library's A, the lighter one, is the first already.
void ColdFlash::settle_liquids(double A, double V, double* xA, double* xB) {
  const double B = 1.0 - A - V;
  const bool dew = at_fraction() && V == 1.0;
  const bool has_B = B > kRounding || (dew && has_entries(xB));
  share_ = {V, A > kRounding ? A : 0.0, has_B ? std::max(B, 0.0) : 0.0};
  const bool has_A = A > kRounding || (dew && has_entries(xA));
  if (has_A || !has_B) return;
  std::swap_ranges(xA, xA + nc_, xB);
  std::fill_n(xB, nc_, 0.0);
  std::swap(share_[1], share_[2]);
}

PhaseAsker::PhaseAsker(const Exports& library, const Mixture& mixture) : library_(library), mixture_(mixture) {}

void PhaseAsker::take(const double* x) {
  x_.assign(x, x + mixture_.z.size());
  molar_mass_ = 0.0;
  for (std::size_t i = 0; i < x_.size(); ++i) molar_mass_ += x_[i] * mixture_.components[i].molar_mass;
}

PropertyValues PhaseAsker::at(PhaseKind kind, double T, double P, unsigned wanted) const {
  return phase_properties(library_, mixture_, kind, T, P, x_, molar_mass_, wanted);
}

PropertyValues PhaseAsker::properties(bool gas, double T, double P, const double* x, unsigned wanted) {
  take(x);
  return at(gas ? PhaseKind::vapour : PhaseKind::liquid, T, P, wanted);
}

bool PhaseAsker::lighter_is_gas(double T, double P, const double* x) {
  take(x);
  constexpr auto v = Property::molar_volume;
  if (!is_packed(mixture_, x_, at(PhaseKind::vapour, T, P, 1u << static_cast<unsigned>(v))[v])) return true;
  constexpr auto G = Property::free_enthalpy;
  constexpr unsigned wanted = 1u << static_cast<unsigned>(G);
  return !(at(PhaseKind::liquid, T, P, wanted)[G] < at(PhaseKind::vapour, T, P, wanted)[G]);
}

}  // namespace kestrune::host
