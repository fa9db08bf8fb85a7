// Flashes of many states.
#include <algorithm>
#include <array>
#include <limits>

#include "properties.hpp"
#include "session.hpp"
#include "units.hpp"

using namespace kestrune;
using arrays::guarded;
using arrays::index;
using host::kAtmInPa;
using host::kCalInJ;

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kRounding = 1e-14;  // of the share that is left for the second of two liquids

// One thread's flashes: its own record, for a flash writes the flags of it.
class Flasher {
 public:
  Flasher(const host::Exports& library, const host::Mixture& mixture, const KaFlash& job)
      : library_(library), mixture_(mixture), job_(job), record_(mixture.record), nc_(mixture.z.size()) {
    ratios_.resize(2 * nc_);
    spare_.resize(nc_);
  }

  void operator()(std::int64_t i) {
    const std::size_t at = index(i);
    const double first = job_.first[at], second = job_.second[at];
    T_ = P_ = 0.0;
    const double* z = arrays::row(job_.z, nc_, i, mixture_);
    double *vapour = job_.x[0] + at * nc_, *liquid = job_.x[1] + at * nc_;
    double* heavy = job_.phases == 3 ? job_.x[2] + at * nc_ : spare_.data();
    const StatusCode status = job_.phases == 3 ? flash_three(first, second, z, vapour, liquid, heavy)
                                               : flash_two(first, second, z, vapour, liquid);
    job_.status[at] = status;
    if (!host::has_value(status)) share_ = {kNone, kNone, kNone};
    const bool good = host::has_value(status);
    job_.T[at] = good ? T_ : given_T(first, second);
    job_.P[at] = good ? P_ * kAtmInPa : given_P(second);
    double* x[3] = {vapour, liquid, heavy};
    for (std::size_t p = 0; p < index(job_.phases); ++p) {
      job_.fraction[p][at] = share_[p];
      const bool incipient = at_fraction() && good && forming(p) && has_entries(x[p]);
      if (!(share_[p] > 0.0) && !incipient) std::fill_n(x[p], nc_, kNone);
    }
  }

 private:
  bool at_fraction() const { return job_.given == KA_WP || job_.given == KA_WT; }
  bool has_entries(const double* x) const {
    return std::any_of(x, x + nc_, [](double v) { return v > 0.0; });
  }
  // Of a bubble point the vapour, of a dew point the liquids.
  bool forming(std::size_t phase) const { return phase == 0 ? share_[0] == 0.0 : share_[0] == 1.0; }
  double given_T(double first, double second) const {
    return job_.given == KA_TP ? first : job_.given == KA_WT ? second : kNone;
  }
  double given_P(double second) const { return job_.given == KA_WT ? kNone : second; }

  StatusCode flash_two(double first, double second, const double* z, double* y, double* x) {
    constexpr std::int32_t cold = 1;
    double beta = 0.0, of_liquid = 0.0, of_vapour = 0.0, *K = ratios_.data();
    StatusCode status = KV_OK;
    switch (job_.given) {
      case KA_TP:
        T_ = first;
        P_ = second / kAtmInPa;
        status = library_.FlashLVatTP(T_, P_, z, &record_, nullptr, cold, &beta, x, y, K);
        break;
      case KA_HP:
      case KA_SP:
        P_ = second / kAtmInPa;
        status = (job_.given == KA_HP ? library_.FlashLVatHP : library_.FlashLVatSP)(
            first / kCalInJ, P_, z, &record_, nullptr, cold, &T_, &beta, x, y, K, &of_liquid, &of_vapour);
        break;
      case KA_WP:
        beta = first;
        P_ = second / kAtmInPa;
        status = library_.FlashLVatWP(first, P_, z, &record_, nullptr, cold, &T_, x, y, K);
        break;
      default:
        beta = first;
        T_ = second;
        status = library_.FlashLVatWT(first, T_, z, &record_, nullptr, cold, &P_, x, y, K);
    }
    share_ = {beta, 1.0 - beta, kNone};
    return status;
  }

  StatusCode flash_three(double first, double second, const double* z, double* y, double* xA, double* xB) {
    constexpr std::int32_t cold = 0;
    double A = 0.0, V = 0.0, of_A = 0.0, of_B = 0.0, of_vapour = 0.0;
    double *KLL = ratios_.data(), *KLV = KLL + nc_;
    StatusCode status = KV_OK;
    switch (job_.given) {
      case KA_TP:
        T_ = first;
        P_ = second / kAtmInPa;
        status = library_.FlashLLVatTP(T_, P_, z, &record_, nullptr, cold, &A, &V, xA, xB, y, KLL, KLV);
        break;
      case KA_HP:
      case KA_SP:
        P_ = second / kAtmInPa;
        status = (job_.given == KA_HP ? library_.FlashLLVatHP : library_.FlashLLVatSP)(
            first / kCalInJ, P_, z, &record_, nullptr, cold, &T_, &A, &V, xA, xB, y, KLL, KLV, &of_A, &of_B,
            &of_vapour);
        break;
      case KA_WP:
        V = first;
        P_ = second / kAtmInPa;
        status = library_.FlashLLVatWP(first, P_, z, &record_, nullptr, cold, &T_, &A, xA, xB, y, KLL, KLV);
        break;
      default:
        V = first;
        T_ = second;
        status = library_.FlashLLVatWT(first, T_, z, &record_, nullptr, cold, &P_, &A, xA, xB, y, KLL, KLV);
    }
    settle_liquids(A, V, xA, xB);
    return status;
  }

  // The only liquid comes first; of two the library's A, the lighter one, is the first already.
  void settle_liquids(double A, double V, double* xA, double* xB) {
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

  const host::Exports& library_;
  const host::Mixture& mixture_;
  const KaFlash& job_;
  MixtureRecord record_;
  std::size_t nc_;
  double T_ = 0.0, P_ = 0.0;  // K, atm
  std::array<double, 3> share_{};
  std::vector<double> ratios_, spare_;
};

void check(const KaFlash& job) {
  if (job.given < KA_TP || job.given > KA_WT) throw host::InputError("a flash is given TP, HP, SP, WP or WT");
  if (job.phases != 2 && job.phases != 3) throw host::InputError("a flash looks for 2 or 3 phases");
  if (job.count < 0) throw host::InputError("the number of states is negative");
}

}  // namespace

extern "C" int32_t ka_flash(KaMixture* mixture, const KaFlash* job, char* text, int32_t size) {
  return guarded(text, size, [&] {
    check(*job);
    const host::Exports& library = arrays::library();
    const arrays::Turn turn(mixture->mixture);
    arrays::for_each_state(job->count, job->threads, [&] { return Flasher(library, mixture->mixture, *job); });
    return 0;
  });
}
